#include "host/shell/session/TableInfo.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/shapes/GeoSqlType.h"
#include "platform/geometry/shapes/Geometry.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <utility>

namespace orvane::shell {

namespace {

/// Null for what is none.
geometry::GeometryPtr geometryOf(const dp::Cell& cell) try {
    return cell.type() == dp::CellType::Wkb ? geometry::GeometryFactory::fromWkb(cell.view(), nullptr)
                                            : nullptr;
} catch (const std::runtime_error&) {
    return nullptr;
}

} // namespace

QString typeName(const dp::AttributeDefinition& attribute) {
    if (const auto* geometry = dynamic_cast<const dp::GeometryAttributeDefinition*>(&attribute)) {
        const auto system = geometry->coordSystem();
        return system ? QStringLiteral("Geometry, ") + system->taggedString() : QStringLiteral("Geometry");
    }
    switch (attribute.type()) {
    case QMetaType::Bool: return QStringLiteral("Boolean");
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::LongLong:
    case QMetaType::ULongLong: return QStringLiteral("Integer");
    case QMetaType::Float:
    case QMetaType::Double: return QStringLiteral("Real");
    case QMetaType::QDate: return QStringLiteral("Date");
    case QMetaType::QTime: return QStringLiteral("Time");
    case QMetaType::QDateTime: return QStringLiteral("Timestamp");
    case QMetaType::QByteArray: return QStringLiteral("Blob");
    default: return QStringLiteral("Text");
    }
}

QStringList firstGeometryKinds(dp::Table& table) {
    const int attribute = table.schema()->geometryIndex();
    if (attribute < 0) {
        return {};
    }
    constexpr int most = 100;
    QStringList kinds;
    dp::ScanRequest request;
    request.attributes = {attribute};
    request.limit = most;
    try {
        const auto rows = table.openCursor(request);
        for (int row = 0; row < most && rows->next(); ++row) {
            const auto geometry = geometryOf(rows->cell(attribute));
            if (const QString kind = geometry ? sql::geoSqlType(*geometry) : QString();
                geometry && !kinds.contains(kind)) {
                kinds += kind;
            }
        }
    } catch (const std::runtime_error&) {
        kinds.clear(); // what is wrong, a query tells
    }
    return kinds.isEmpty() ? QStringList(QStringLiteral("Geometry")) : kinds;
}

TableInfo TableInfo::of(dp::Table& table, QString source, const work::Cancellation& cancellation) {
    TableInfo info;
    info.name = table.name();
    info.source = std::move(source);
    const auto schema = table.schema();
    const int geometryAttribute = schema->geometryIndex();
    dp::ScanRequest request;
    for (int i = 0; i < schema->numAttributes(); ++i) {
        const auto& attribute = schema->at(i);
        info.columns.push_back(
            {i == geometryAttribute ? QStringLiteral("obj") : attribute->name(), typeName(*attribute)});
        request.attributes.push_back(i);
    }
    if (const auto system = table.coordSystem()) {
        info.system = system->taggedString();
    }
    const auto rows = table.openCursor(request);
    constexpr std::int64_t rowsBetweenChecks = 1024;
    for (; rows->next(); ++info.rows) {
        if (info.rows % rowsBetweenChecks == 0) {
            cancellation.check();
        }
        for (int i = 0; i < schema->numAttributes(); ++i) {
            info.columns[static_cast<std::size_t>(i)].values += !rows->cell(i).isNull();
        }
        if (const auto geometry =
                geometryAttribute < 0 ? nullptr : geometryOf(rows->cell(geometryAttribute))) {
            ++info.kinds[sql::geoSqlType(*geometry)];
            if (!geometry->isEmpty()) {
                info.extent.add(geometry->envelope());
            }
        }
    }
    return info;
}

std::string TableInfo::toJson() const {
    QJsonObject object{{QStringLiteral("name"), name}, {QStringLiteral("rows"), static_cast<double>(rows)}};
    if (!source.isEmpty()) {
        object[QStringLiteral("file")] = source;
    }
    if (!system.isEmpty()) {
        object[QStringLiteral("system")] = system;
    }
    if (!extent.isEmpty()) {
        object[QStringLiteral("extent")] = QJsonArray{extent.minX, extent.minY, extent.maxX, extent.maxY};
    }
    QJsonObject numbers;
    for (const auto& [kind, number] : kinds) {
        numbers[kind] = static_cast<double>(number);
    }
    if (!kinds.empty()) {
        object[QStringLiteral("geometries")] = numbers;
    }
    QJsonArray all;
    for (const Column& column : columns) {
        all += QJsonObject{{QStringLiteral("name"), column.name},
                           {QStringLiteral("type"), column.type},
                           {QStringLiteral("values"), static_cast<double>(column.values)}};
    }
    object[QStringLiteral("columns")] = all;
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

} // namespace orvane::shell
