#include <orvane/engine/functions/Geometry.h>

#include "Barrier.h"
#include "GeometryArguments.h"
#include "platform/geometry/measures/Measures.h"
#include <orvane/engine/NearnessBlob.h>
#include <orvane/engine/functions/Converters.h>

#include <cstring>
#include <limits>

namespace orvane::engine {

namespace {

constexpr std::string_view mark = "ORVNEAR";

bool isNumber(sqlite3_value* value) {
    const int type = sqlite3_value_numeric_type(value);
    return type == SQLITE_INTEGER || type == SQLITE_FLOAT;
}

/// A number in the place of the units asks for metres, as with SpatiaLite, where it chooses between the
/// ellipsoid and a sphere.
QString unitsOf(int count, sqlite3_value** values, int position) {
    return count > position && sqlite3_value_type(values[position]) == SQLITE_TEXT
               ? toQString(values[position])
               : QString();
}

/// None where one of the two is no geometry, or empty.
std::optional<double> distanceOf(sqlite3_context* context, sqlite3_value** values, const QString& units) {
    const GeometryPair pair = geometryPair(context, values[0], values[1]);
    if (!pair.first || !pair.second || pair.first->isEmpty() || pair.second->isEmpty()) {
        return std::nullopt;
    }
    return geometry::distance(*pair.first, *pair.second, units);
}

std::string_view bytesOf(sqlite3_value* value) {
    const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
    return {bytes, static_cast<std::size_t>(sqlite3_value_bytes(value))};
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

void objectDistance(sqlite3_context* context, int count, sqlite3_value** values) {
    barrier(context, [&] {
        if (const auto distance = distanceOf(context, values, unitsOf(count, values, 2))) {
            sqlite3_result_double(context, *distance);
        }
    });
}

void withinDistance(sqlite3_context* context, int count, sqlite3_value** values) {
    barrier(context, [&] {
        if (!isNumber(values[2])) {
            return;
        }
        if (const auto distance = distanceOf(context, values, unitsOf(count, values, 3))) {
            sqlite3_result_int(context, *distance <= sqlite3_value_double(values[2]) ? 1 : 0);
        }
    });
}

void nearness(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        const int type = sqlite3_value_type(values[1]);
        if (type == SQLITE_NULL || sqlite3_value_type(values[0]) != SQLITE_BLOB) {
            return;
        }
        NearnessBlob made;
        made.centre = bytesOf(values[0]);
        // Every number is less than any text.
        made.asked.distance = type == SQLITE_INTEGER || type == SQLITE_FLOAT
                                  ? sqlite3_value_double(values[1])
                                  : std::numeric_limits<double>::infinity();
        made.asked.kind = static_cast<geometry::DistanceKind>(sqlite3_value_int(values[3]));
        made.asked.units =
            made.asked.kind == geometry::DistanceKind::General ? unitsOf(3, values, 2) : toQString(values[2]);
        made.asked.centreIsFirst = sqlite3_value_int(values[4]) != 0;
        const std::string bytes = writeNearness(made);
        sqlite3_result_blob64(context, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
    });
}

void isNear(sqlite3_context* context, int, sqlite3_value** values) {
    if (sqlite3_value_type(values[0]) != SQLITE_NULL && sqlite3_value_type(values[1]) != SQLITE_NULL) {
        sqlite3_result_int(context, 1);
    }
}

} // namespace orvane::engine
