#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Geometry.h"

#include <array>
#include <memory>

namespace orvane::geometry {

// More, fewer and rounded positions. Curves are made linear; z and m are kept, those of new positions
// interpolated. The system stays.

/// More new positions than this are an error.
constexpr double mostNewPositions = 2'000'000;

/// Segments longer than `longest`, in units of the coordinates, cut into equal pieces that are not. Throws
/// std::runtime_error for too many.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> segmentized(const GeometryPtr& geometry, double longest);
/// The same along the geodesics between the positions; metres. Longitudes lie between -180 and 180 degrees.
/// Throws std::runtime_error as onEllipsoid does, too.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> geodesicallySegmentized(const Geometry& geometry,
                                                                         double longest);

/// Without positions that are within `tolerance` of the one kept before, and of multi-points those within it
/// of any one kept. Lines keep their ends, rings that would have less than four positions all of theirs.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> withoutRepeatedPoints(const GeometryPtr& geometry,
                                                                       double tolerance);
CoordinateSequence withoutRepetition(const CoordinateSequence& positions, double tolerance);

/// Where grid lines run: at the origin and at multiples of a step, for x, y, z and m. 0 leaves as it is.
struct Grid {
    std::array<double, 4> origin{};
    std::array<double, 4> step{};
};
/// Every ordinate on the nearest line of a grid, without the repetition that comes of it; lines and rings
/// that collapse are left out.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> snappedToGrid(const GeometryPtr& geometry, const Grid& grid);

} // namespace orvane::geometry
