#include "platform/geometry/shapes/GeoSqlType.h"

#include "platform/geometry/shapes/Geometry.h"

namespace orvane::sql {

QString geoSqlType(const geometry::Geometry& geometry) {
    using geometry::GeometryType;
    switch (geometry.type()) {
    case GeometryType::Point: return QStringLiteral("Point");
    case GeometryType::LineString: return QStringLiteral("LineString");
    case GeometryType::Polygon: return QStringLiteral("Polygon");
    case GeometryType::MultiPoint: return QStringLiteral("MultiPoint");
    case GeometryType::MultiLineString: return QStringLiteral("MultiLineString");
    case GeometryType::MultiPolygon: return QStringLiteral("MultiPolygon");
    case GeometryType::GeometryCollection: return QStringLiteral("GeometryCollection");
    case GeometryType::CircularString: return QStringLiteral("CircularString");
    case GeometryType::CompoundCurve: return QStringLiteral("CompoundCurve");
    case GeometryType::CurvePolygon: return QStringLiteral("CurvePolygon");
    case GeometryType::MultiCurve: return QStringLiteral("MultiCurve");
    case GeometryType::MultiSurface: return QStringLiteral("MultiSurface");
    case GeometryType::Ellipse: return QStringLiteral("Ellipse");
    case GeometryType::RoundedRectangle: return QStringLiteral("RoundedRectangle");
    }
    return QString();
}

} // namespace orvane::sql
