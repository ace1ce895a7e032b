#pragma once

#include "host/maps/Export.h"
#include "platform/geometry/shapes/Coordinates.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>

namespace orvane::maps {

/// Which part of the plane of a map is seen, and how large: pixels from the upper left corner, y downwards,
/// for positions of the plane, y upwards. A value; never without a size and a scale.
class ORVANE_MAPS_EXPORT View {
public:
    /// The whole plane around 0, 0, one unit a pixel.
    explicit View(QSizeF size = QSizeF(1, 1)) : size_(size) {}
    /// Shows all of an extent, centred, `margin` pixels free on every side. One without width and height, a
    /// single point, is shown with `leastSpan` units around it; an empty one gives View(size).
    static View fitting(const geometry::Envelope& extent, QSizeF size, double margin = 0,
                        double leastSpan = 0);

    QSizeF size() const { return size_; }
    QRectF rect() const { return {QPointF(0, 0), size_}; }
    /// Units of the plane in one pixel.
    double unitsPerPixel() const { return unitsPerPixel_; }
    QPointF centre() const { return centre_; }
    geometry::Envelope extent() const;

    QPointF toPixel(QPointF position) const {
        return {size_.width() / 2 + (position.x() - centre_.x()) / unitsPerPixel_,
                size_.height() / 2 - (position.y() - centre_.y()) / unitsPerPixel_};
    }
    QPointF toPlane(QPointF pixel) const {
        return {centre_.x() + (pixel.x() - size_.width() / 2) * unitsPerPixel_,
                centre_.y() - (pixel.y() - size_.height() / 2) * unitsPerPixel_};
    }

    /// What is seen after the picture was moved by so many pixels.
    View panned(QPointF pixels) const;
    /// The same enlarged by a factor, with what is at `pixel` staying there. Scales beyond what numbers can
    /// tell apart are not left.
    View zoomed(double factor, QPointF pixel) const;
    /// The same centre and scale in another size.
    View resized(QSizeF size) const;

    friend bool operator==(const View&, const View&) = default;

private:
    QSizeF size_;
    QPointF centre_{0, 0};
    double unitsPerPixel_ = 1;
};

} // namespace orvane::maps
