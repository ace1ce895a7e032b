#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Geometry.h"
#include "platform/work/Cancellation.h"

#include <functional>
#include <memory>

namespace orvane::geometry {

// What becomes of many geometries in the plane of the coordinates. They are asked for one after another, so
// that the objects need not exist all at once; `next` gives null at the end. Curves are made linear, m is
// left out, coordinate systems are not looked at. The results have none; null when there is nothing. All
// functions throw work::Cancelled, and std::runtime_error when a coordinate is not finite or GEOS fails.

using NextGeometry = std::function<GeometryPtr()>;

/// All positions that lie in one of the geometries at least: areas without borders between them, lines cut
/// where they cross, every point once. Areas that cross themselves are made valid when GEOS does not get by
/// without.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> unionOf(const NextGeometry& next,
                                                         const work::Cancellation& cancellation);

/// The areas that lines and borders enclose. Lines bound an area only where they meet in their ends.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> polygonized(const NextGeometry& next,
                                                             const work::Cancellation& cancellation);

} // namespace orvane::geometry
