#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Geometry.h"

#include <QString>

#include <memory>

namespace orvane::geometry {

// Tolerances without units are in units of the coordinates. With units they are lengths in the plane; for
// geographic systems lengths on the ellipsoid, where degrees are counted as at the latitude of the geometry
// that is nearest to the equator, so that nothing moves by more than the tolerance. Throws std::runtime_error
// for units that are unknown or without a meaning in the system.

/// Fewer vertices, no position moved by more than the tolerance; by D. H. Douglas and T. K. Peucker (1973).
/// Parts that become nothing are left out; or, with `keepTopology`, none does, and no line crosses another
/// that it did not cross. Curves are made linear, z is kept, m is left out. Throws work::Cancelled, and
/// std::runtime_error when a coordinate is not finite or GEOS fails.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> simplified(const Geometry& geometry, double tolerance,
                                                            const QString& units, bool keepTopology);

/// How far a length in units reaches from the box of a geometry along x and y, in units of the coordinates,
/// at least: on the ellipsoid at the latitude where it reaches farthest.
struct Reach {
    double x, y;
};
ORVANE_PLATFORM_EXPORT Reach reachAround(const Geometry& geometry, double distance, const QString& units);

} // namespace orvane::geometry
