#include "GeometryCall.h"

#include "PreparedArgument.h"
#include "RecentGeometries.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/shapes/Curves.h"
#include "platform/geometry/shapes/Failure.h"
#include "platform/work/Cancellation.h"
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/GeometryConversions.h>
#include <orvane/engine/functions/Converters.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

namespace orvane::engine {

namespace {

constexpr const char* geometryExpected = QT_TRANSLATE_NOOP("orvane::geometry", "нужна геометрия");
constexpr const char* numberExpected = QT_TRANSLATE_NOOP("orvane::geometry", "нужно число");
constexpr const char* notNegativeExpected =
    QT_TRANSLATE_NOOP("orvane::geometry", "нужно число, не меньшее нуля");
constexpr const char* positiveExpected = QT_TRANSLATE_NOOP("orvane::geometry", "нужно число больше 0");
constexpr const char* integerExpected = QT_TRANSLATE_NOOP("orvane::geometry", "нужно целое число");
constexpr const char* textExpected = QT_TRANSLATE_NOOP("orvane::geometry", "нужен текст");
constexpr const char* blobExpected = QT_TRANSLATE_NOOP("orvane::geometry", "нужны двоичные данные");

/// Names the function already.
class CallFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// As a part of a SpatiaLite blob, or as its only one.
bool fitsAsPart(const geometry::Geometry& part) {
    using geometry::GeometryType;
    return part.type() < GeometryType::Polygon ||
           (part.type() == GeometryType::Polygon &&
            !static_cast<const geometry::Polygon&>(part).rings().empty());
}

/// Linear, with a code or without a system, and of parts that the blob tells apart and keeps in their order:
/// points, lines, polygons, all of the dimensions of the whole. It has no form for what is empty.
bool fitsSpatialite(const geometry::Geometry& geometry) {
    if (const auto coordSystem = geometry.coordSystem();
        (coordSystem && coordSystem->epsg() == 0) || geometry.isEmpty()) {
        return false;
    }
    if (geometry.type() < geometry::GeometryType::MultiPoint) {
        return fitsAsPart(geometry);
    }
    if (geometry.type() > geometry::GeometryType::GeometryCollection) {
        return false;
    }
    const auto& parts = static_cast<const geometry::GeometryCollection&>(geometry).parts();
    const auto fits = [&](const GeometryPtr& part) {
        return part->dimensions() == geometry.dimensions() && fitsAsPart(*part);
    };
    return !parts.empty() && std::all_of(parts.begin(), parts.end(), fits) &&
           std::is_sorted(parts.begin(), parts.end(),
                          [](const GeometryPtr& a, const GeometryPtr& b) { return a->type() < b->type(); });
}

} // namespace

bool GeometryCall::hasNull(int required) const {
    for (int position = 0; position < required; ++position) {
        if (!isGiven(position)) {
            return true;
        }
    }
    return false;
}

GeometryPtr GeometryCall::geometry(int position) const {
    GeometryPtr geometry = toGeometry(context_, values_[position], true);
    if (!geometry) {
        reject(position, geometryExpected);
    }
    return geometry;
}

GeometryPair GeometryCall::geometries(int first, int second) const {
    GeometryPair pair = recentPair(context_, values_[first], values_[second]);
    if (!pair.first || !pair.second) {
        reject(pair.first ? second : first, geometryExpected);
    }
    const auto a = pair.first->coordSystem();
    const auto b = pair.second->coordSystem();
    if (a != b && !a->equals(*b)) {
        reject(second, QT_TRANSLATE_NOOP("orvane::geometry",
                                         "геометрия не имеет места в координатной системе другой"));
    }
    return pair;
}

double GeometryCall::number(int position) const {
    const int type = sqlite3_value_type(values_[position]);
    const double number = sqlite3_value_double(values_[position]);
    if ((type != SQLITE_INTEGER && type != SQLITE_FLOAT) || !std::isfinite(number)) {
        reject(position, numberExpected);
    }
    return number;
}

double GeometryCall::notNegative(int position) const {
    const double number = this->number(position);
    if (number < 0.0) {
        reject(position, notNegativeExpected);
    }
    return number;
}

double GeometryCall::positive(int position) const {
    const double number = this->number(position);
    if (!(number > 0.0)) {
        reject(position, positiveExpected);
    }
    return number;
}

std::int64_t GeometryCall::integer(int position) const {
    const double number = this->number(position);
    constexpr double limit = 9007199254740992.0; // 2^53, up to which reals know units
    if (sqlite3_value_type(values_[position]) != SQLITE_INTEGER &&
        (std::floor(number) != number || std::abs(number) > limit)) {
        reject(position, integerExpected);
    }
    return sqlite3_value_int64(values_[position]);
}

QString GeometryCall::text(int position) const {
    if (!isGiven(position)) {
        return QString();
    }
    if (sqlite3_value_type(values_[position]) != SQLITE_TEXT) {
        reject(position, textExpected);
    }
    QString text;
    withPrepared<QString>(
        context_, position, [](const QString&) { return true; }, [&] { return toQString(values_[position]); },
        [&text](const QString& prepared) { text = prepared; });
    return text;
}

QString GeometryCall::units(int position) const {
    const int type = isGiven(position) ? sqlite3_value_type(values_[position]) : SQLITE_NULL;
    return type == SQLITE_INTEGER || type == SQLITE_FLOAT ? QString() : text(position);
}

std::string_view GeometryCall::utf8(int position) const {
    if (sqlite3_value_type(values_[position]) != SQLITE_TEXT) {
        reject(position, textExpected);
    }
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(values_[position]));
    return {bytes, bytes ? static_cast<std::size_t>(sqlite3_value_bytes(values_[position])) : 0};
}

std::shared_ptr<cs::CoordSystem> GeometryCall::coordSystem(int position) const {
    if (!isGiven(position)) {
        return nullptr;
    }
    std::shared_ptr<cs::CoordSystem> system;
    if (sqlite3_value_type(values_[position]) == SQLITE_TEXT) {
        withPrepared<std::shared_ptr<cs::CoordSystem>>(
            context_, position, [](const auto&) { return true; }, [&] { return toCS(values_[position]); },
            [&system](const auto& prepared) { system = prepared; });
    } else if (const std::int64_t code = integer(position); code <= 0) {
        return nullptr;
    } else if (code <= std::numeric_limits<int>::max()) {
        system = cache().get(static_cast<int>(code));
    }
    if (!system) {
        reject(position, QT_TRANSLATE_NOOP("orvane::geometry", "нужна известная координатная система"));
    }
    if (system->epsg() != 0) {
        cache().save(system->epsg(), system);
    }
    return system;
}

std::string_view GeometryCall::blob(int position) const {
    if (sqlite3_value_type(values_[position]) != SQLITE_BLOB) {
        reject(position, blobExpected);
    }
    const auto* bytes = static_cast<const char*>(sqlite3_value_blob(values_[position]));
    return {bytes, static_cast<std::size_t>(sqlite3_value_bytes(values_[position]))};
}

void GeometryCall::reject(int position, const char* expected) const {
    throw CallFailure(geometry::failure(QT_TRANSLATE_NOOP("orvane::geometry", "%0: аргумент %1: %2."),
                                        QString::fromLatin1(function_), QString::number(position + 1),
                                        QCoreApplication::translate("orvane::geometry", expected))
                          .what());
}

void GeometryCall::rethrow() const {
    try {
        throw;
    } catch (const CallFailure&) {
        throw;
    } catch (const work::Cancelled&) {
        throw;
    } catch (const std::runtime_error& failure) {
        throw CallFailure(std::string(function_) + ": " + failure.what());
    }
}

void GeometryCall::give(const GeometryPtr& geometry) const {
    if (!geometry) {
        return;
    }
    if (fitsSpatialite(*geometry)) {
        toGaia(geometry, context_, &cache());
    } else {
        toOrvGeo(geometry, context_, &cache(), true);
    }
}

void GeometryCall::give(const QString& text) const {
    if (!text.isNull()) {
        sqlite3_result_text16(context_, text.utf16(), text.size() * int{sizeof(QChar)}, SQLITE_TRANSIENT);
    }
}

void GeometryCall::give(const std::string& text) const {
    sqlite3_result_text64(context_, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void GeometryCall::give(const QByteArray& blob) const {
    if (!blob.isNull()) {
        sqlite3_result_blob(context_, blob.constData(), blob.size(), SQLITE_TRANSIENT);
    }
}

} // namespace orvane::engine
