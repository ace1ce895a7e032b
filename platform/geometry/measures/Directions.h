#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Shapes.h"

#include <memory>
#include <optional>

namespace orvane::geometry {

// Of points with finite coordinates: along the geodesic where the system is geographic, else in the plane.
// Lengths are metres there, units of the coordinates here. They throw std::runtime_error for latitudes beyond
// the poles.

/// From a to b, radians clockwise from north (from y), 0 to 2 pi; none where they are the same.
ORVANE_PLATFORM_EXPORT std::optional<double> azimuth(const Point& a, const Point& b);
/// A distance away in the direction of an azimuth; z, m and the system are those of the point. Longitudes
/// from -180 to 180.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Point> projected(const Point& point, double distance, double azimuth);

/// The geodesic between two points of a geographic system as an arc of a circle that has the mean radius of
/// the ellipsoid.
struct ORVANE_PLATFORM_EXPORT GeodesicArc {
    double length; ///< metres; of the geodesic
    double radius; ///< metres

    double angle() const { return length / radius; } ///< at the centre, radians
    double chord() const;                            ///< metres
    double height() const;                           ///< metres, from the chord to the arc
    double area() const;                             ///< square metres, between chord and arc
};
ORVANE_PLATFORM_EXPORT GeodesicArc geodesicArc(const Point& a, const Point& b);

/// Lines and borders of areas along great circles of a sphere with the mean radius of the ellipsoid, metres.
ORVANE_PLATFORM_EXPORT double greatCircleLength(const Geometry& geometry);

} // namespace orvane::geometry
