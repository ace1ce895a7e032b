#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Geometry.h"

#include <memory>

namespace orvane::geometry {

// Lines, and areas made of them, in the plane of the coordinates. Where lines are asked for, those in
// collections and the borders of areas are meant. Curves are made linear, z is kept, m is left out. The
// system is that of the (first) geometry; the result may be empty. All throw work::Cancelled, and
// std::runtime_error when a coordinate is not finite or GEOS fails.

/// The lines of a geometry, without borders, joined where exactly two of them meet in their ends.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> mergedLines(const Geometry& geometry);
/// The lines cut wherever they meet, every piece once.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> nodedLines(const Geometry& geometry);
/// The borders of areas, without lines, cut where three or more of their pieces meet, every piece once.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> ringsCutAtNodes(const Geometry& geometry);
/// Points where lines cross, touch or run over each other, but for those where only ends meet.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> selfIntersections(const Geometry& geometry);
/// What the lines of both share that has a length.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> sharedPaths(const Geometry& a, const Geometry& b);
/// The area between lines that meet in their ends: what an odd number of rings parts from the outside.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> builtArea(const Geometry& geometry);
/// The area within a closed line without those within the closed lines of `holes`, which may be null. Curves,
/// z and m are kept. Throws std::runtime_error for what is no line, and for lines that are not closed.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> polygonOf(const GeometryPtr& shell,
                                                           const GeometryPtr& holes);

} // namespace orvane::geometry
