#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Geometry.h"

#include <cstddef>
#include <memory>

namespace orvane::geometry {

// Geometries cut into pieces in the plane of the coordinates. Curves are made linear; pieces of lines keep z
// and m, those of areas lose m. Points count as on a line when they are nearer to it than a ten-billionth of
// the largest coordinate, some millimetres on the Earth. The system is that of the first geometry. All throw
// work::Cancelled, and std::runtime_error when a coordinate is not finite or GEOS fails.

/// Which pieces are wanted: a line in the blade has a left and a right side in its direction; of the pieces
/// of a line between points the first, the third, ... count as left.
enum class Side { Both, Left, Right };

/// The pieces into which a blade, whose areas cut with their borders, cuts lines and areas; what it does not
/// reach, and points, in whole. Empty when nothing is on the side.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> split(const GeometryPtr& geometry, const Geometry& blade,
                                                       Side side = Side::Both);
/// The lines of a geometry cut where points of the other lie on them; nothing else of it.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> cutAtPoints(const GeometryPtr& lines,
                                                             const Geometry& points);
/// Vertices of a geometry, and positions on its segments, moved to what is nearer of another than a
/// tolerance.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> snapped(const Geometry& geometry, const Geometry& other,
                                                         double tolerance);
/// The geometry in pieces of at most so many positions (at least five) that cover the same: areas are cut by
/// rectangles, lines at their vertices.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> subdivided(const GeometryPtr& geometry,
                                                            std::size_t mostPositions);

} // namespace orvane::geometry
