#pragma once

#include <orvane/engine/Export.h>
#include <orvane/engine/functions/ScalarFunction.h>

namespace orvane::engine {

// Functions that make a shape of one geometry. NULL for NULL; what is no geometry is an error. The result has
// its system. Curves are approximated, z is kept, m is lost, but where a group says otherwise. What there is
// nothing of is an empty geometry.

/// geometry: geometry::convexHull, envelopeOf, boundary.
ORVANE_ENGINE_EXPORT ScalarFunction convexHull, envelope, boundary;
/// geometry [, ratio from 0 to 1, 0.3] [, whether holes are allowed]: geometry::concaveHull.
ORVANE_ENGINE_EXPORT ScalarFunction concaveHull;
/// geometry, length [, units]: the envelope with so much more on every side; on the ellipsoid of a geographic
/// system at least so much where there are units.
ORVANE_ENGINE_EXPORT ScalarFunction expand;
/// geometry: a position on it, or its centre of mass; NULL for an empty geometry.
ORVANE_ENGINE_EXPORT ScalarFunction pointOnSurface, centreOfMass;

/// geometry: geometry::mergedLines, builtArea.
ORVANE_ENGINE_EXPORT ScalarFunction lineMerge, buildArea;
/// line [, lines of holes]: geometry::polygonOf.
ORVANE_ENGINE_EXPORT ScalarFunction makePolygon;
/// geometry: geometry::normalizedGeometry, collapsedParts, sanitized, withClosedRings.
ORVANE_ENGINE_EXPORT ScalarFunction makeValid, makeValidDiscarded, sanitizeGeometry, ensureClosedRings;

/// geometry [, whether only edges] [, percent of a frame, 5] [, tolerance]: geometry::voronoiDiagram.
ORVANE_ENGINE_EXPORT ScalarFunction voronoiDiagram;
/// geometry [, whether only edges] [, tolerance]: geometry::delaunayTriangulation.
ORVANE_ENGINE_EXPORT ScalarFunction delaunayTriangulation;
/// geometry, size [, 0 for areas, more for edges, less for corners] [, origin]: geometry::gridOver.
ORVANE_ENGINE_EXPORT ScalarFunction squareGrid, triangularGrid, hexagonalGrid;
/// line, distance [, units of a plane]: geometry::offsetCurve.
ORVANE_ENGINE_EXPORT ScalarFunction offsetCurve;

/// geometry, tolerance [, units]: geometry::simplified.
ORVANE_ENGINE_EXPORT ScalarFunction simplify, simplifyPreserveTopology;

// These keep m, too.

/// geometry, length [, units]: geometry::segmentized; with units geodesicallySegmentized for geographic
/// systems.
ORVANE_ENGINE_EXPORT ScalarFunction segmentize;
/// geometry, size; geometry, size x, size y; geometry, origin x, origin y, size x, size y; geometry, origin,
/// size x, size y, size z, size m: geometry::snappedToGrid. A size of 0 leaves the ordinate as it is.
ORVANE_ENGINE_EXPORT ScalarFunction snapToGrid;
/// geometry [, tolerance]: geometry::withoutRepeatedPoints.
ORVANE_ENGINE_EXPORT ScalarFunction removeRepeatedPoints;
/// geometry: geometry::oriented, isOriented, reversed. Curves are kept.
ORVANE_ENGINE_EXPORT ScalarFunction forcePolygonCW, forcePolygonCCW, isPolygonCW, isPolygonCCW, reverse;

} // namespace orvane::engine
