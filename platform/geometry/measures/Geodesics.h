#pragma once

#include "platform/geometry/shapes/Geometry.h"

#include <geodesic.h>

#include <array>

namespace orvane::geometry {

/// A linear geometry with longitudes and latitudes in degrees, and the ellipsoid beneath.
struct GeographicShape {
    GeometryPtr geometry;
    geod_geodesic ellipsoid;
    double equatorialRadius;
    double eccentricitySquared;
};

/// Throws std::runtime_error without a coordinate system, and when a position has no longitude and latitude.
GeographicShape onEllipsoid(const Geometry& geometry);

// Metres and square metres of such a shape.

double geodesicLength(const GeographicShape& shape);
double geodesicPerimeter(const GeographicShape& shape);
double geodesicArea(const GeographicShape& shape);
/// Between geometries of one coordinate system that are not empty; 0 when they meet. What it takes to measure
/// from a geometry again is kept with it. Throws as onEllipsoid does.
double geodesicDistance(const Geometry& a, const Geometry& b);

/// Where two shapes are nearest to each other: longitude and latitude in degrees. One position where they
/// meet.
struct GeodesicNearest {
    double distance;
    std::array<double, 2> onA, onB;
};
/// As geodesicDistance.
GeodesicNearest geodesicNearest(const Geometry& a, const Geometry& b);

/// The ellipsoid of a system. The one of this thread that was asked for last is kept.
const geod_geodesic& ellipsoidOf(const cs::CoordSystem& system);
/// Degrees in one unit of a geographic system.
double degreesPerUnit(const cs::CoordSystem& system);
/// A geometry in degrees put into a geographic system, in its units.
std::shared_ptr<Geometry> fromDegrees(std::shared_ptr<Geometry> geometry,
                                      const std::shared_ptr<cs::CoordSystem>& system);

} // namespace orvane::geometry
