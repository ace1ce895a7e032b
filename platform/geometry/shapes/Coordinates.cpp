#include "platform/geometry/shapes/Coordinates.h"

#include <cmath>

namespace orvane::geometry {

CoordinateSequence::CoordinateSequence(Dimensions dimensions, std::span<const double> values)
    : CoordinateSequence(dimensions, values.size() / strideOf(dimensions), [&](double* target) {
          std::copy_n(values.begin(), values.size() / strideOf(dimensions) * strideOf(dimensions), target);
      }) {}

bool CoordinateSequence::isClosed() const {
    return size_ > 0 && x(0) == x(size_ - 1) && y(0) == y(size_ - 1);
}

Envelope CoordinateSequence::envelope() const {
    Envelope envelope;
    for (std::size_t i = 0; i < size_; ++i) {
        envelope.add(x(i), y(i));
    }
    return envelope;
}

bool operator==(const CoordinateSequence& a, const CoordinateSequence& b) {
    const auto same = [](double left, double right) {
        return left == right || (std::isnan(left) && std::isnan(right));
    };
    const std::span<const double> left = a.values();
    const std::span<const double> right = b.values();
    return a.dimensions_ == b.dimensions_ &&
           std::equal(left.begin(), left.end(), right.begin(), right.end(), same);
}

} // namespace orvane::geometry
