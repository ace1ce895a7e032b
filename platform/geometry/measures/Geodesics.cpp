#include "platform/geometry/measures/Geodesics.h"

#include "platform/cs/CoordSystem.h"
#include "platform/cs/Transformer.h"
#include "platform/geometry/shapes/Curves.h"
#include "platform/geometry/shapes/Failure.h"

#include <cmath>
#include <numbers>

namespace orvane::geometry {

namespace {

constexpr double degreesPerRadian = 180.0 / std::numbers::pi;

/// Puts latitudes that rounding pushed beyond a pole onto it. False for others beyond, and for what is not
/// finite.
bool bringToEllipsoid(double* positions, std::size_t count, Dimensions dimensions, double degreesPerUnit) {
    constexpr double roundingError = 1e-6;
    for (std::size_t i = 0; i < count; ++i) {
        double* position = positions + i * strideOf(dimensions);
        position[0] *= degreesPerUnit;
        position[1] *= degreesPerUnit;
        if (!std::isfinite(position[0]) || !(std::abs(position[1]) <= 90.0 + roundingError)) {
            return false;
        }
        position[1] = std::clamp(position[1], -90.0, 90.0);
    }
    return true;
}

double sequenceLength(const geod_geodesic& ellipsoid, const CoordinateSequence& sequence) {
    double length = 0.0;
    for (std::size_t i = 1; i < sequence.size(); ++i) {
        double distance = 0.0;
        geod_inverse(&ellipsoid, sequence.y(i - 1), sequence.x(i - 1), sequence.y(i), sequence.x(i),
                     &distance, nullptr, nullptr);
        length += distance;
    }
    return length;
}

/// The smaller of the two areas that the ring bounds.
double ringArea(const geod_geodesic& ellipsoid, const CoordinateSequence& ring) {
    geod_polygon polygon;
    geod_polygon_init(&polygon, 0);
    const std::size_t size = ring.isClosed() ? ring.size() - 1 : ring.size();
    for (std::size_t i = 0; i < size; ++i) {
        geod_polygon_addpoint(&ellipsoid, &polygon, ring.y(i), ring.x(i));
    }
    double area = 0.0;
    geod_polygon_compute(&ellipsoid, &polygon, 0, 1, &area, nullptr);
    return std::abs(area);
}

/// The sum over the polygons (lines) of a linear geometry.
template<typename Shape, typename Measure>
double sumOver(const Geometry& geometry, const Measure& measure) {
    if (const auto* shape = dynamic_cast<const Shape*>(&geometry)) {
        return measure(*shape);
    }
    double sum = 0.0;
    if (const auto* collection = dynamic_cast<const GeometryCollection*>(&geometry)) {
        for (const GeometryPtr& part : collection->parts()) {
            sum += sumOver<Shape>(*part, measure);
        }
    }
    return sum;
}

} // namespace

const geod_geodesic& ellipsoidOf(const cs::CoordSystem& system) {
    thread_local geod_geodesic ellipsoid{};
    const double radius = system.semiMajorAxis();
    const double flattening = system.inverseFlattening() == 0.0 ? 0.0 : 1.0 / system.inverseFlattening();
    if (ellipsoid.a != radius || ellipsoid.f != flattening) {
        geod_init(&ellipsoid, radius, flattening);
    }
    return ellipsoid;
}

double degreesPerUnit(const cs::CoordSystem& system) {
    const double unit = system.unitFactor() * degreesPerRadian;
    // The factor of degrees is exactly 1, whatever the last digit of the definition's pi.
    return std::abs(unit - 1.0) < 1e-9 ? 1.0 : unit;
}

GeographicShape onEllipsoid(const Geometry& geometry) {
    const auto system = geometry.coordSystem();
    if (!system) {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry",
                                        "Для меры на эллипсоиде нужна система координат геометрии."));
    }
    GeographicShape shape;
    shape.ellipsoid = ellipsoidOf(*system);
    shape.equatorialRadius = shape.ellipsoid.a;
    shape.eccentricitySquared = shape.ellipsoid.f * (2.0 - shape.ellipsoid.f);
    if (system->isGeographic()) {
        const double factor = degreesPerUnit(*system);
        shape.geometry =
            geometry.mapped([factor](double* positions, std::size_t count, Dimensions dimensions) {
                return bringToEllipsoid(positions, count, dimensions, factor);
            });
    } else if (const auto transformer = cs::Transformer::toGeographic(*system)) {
        shape.geometry =
            geometry.mapped([&transformer](double* positions, std::size_t count, Dimensions dimensions) {
                return transformer->transform(positions, count, strideOf(dimensions), false) &&
                       bringToEllipsoid(positions, count, dimensions, 1.0);
            });
    }
    if (!shape.geometry) {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "У точки геометрии нет долготы и широты."));
    }
    return shape;
}

double geodesicLength(const GeographicShape& shape) {
    return sumOver<LineString>(*shape.geometry, [&](const LineString& line) {
        return sequenceLength(shape.ellipsoid, line.coordinates());
    });
}

double geodesicPerimeter(const GeographicShape& shape) {
    return sumOver<Polygon>(*shape.geometry, [&](const Polygon& polygon) {
        double perimeter = 0.0;
        for (const CoordinateSequence& ring : polygon.rings()) {
            perimeter += sequenceLength(shape.ellipsoid, ring);
        }
        return perimeter;
    });
}

double geodesicArea(const GeographicShape& shape) {
    return sumOver<Polygon>(*shape.geometry, [&](const Polygon& polygon) {
        double area = 0.0;
        for (std::size_t i = 0; i < polygon.rings().size(); ++i) {
            const double ring = ringArea(shape.ellipsoid, polygon.rings()[i]);
            area += i == 0 ? ring : -ring;
        }
        return area;
    });
}

std::shared_ptr<Geometry> fromDegrees(std::shared_ptr<Geometry> geometry,
                                      const std::shared_ptr<cs::CoordSystem>& system) {
    if (const double degrees = degreesPerUnit(*system); degrees != 1.0) {
        geometry = geometry->mapped([degrees](double* positions, std::size_t count, Dimensions dimensions) {
            for (std::size_t i = 0; i < count; ++i) {
                positions[i * strideOf(dimensions)] /= degrees;
                positions[i * strideOf(dimensions) + 1] /= degrees;
            }
            return true;
        });
    }
    geometry->setCoordSystem(system);
    return geometry;
}

} // namespace orvane::geometry
