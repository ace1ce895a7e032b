#pragma once

#include <orvane/engine/Export.h>
#include <orvane/engine/functions/ScalarFunction.h>

/// What is in a geometry, without changing it. NULL gives NULL; what is no geometry is an error that names
/// the function. Curves are told of as curves. Where a function asks for a point, a line or a polygon, a
/// collection of one such part stands for it, and any other geometry gives NULL. Parts are counted from 1,
/// and from the end by negative numbers; NULL where there is none. Parts have the system of the whole. The
/// user data is the EngineCache. Reentrant.
namespace orvane::engine {

/// Ordinates of a point; NULL for an empty one and where it has none such.
ORVANE_ENGINE_EXPORT ScalarFunction pointX, pointY, pointZ, pointM;
/// The sides of the envelope; of z and m [, a value that is left out]. NULL for an empty geometry, and where
/// it has none such.
ORVANE_ENGINE_EXPORT ScalarFunction minimumX, minimumY, maximumX, maximumY;
ORVANE_ENGINE_EXPORT ScalarFunction minimumZ, maximumZ, minimumM, maximumM;

/// Positions of a line (the joints of a compound curve once); positions of whatever geometry; parts; rings.
ORVANE_ENGINE_EXPORT ScalarFunction lineSize, positionCount, partCount, ringCount, interiorRingCount;
/// geometry, number: a part, a position of a line, an interior ring.
ORVANE_ENGINE_EXPORT ScalarFunction partAt, positionAt, interiorRingAt;
ORVANE_ENGINE_EXPORT ScalarFunction startPoint, endPoint, exteriorRing;

/// 0 for points, 1 for lines, 2 for areas; the ordinates as a text "XYZ", and their number.
ORVANE_ENGINE_EXPORT ScalarFunction topologicalDimension, coordinateDimension, ordinateCount;
ORVANE_ENGINE_EXPORT ScalarFunction hasZ, hasM;
/// The kind as well-known text has it, with its ordinates and without: "POINT Z", "POINT".
ORVANE_ENGINE_EXPORT ScalarFunction geometryType, geometryAliasType;
/// The EPSG code of the system; 0 for none, and for one without a code.
ORVANE_ENGINE_EXPORT ScalarFunction srid;

/// Whether a line, or each of a collection of lines, ends where it begins; is simple, too.
ORVANE_ENGINE_EXPORT ScalarFunction isClosed, isRing;
ORVANE_ENGINE_EXPORT ScalarFunction isEmpty, isSimple;
/// geometry [, 1 to take shells that touch themselves for holes]: geometry::defectOf.
ORVANE_ENGINE_EXPORT ScalarFunction isValid, isValidReason, isValidDetail;
/// Whether a value is a geometry, and one that SpatiaLite has compressed; 0 for any other but NULL.
ORVANE_ENGINE_EXPORT ScalarFunction isGeometryBlob, isCompressedGeometryBlob;

} // namespace orvane::engine
