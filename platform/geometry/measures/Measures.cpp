#include "platform/geometry/measures/Measures.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/measures/Geodesics.h"
#include "platform/geometry/measures/PlanarMeasures.h"
#include "platform/geometry/measures/Units.h"
#include "platform/geometry/relations/Relations.h"
#include "platform/geometry/shapes/Failure.h"

#include <cmath>
#include <numbers>

namespace orvane::geometry {

namespace {

enum class Power { Length = 1, Area = 2 };

Unit unitOf(const QString& name, Power power) {
    return power == Power::Length ? lengthUnit(name) : areaUnit(name);
}

double raised(double factor, Power power) {
    return power == Power::Length ? factor : factor * factor;
}

/// Metres or square metres in the units.
double fromMetres(double value, const QString& units, Power power) {
    if (units.trimmed().isEmpty()) {
        return value;
    }
    const Unit unit = unitOf(units, power);
    if (unit.isAngular) {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry",
                                        "Единица «%0» здесь не имеет смысла: мера на эллипсоиде не угловая."),
                      units);
    }
    return value / unit.factor;
}

/// A measure in the plane of the system, which may be null, in the units.
double fromPlane(double value, const cs::CoordSystem* system, const QString& units, Power power) {
    if (units.trimmed().isEmpty()) {
        return value;
    }
    const Unit unit = unitOf(units, power);
    const bool inDegrees = system && system->isGeographic();
    if (inDegrees != unit.isAngular) {
        throw failure(
            inDegrees
                ? QT_TRANSLATE_NOOP("orvane::geometry",
                                    "Единица «%0» здесь не имеет смысла: координаты угловые; годятся градусы "
                                    "или мера на эллипсоиде.")
                : QT_TRANSLATE_NOOP("orvane::geometry",
                                    "Единица «%0» здесь не имеет смысла: координаты не угловые."),
            units);
    }
    double factor = system ? system->unitFactor() : 1.0;
    if (inDegrees) {
        factor *= 180.0 / std::numbers::pi;
    }
    return value * raised(factor, power) / unit.factor;
}

double spherical(const Geometry& geometry, const QString& units, Power power,
                 double (*measure)(const GeographicShape&)) {
    return geometry.isEmpty() ? fromMetres(0.0, units, power)
                              : fromMetres(measure(onEllipsoid(geometry)), units, power);
}

double cartesian(const Geometry& geometry, const QString& units, Power power,
                 double (*measure)(const Geometry&)) {
    return fromPlane(measure(geometry), geometry.coordSystem().get(), units, power);
}

double general(const Geometry& geometry, const QString& units, Power power,
               double (*onEarth)(const GeographicShape&), double (*inPlane)(const Geometry&)) {
    const auto system = geometry.coordSystem();
    if (system && system->isGeographic()) {
        return spherical(geometry, units, power, onEarth);
    }
    const bool inMetres = units.trimmed().isEmpty();
    const QString metres = power == Power::Length ? QStringLiteral("m") : QStringLiteral("sq m");
    return cartesian(geometry, inMetres ? metres : units, power, inPlane);
}

/// b, or b in the system of a.
GeometryPtr inSystemOf(const Geometry& a, const Geometry& b) {
    const auto systemA = a.coordSystem();
    const auto systemB = b.coordSystem();
    if (!systemA || !systemB || systemA->equals(*systemB)) {
        return GeometryPtr(std::shared_ptr<void>(), &b);
    }
    GeometryPtr transformed = b.transformed(systemA);
    if (!transformed) {
        throw failure(
            QT_TRANSLATE_NOOP("orvane::geometry", "Геометрии не приводятся к одной системе координат."));
    }
    return transformed;
}

void checkNotEmpty(const Geometry& a, const Geometry& b) {
    if (a.isEmpty() || b.isEmpty()) {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "У пустой геометрии нет расстояния до другой."));
    }
}

} // namespace

double length(const Geometry& geometry, const QString& units) {
    return general(geometry, units, Power::Length, geodesicLength, planarLength);
}

double sphericalLength(const Geometry& geometry, const QString& units) {
    return spherical(geometry, units, Power::Length, geodesicLength);
}

double cartesianLength(const Geometry& geometry, const QString& units) {
    return cartesian(geometry, units, Power::Length, planarLength);
}

double perimeter(const Geometry& geometry, const QString& units) {
    return general(geometry, units, Power::Length, geodesicPerimeter, planarPerimeter);
}

double sphericalPerimeter(const Geometry& geometry, const QString& units) {
    return spherical(geometry, units, Power::Length, geodesicPerimeter);
}

double cartesianPerimeter(const Geometry& geometry, const QString& units) {
    return cartesian(geometry, units, Power::Length, planarPerimeter);
}

double area(const Geometry& geometry, const QString& units) {
    return general(geometry, units, Power::Area, geodesicArea, planarArea);
}

double sphericalArea(const Geometry& geometry, const QString& units) {
    return spherical(geometry, units, Power::Area, geodesicArea);
}

double cartesianArea(const Geometry& geometry, const QString& units) {
    return cartesian(geometry, units, Power::Area, planarArea);
}

double sphericalObjectDistance(const Geometry& a, const Geometry& b, const QString& units) {
    checkNotEmpty(a, b);
    const GeometryPtr other = inSystemOf(a, b);
    return fromMetres(geodesicDistance(a, *other), units, Power::Length);
}

double cartesianObjectDistance(const Geometry& a, const Geometry& b, const QString& units) {
    checkNotEmpty(a, b);
    const GeometryPtr other = inSystemOf(a, b);
    return fromPlane(planarDistance(a, *other), a.coordSystem().get(), units, Power::Length);
}

double distance(const Geometry& a, const Geometry& b, const QString& units) {
    const auto system = a.coordSystem() ? a.coordSystem() : b.coordSystem();
    if (system && system->isGeographic()) {
        return sphericalObjectDistance(a, b, units);
    }
    return cartesianObjectDistance(a, b, units.trimmed().isEmpty() ? QStringLiteral("m") : units);
}

double namedLength(double ownLength, const cs::CoordSystem* system, const QString& units) {
    if (system && system->isGeographic()) {
        return fromMetres(ownLength, units, Power::Length);
    }
    return fromPlane(ownLength, system, units.trimmed().isEmpty() ? QStringLiteral("m") : units,
                     Power::Length);
}

double ownLength(double length, const cs::CoordSystem* system, const QString& units) {
    return length / namedLength(1.0, system, units);
}

} // namespace orvane::geometry
