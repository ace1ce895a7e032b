#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Shapes.h"

#include <memory>

namespace orvane::geometry {

// Between two geometries of one coordinate system, or without one, neither empty: on the ellipsoid in metres
// where the system is geographic, else in the plane in units of the coordinates. Curves are approximated. All
// throw std::runtime_error for coordinates that are not finite, and for positions without longitude and
// latitude.

/// The longest of all ways between a position of one and a position of the other: between vertices, for edges
/// beyond 500 km on the ellipsoid also between positions on them.
ORVANE_PLATFORM_EXPORT double maxDistance(const Geometry& a, const Geometry& b);

/// The way to the other geometry from the vertex of either that is farthest from it; also from positions on
/// the edges, so that none is longer than `part` of it (1 for vertices only). Areas count by their borders.
ORVANE_PLATFORM_EXPORT double hausdorffDistance(const Geometry& a, const Geometry& b, double part);

/// The shortest leash for two that go along the vertices of the geometries, never back. Throws
/// work::Cancelled, and std::runtime_error for more than 100 million pairs of vertices.
ORVANE_PLATFORM_EXPORT double frechetDistance(const Geometry& a, const Geometry& b);

/// From a to b where they are nearest to each other; twice the same position where they meet. x and y only,
/// in the system of a.
ORVANE_PLATFORM_EXPORT std::shared_ptr<LineString> shortestLine(const Geometry& a, const Geometry& b);

/// In space: positions at their heights z, in metres above the ellipsoid of a geographic system, else in
/// units of the plane; 0 without z. Straight edges; of areas the border, in the plane also the inside, which
/// is taken to be flat.
ORVANE_PLATFORM_EXPORT double distanceInSpace(const Geometry& a, const Geometry& b);
ORVANE_PLATFORM_EXPORT double maxDistanceInSpace(const Geometry& a, const Geometry& b);
/// Of lines, the slope of each edge along its geodesic or its straight line.
ORVANE_PLATFORM_EXPORT double lengthInSpace(const Geometry& geometry);

/// Whether lengths of the geometry are measured on the ellipsoid.
ORVANE_PLATFORM_EXPORT bool isOnEarth(const Geometry& geometry);

} // namespace orvane::geometry
