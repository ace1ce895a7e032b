#include <orvane/engine/functions/GeometryAccess.h>

#include "GeometryCall.h"
#include "engine/geometry/SpatialiteLayout.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/editing/Access.h"
#include "platform/geometry/forms/TextFormats.h"
#include "platform/geometry/relations/Validity.h"
#include <orvane/engine/GeometryConversions.h>
#include <orvane/engine/SpatialiteBlob.h>

#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvane::engine {

namespace {

using geometry::Dimensions;
using geometry::GeometryType;

enum class Ordinate { X, Y, Z, M };

/// Where the ordinate stands in a position.
std::optional<std::size_t> indexIn(Dimensions dimensions, Ordinate ordinate) {
    switch (ordinate) {
    case Ordinate::X: return 0;
    case Ordinate::Y: return 1;
    case Ordinate::Z: return geometry::hasZ(dimensions) ? std::optional<std::size_t>(2) : std::nullopt;
    case Ordinate::M:
        return geometry::hasM(dimensions) ? std::optional(strideOf(dimensions) - 1) : std::nullopt;
    }
    return std::nullopt;
}

/// What can be told from a SpatiaLite blob as it stands: a sound one that is not compressed.
std::optional<SpatialiteHeader> blobOf(const GeometryCall& call) {
    if (sqlite3_value_type(call.value(0)) != SQLITE_BLOB) {
        return std::nullopt;
    }
    auto header = readSpatialiteHeader(call.blob(0));
    return header && header->kind < 4000 && isSoundSpatialiteBlob(*header) ? header : std::nullopt;
}

GeometryType typeOf(const SpatialiteHeader& blob) {
    return static_cast<GeometryType>(blob.kind % 1000);
}

Dimensions dimensionsOf(const SpatialiteHeader& blob) {
    return static_cast<Dimensions>(blob.kind / 1000);
}

GeometryPtr geometryOf(const GeometryCall& call) {
    return geometry::inStandardKinds(call.geometry(0));
}

GeometryPtr inSystemOf(const GeometryPtr& whole, const GeometryPtr& part) {
    return part ? withCoordSystem(part, whole->coordSystem()) : nullptr;
}

/// The place of a number in a list; none where it is beyond.
std::optional<std::size_t> placeIn(std::size_t size, std::int64_t number) {
    const auto count = static_cast<std::int64_t>(size);
    if (number > 0 && number <= count) {
        return static_cast<std::size_t>(number - 1);
    }
    return number < 0 && number >= -count ? std::optional(static_cast<std::size_t>(count + number))
                                          : std::nullopt;
}

template<typename Value>
std::optional<double> finite(const std::optional<Value>& value) {
    return value && std::isfinite(*value) ? std::optional<double>(*value) : std::nullopt;
}

std::optional<double> ordinateOf(const GeometryCall& call, Ordinate ordinate) {
    if (const auto blob = blobOf(call); blob && typeOf(*blob) == GeometryType::Point) {
        const auto index = indexIn(dimensionsOf(*blob), ordinate);
        const char* at = blob->content.data() + index.value_or(0) * sizeof(double);
        return finite(index ? std::optional(blob->littleEndian ? qFromLittleEndian<double>(at)
                                                               : qFromBigEndian<double>(at))
                            : std::nullopt);
    }
    const GeometryPtr geometry = geometryOf(call);
    const geometry::Geometry& only = geometry::onlyPart(*geometry);
    const auto index = indexIn(only.dimensions(), ordinate);
    return finite(only.type() == GeometryType::Point && index
                      ? std::optional(static_cast<const geometry::Point&>(only).ordinates()[*index])
                      : std::nullopt);
}

/// A short way for the usual rows: gives x, the first, or y, the second, of the usual blob of a point.
bool givePosition(sqlite3_context* context, sqlite3_value* value, std::size_t index) {
    if (sqlite3_value_type(value) != SQLITE_BLOB) {
        return false;
    }
    const auto* const bytes = static_cast<const char*>(sqlite3_value_blob(value));
    const char* const position =
        spatialite::usualPoint({bytes, static_cast<std::size_t>(sqlite3_value_bytes(value))});
    if (!position) {
        return false;
    }
    if (const auto ordinate = qFromLittleEndian<double>(position + index * sizeof(double));
        std::isfinite(ordinate)) {
        sqlite3_result_double(context, ordinate);
    }
    return true;
}

std::optional<double> side(const GeometryCall& call, double geometry::Envelope::*which) {
    const auto blob = blobOf(call);
    const geometry::Envelope envelope = blob ? blob->envelope : call.geometry(0)->envelope();
    return envelope.isEmpty() ? std::nullopt : std::optional(envelope.*which);
}

/// The least or the greatest of an ordinate.
std::optional<double> extreme(const GeometryCall& call, Ordinate ordinate, bool greatest) {
    const std::optional<double> leftOut = call.isGiven(1) ? std::optional(call.number(1)) : std::nullopt;
    std::optional<double> found;
    geometry::visitPositions(*geometryOf(call),
                             [&](const double* positions, std::size_t count, Dimensions dimensions) {
                                 const auto index = indexIn(dimensions, ordinate);
                                 const std::size_t stride = strideOf(dimensions);
                                 for (std::size_t i = 0; index && i < count; ++i) {
                                     const double value = positions[i * stride + *index];
                                     if (!std::isnan(value) && value != leftOut &&
                                         (!found || (greatest ? value > *found : value < *found))) {
                                         found = value;
                                     }
                                 }
                             });
    return found;
}

std::optional<std::int64_t> sizeOfLine(const GeometryCall& call) {
    if (const auto blob = blobOf(call); blob && typeOf(*blob) == GeometryType::LineString) {
        const char* at = blob->content.data();
        return blob->littleEndian ? qFromLittleEndian<quint32>(at) : qFromBigEndian<quint32>(at);
    }
    const auto positions = geometry::positionsOf(geometry::onlyPart(*geometryOf(call)));
    return positions ? std::optional(static_cast<std::int64_t>(positions->size())) : std::nullopt;
}

/// A position of a line, counted from 1.
GeometryPtr pointOfLine(const GeometryCall& call, std::int64_t number) {
    const GeometryPtr geometry = geometryOf(call);
    const auto positions = geometry::positionsOf(geometry::onlyPart(*geometry));
    const auto place = placeIn(positions ? positions->size() : 0, number);
    return place ? inSystemOf(geometry, std::make_shared<geometry::Point>(positions->dimensions(),
                                                                          positions->position(*place)))
                 : nullptr;
}

/// A ring of a polygon, counted from its shell at 0.
GeometryPtr ringOfPolygon(const GeometryCall& call,
                          const std::function<std::optional<std::size_t>(std::size_t)>& place) {
    const GeometryPtr geometry = geometryOf(call);
    const geometry::Geometry& only = geometry::onlyPart(*geometry);
    const std::size_t count = geometry::ringCount(only).value_or(0);
    const auto found = count > 0 ? place(count) : std::nullopt;
    return found ? inSystemOf(geometry, geometry::ring(only, *found)) : nullptr;
}

/// None of what is no line and no collection of lines.
std::optional<bool> isClosedCurve(const geometry::Geometry& geometry) {
    if (geometry::isCurveKind(geometry.type())) {
        return geometry::positionsOf(geometry)->isClosed();
    }
    const auto* parts = geometry::partsOf(geometry);
    if (!parts || parts->empty()) {
        return geometry.type() == GeometryType::MultiLineString || geometry.type() == GeometryType::MultiCurve
                   ? std::optional(false)
                   : std::nullopt;
    }
    bool closed = true;
    for (const GeometryPtr& part : *parts) {
        const std::optional<bool> ofPart = isClosedCurve(*part);
        if (!ofPart) {
            return std::nullopt;
        }
        closed = closed && *ofPart;
    }
    return closed;
}

std::int64_t countRings(const geometry::Geometry& geometry) {
    if (const auto rings = geometry::ringCount(geometry)) {
        return static_cast<std::int64_t>(*rings);
    }
    std::int64_t count = 0;
    if (const auto* parts = geometry::partsOf(geometry)) {
        for (const GeometryPtr& part : *parts) {
            count += countRings(*part);
        }
    }
    return count;
}

Dimensions dimensionsOf(const GeometryCall& call) {
    const auto blob = blobOf(call);
    return blob ? dimensionsOf(*blob) : call.geometry(0)->dimensions();
}

std::string kindOf(const GeometryCall& call, bool withOrdinates) {
    const auto blob = blobOf(call);
    const GeometryPtr geometry = blob ? nullptr : geometryOf(call);
    const Dimensions dimensions = blob ? dimensionsOf(*blob) : geometry->dimensions();
    return geometry::wktKind(blob ? typeOf(*blob) : geometry->type(),
                             withOrdinates ? dimensions : Dimensions::XY);
}

std::optional<geometry::Defect> defectOf(const GeometryCall& call) {
    return geometry::defectOf(*call.geometry(0), call.integer(1, 0) != 0);
}

/// Of values that need not be geometries.
template<typename Holds>
void test(const char* name, sqlite3_context* context, int count, sqlite3_value** values, Holds holds) {
    evaluate(name, 1, context, count, values, [&](const GeometryCall& call) {
        return sqlite3_value_type(call.value(0)) == SQLITE_BLOB && holds(call);
    });
}

} // namespace

void pointX(sqlite3_context* context, int count, sqlite3_value** values) {
    if (!givePosition(context, values[0], 0)) {
        evaluate("X", 1, context, count, values,
                 [](const GeometryCall& call) { return ordinateOf(call, Ordinate::X); });
    }
}

void pointY(sqlite3_context* context, int count, sqlite3_value** values) {
    if (!givePosition(context, values[0], 1)) {
        evaluate("Y", 1, context, count, values,
                 [](const GeometryCall& call) { return ordinateOf(call, Ordinate::Y); });
    }
}

void pointZ(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("Z", 1, context, count, values,
             [](const GeometryCall& call) { return ordinateOf(call, Ordinate::Z); });
}

void pointM(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("M", 1, context, count, values,
             [](const GeometryCall& call) { return ordinateOf(call, Ordinate::M); });
}

void minimumX(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("MbrMinX", 1, context, count, values,
             [](const GeometryCall& call) { return side(call, &geometry::Envelope::minX); });
}

void minimumY(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("MbrMinY", 1, context, count, values,
             [](const GeometryCall& call) { return side(call, &geometry::Envelope::minY); });
}

void maximumX(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("MbrMaxX", 1, context, count, values,
             [](const GeometryCall& call) { return side(call, &geometry::Envelope::maxX); });
}

void maximumY(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("MbrMaxY", 1, context, count, values,
             [](const GeometryCall& call) { return side(call, &geometry::Envelope::maxY); });
}

void minimumZ(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ST_MinZ", 1, context, count, values,
             [](const GeometryCall& call) { return extreme(call, Ordinate::Z, false); });
}

void minimumM(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ST_MinM", 1, context, count, values,
             [](const GeometryCall& call) { return extreme(call, Ordinate::M, false); });
}

void maximumZ(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ST_MaxZ", 1, context, count, values,
             [](const GeometryCall& call) { return extreme(call, Ordinate::Z, true); });
}

void maximumM(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ST_MaxM", 1, context, count, values,
             [](const GeometryCall& call) { return extreme(call, Ordinate::M, true); });
}

void lineSize(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("NumPoints", 1, context, count, values,
             [](const GeometryCall& call) { return sizeOfLine(call); });
}

void positionCount(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ST_NPoints", 1, context, count, values, [](const GeometryCall& call) {
        std::int64_t positions = 0;
        geometry::visitPositions(*geometryOf(call),
                                 [&positions](const double*, std::size_t size, Dimensions) {
                                     positions += static_cast<std::int64_t>(size);
                                 });
        return positions;
    });
}

void partCount(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("NumGeometries", 1, context, count, values, [](const GeometryCall& call) {
        const GeometryPtr geometry = geometryOf(call);
        const auto* parts = geometry::partsOf(*geometry);
        return static_cast<std::int64_t>(parts ? parts->size() : geometry->isEmpty() ? 0 : 1);
    });
}

void ringCount(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ST_NRings", 1, context, count, values,
             [](const GeometryCall& call) { return countRings(*geometryOf(call)); });
}

void interiorRingCount(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("NumInteriorRings", 1, context, count, values, [](const GeometryCall& call) {
        const auto rings = geometry::ringCount(geometry::onlyPart(*geometryOf(call)));
        return rings ? std::optional(static_cast<std::int64_t>(std::max<std::size_t>(*rings, 1) - 1))
                     : std::nullopt;
    });
}

void partAt(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("GeometryN", 2, context, count, values, [](const GeometryCall& call) {
        const GeometryPtr geometry = geometryOf(call);
        const auto* parts = geometry::partsOf(*geometry);
        const auto place = placeIn(parts ? parts->size() : geometry->isEmpty() ? 0 : 1, call.integer(1));
        return place ? inSystemOf(geometry, parts ? (*parts)[*place] : geometry) : nullptr;
    });
}

void positionAt(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("PointN", 2, context, count, values,
             [](const GeometryCall& call) { return pointOfLine(call, call.integer(1)); });
}

void interiorRingAt(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("InteriorRingN", 2, context, count, values, [](const GeometryCall& call) {
        return ringOfPolygon(call, [&call](std::size_t rings) {
            const auto place = placeIn(rings - 1, call.integer(1));
            return place ? std::optional(*place + 1) : std::nullopt;
        });
    });
}

void startPoint(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("StartPoint", 1, context, count, values,
             [](const GeometryCall& call) { return pointOfLine(call, 1); });
}

void endPoint(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("EndPoint", 1, context, count, values,
             [](const GeometryCall& call) { return pointOfLine(call, -1); });
}

void exteriorRing(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ExteriorRing", 1, context, count, values, [](const GeometryCall& call) {
        return ringOfPolygon(call, [](std::size_t) { return std::optional<std::size_t>(0); });
    });
}

void topologicalDimension(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("Dimension", 1, context, count, values,
             [](const GeometryCall& call) { return geometry::topologicalDimension(*geometryOf(call)); });
}

void coordinateDimension(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("CoordDimension", 1, context, count, values, [](const GeometryCall& call) {
        constexpr const char* names[] = {"XY", "XYZ", "XYM", "XYZM"};
        return std::string(names[static_cast<std::size_t>(dimensionsOf(call))]);
    });
}

void ordinateCount(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ST_NDims", 1, context, count, values,
             [](const GeometryCall& call) { return static_cast<int>(strideOf(dimensionsOf(call))); });
}

void hasZ(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ST_Is3D", 1, context, count, values,
             [](const GeometryCall& call) { return geometry::hasZ(dimensionsOf(call)); });
}

void hasM(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ST_IsMeasured", 1, context, count, values,
             [](const GeometryCall& call) { return geometry::hasM(dimensionsOf(call)); });
}

void geometryType(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("GeometryType", 1, context, count, values,
             [](const GeometryCall& call) { return kindOf(call, true); });
}

void geometryAliasType(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("GeometryAliasType", 1, context, count, values,
             [](const GeometryCall& call) { return kindOf(call, false); });
}

void srid(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("SRID", 1, context, count, values, [](const GeometryCall& call) {
        if (const auto blob = blobOf(call)) {
            return std::max(blob->srid, 0);
        }
        const auto coordSystem = call.geometry(0)->coordSystem();
        return coordSystem ? coordSystem->epsg() : 0;
    });
}

void isClosed(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("IsClosed", 1, context, count, values,
             [](const GeometryCall& call) { return isClosedCurve(*geometryOf(call)); });
}

void isRing(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("IsRing", 1, context, count, values, [](const GeometryCall& call) {
        const GeometryPtr geometry = geometryOf(call);
        const geometry::Geometry& only = geometry::onlyPart(*geometry);
        return geometry::isCurveKind(only.type())
                   ? std::optional(*isClosedCurve(only) && geometry::isSimple(only))
                   : std::nullopt;
    });
}

void isEmpty(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("IsEmpty", 1, context, count, values,
             [](const GeometryCall& call) { return call.geometry(0)->isEmpty(); });
}

void isSimple(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("IsSimple", 1, context, count, values,
             [](const GeometryCall& call) { return geometry::isSimple(*call.geometry(0)); });
}

void isValid(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("IsValid", 1, context, count, values, [](const GeometryCall& call) { return !defectOf(call); });
}

void isValidReason(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("IsValidReason", 1, context, count, values, [](const GeometryCall& call) {
        const auto defect = defectOf(call);
        return defect ? defect->reason : std::string("Valid Geometry");
    });
}

void isValidDetail(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("IsValidDetail", 1, context, count, values, [](const GeometryCall& call) {
        const auto defect = defectOf(call);
        return defect && defect->place ? withCoordSystem(defect->place, call.geometry(0)->coordSystem())
                                       : nullptr;
    });
}

void isGeometryBlob(sqlite3_context* context, int count, sqlite3_value** values) {
    test("IsGeometryBlob", context, count, values, [context](const GeometryCall& call) {
        return blobOf(call) || toGeometry(context, call.value(0), true) != nullptr;
    });
}

void isCompressedGeometryBlob(sqlite3_context* context, int count, sqlite3_value** values) {
    test("IsCompressedGeometryBlob", context, count, values, [](const GeometryCall& call) {
        const auto header = readSpatialiteHeader(call.blob(0));
        return header && header->kind >= 1000000 && isSoundSpatialiteBlob(*header);
    });
}

} // namespace orvane::engine
