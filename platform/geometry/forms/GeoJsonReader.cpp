#include "platform/geometry/forms/TextReader.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/shapes/Failure.h"
#include "platform/geometry/shapes/Shapes.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

namespace orvane::geometry {

namespace {

constexpr int deepest = 32;

[[noreturn]] void refuse(const char* what) {
    throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "это не GeoJSON: %0."),
                  QCoreApplication::translate("orvane::geometry", what));
}

const QJsonArray arrayOf(const QJsonValue& value) {
    if (!value.isArray()) {
        refuse(QT_TRANSLATE_NOOP("orvane::geometry", "нужен список координат"));
    }
    return value.toArray();
}

void appendPosition(const QJsonValue& value, Dimensions dimensions, std::vector<double>& out) {
    const QJsonArray ordinates = arrayOf(value);
    if (ordinates.size() < 2) {
        refuse(QT_TRANSLATE_NOOP("orvane::geometry", "у положения не меньше двух чисел"));
    }
    for (int i = 0; i < static_cast<int>(strideOf(dimensions)); ++i) {
        const QJsonValue ordinate = i < ordinates.size() ? ordinates.at(i) : QJsonValue(0.0);
        if (!ordinate.isDouble()) {
            refuse(QT_TRANSLATE_NOOP("orvane::geometry", "координата не число"));
        }
        out.push_back(ordinate.toDouble());
    }
}

CoordinateSequence sequenceOf(const QJsonValue& value, Dimensions dimensions) {
    std::vector<double> values;
    for (const QJsonValue& position : arrayOf(value)) {
        appendPosition(position, dimensions, values);
    }
    return {dimensions, values};
}

std::shared_ptr<Geometry> pointOf(const QJsonValue& value, Dimensions dimensions) {
    std::vector<double> ordinates;
    if (arrayOf(value).isEmpty()) {
        return std::make_shared<Point>(dimensions);
    }
    appendPosition(value, dimensions, ordinates);
    return std::make_shared<Point>(dimensions, ordinates.data());
}

std::shared_ptr<Geometry> lineOf(const QJsonValue& value, Dimensions dimensions) {
    return std::make_shared<LineString>(sequenceOf(value, dimensions));
}

std::shared_ptr<Geometry> polygonOf(const QJsonValue& value, Dimensions dimensions) {
    std::vector<CoordinateSequence> rings;
    for (const QJsonValue& ring : arrayOf(value)) {
        rings.push_back(sequenceOf(ring, dimensions));
        if (!rings.back().isEmpty() && !rings.back().isClosed()) {
            refuse(QT_TRANSLATE_NOOP("orvane::geometry", "кольцо не замкнуто"));
        }
    }
    return std::make_shared<Polygon>(dimensions, std::move(rings));
}

using Maker = std::shared_ptr<Geometry> (*)(const QJsonValue& coordinates, Dimensions dimensions);
struct Kind {
    const char* name;
    GeometryType type;
    Maker make; ///< of the geometry, or of its parts
};
constexpr Kind kinds[] = {
    {"Point", GeometryType::Point, pointOf},
    {"LineString", GeometryType::LineString, lineOf},
    {"Polygon", GeometryType::Polygon, polygonOf},
    {"MultiPoint", GeometryType::MultiPoint, pointOf},
    {"MultiLineString", GeometryType::MultiLineString, lineOf},
    {"MultiPolygon", GeometryType::MultiPolygon, polygonOf},
    {"GeometryCollection", GeometryType::GeometryCollection, nullptr},
};

/// Whether a position somewhere in the coordinates has a z.
bool hasHeights(const QJsonValue& value, int depth) {
    const QJsonArray list = value.toArray();
    if (list.isEmpty() || depth > deepest) {
        return false;
    }
    if (list.at(0).isDouble()) {
        return list.size() > 2;
    }
    return std::any_of(list.begin(), list.end(),
                       [depth](const QJsonValue& part) { return hasHeights(part, depth + 1); });
}

bool hasHeights(const QJsonObject& object, int depth) {
    if (depth > deepest) {
        refuse(QT_TRANSLATE_NOOP("orvane::geometry", "геометрии вложены слишком глубоко"));
    }
    const QJsonArray parts = object.value(QLatin1String("geometries")).toArray();
    return hasHeights(object.value(QLatin1String("coordinates")), 0) ||
           std::any_of(parts.begin(), parts.end(),
                       [depth](const QJsonValue& part) { return hasHeights(part.toObject(), depth + 1); });
}

std::shared_ptr<Geometry> geometryOf(const QJsonObject& object, Dimensions dimensions) {
    const QString type = object.value(QLatin1String("type")).toString();
    const auto kind = std::find_if(std::begin(kinds), std::end(kinds),
                                   [&type](const Kind& each) { return type == QLatin1String(each.name); });
    if (kind == std::end(kinds)) {
        refuse(QT_TRANSLATE_NOOP("orvane::geometry", "нужен вид геометрии"));
    }
    const QJsonValue coordinates = object.value(QLatin1String("coordinates"));
    if (kind->type < GeometryType::MultiPoint) {
        return kind->make(coordinates, dimensions);
    }
    std::vector<GeometryPtr> parts;
    for (const QJsonValue& part :
         arrayOf(kind->make ? coordinates : object.value(QLatin1String("geometries")))) {
        parts.push_back(kind->make ? kind->make(part, dimensions) : geometryOf(part.toObject(), dimensions));
    }
    return std::make_shared<GeometryCollection>(kind->type, dimensions, std::move(parts));
}

/// "EPSG:3857", "urn:ogc:def:crs:EPSG::3857", "urn:ogc:def:crs:OGC:1.3:CRS84".
std::shared_ptr<cs::CoordSystem> systemOf(const QJsonObject& object) {
    constexpr int wgs84 = 4326;
    const QString name = object.value(QLatin1String("crs"))
                             .toObject()
                             .value(QLatin1String("properties"))
                             .toObject()
                             .value(QLatin1String("name"))
                             .toString();
    const bool hasCode = name.contains(QLatin1String("EPSG:"), Qt::CaseInsensitive);
    const int code = hasCode ? name.section(QLatin1Char(':'), -1).toInt() : wgs84;
    try {
        return cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(code);
    } catch (const std::runtime_error&) {
        refuse(QT_TRANSLATE_NOOP("orvane::geometry", "неизвестная координатная система"));
    }
}

} // namespace

std::shared_ptr<Geometry> fromGeoJson(std::string_view text) {
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        refuse(QT_TRANSLATE_NOOP("orvane::geometry", "слишком длинный текст"));
    }
    QJsonParseError error;
    const QJsonDocument document =
        QJsonDocument::fromJson(QByteArray::fromRawData(text.data(), static_cast<int>(text.size())), &error);
    if (error.error != QJsonParseError::NoError) {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "знак %0: %1."),
                      QString::number(error.offset + 1), error.errorString());
    }
    QJsonObject object = document.object();
    const std::shared_ptr<cs::CoordSystem> system = systemOf(object);
    if (object.value(QLatin1String("type")).toString() == QLatin1String("Feature")) {
        object = object.value(QLatin1String("geometry")).toObject();
    }
    std::shared_ptr<Geometry> geometry =
        geometryOf(object, hasHeights(object, 0) ? Dimensions::XYZ : Dimensions::XY);
    geometry->setCoordSystem(system);
    return geometry;
}

} // namespace orvane::geometry
