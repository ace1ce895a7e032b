#include "host/maps/projection/View.h"

#include <algorithm>
#include <cmath>

namespace orvane::maps {

namespace {

/// So that neighbouring pixels have different positions, and corners are finite.
double possibleScale(double unitsPerPixel, QPointF centre) {
    const double largest = std::max({std::abs(centre.x()), std::abs(centre.y()), 1e-3});
    return std::clamp(unitsPerPixel, largest * 1e-12, 1e12);
}

} // namespace

View View::fitting(const geometry::Envelope& extent, QSizeF size, double margin, double leastSpan) {
    View view(size);
    if (extent.isEmpty()) {
        return view;
    }
    const double width = std::max(1.0, size.width() - 2 * margin);
    const double height = std::max(1.0, size.height() - 2 * margin);
    double spanX = extent.maxX - extent.minX;
    double spanY = extent.maxY - extent.minY;
    if (spanX <= 0 && spanY <= 0) {
        spanX = spanY = leastSpan > 0 ? leastSpan : 1;
    }
    view.centre_ = {extent.minX / 2 + extent.maxX / 2, extent.minY / 2 + extent.maxY / 2};
    view.unitsPerPixel_ = possibleScale(std::max(spanX / width, spanY / height), view.centre_);
    return view;
}

geometry::Envelope View::extent() const {
    const QPointF upperLeft = toPlane({0, 0});
    const QPointF lowerRight = toPlane({size_.width(), size_.height()});
    return {upperLeft.x(), lowerRight.y(), lowerRight.x(), upperLeft.y()};
}

View View::panned(QPointF pixels) const {
    View view = *this;
    view.centre_ += QPointF(-pixels.x(), pixels.y()) * unitsPerPixel_;
    return view;
}

View View::zoomed(double factor, QPointF pixel) const {
    View view = *this;
    view.unitsPerPixel_ = possibleScale(unitsPerPixel_ / factor, centre_);
    const QPointF fixed = toPlane(pixel);
    view.centre_ += fixed - view.toPlane(pixel);
    return view;
}

View View::resized(QSizeF size) const {
    View view = *this;
    view.size_ = size;
    return view;
}

} // namespace orvane::maps
