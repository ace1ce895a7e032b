#pragma once

#include "host/maps/Export.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <vector>

namespace orvane::maps {

/// Where a picture has something in it, roughly, so that what is laid over it finds an empty place.
class ORVANE_MAPS_EXPORT Coverage {
public:
    explicit Coverage(QSizeF size);

    void add(QPointF pixel);
    void add(const QRectF& rect);
    /// The corner at which a box of that size covers least, lower ones first, with `margin` to the border.
    QRectF emptiestCorner(QSizeF box, double margin) const;

private:
    static constexpr int columns = 48;
    static constexpr int rows = 36;

    double within(const QRectF& rect) const;

    QSizeF size_;
    std::vector<bool> cells_;
};

} // namespace orvane::maps
