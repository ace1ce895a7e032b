#pragma once

#include <orvane/engine/Export.h>
#include <orvane/engine/functions/ScalarFunction.h>

/// How far and where geometries are from each other. The user data is the EngineCache. Two geometries are
/// brought to the system of the first. On the ellipsoid where that is geographic, else in its plane; units as
/// of Distance: metres where they are left out, NULL or a number. NULL for NULL, and where one is empty. What
/// is no geometry is an error. Reentrant.
namespace orvane::engine {

/// geometry, geometry [, units]: geometry::maxDistance, frechetDistance.
ORVANE_ENGINE_EXPORT ScalarFunction maxDistance, frechetDistance;
/// geometry, geometry [, units or part of an edge between 0 and 1 [, units]]: geometry::hausdorffDistance.
ORVANE_ENGINE_EXPORT ScalarFunction hausdorffDistance;
/// geometry, geometry: geometry::shortestLine, and where it begins.
ORVANE_ENGINE_EXPORT ScalarFunction shortestLine, closestPoint;
/// geometry, geometry [, units]: geometry::distanceInSpace, maxDistanceInSpace.
ORVANE_ENGINE_EXPORT ScalarFunction distanceInSpace, maxDistanceInSpace;
/// geometry [, units]: geometry::lengthInSpace.
ORVANE_ENGINE_EXPORT ScalarFunction lengthInSpace;

/// point, point: geometry::azimuth; NULL for the same position.
ORVANE_ENGINE_EXPORT ScalarFunction azimuth;
/// point, distance, azimuth in radians [, units]: geometry::projected.
ORVANE_ENGINE_EXPORT ScalarFunction project;

/// geometry [, units]: geometry::greatCircleLength; the same on the ellipsoid.
ORVANE_ENGINE_EXPORT ScalarFunction greatCircleLength, geodesicLength;
/// point, point [, units]: what geometry::GeodesicArc tells.
ORVANE_ENGINE_EXPORT ScalarFunction geodesicArcLength, geodesicChordLength, geodesicArcHeight,
    geodesicArcArea;
/// point, point [, 0 for degrees in place of radians].
ORVANE_ENGINE_EXPORT ScalarFunction geodesicCentralAngle;

} // namespace orvane::engine
