#pragma once

#include <orvane/engine/Export.h>
#include <orvane/engine/functions/ScalarFunction.h>

namespace orvane::engine {

// Functions of geometries laid over each other. NULL for NULL; what is no geometry is an error. The result
// has the system of the first geometry, to which the second is brought; one without a system is taken to be
// in that of the other. Curves are approximated, z is kept and interpolated where lines cross, m is lost, but
// where a group says otherwise. What there is nothing of is an empty geometry.

/// geometry, geometry: geometry::overlay.
ORVANE_ENGINE_EXPORT ScalarFunction intersection, unionOfTwo, difference, symmetricDifference;
/// geometry: geometry::unaryUnion.
ORVANE_ENGINE_EXPORT ScalarFunction unaryUnion;

/// geometry, blade: geometry::split. Pieces of lines keep m.
ORVANE_ENGINE_EXPORT ScalarFunction split, splitLeft, splitRight;
/// geometry, geometry, tolerance in units of the coordinates: the first moved to the second, and cut by it
/// then.
ORVANE_ENGINE_EXPORT ScalarFunction snap, snapAndSplit;
/// lines, points: geometry::cutAtPoints. m is kept.
ORVANE_ENGINE_EXPORT ScalarFunction linesCutAtNodes;
/// geometry [, most positions in a piece, 128]: geometry::subdivided.
ORVANE_ENGINE_EXPORT ScalarFunction subdivide;

/// geometry: geometry::nodedLines, selfIntersections, ringsCutAtNodes.
ORVANE_ENGINE_EXPORT ScalarFunction node, selfIntersections, ringsCutAtNodes;
/// geometry, geometry: geometry::sharedPaths.
ORVANE_ENGINE_EXPORT ScalarFunction sharedPaths;

// Parts of geometries as they stand: z, m and curves are kept.

/// geometry, 1 for points, 2 for lines or 3 for areas: geometry::extracted; the other three have the number
/// in their name.
ORVANE_ENGINE_EXPORT ScalarFunction collectionExtract, extractMultiPoint, extractMultiLinestring,
    extractMultiPolygon;
/// geometry [, whether one ring is a multi-part geometry, too]: geometry::ringsOf.
ORVANE_ENGINE_EXPORT ScalarFunction linesFromRings;
/// geometry: geometry::segmentsOf, positionsOf.
ORVANE_ENGINE_EXPORT ScalarFunction dissolveSegments, dissolvePoints;
/// geometry, geometry: geometry::collected.
ORVANE_ENGINE_EXPORT ScalarFunction collectTwo;
/// geometry, geometry: the line through the positions of points and lines; the second may be a number, with
/// which the line is through the positions of the first, backwards for 0. Areas are an error.
ORVANE_ENGINE_EXPORT ScalarFunction makeLineOfTwo;

} // namespace orvane::engine
