#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Shapes.h"

#include <functional>
#include <memory>
#include <vector>

namespace orvane::geometry {

// Geometries taken apart and put together. z, m, curves and the coordinate system are kept; a result of
// nothing is an empty one. Throws std::runtime_error for more than mostParts parts.

/// Of one result: about as many as the longest value holds.
constexpr std::size_t mostParts = 2'000'000;
[[noreturn]] ORVANE_PLATFORM_EXPORT void throwTooManyParts();

/// Calls `visit` with every point, line, curve and area in a geometry, through all levels.
ORVANE_PLATFORM_EXPORT void forEachPart(const GeometryPtr& geometry,
                                        const std::function<void(const GeometryPtr&)>& visit);
/// 0 for points, 1 for lines and curves, 2 for areas; the largest of the parts, -1 of none.
ORVANE_PLATFORM_EXPORT int dimensionOf(const Geometry& geometry);
/// The multi-part geometry for parts of one dimension.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> multiOf(int dimension, Dimensions dimensions,
                                                         std::vector<GeometryPtr> parts);
/// The only part, or the multi-part geometry of parts of one dimension, or a collection.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> gathered(Dimensions dimensions,
                                                          std::vector<GeometryPtr> parts);

/// The multi-part geometry of all parts of one dimension.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> extracted(const GeometryPtr& geometry, int dimension);
/// The rings of all areas as lines and curves.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> ringsOf(const GeometryPtr& geometry);
/// Every segment of lines and rings as a line of its own, points as they are; curves are approximated.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> segmentsOf(const GeometryPtr& geometry);
/// Every position as a point; curves are approximated.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> positionsOf(const GeometryPtr& geometry);
/// The parts of both, b taken to be in the system of a.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> collected(const GeometryPtr& a, const GeometryPtr& b);

} // namespace orvane::geometry
