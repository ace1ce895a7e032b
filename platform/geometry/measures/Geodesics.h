#pragma once

#include "platform/geometry/shapes/Geometry.h"

#include <geodesic.h>

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
/// Between shapes on the same ellipsoid that are not empty; 0 when they meet.
double geodesicDistance(const GeographicShape& a, const GeographicShape& b);

} // namespace orvane::geometry
