#include <orvane/engine/functions/GeometryForms.h>

#include "GeometryCall.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/editing/Access.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/forms/TextFormats.h"
#include "platform/geometry/forms/TextReader.h"
#include "platform/geometry/forms/TinyForms.h"
#include "platform/geometry/overlay/Overlay.h"
#include "platform/geometry/shapes/Failure.h"
#include "platform/geometry/shapes/Shapes.h"
#include "platform/work/Cancellation.h"
#include <orvane/engine/EngineCache.h>

#include <algorithm>
#include <utility>

namespace orvane::engine {

namespace {

using geometry::GeometryType;

constexpr int wgs84 = 4326;

/// In the system of the second argument, where it is given.
GeometryPtr placed(const GeometryCall& call, const GeometryPtr& geometry) {
    return call.isGiven(1) ? withCoordSystem(geometry, call.coordSystem(1)) : geometry;
}

GeometryPtr readText(const GeometryCall& call) {
    return placed(call, geometry::fromWkt(call.utf8(0)));
}

GeometryPtr readWkb(const GeometryCall& call) {
    return placed(call, geometry::GeometryFactory::fromWkb(call.blob(0), nullptr));
}

GeometryPtr required(const GeometryPtr& geometry, GeometryType type) {
    if (geometry->type() != type) {
        constexpr auto plain = geometry::Dimensions::XY;
        throw geometry::failure(QT_TRANSLATE_NOOP("orvane::geometry", "нужна геометрия вида %0, а не %1."),
                                QString::fromStdString(geometry::wktKind(type, plain)),
                                QString::fromStdString(geometry::wktKind(geometry->type(), plain)));
    }
    return geometry;
}

using Reader = GeometryPtr (*)(const GeometryCall& call);

/// Reads one kind only.
template<Reader read, GeometryType type>
void readKind(const char* name, sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate(name, 1, context, count, values,
             [](const GeometryCall& call) { return required(read(call), type); });
}

/// The areas that lines enclose; `type` is that of the result.
template<Reader read, GeometryType type>
void enclose(const char* name, sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate(name, 1, context, count, values, [](const GeometryCall& call) -> GeometryPtr {
        const GeometryPtr lines = required(read(call), GeometryType::MultiLineString);
        GeometryPtr next = lines;
        const auto areas =
            geometry::polygonized([&next] { return std::exchange(next, nullptr); }, work::Cancellation());
        std::vector<GeometryPtr> parts;
        if (areas && areas->type() == GeometryType::Polygon) {
            parts.push_back(areas);
        } else if (areas) {
            parts = *geometry::partsOf(*areas);
        }
        if (parts.empty() || (type == GeometryType::Polygon && parts.size() > 1)) {
            return nullptr;
        }
        const auto dimensions = parts.front()->dimensions();
        return withCoordSystem(type == GeometryType::Polygon ? parts.front()
                                                             : std::make_shared<geometry::GeometryCollection>(
                                                                   type, dimensions, std::move(parts)),
                               lines->coordSystem());
    });
}

} // namespace

void geometryFromText(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("GeomFromText", 1, context, count, values, readText);
}

void geometryFromWkb(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("GeomFromWKB", 1, context, count, values, readWkb);
}

void pointFromText(sqlite3_context* context, int count, sqlite3_value** values) {
    readKind<readText, GeometryType::Point>("PointFromText", context, count, values);
}

void pointFromWkb(sqlite3_context* context, int count, sqlite3_value** values) {
    readKind<readWkb, GeometryType::Point>("PointFromWKB", context, count, values);
}

void lineFromText(sqlite3_context* context, int count, sqlite3_value** values) {
    readKind<readText, GeometryType::LineString>("LineFromText", context, count, values);
}

void lineFromWkb(sqlite3_context* context, int count, sqlite3_value** values) {
    readKind<readWkb, GeometryType::LineString>("LineFromWKB", context, count, values);
}

void polygonFromText(sqlite3_context* context, int count, sqlite3_value** values) {
    readKind<readText, GeometryType::Polygon>("PolyFromText", context, count, values);
}

void polygonFromWkb(sqlite3_context* context, int count, sqlite3_value** values) {
    readKind<readWkb, GeometryType::Polygon>("PolyFromWKB", context, count, values);
}

void multiPointFromText(sqlite3_context* context, int count, sqlite3_value** values) {
    readKind<readText, GeometryType::MultiPoint>("MPointFromText", context, count, values);
}

void multiPointFromWkb(sqlite3_context* context, int count, sqlite3_value** values) {
    readKind<readWkb, GeometryType::MultiPoint>("MPointFromWKB", context, count, values);
}

void multiLineFromText(sqlite3_context* context, int count, sqlite3_value** values) {
    readKind<readText, GeometryType::MultiLineString>("MLineFromText", context, count, values);
}

void multiLineFromWkb(sqlite3_context* context, int count, sqlite3_value** values) {
    readKind<readWkb, GeometryType::MultiLineString>("MLineFromWKB", context, count, values);
}

void multiPolygonFromText(sqlite3_context* context, int count, sqlite3_value** values) {
    readKind<readText, GeometryType::MultiPolygon>("MPolyFromText", context, count, values);
}

void multiPolygonFromWkb(sqlite3_context* context, int count, sqlite3_value** values) {
    readKind<readWkb, GeometryType::MultiPolygon>("MPolyFromWKB", context, count, values);
}

void collectionFromText(sqlite3_context* context, int count, sqlite3_value** values) {
    readKind<readText, GeometryType::GeometryCollection>("GeomCollFromText", context, count, values);
}

void collectionFromWkb(sqlite3_context* context, int count, sqlite3_value** values) {
    readKind<readWkb, GeometryType::GeometryCollection>("GeomCollFromWKB", context, count, values);
}

void polygonOfText(sqlite3_context* context, int count, sqlite3_value** values) {
    enclose<readText, GeometryType::Polygon>("BdPolyFromText", context, count, values);
}

void polygonOfWkb(sqlite3_context* context, int count, sqlite3_value** values) {
    enclose<readWkb, GeometryType::Polygon>("BdPolyFromWKB", context, count, values);
}

void polygonsOfText(sqlite3_context* context, int count, sqlite3_value** values) {
    enclose<readText, GeometryType::MultiPolygon>("BdMPolyFromText", context, count, values);
}

void polygonsOfWkb(sqlite3_context* context, int count, sqlite3_value** values) {
    enclose<readWkb, GeometryType::MultiPolygon>("BdMPolyFromWKB", context, count, values);
}

void geometryFromEwkt(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("GeomFromEWKT", 1, context, count, values,
             [](const GeometryCall& call) -> GeometryPtr { return geometry::fromWkt(call.utf8(0)); });
}

void geometryFromEwkb(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("GeomFromEWKB", 1, context, count, values, [](const GeometryCall& call) -> GeometryPtr {
        if (sqlite3_value_type(call.value(0)) == SQLITE_BLOB) {
            return geometry::GeometryFactory::fromWkb(call.blob(0), nullptr);
        }
        return geometry::GeometryFactory::fromWkb(QByteArray::fromHex(call.text(0).toLatin1()), nullptr);
    });
}

void geometryFromGeoJson(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("GeomFromGeoJSON", 1, context, count, values,
             [](const GeometryCall& call) -> GeometryPtr { return geometry::fromGeoJson(call.utf8(0)); });
}

void geometryFromGml(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("GeomFromGml", 1, context, count, values,
             [](const GeometryCall& call) -> GeometryPtr { return geometry::fromGml(call.utf8(0)); });
}

void geometryFromKml(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("GeomFromKml", 1, context, count, values,
             [](const GeometryCall& call) -> GeometryPtr { return geometry::fromKml(call.utf8(0)); });
}

void geometryFromFgf(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("GeomFromFGF", 1, context, count, values, [](const GeometryCall& call) {
        return placed(call, geometry::GeometryFactory::fromFgf(call.blob(0)));
    });
}

void geometryFromTwkb(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("GeomFromTWKB", 1, context, count, values,
             [](const GeometryCall& call) { return placed(call, geometry::fromTwkb(call.blob(0))); });
}

void lineFromEncodedPolyline(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ST_LineFromEncodedPolyline", 1, context, count, values, [](const GeometryCall& call) {
        constexpr std::int64_t usualDigits = 5, mostDigits = 15;
        const std::int64_t digits = std::clamp<std::int64_t>(call.integer(1, usualDigits), 0, mostDigits);
        return withCoordSystem(std::make_shared<geometry::LineString>(
                                   geometry::fromEncodedPolyline(call.utf8(0), static_cast<int>(digits))),
                               call.cache().get(wgs84));
    });
}

void areaFromGars(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("GARSMbr", 1, context, count, values, [](const GeometryCall& call) {
        const auto cell = geometry::garsEnvelope(call.utf8(0));
        if (!cell) {
            call.reject(0, QT_TRANSLATE_NOOP("orvane::geometry", "нужно обозначение ячейки GARS"));
        }
        const double corners[] = {cell->minX, cell->minY, cell->maxX, cell->minY, cell->maxX,
                                  cell->maxY, cell->minX, cell->maxY, cell->minX, cell->minY};
        constexpr auto plain = geometry::Dimensions::XY;
        std::vector<geometry::CoordinateSequence> rings{{plain, corners}};
        return withCoordSystem(std::make_shared<geometry::Polygon>(plain, std::move(rings)),
                               call.cache().get(wgs84));
    });
}

} // namespace orvane::engine
