#include <orvane/engine/functions/Geometry.h>

#include "GeometryCall.h"
#include "RecentGeometries.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/measures/Measures.h"
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/NearnessBlob.h>
#include <orvane/engine/functions/Converters.h>

#include <cstring>
#include <limits>
#include <optional>

namespace orvane::engine {

namespace {

constexpr std::string_view mark = "ORVNEAR";

std::string_view bytesOf(sqlite3_value* value) {
    const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
    return {bytes, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

/// None where one of the two is empty.
std::optional<double> distanceOf(const GeometryCall& call, const QString& units) {
    const GeometryPair pair = call.geometries(0, 1);
    if (pair.first->isEmpty() || pair.second->isEmpty()) {
        return std::nullopt;
    }
    return geometry::distance(*pair.first, *pair.second, units);
}

/// The measures of one kind, which tell every failure by one value.
void distanceOrFailure(sqlite3_context* context, int count, sqlite3_value** values,
                       double (*measure)(const geometry::Geometry&, const geometry::Geometry&,
                                         const QString&)) {
    barrier(context, [&] {
        const GeometryPair pair = recentPair(context, values[0], values[1]);
        if (!pair.first || !pair.second) {
            return;
        }
        double value = -1.0;
        try {
            value = measure(*pair.first, *pair.second, count > 2 ? toQString(values[2]) : QString());
        } catch (const std::bad_alloc&) {
            throw;
        } catch (...) {
            // Every other failure is this value.
        }
        sqlite3_result_double(context, value);
    });
}

} // namespace

std::string writeNearness(const NearnessBlob& nearness) {
    const QByteArray units = nearness.asked.units.left(std::numeric_limits<std::uint8_t>::max() / 4).toUtf8();
    std::string bytes(mark);
    bytes += static_cast<char>(nearness.asked.kind);
    bytes += static_cast<char>(nearness.asked.centreIsFirst ? 1 : 0);
    bytes.append(reinterpret_cast<const char*>(&nearness.asked.distance), sizeof(double));
    bytes += static_cast<char>(units.size());
    bytes.append(units.constData(), static_cast<std::size_t>(units.size()));
    bytes += nearness.centre;
    return bytes;
}

std::optional<NearnessBlob> readNearness(std::string_view bytes) {
    constexpr std::size_t head = mark.size() + 2 + sizeof(double) + 1;
    if (bytes.size() < head || !bytes.starts_with(mark)) {
        return std::nullopt;
    }
    NearnessBlob nearness;
    const char* const kind = bytes.data() + mark.size();
    const auto unitsSize = static_cast<std::size_t>(static_cast<unsigned char>(bytes[head - 1]));
    if (kind[0] < 0 || kind[0] > static_cast<char>(geometry::DistanceKind::Cartesian) ||
        bytes.size() - head < unitsSize) {
        return std::nullopt;
    }
    nearness.asked.kind = static_cast<geometry::DistanceKind>(kind[0]);
    nearness.asked.centreIsFirst = kind[1] != 0;
    std::memcpy(&nearness.asked.distance, kind + 2, sizeof(double));
    nearness.asked.units = QString::fromUtf8(bytes.data() + head, static_cast<int>(unitsSize));
    nearness.centre = bytes.substr(head + unitsSize);
    return nearness;
}

void sphericalObjectDistance(sqlite3_context* context, int count, sqlite3_value** values) {
    distanceOrFailure(context, count, values, geometry::sphericalObjectDistance);
}

void cartesianObjectDistance(sqlite3_context* context, int count, sqlite3_value** values) {
    distanceOrFailure(context, count, values, geometry::cartesianObjectDistance);
}

void objectDistance(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("Distance", 2, context, count, values,
             [](const GeometryCall& call) { return distanceOf(call, call.units(2)); });
}

void withinDistance(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("WithinDistance", 3, context, count, values, [](const GeometryCall& call) {
        const double limit = call.number(2);
        const auto distance = distanceOf(call, call.units(3));
        return distance ? std::optional(*distance <= limit) : std::nullopt;
    });
}

void nearness(sqlite3_context* context, int count, sqlite3_value** values) {
    barrier(context, [&] {
        const int type = sqlite3_value_type(values[1]);
        if (type == SQLITE_NULL || sqlite3_value_type(values[0]) != SQLITE_BLOB) {
            return;
        }
        NearnessBlob made;
        made.centre = bytesOf(values[0]);
        auto& cache = *static_cast<EngineCache*>(sqlite3_user_data(context));
        if (!RecentGeometries::ofStatement(context).get(cache, made.centre)) {
            return;
        }
        const GeometryCall call("Nearness", context, count, values);
        // Every number is less than any text.
        made.asked.distance = type == SQLITE_INTEGER || type == SQLITE_FLOAT
                                  ? sqlite3_value_double(values[1])
                                  : std::numeric_limits<double>::infinity();
        made.asked.kind = static_cast<geometry::DistanceKind>(sqlite3_value_int(values[3]));
        made.asked.units =
            made.asked.kind == geometry::DistanceKind::General ? call.units(2) : toQString(values[2]);
        made.asked.centreIsFirst = sqlite3_value_int(values[4]) != 0;
        const std::string bytes = writeNearness(made);
        sqlite3_result_blob64(context, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
    });
}

void isNear(sqlite3_context* context, int, sqlite3_value** values) {
    if (sqlite3_value_type(values[0]) == SQLITE_BLOB && sqlite3_value_type(values[1]) == SQLITE_BLOB &&
        bytesOf(values[1]).starts_with(mark)) {
        sqlite3_result_int(context, 1);
    }
}

} // namespace orvane::engine
