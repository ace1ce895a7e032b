#pragma once

#include "host/maps/drawing/LayerStyle.h"

#include <QFont>
#include <QPainter>

namespace orvane::maps {

/// What colours mean: a heading and a line for each class.
struct Legend {
    enum class Symbol { Area, Line, Point };
    QString title; ///< may be empty
    Symbol symbol = Symbol::Area;
    LayerStyle style; ///< with classes
};

ORVANE_MAPS_EXPORT QSizeF sizeOf(const Legend& legend, const QFont& font);
ORVANE_MAPS_EXPORT void drawLegend(QPainter& painter, const Legend& legend, QPointF upperLeft,
                                   const QFont& font);

} // namespace orvane::maps
