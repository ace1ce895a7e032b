#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Shapes.h"

#include <memory>

namespace orvane::geometry {

/// An ellipse along the axes in the plane of the coordinates.
struct RoundShape {
    double x, y;             ///< the centre
    double radiusX, radiusY; ///< positive
    double step = 10.0;      ///< degrees between positions on it, leastStep to mostStep

    static constexpr double leastStep = 0.001;
    static constexpr double mostStep = 120.0;
};

// Angles are degrees anticlockwise from x, from the begin up to the end, which is less than a turn farther:
// whole turns count for nothing. Positions are those of the ellipse but for what lies between two of them.
// The shapes have no coordinate system.

/// The whole of it, a closed line.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> ellipse(const RoundShape& shape);
/// A line.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> arc(const RoundShape& shape, double begin, double end);
/// The area between the arc and the centre.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> sector(const RoundShape& shape, double begin, double end);
/// The area between two arcs.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> stripe(const RoundShape& inner, const RoundShape& outer,
                                                        double begin, double end);

} // namespace orvane::geometry
