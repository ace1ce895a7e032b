#include "platform/geometry/measures/Directions.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/measures/Extremes.h"
#include "platform/geometry/measures/Geodesics.h"

#include <cmath>
#include <numbers>

namespace orvane::geometry {

namespace {

constexpr double radians = std::numbers::pi / 180.0;

/// Longitude, latitude in degrees.
struct Place {
    double x, y;
};

Place placeOf(const GeographicShape& shape) {
    const auto& point = static_cast<const Point&>(*shape.geometry);
    return {point.x(), point.y()};
}

/// (2a + b) / 3
double meanRadius(const geod_geodesic& ellipsoid) {
    return ellipsoid.a * (1.0 - ellipsoid.f / 3.0);
}

} // namespace

std::optional<double> azimuth(const Point& a, const Point& b) {
    double clockwise = std::atan2(b.x() - a.x(), b.y() - a.y());
    double apart = std::hypot(b.x() - a.x(), b.y() - a.y());
    if (isOnEarth(a)) {
        const GeographicShape shape = onEllipsoid(a);
        const Place from = placeOf(shape);
        const Place to = placeOf(onEllipsoid(b));
        geod_inverse(&shape.ellipsoid, from.y, from.x, to.y, to.x, &apart, &clockwise, nullptr);
        clockwise *= radians;
    }
    if (apart == 0.0) {
        return std::nullopt;
    }
    constexpr double turn = 2.0 * std::numbers::pi;
    const double positive = clockwise < 0.0 ? clockwise + turn : clockwise;
    return positive < turn ? positive : 0.0;
}

std::shared_ptr<Point> projected(const Point& point, double distance, double azimuth) {
    double ordinates[4];
    std::copy_n(point.ordinates(), 4, ordinates);
    if (isOnEarth(point)) {
        const GeographicShape shape = onEllipsoid(point);
        const Place from = placeOf(shape);
        geod_direct(&shape.ellipsoid, from.y, from.x, azimuth / radians, distance, &ordinates[1],
                    &ordinates[0], nullptr);
        const double factor = degreesPerUnit(*point.coordSystem());
        ordinates[0] /= factor;
        ordinates[1] /= factor;
    } else {
        ordinates[0] += distance * std::sin(azimuth);
        ordinates[1] += distance * std::cos(azimuth);
    }
    auto moved = std::make_shared<Point>(point.dimensions(), ordinates);
    moved->setCoordSystem(point.coordSystem());
    return moved;
}

double GeodesicArc::chord() const {
    return 2.0 * radius * std::sin(angle() / 2.0);
}

double GeodesicArc::height() const {
    const double sine = std::sin(angle() / 4.0);
    return 2.0 * radius * sine * sine;
}

double GeodesicArc::area() const {
    return radius * radius * (angle() - std::sin(angle())) / 2.0;
}

GeodesicArc geodesicArc(const Point& a, const Point& b) {
    return {geodesicDistance(a, b), meanRadius(onEllipsoid(a).ellipsoid)};
}

double greatCircleLength(const Geometry& geometry) {
    GeographicShape shape = onEllipsoid(geometry);
    geod_init(&shape.ellipsoid, meanRadius(shape.ellipsoid), 0.0);
    return geodesicLength(shape) + geodesicPerimeter(shape);
}

} // namespace orvane::geometry
