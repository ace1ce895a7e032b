#pragma once

#include "host/maps/classes/Classes.h"

#include <QColor>

#include <memory>

namespace orvane::maps {

/// How the features of a layer look. Widths and radii in pixels.
struct LayerStyle {
    QColor fill{0x8F, 0xB8, 0xD8};    ///< of areas
    QColor outline{0x4A, 0x5A, 0x66}; ///< of areas; those of a few pixels have none
    double outlineWidth = 0.7;
    QColor line{0x2A, 0x6F, 0x97};
    double lineWidth = 1.8;
    QColor point{0xC8, 0x50, 0x2A};
    double pointRadius = 3.5;
    /// Give areas, lines and points the colour of their value, points also its size; null for none.
    std::shared_ptr<const Classes> classes;
};

} // namespace orvane::maps
