#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Geometry.h"
#include "platform/work/Cancellation.h"

#include <functional>
#include <memory>

namespace orvane::geometry {

// What becomes of geometries laid over each other in the plane of the coordinates. Curves are made linear, z
// is kept and interpolated where lines cross, m is left out. Areas that are not valid are repaired when GEOS
// does not get by without. All functions throw work::Cancelled, and std::runtime_error when a coordinate is
// not finite or GEOS fails.

enum class Overlay { Intersection, Union, Difference, SymmetricDifference };

/// The positions that lie in both, in one at least, in a only, in one only. Of collections they are those of
/// the parts: areas without borders between them, lines cut where they meet and only outside the areas,
/// points outside both. The system is that of a; that of b is not looked at. May be empty.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> overlay(Overlay kind, const Geometry& a, const Geometry& b);

/// The union of the parts of one geometry.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> unaryUnion(const Geometry& geometry);

// Many geometries are asked for one after another, so that the objects need not exist all at once; `next`
// gives null at the end. Coordinate systems are not looked at. The results have none; null when there is
// nothing.

using NextGeometry = std::function<GeometryPtr()>;

/// All positions that lie in one of the geometries at least: areas without borders between them, lines cut
/// where they cross, every point once.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> unionOf(const NextGeometry& next,
                                                         const work::Cancellation& cancellation);

/// The areas that lines and borders enclose. Lines bound an area only where they meet in their ends.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> polygonized(const NextGeometry& next,
                                                             const work::Cancellation& cancellation);

} // namespace orvane::geometry
