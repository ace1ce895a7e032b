#include <orvane/engine/functions/GeometryForms.h>

#include "GeometryCall.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/editing/Access.h"
#include "platform/geometry/editing/Editing.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/forms/TextFormats.h"
#include "platform/geometry/forms/TinyForms.h"
#include "platform/geometry/forms/XmlFormats.h"
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/GeometryConversions.h>
#include <orvane/engine/functions/Converters.h>

#include "engine/geometry/GaiaPtr.h"

#include <algorithm>

namespace orvane::engine {

namespace {

constexpr int mostDigits = 20;
constexpr int polylineDigits = 5;
constexpr int wgs84 = 4326;
constexpr const char* beyondGlobe = QT_TRANSLATE_NOOP("orvane::geometry", "место вне земного шара");

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

GaiaPtr toGaiaGeometry(const geometry::GeometryPtr& geometry) {
    const QByteArray blob = toGaia(geometry, nullptr);
    return GaiaPtr(toGaia(reinterpret_cast<const unsigned char*>(blob.constData()), blob.size()));
}

struct GaiaText {
    GaiaText() { gaiaOutBufferInitialize(&buffer); }
    ~GaiaText() { gaiaOutBufferReset(&buffer); }
    GaiaText(const GaiaText&) = delete;
    GaiaText& operator=(const GaiaText&) = delete;
    std::string text() const { return {buffer.Buffer, static_cast<std::size_t>(buffer.WriteOffset)}; }

    gaiaOutBuffer buffer{};
};

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

void asGml(sqlite3_context* context, int count, sqlite3_value** values) {
    const int first = sqlite3_value_type(values[0]) == SQLITE_BLOB || count == 1 ? 0 : 1;
    evaluate("AsGml", first + 1, context, count, values, [first](const GeometryCall& call) {
        const std::int64_t version = first == 1 ? call.integer(0) : 2;
        std::string text;
        geometry::appendGml(*call.geometry(first), static_cast<int>(std::clamp<std::int64_t>(version, 2, 3)),
                            digitsOf(call, first + 1, -1), text);
        return text;
    });
}

void asKml(sqlite3_context* context, int count, sqlite3_value** values) {
    const int first = count > 2 ? 2 : 0; // behind a name and a description
    evaluate(
        "AsKml", 0, context, count, values, [first](const GeometryCall& call) -> std::optional<std::string> {
            if (!call.isGiven(first)) {
                return std::nullopt;
            }
            std::string text;
            const auto named = [&](const char* element, int position) {
                text += '<' + std::string(element) + '>' +
                        toQString(call.value(position)).toHtmlEscaped().toStdString() + "</" + element + '>';
            };
            if (first > 0) {
                text += "<Placemark>";
                named("name", 0);
                named("description", 1);
            }
            geometry::appendKml(*inWgs84(call, call.geometry(first)), digitsOf(call, first + 1, -1), text);
            return first > 0 ? text + "</Placemark>" : text;
        });
}

void asSvg(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("AsSvg", 1, context, count, values, [](const GeometryCall& call) {
        constexpr int usualDigits = 6, mostSvgDigits = 15;
        const int digits = digitsOf(call, 2, usualDigits);
        const GaiaPtr geometry = toGaiaGeometry(call.geometry(0));
        GaiaText svg;
        if (geometry) {
            gaiaOutSvg(&svg.buffer, geometry.get(), call.integer(1, 0) != 0 ? 1 : 0,
                       digits < 0 ? mostSvgDigits : std::min(digits, mostSvgDigits));
        }
        return svg.text();
    });
}

void asFgf(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("AsFGF", 1, context, count, values, [](const GeometryCall& call) {
        const GeometryPtr geometry = call.geometry(0);
        const std::int64_t asked = call.integer(1, static_cast<int>(geometry->dimensions()));
        if (asked < 0 || asked > 3) {
            call.reject(1, QT_TRANSLATE_NOOP("orvane::geometry", "нужно число от 0 до 3"));
        }
        const GaiaPtr gaia =
            toGaiaGeometry(geometry::withDimensions(geometry, static_cast<geometry::Dimensions>(asked)));
        if (!gaia) {
            call.reject(0, QT_TRANSLATE_NOOP("orvane::geometry", "пустой геометрии в этой записи нет"));
        }
        const auto write = [asked](gaiaGeomCollPtr source, unsigned char** bytes, int* size) {
            gaiaToFgf(source, bytes, size, static_cast<int>(asked));
        };
        const GaiaBytes bytes(gaia, write);
        return QByteArray(bytes.view().data(), static_cast<int>(bytes.view().size()));
    });
}

void asTwkb(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("AsTWKB", 1, context, count, values, [](const GeometryCall& call) {
        const auto digits = [&call](int position, std::int64_t least) {
            return static_cast<int>(std::clamp<std::int64_t>(call.integer(position, 0), least, 7));
        };
        return geometry::toTwkb(*call.geometry(0), {digits(1, -8), digits(2, 0), digits(3, 0),
                                                    call.integer(4, 0) != 0, call.integer(5, 0) != 0});
    });
}

void asEncodedPolyline(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ST_AsEncodedPolyline", 1, context, count, values, [](const GeometryCall& call) {
        const GeometryPtr line = inWgs84(call, call.geometry(0));
        const auto positions = geometry::positionsOf(geometry::onlyPart(*geometry::linearized(line)));
        if (!positions) {
            call.reject(0, QT_TRANSLATE_NOOP("orvane::geometry", "нужна линия"));
        }
        return geometry::encodedPolyline(*positions, std::max(digitsOf(call, 1, polylineDigits), 0));
    });
}

void geoHash(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("GeoHash", 1, context, count, values,
             [](const GeometryCall& call) -> std::optional<std::string> {
                 const geometry::Envelope place = inWgs84(call, call.geometry(0))->envelope();
                 if (place.isEmpty()) {
                     return std::nullopt;
                 }
                 if (!geometry::Envelope{-180.0, -90.0, 180.0, 90.0}.contains(place)) {
                     call.reject(0, beyondGlobe);
                 }
                 const std::int64_t length = call.integer(1, 0);
                 return length <= 0
                            ? geometry::commonGeoHash(place)
                            : geometry::geoHash(
                                  (place.minX + place.maxX) / 2.0, (place.minY + place.maxY) / 2.0,
                                  static_cast<int>(std::min<std::int64_t>(length, geometry::longestGeoHash)));
             });
}

void asGars(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ToGARS", 1, context, count, values, [](const GeometryCall& call) {
        const GeometryPtr geometry = inWgs84(call, call.geometry(0));
        const geometry::Geometry& only = geometry::onlyPart(*geometry);
        if (only.type() != geometry::GeometryType::Point || only.isEmpty()) {
            call.reject(0, QT_TRANSLATE_NOOP("orvane::geometry", "нужна точка"));
        }
        const auto& point = static_cast<const geometry::Point&>(only);
        const std::string cell = geometry::garsCell(point.x(), point.y());
        if (cell.empty()) {
            call.reject(0, beyondGlobe);
        }
        return cell;
    });
}

} // namespace orvane::engine
