#pragma once

#include <orvane/engine/Export.h>
#include <orvane/engine/functions/ScalarFunction.h>

/// Geometries with other positions, ordinates, kinds or systems. NULL gives NULL; what is no geometry is an
/// error that names the function. The result has the system of the first geometry, and z and m as they were.
/// Curves stay curves, but where a change makes no arcs of arcs. The user data is the EngineCache. Reentrant.
namespace orvane::engine {

/// geometry, system by EPSG code or text: nothing is reprojected; 0 and below take the system away.
ORVANE_ENGINE_EXPORT ScalarFunction setSrid;

/// A line of straight segments with other positions, counted from 0; points are brought to its system and
/// ordinates (0 for missing ones). line, point [, place]: inserted before that place, at the end without one
/// or for -1. line, place, point. line, point. line, place.
ORVANE_ENGINE_EXPORT ScalarFunction addPoint, setPoint, setStartPoint, setEndPoint, removePoint;

/// geometry::castTo, castToMulti, castToSingle. NULL where the parts do not make such a geometry.
ORVANE_ENGINE_EXPORT ScalarFunction castToPoint, castToLineString, castToPolygon;
ORVANE_ENGINE_EXPORT ScalarFunction castToMultiPoint, castToMultiLineString, castToMultiPolygon;
ORVANE_ENGINE_EXPORT ScalarFunction castToCollection, castToMulti, castToSingle;
/// geometry [, the z or m of positions without; both]: 0 where nothing is said.
ORVANE_ENGINE_EXPORT ScalarFunction castToXy, castToXyz, castToXym, castToXyzm;

/// x and y exchanged. geometry, x, y: added. geometry, x, y, z: added, too. geometry, factor [, factor of y].
/// geometry, degrees: clockwise about the origin. geometry, 1 to negate x, 1 to negate y.
ORVANE_ENGINE_EXPORT ScalarFunction swapCoordinates, shiftCoordinates, translate, scaleCoordinates;
ORVANE_ENGINE_EXPORT ScalarFunction rotateCoordinates, reflectCoordinates;
/// 360 added to negative longitudes; longitudes and latitudes brought between 180 and 90 degrees.
ORVANE_ENGINE_EXPORT ScalarFunction shiftLongitude, normalizeLonLat;

/// Affine matrices as blobs (geometry::AffineMap). None, six or twelve numbers; x, y [, z]; degrees.
ORVANE_ENGINE_EXPORT ScalarFunction matrix, translationMatrix, scalingMatrix;
ORVANE_ENGINE_EXPORT ScalarFunction xRollMatrix, yRollMatrix, zRollMatrix;
/// matrix, x, y [, z]; matrix, degrees: what the matrix does, and then that.
ORVANE_ENGINE_EXPORT ScalarFunction matrixTranslated, matrixScaled, matrixXRolled, matrixYRolled,
    matrixZRolled;
/// matrix, matrix: the product, which does the second first.
ORVANE_ENGINE_EXPORT ScalarFunction matrixProduct;
/// The inverse; NULL for a matrix without one.
ORVANE_ENGINE_EXPORT ScalarFunction matrixInverse;
ORVANE_ENGINE_EXPORT ScalarFunction matrixDeterminant, isInvertibleMatrix, matrixAsText;
/// Whether a value is a matrix; 0 for any other but NULL.
ORVANE_ENGINE_EXPORT ScalarFunction isMatrix;
/// geometry, matrix [, system of the result].
ORVANE_ENGINE_EXPORT ScalarFunction transformedByMatrix;

/// The SpatiaLite blob in which lines and polygons have floats between the ends of a line or ring (which
/// loses digits), and a geometry without that.
ORVANE_ENGINE_EXPORT ScalarFunction compressGeometry, uncompressGeometry;

} // namespace orvane::engine
