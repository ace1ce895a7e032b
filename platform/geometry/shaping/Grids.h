#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Geometry.h"

#include <memory>

namespace orvane::geometry {

enum class CellShape {
    Square,   ///< a corner at the origin
    Triangle, ///< with sides of one length and a corner at the origin
    Hexagon   ///< with sides of one length, two of them along x, and its centre at the origin
};
enum class CellPart { Areas, Edges, Corners };

/// The cells of a grid over the plane that share something with a geometry, with an area more than a border;
/// or their edges, or their corners, each once. The size is the length of a side in units of the coordinates.
/// In the system of the geometry, without z and m; empty for an empty one. Throws std::runtime_error for more
/// than mostParts cells in its bounding box, and when a coordinate is not finite; work::Cancelled.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> gridOver(const Geometry& geometry, CellShape shape,
                                                          double size, CellPart part, double originX,
                                                          double originY);

} // namespace orvane::geometry
