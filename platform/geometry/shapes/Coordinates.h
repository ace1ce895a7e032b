#pragma once

#include "platform/Export.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>

namespace orvane::geometry {

/// Which ordinates a position has.
enum class Dimensions : std::uint8_t { XY = 0, XYZ = 1, XYM = 2, XYZM = 3 };

constexpr bool hasZ(Dimensions dimensions) {
    return dimensions == Dimensions::XYZ || dimensions == Dimensions::XYZM;
}
constexpr bool hasM(Dimensions dimensions) {
    return dimensions == Dimensions::XYM || dimensions == Dimensions::XYZM;
}
constexpr Dimensions makeDimensions(bool z, bool m) {
    return static_cast<Dimensions>((z ? 1 : 0) | (m ? 2 : 0));
}
/// Doubles per position.
constexpr std::size_t strideOf(Dimensions dimensions) {
    return 2U + (hasZ(dimensions) ? 1U : 0U) + (hasM(dimensions) ? 1U : 0U);
}

/// A rectangle along the axes, empty until something is added. Not-a-number is left out.
struct Envelope {
    double minX = std::numeric_limits<double>::infinity();
    double minY = std::numeric_limits<double>::infinity();
    double maxX = -std::numeric_limits<double>::infinity();
    double maxY = -std::numeric_limits<double>::infinity();

    static Envelope everything() {
        constexpr double infinite = std::numeric_limits<double>::infinity();
        return {-infinite, -infinite, infinite, infinite};
    }
    bool isEmpty() const { return !(minX <= maxX && minY <= maxY); }
    void add(double x, double y) {
        minX = x < minX ? x : minX;
        maxX = x > maxX ? x : maxX;
        minY = y < minY ? y : minY;
        maxY = y > maxY ? y : maxY;
    }
    void add(const Envelope& other) {
        minX = std::min(minX, other.minX);
        minY = std::min(minY, other.minY);
        maxX = std::max(maxX, other.maxX);
        maxY = std::max(maxY, other.maxY);
    }
    /// Shared borders count.
    bool intersects(const Envelope& other) const {
        return (minX <= other.maxX) & (other.minX <= maxX) & (minY <= other.maxY) & (other.minY <= maxY);
    }
    bool contains(const Envelope& other) const {
        return minX <= other.minX && other.maxX <= maxX && minY <= other.minY && other.maxY <= maxY;
    }
    friend bool operator==(const Envelope&, const Envelope&) = default;
};

/// Positions in one block of doubles: x, y, then z and m where there are any. Immutable; copies share the
/// block.
class ORVANE_PLATFORM_EXPORT CoordinateSequence {
public:
    explicit CoordinateSequence(Dimensions dimensions = Dimensions::XY) : dimensions_(dimensions) {}
    /// Copies the doubles, strideOf(dimensions) for each position; what is no whole position is left out.
    CoordinateSequence(Dimensions dimensions, std::span<const double> values);
    /// `size` positions that `fill(double*)` writes.
    template<typename Fill>
    CoordinateSequence(Dimensions dimensions, std::size_t size, Fill&& fill)
        : values_(std::make_shared_for_overwrite<double[]>(size * strideOf(dimensions))), size_(size),
          dimensions_(dimensions) {
        fill(values_.get());
    }

    Dimensions dimensions() const { return dimensions_; }
    std::size_t stride() const { return strideOf(dimensions_); }
    std::size_t size() const { return size_; }
    bool isEmpty() const { return size_ == 0; }

    const double* data() const { return values_.get(); }
    std::span<const double> values() const { return {values_.get(), size_ * stride()}; }
    const double* position(std::size_t index) const { return values_.get() + index * stride(); }
    double x(std::size_t index) const { return position(index)[0]; }
    double y(std::size_t index) const { return position(index)[1]; }
    /// First and last position have the same x and y. False when empty.
    bool isClosed() const;
    Envelope envelope() const;

    /// Same dimensions and the same values; not-a-number equals itself.
    friend ORVANE_PLATFORM_EXPORT bool operator==(const CoordinateSequence& a, const CoordinateSequence& b);

private:
    std::shared_ptr<double[]> values_;
    std::size_t size_ = 0;
    Dimensions dimensions_;
};

} // namespace orvane::geometry
