#include "host/maps/drawing/Coverage.h"

#include <algorithm>
#include <cmath>

namespace orvane::maps {

namespace {

int cellOf(double offset, double size, int count) {
    return static_cast<int>(std::clamp(std::floor(offset / size * count), -1.0, static_cast<double>(count)));
}

} // namespace

Coverage::Coverage(QSizeF size) : size_(size), cells_(std::size_t{columns} * rows) {}

void Coverage::add(QPointF pixel) {
    const int column = cellOf(pixel.x(), size_.width(), columns);
    const int row = cellOf(pixel.y(), size_.height(), rows);
    if (column >= 0 && column < columns && row >= 0 && row < rows) {
        cells_[static_cast<std::size_t>(row * columns + column)] = true;
    }
}

void Coverage::add(const QRectF& rect) {
    const int right = std::min(cellOf(rect.right(), size_.width(), columns), columns - 1);
    const int bottom = std::min(cellOf(rect.bottom(), size_.height(), rows), rows - 1);
    for (int row = std::max(0, cellOf(rect.top(), size_.height(), rows)); row <= bottom; ++row) {
        for (int column = std::max(0, cellOf(rect.left(), size_.width(), columns)); column <= right;
             ++column) {
            cells_[static_cast<std::size_t>(row * columns + column)] = true;
        }
    }
}

double Coverage::within(const QRectF& rect) const {
    double covered = 0;
    const int right = std::min(cellOf(rect.right(), size_.width(), columns), columns - 1);
    const int bottom = std::min(cellOf(rect.bottom(), size_.height(), rows), rows - 1);
    for (int row = std::max(0, cellOf(rect.top(), size_.height(), rows)); row <= bottom; ++row) {
        for (int column = std::max(0, cellOf(rect.left(), size_.width(), columns)); column <= right;
             ++column) {
            covered += cells_[static_cast<std::size_t>(row * columns + column)] ? 1 : 0;
        }
    }
    return covered;
}

QRectF Coverage::emptiestCorner(QSizeF box, double margin) const {
    const double right = size_.width() - margin - box.width();
    const double bottom = size_.height() - margin - box.height();
    const QRectF corners[] = {QRectF(QPointF(margin, bottom), box), QRectF(QPointF(right, bottom), box),
                              QRectF(QPointF(margin, margin), box), QRectF(QPointF(right, margin), box)};
    return *std::min_element(std::begin(corners), std::end(corners),
                             [this](const QRectF& a, const QRectF& b) { return within(a) < within(b); });
}

} // namespace orvane::maps
