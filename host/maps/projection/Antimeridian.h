#pragma once

#include <cmath>

namespace orvane::maps {

/// Whether a step in longitude, in degrees, is one over the antimeridian: a straight segment that long is not
/// to be expected. One of 360 degrees goes around the globe, as the edges of data that are cut do along a
/// pole.
inline bool isOverAntimeridian(double step) {
    constexpr double around = 360 - 1e-4;
    return std::abs(step) > 270 && std::abs(step) < around;
}

} // namespace orvane::maps
