#include <orvane/engine/functions/GeometryDistances.h>

#include "GeometryCall.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/measures/Directions.h"
#include "platform/geometry/measures/Extremes.h"
#include "platform/geometry/measures/Measures.h"
#include "platform/geometry/measures/Units.h"

#include <cmath>
#include <numbers>
#include <optional>

namespace orvane::engine {

namespace {

bool isNumber(const GeometryCall& call, int position) {
    return call.isGiven(position) && sqlite3_value_type(call.value(position)) != SQLITE_TEXT &&
           sqlite3_value_type(call.value(position)) != SQLITE_BLOB;
}

/// A length of the geometry's own in units.
double inUnits(double length, const geometry::Geometry& geometry, const QString& units) {
    return geometry::namedLength(length, geometry.coordSystem().get(), units);
}

/// A length between two geometries that are not empty, in the units of the argument behind them.
template<typename Measure>
void between(const char* name, sqlite3_context* context, int count, sqlite3_value** values,
             const Measure& measure) {
    evaluate(name, 2, context, count, values, [&measure](const GeometryCall& call) {
        const GeometryPair pair = call.geometries(0, 1);
        const QString units = call.units(2);
        return pair.first->isEmpty() || pair.second->isEmpty()
                   ? std::nullopt
                   : std::optional(inUnits(measure(*pair.first, *pair.second), *pair.first, units));
    });
}

const geometry::Point& pointOf(const GeometryCall& call, int position, const GeometryPtr& geometry) {
    const auto* const point = dynamic_cast<const geometry::Point*>(geometry.get());
    if (!point) {
        call.reject(position, QT_TRANSLATE_NOOP("orvane::geometry", "нужна точка"));
    }
    if (!point->isEmpty() && !(std::isfinite(point->x()) && std::isfinite(point->y()))) {
        call.reject(position, QT_TRANSLATE_NOOP("orvane::geometry", "нужны конечные координаты"));
    }
    return *point;
}

/// What a function tells of two points; none where one is empty.
template<typename Tell>
auto ofPoints(const GeometryCall& call, const Tell& tell)
    -> decltype(tell(std::declval<const geometry::Point&>(), std::declval<const geometry::Point&>())) {
    const GeometryPair pair = call.geometries(0, 1);
    const geometry::Point& a = pointOf(call, 0, pair.first);
    const geometry::Point& b = pointOf(call, 1, pair.second);
    if (a.isEmpty() || b.isEmpty()) {
        return {};
    }
    return tell(a, b);
}

GeometryPtr lineBetween(const GeometryCall& call) {
    const GeometryPair pair = call.geometries(0, 1);
    return pair.first->isEmpty() || pair.second->isEmpty()
               ? nullptr
               : geometry::shortestLine(*pair.first, *pair.second);
}

/// Lengths and areas of the arc between two points.
void ofArc(const char* name, sqlite3_context* context, int count, sqlite3_value** values,
           double (*measure)(const geometry::GeodesicArc&), bool isArea = false) {
    evaluate(name, 2, context, count, values, [measure, isArea](const GeometryCall& call) {
        const QString units = call.units(2);
        return ofPoints(call, [&](const geometry::Point& a, const geometry::Point& b) {
            const double factor = units.trimmed().isEmpty() ? 1.0
                                  : isArea                  ? geometry::areaUnit(units).factor
                                                            : geometry::lengthUnit(units).factor;
            return std::optional(measure(geometry::geodesicArc(a, b)) / factor);
        });
    });
}

} // namespace

void maxDistance(sqlite3_context* context, int count, sqlite3_value** values) {
    between("MaxDistance", context, count, values, geometry::maxDistance);
}

void frechetDistance(sqlite3_context* context, int count, sqlite3_value** values) {
    between("FrechetDistance", context, count, values, geometry::frechetDistance);
}

void hausdorffDistance(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("HausdorffDistance", 2, context, count, values, [](const GeometryCall& call) {
        const GeometryPair pair = call.geometries(0, 1);
        const bool hasPart = isNumber(call, 2);
        const double part = hasPart ? call.number(2) : 1.0;
        constexpr double least = 1e-4;
        if (!(part >= least && part <= 1.0)) {
            call.reject(2, QT_TRANSLATE_NOOP("orvane::geometry", "нужно число от 0.0001 до 1"));
        }
        const QString units = call.text(hasPart ? 3 : 2);
        return pair.first->isEmpty() || pair.second->isEmpty()
                   ? std::nullopt
                   : std::optional(inUnits(geometry::hausdorffDistance(*pair.first, *pair.second, part),
                                           *pair.first, units));
    });
}

void shortestLine(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ShortestLine", 2, context, count, values, lineBetween);
}

void closestPoint(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ClosestPoint", 2, context, count, values, [](const GeometryCall& call) -> GeometryPtr {
        const GeometryPtr line = lineBetween(call);
        if (!line) {
            return nullptr;
        }
        const auto& ends = static_cast<const geometry::LineString&>(*line).coordinates();
        auto point = std::make_shared<geometry::Point>(ends.x(0), ends.y(0));
        point->setCoordSystem(line->coordSystem());
        return point;
    });
}

void distanceInSpace(sqlite3_context* context, int count, sqlite3_value** values) {
    between("ST_3DDistance", context, count, values, geometry::distanceInSpace);
}

void maxDistanceInSpace(sqlite3_context* context, int count, sqlite3_value** values) {
    between("ST_3DMaxDistance", context, count, values, geometry::maxDistanceInSpace);
}

void lengthInSpace(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ST_3dLength", 1, context, count, values, [](const GeometryCall& call) {
        const GeometryPtr geometry = call.geometry(0);
        return inUnits(geometry::lengthInSpace(*geometry), *geometry, call.units(1));
    });
}

void azimuth(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("Azimuth", 2, context, count, values,
             [](const GeometryCall& call) { return ofPoints(call, geometry::azimuth); });
}

void project(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("Project", 3, context, count, values, [](const GeometryCall& call) -> GeometryPtr {
        const GeometryPtr geometry = call.geometry(0);
        const geometry::Point& point = pointOf(call, 0, geometry);
        const double distance =
            geometry::ownLength(call.number(1), geometry->coordSystem().get(), call.text(3));
        const double direction = call.number(2);
        return point.isEmpty() ? geometry : geometry::projected(point, distance, direction);
    });
}

void greatCircleLength(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("GreatCircleLength", 1, context, count, values, [](const GeometryCall& call) {
        const QString units = call.units(1);
        const double factor = units.trimmed().isEmpty() ? 1.0 : geometry::lengthUnit(units).factor;
        return geometry::greatCircleLength(*call.geometry(0)) / factor;
    });
}

void geodesicLength(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("GeodesicLength", 1, context, count, values, [](const GeometryCall& call) {
        const GeometryPtr geometry = call.geometry(0);
        const QString units = call.units(1);
        return geometry::sphericalLength(*geometry, units) + geometry::sphericalPerimeter(*geometry, units);
    });
}

void geodesicArcLength(sqlite3_context* context, int count, sqlite3_value** values) {
    ofArc("GeodesicArcLength", context, count, values,
          [](const geometry::GeodesicArc& arc) { return arc.length; });
}

void geodesicChordLength(sqlite3_context* context, int count, sqlite3_value** values) {
    ofArc("GeodesicChordLength", context, count, values,
          [](const geometry::GeodesicArc& arc) { return arc.chord(); });
}

void geodesicArcHeight(sqlite3_context* context, int count, sqlite3_value** values) {
    ofArc("GeodesicArcHeight", context, count, values,
          [](const geometry::GeodesicArc& arc) { return arc.height(); });
}

void geodesicArcArea(sqlite3_context* context, int count, sqlite3_value** values) {
    ofArc(
        "GeodesicArcArea", context, count, values,
        [](const geometry::GeodesicArc& arc) { return arc.area(); }, true);
}

void geodesicCentralAngle(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("GeodesicCentralAngle", 2, context, count, values, [](const GeometryCall& call) {
        const bool inDegrees = call.integer(2, 1) == 0;
        return ofPoints(call, [inDegrees](const geometry::Point& a, const geometry::Point& b) {
            const double angle = geometry::geodesicArc(a, b).angle();
            return std::optional(inDegrees ? angle * 180.0 / std::numbers::pi : angle);
        });
    });
}

} // namespace orvane::engine
