#pragma once

#include "platform/dp/ScanRequest.h"

#include <limits>
#include <string_view>

namespace orvane::files {

/// An upright rectangle; empty (and meeting nothing) until a point is added.
struct Box {
    double minX = std::numeric_limits<double>::infinity();
    double minY = std::numeric_limits<double>::infinity();
    double maxX = -std::numeric_limits<double>::infinity();
    double maxY = -std::numeric_limits<double>::infinity();

    static Box everything() {
        constexpr double infinite = std::numeric_limits<double>::infinity();
        return {-infinite, -infinite, infinite, infinite};
    }
    void add(double x, double y);
    void add(const Box& other);
    bool meets(const dp::ScanWindow& window) const {
        return (minX <= window.maxX) & (maxX >= window.minX) & (minY <= window.maxY) & (maxY >= window.minY);
    }
};

/// The bounding box of a geometry in well-known binary (ISO or with the type flags of older writers, either
/// byte order). Everything where the points do not tell: for curves, and for bytes that are not well formed.
Box boxOfWkb(std::string_view wkb);

} // namespace orvane::files
