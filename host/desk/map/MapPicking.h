#pragma once

#include "host/desk/map/MapPicture.h"

#include <QRectF>

namespace orvane::desk {

/// Features of one layer.
struct PickedFeatures {
    const MapLayer* layer = nullptr; ///< of the picture; null for none
    Numbers ids;                     ///< ascending
};

/// The feature at a pixel, of the uppermost layer that has one within a few pixels: the nearest, of several
/// the one drawn last.
PickedFeatures pickAt(const MapPicture& picture, QPointF pixel);
/// The features that a rectangle of pixels touches, of the uppermost layer that has any.
PickedFeatures pickWithin(const MapPicture& picture, const QRectF& pixels);

} // namespace orvane::desk
