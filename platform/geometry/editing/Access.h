#pragma once

#include "platform/geometry/shapes/Curves.h"

#include <functional>
#include <optional>
#include <vector>

namespace orvane::geometry {

// What a geometry consists of. Ellipses and rounded rectangles are to be brought to the standard kinds before
// (inStandardKinds). Parts that are given out have no coordinate system. All are reentrant.

/// A collection of one part stands for that part, however deep it is nested; else the geometry itself.
ORVANE_PLATFORM_EXPORT const Geometry& onlyPart(const Geometry& geometry);

/// The parts of a collection; none of any other kind.
ORVANE_PLATFORM_EXPORT const std::vector<GeometryPtr>* partsOf(const Geometry& geometry);

/// The positions of a line, of a circular string, or of a compound curve, whose joints count once; none of
/// other kinds.
ORVANE_PLATFORM_EXPORT std::optional<CoordinateSequence> positionsOf(const Geometry& curve);

bool ORVANE_PLATFORM_EXPORT isCurveKind(GeometryType type);
bool ORVANE_PLATFORM_EXPORT isSurfaceKind(GeometryType type);

/// How many rings a polygon has, its shell included; none of other kinds.
ORVANE_PLATFORM_EXPORT std::optional<std::size_t> ringCount(const Geometry& surface);
/// A ring of a polygon as a curve.
ORVANE_PLATFORM_EXPORT GeometryPtr ring(const Geometry& surface, std::size_t index);

/// Visits all positions on all levels, as runs of doubles; rings and parts in their order. Those of an empty
/// point are left out.
using RunVisitor = std::function<void(const double* positions, std::size_t count, Dimensions dimensions)>;
ORVANE_PLATFORM_EXPORT void visitPositions(const Geometry& geometry, const RunVisitor& visit);

/// 0 for points, 1 for curves, 2 for surfaces; of a collection the highest of its parts, 0 without any.
ORVANE_PLATFORM_EXPORT int topologicalDimension(const Geometry& geometry);

} // namespace orvane::geometry
