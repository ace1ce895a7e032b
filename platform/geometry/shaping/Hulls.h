#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Geometry.h"

#include <memory>

namespace orvane::geometry {

// Hulls, borders, and what GEOS builds around geometries, in the plane of the coordinates. Curves are made
// linear, z is kept, m is left out. The system is that of the geometry; the result may be empty. All throw
// work::Cancelled, and std::runtime_error when a coordinate is not finite or GEOS fails.

/// The smallest convex area with all positions in it; a line or a point where these lie on one.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> convexHull(const Geometry& geometry);
/// An area around all positions with edges no longer than a share of the lengths between the shortest and the
/// longest edge of their triangulation: 1 makes it convex, 0 as concave as can be.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> concaveHull(const Geometry& geometry, double ratio,
                                                             bool allowHoles);
/// The bounding box, of curves themselves: an area, or the line or point that it is. Empty where it is not
/// finite or has nothing in it.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> rectangle(const Envelope& envelope);
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> envelopeOf(const Geometry& geometry);
/// The bounding box with so much more on every side, in units of the coordinates; less for negative numbers.
/// Empty where nothing is left.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> expandedEnvelope(const Geometry& geometry, double dx,
                                                                  double dy);
/// The borders of areas, and the ends of lines in which an odd number of them end. Points have none.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> boundary(const Geometry& geometry);
/// What of the valid form of a geometry (normalizedGeometry) has fewer dimensions than the geometry: what is
/// left of areas and lines that collapse.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> collapsedParts(const GeometryPtr& geometry);

/// The line, or lines, at a distance from lines: to the left, for a negative one to the right.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> offsetCurve(const Geometry& geometry, double distance);

/// The areas nearest to each of all positions, within the bounding box with `frame` percent more on every
/// side; or their edges. Positions nearer to each other than the tolerance count as one.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> voronoiDiagram(const Geometry& geometry, bool onlyEdges,
                                                                double frame, double tolerance);
/// The triangles between all positions whose circles have no other in them; or their edges.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> delaunayTriangulation(const Geometry& geometry,
                                                                       bool onlyEdges, double tolerance);

} // namespace orvane::geometry
