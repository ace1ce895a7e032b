#include <orvane/engine/functions/GeometryForms.h>

#include "GeometryCall.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/forms/TextFormats.h"
#include <orvane/engine/EngineCache.h>

#include <algorithm>

namespace orvane::engine {

namespace {

constexpr int mostDigits = 20;
constexpr int wgs84 = 4326;

/// Digits behind the point; `otherwise` where nothing is said.
int digitsOf(const GeometryCall& call, int position, int otherwise) {
    const std::int64_t digits = call.integer(position, otherwise);
    return static_cast<int>(std::clamp<std::int64_t>(digits, -1, mostDigits));
}

std::string wktOf(const geometry::Geometry& geometry, const geometry::WktStyle& style) {
    std::string text;
    geometry::appendWkt(geometry, text, style);
    return text;
}

int codeOf(const geometry::Geometry& geometry) {
    const auto coordSystem = geometry.coordSystem();
    return coordSystem ? coordSystem->epsg() : 0;
}

/// As it is where the system is unknown. Throws where it has no place in WGS 84.
GeometryPtr inWgs84(const GeometryCall& call, const GeometryPtr& geometry) {
    if (!geometry->coordSystem() || geometry->coordSystem()->epsg() == wgs84) {
        return geometry;
    }
    GeometryPtr transformed = geometry->transformed(call.cache().get(wgs84));
    if (!transformed) {
        call.reject(0, QT_TRANSLATE_NOOP("orvane::geometry", "геометрия не имеет места в WGS 84"));
    }
    return transformed;
}

} // namespace

void asText(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("AsText", 1, context, count, values, [](const GeometryCall& call) {
        constexpr int usualDigits = 6;
        return wktOf(*call.geometry(0), {digitsOf(call, 1, usualDigits), true, true, false});
    });
}

void asWkt(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("AsWkt", 1, context, count, values, [](const GeometryCall& call) {
        return wktOf(*call.geometry(0), {digitsOf(call, 1, -1), false, false, false});
    });
}

void asEwkt(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("AsEWKT", 1, context, count, values, [](const GeometryCall& call) {
        const GeometryPtr geometry = call.geometry(0);
        return "SRID=" + std::to_string(codeOf(*geometry)) + ';' + wktOf(*geometry, {-1, false, true, true});
    });
}

void asBinary(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("AsBinary", 1, context, count, values, [](const GeometryCall& call) {
        return geometry::GeometryFactory::toWkb(call.geometry(0), QSysInfo::LittleEndian);
    });
}

void asEwkb(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("AsEWKB", 1, context, count, values, [](const GeometryCall& call) {
        const GeometryPtr geometry = call.geometry(0);
        return geometry::GeometryFactory::toExtendedWkb(geometry, codeOf(*geometry))
            .toHex()
            .toUpper()
            .toStdString();
    });
}

void asGeoJson(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("AsGeoJSON", 1, context, count, values, [](const GeometryCall& call) {
        constexpr std::int64_t withEnvelope = 1, withShortName = 2, withLongName = 4;
        const GeometryPtr geometry = call.geometry(0);
        const std::int64_t options = call.integer(2, 0);
        const int code = codeOf(*geometry);
        geometry::GeoJsonStyle style{digitsOf(call, 1, -1), (options & withEnvelope) != 0, {}};
        if ((options & (withShortName | withLongName)) != 0 && code != 0) {
            style.crs =
                ((options & withLongName) != 0 ? "urn:ogc:def:crs:EPSG::" : "EPSG:") + std::to_string(code);
        }
        std::string text;
        geometry::appendGeoJson(style.crs.empty() ? *inWgs84(call, geometry) : *geometry, text, style);
        return text;
    });
}

} // namespace orvane::engine
