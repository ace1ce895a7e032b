#pragma once

#include "host/maps/Export.h"
#include "host/maps/projection/View.h"
#include "platform/cs/CoordSystem.h"

#include <QFont>
#include <QPainter>

#include <memory>

namespace orvane::maps {

/// A length on the ground that is round, and how long it is in pixels.
struct ScaleBar {
    QString text;
    double pixels = 0; ///< 0 where a bar would tell something wrong
};

/// A bar of at most `most` pixels for the middle of a view. None without a system, and where the scale
/// differs by more than a tenth between places of the view, as on maps of continents.
ORVANE_MAPS_EXPORT ScaleBar scaleBarOf(const std::shared_ptr<cs::CoordSystem>& map, const View& view,
                                       double most);
/// The size of a drawn bar.
ORVANE_MAPS_EXPORT QSizeF sizeOf(const ScaleBar& bar, const QFont& font);
ORVANE_MAPS_EXPORT void drawScaleBar(QPainter& painter, const ScaleBar& bar, QPointF upperLeft,
                                     const QFont& font);

} // namespace orvane::maps
