#include <orvane/engine/functions/GeometryLines.h>

#include "GeometryCall.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/making/LinePath.h"
#include "platform/geometry/measures/Measures.h"

#include <algorithm>
#include <numbers>
#include <numeric>
#include <optional>

namespace orvane::engine {

namespace {

using geometry::LinePath;

/// What is made of the line in the first argument; nothing of an empty one.
template<typename Make>
void along(const char* name, int required, sqlite3_context* context, int count, sqlite3_value** values,
           const Make& make) {
    evaluate(name, required, context, count, values,
             [&make](const GeometryCall& call) -> decltype(make(call, std::declval<const LinePath&>())) {
                 const GeometryPtr line = call.geometry(0);
                 if (line->isEmpty()) {
                     return {};
                 }
                 if (!LinePath::isLine(*line)) {
                     call.reject(0, QT_TRANSLATE_NOOP("orvane::geometry", "нужна линия"));
                 }
                 return make(call, LinePath(line));
             });
}

double share(const GeometryCall& call, int position) {
    const double value = call.number(position);
    if (!(value >= 0.0 && value <= 1.0)) {
        call.reject(position, QT_TRANSLATE_NOOP("orvane::geometry", "нужно число от 0 до 1"));
    }
    return value;
}

/// The point in the second argument in the system of the line; null when it is empty.
std::shared_ptr<const geometry::Point> pointBeside(const GeometryCall& call) {
    const auto point = std::dynamic_pointer_cast<const geometry::Point>(call.geometries(0, 1).second);
    if (!point) {
        call.reject(1, QT_TRANSLATE_NOOP("orvane::geometry", "нужна точка"));
    }
    return point->isEmpty() ? nullptr : point;
}

/// Of the lengths of all edges.
template<typename Choose>
void ofEdges(const char* name, sqlite3_context* context, int count, sqlite3_value** values,
             const Choose& choose) {
    along(name, 1, context, count, values,
          [&choose](const GeometryCall& call, const LinePath& path) -> std::optional<double> {
              const std::vector<double> lengths = path.edgeLengths(call.integer(1, 1) == 0);
              return lengths.empty() ? std::nullopt
                                     : std::optional(geometry::namedLength(
                                           choose(lengths), path.coordSystem().get(), call.text(2)));
          });
}

template<typename Choose>
void ofClimbs(const char* name, sqlite3_context* context, int count, sqlite3_value** values,
              const Choose& choose) {
    along(name, 1, context, count, values, [&choose](const GeometryCall&, const LinePath& path) {
        return std::optional<double>(choose(path.climbs()));
    });
}

} // namespace

void lineInterpolatePoint(sqlite3_context* context, int count, sqlite3_value** values) {
    along("Line_Interpolate_Point", 2, context, count, values,
          [](const GeometryCall& call, const LinePath& path) -> GeometryPtr {
              return path.pointAt(share(call, 1) * path.length());
          });
}

void lineInterpolateEquidistantPoints(sqlite3_context* context, int count, sqlite3_value** values) {
    along("Line_Interpolate_Equidistant_Points", 2, context, count, values,
          [](const GeometryCall& call, const LinePath& path) -> GeometryPtr {
              const double distance = call.positive(1);
              const double step = geometry::ownLength(distance, path.coordSystem().get(), call.text(2));
              return path.everyStep(step, step / distance);
          });
}

void lineLocatePoint(sqlite3_context* context, int count, sqlite3_value** values) {
    along("Line_Locate_Point", 2, context, count, values,
          [](const GeometryCall& call, const LinePath& path) -> std::optional<double> {
              const auto point = pointBeside(call);
              if (!point) {
                  return std::nullopt;
              }
              return path.length() > 0.0 ? path.nearestTo(*point) / path.length() : 0.0;
          });
}

void lineSubstring(sqlite3_context* context, int count, sqlite3_value** values) {
    along("Line_Substring", 3, context, count, values,
          [](const GeometryCall& call, const LinePath& path) -> GeometryPtr {
              const double from = share(call, 1);
              const double to = share(call, 2);
              if (from > to) {
                  call.reject(2, QT_TRANSLATE_NOOP("orvane::geometry", "нужно число не меньше начала"));
              }
              return path.between(from * path.length(), to * path.length());
          });
}

void locateAlong(sqlite3_context* context, int count, sqlite3_value** values) {
    along("ST_LocateAlong", 2, context, count, values,
          [](const GeometryCall& call, const LinePath& path) -> GeometryPtr {
              return path.whereM(call.number(1));
          });
}

void locateBetween(sqlite3_context* context, int count, sqlite3_value** values) {
    along("ST_LocateBetween", 3, context, count, values,
          [](const GeometryCall& call, const LinePath& path) -> GeometryPtr {
              const auto [least, most] = std::minmax({call.number(1), call.number(2)});
              return path.whereMBetween(least, most);
          });
}

void interpolateM(sqlite3_context* context, int count, sqlite3_value** values) {
    along("ST_InterpolatePoint", 2, context, count, values,
          [](const GeometryCall& call, const LinePath& path) -> std::optional<double> {
              const auto point = pointBeside(call);
              return point ? std::optional(path.mNearestTo(*point)) : std::nullopt;
          });
}

void trajectoryInterpolatePoint(sqlite3_context* context, int count, sqlite3_value** values) {
    along("ST_TrajectoryInterpolatePoint", 2, context, count, values,
          [](const GeometryCall& call, const LinePath& path) -> GeometryPtr {
              if (!path.isTrajectory()) {
                  call.reject(0, QT_TRANSLATE_NOOP("orvane::geometry", "нужна линия с растущими m"));
              }
              return path.firstWhereM(call.number(1));
          });
}

void isValidTrajectory(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ST_IsValidTrajectory", 1, context, count, values, [](const GeometryCall& call) {
        const GeometryPtr geometry = call.geometry(0);
        return LinePath::isLine(*geometry) && LinePath(geometry).isTrajectory();
    });
}

void minSegmentLength(sqlite3_context* context, int count, sqlite3_value** values) {
    ofEdges("LinestringMinSegmentLength", context, count, values,
            [](const std::vector<double>& lengths) { return std::ranges::min(lengths); });
}

void maxSegmentLength(sqlite3_context* context, int count, sqlite3_value** values) {
    ofEdges("LinestringMaxSegmentLength", context, count, values,
            [](const std::vector<double>& lengths) { return std::ranges::max(lengths); });
}

void avgSegmentLength(sqlite3_context* context, int count, sqlite3_value** values) {
    ofEdges("LinestringAvgSegmentLength", context, count, values, [](const std::vector<double>& lengths) {
        return std::accumulate(lengths.begin(), lengths.end(), 0.0) / static_cast<double>(lengths.size());
    });
}

void curvosityIndex(sqlite3_context* context, int count, sqlite3_value** values) {
    along("CurvosityIndex", 1, context, count, values,
          [](const GeometryCall& call, const LinePath& path) -> std::optional<double> {
              constexpr std::int64_t mostPlaces = 1'000'000;
              const std::int64_t extra = call.integer(1, 0);
              if (extra < 0 || extra > mostPlaces) {
                  call.reject(1, QT_TRANSLATE_NOOP("orvane::geometry", "нужно число от 0 до 1000000"));
              }
              return path.length() > 0.0
                         ? std::optional(path.straightened(static_cast<std::size_t>(extra)) / path.length())
                         : std::nullopt;
          });
}

void uphillHeight(sqlite3_context* context, int count, sqlite3_value** values) {
    ofClimbs("UphillHeight", context, count, values, [](const auto& climbs) { return climbs.first; });
}

void downhillHeight(sqlite3_context* context, int count, sqlite3_value** values) {
    ofClimbs("DownhillHeight", context, count, values, [](const auto& climbs) { return climbs.second; });
}

void upDownHeight(sqlite3_context* context, int count, sqlite3_value** values) {
    ofClimbs("UpDownHeight", context, count, values,
             [](const auto& climbs) { return climbs.first + climbs.second; });
}

void circularity(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("Circularity", 1, context, count, values, [](const GeometryCall& call) {
        const GeometryPtr geometry = call.geometry(0);
        const double perimeter = geometry::perimeter(*geometry, QString());
        return perimeter > 0.0 ? std::optional(4.0 * std::numbers::pi * geometry::area(*geometry, QString()) /
                                               (perimeter * perimeter))
                               : std::nullopt;
    });
}

} // namespace orvane::engine
