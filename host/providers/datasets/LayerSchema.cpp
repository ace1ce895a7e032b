#include "host/providers/datasets/LayerSchema.h"

#include "host/providers/datasets/GdalHandles.h"
#include "platform/cs/CoordSystem.h"
#include "platform/dp/AttributeNames.h"
#include "platform/log/Logger.h"

#include <ogr_srs_api.h>

#include <QMetaType>

namespace orvane::files {

namespace {

struct FieldType {
    int metaType;
    LayerColumn::Reading reading;
    ColumnKind arrowKind;
    bool isArrowExact;
};

FieldType fieldType(OGRFieldDefnH field) {
    using Reading = LayerColumn::Reading;
    const OGRFieldSubType subType = OGR_Fld_GetSubType(field);
    switch (OGR_Fld_GetType(field)) {
    case OFTInteger:
        if (subType == OFSTBoolean) {
            return {QMetaType::Bool, Reading::Integer, ColumnKind::Int64, false};
        }
        return {QMetaType::Int, Reading::Integer,
                subType == OFSTInt16 ? ColumnKind::Int16 : ColumnKind::Int32, true};
    case OFTInteger64: return {QMetaType::LongLong, Reading::Integer, ColumnKind::Int64, true};
    case OFTReal:
        if (subType == OFSTFloat32) {
            return {QMetaType::Float, Reading::Real, ColumnKind::Double, false};
        }
        return {QMetaType::Double, Reading::Real, ColumnKind::Double, true};
    case OFTDate: return {QMetaType::QDate, Reading::Date, ColumnKind::Text, false};
    case OFTTime: return {QMetaType::QTime, Reading::Time, ColumnKind::Text, false};
    case OFTDateTime: return {QMetaType::QDateTime, Reading::DateTime, ColumnKind::Text, false};
    case OFTBinary: return {QMetaType::QByteArray, Reading::Bytes, ColumnKind::Bytes, true};
    case OFTIntegerList:
    case OFTInteger64List:
    case OFTRealList:
    case OFTStringList: return {QMetaType::QString, Reading::List, ColumnKind::Text, false};
    default: return {QMetaType::QString, Reading::Text, ColumnKind::Text, true};
    }
}

/// Whether the system has no place on the Earth: drivers make such ones up where the file names none.
bool saysNothing(OGRSpatialReferenceH reference) {
    const char* name = OSRGetName(reference);
    return OSRIsLocal(reference) != 0 || (name && EQUAL(name, "Undefined geographic SRS")); // of GeoPackage
}

} // namespace

std::shared_ptr<cs::CoordSystem> coordSystemOf(OGRSpatialReferenceH reference) {
    if (!reference || saysNothing(reference)) {
        return nullptr;
    }
    const auto* factory = cs::CoordSysFactory::defaultCoordSysFactory();
    const char* authority = OSRGetAuthorityName(reference, nullptr);
    const char* code = OSRGetAuthorityCode(reference, nullptr);
    if (authority && code && EQUAL(authority, "EPSG")) {
        try {
            return factory->createFromEpsg(QByteArray(code).toInt());
        } catch (const std::runtime_error&) {
            // A code of a newer database than the installed one: the definition may still be understood.
        }
    }
    char* text = nullptr;
    const char* const options[] = {"FORMAT=WKT2_2019", nullptr};
    const bool exported = OSRExportToWktEx(reference, &text, options) == OGRERR_NONE;
    const CplString wkt(text);
    return exported && wkt ? factory->createFromWkt(QString::fromUtf8(wkt.get())) : nullptr;
}

LayerSchema describeLayer(OGRLayerH layer) {
    const OGRFeatureDefnH definition = OGR_L_GetLayerDefn(layer);
    QStringList names;
    LayerSchema result;
    auto add = [&](LayerColumn column, const char* name) {
        column.name = name ? name : "";
        result.columns.push_back(std::move(column));
        names.append(QString::fromUtf8(name));
    };

    const char* fidName = OGR_L_GetFIDColumn(layer);
    if (fidName && *fidName) {
        add({LayerColumn::Source::FeatureId, LayerColumn::Reading::Integer, -1, ColumnKind::Int64, true, {}},
            fidName);
    }
    for (int i = 0; i < OGR_FD_GetFieldCount(definition); ++i) {
        const OGRFieldDefnH field = OGR_FD_GetFieldDefn(definition, i);
        const auto type = fieldType(field);
        add({LayerColumn::Source::Field, type.reading, i, type.arrowKind, type.isArrowExact, {}},
            OGR_Fld_GetNameRef(field));
    }
    const int geometryFields = OGR_FD_GetGeomFieldCount(definition);
    if (geometryFields > 0) {
        const char* name = OGR_GFld_GetNameRef(OGR_FD_GetGeomFieldDefn(definition, 0));
        add({LayerColumn::Source::Geometry, LayerColumn::Reading::Geometry, -1, ColumnKind::Wkb, true, {}},
            name);
        if (names.last().isEmpty()) {
            names.last() = QStringLiteral("geometry");
        }
    }
    if (geometryFields > 1) {
        loggerInstance()->write(LogLevel::Info, QStringLiteral("LayerSchema"), __LINE__,
                                QString::fromLatin1(__func__),
                                QStringLiteral("%1: only the first of %2 geometry columns is read")
                                    .arg(QString::fromUtf8(OGR_L_GetName(layer)))
                                    .arg(geometryFields));
    }

    const auto distinct = dp::distinctNames(names);
    const auto coordSystem = coordSystemOf(OGR_L_GetSpatialRef(layer));
    QVector<dp::AttributeDefinitionPointer> attributes;
    for (int i = 0; i < distinct.size(); ++i) {
        const auto& column = result.columns[static_cast<std::size_t>(i)];
        dp::AttributeDefinition* attribute = nullptr;
        switch (column.source) {
        case LayerColumn::Source::FeatureId:
            attribute = new dp::SimpleAttributeDefinition(distinct[i], QMetaType::LongLong,
                                                          {.unique = true, .notNull = true});
            break;
        case LayerColumn::Source::Geometry:
            attribute = new dp::GeometryAttributeDefinition(distinct[i], coordSystem);
            break;
        case LayerColumn::Source::Field: {
            const OGRFieldDefnH field = OGR_FD_GetFieldDefn(definition, column.field);
            attribute = new dp::SimpleAttributeDefinition(distinct[i], fieldType(field).metaType,
                                                          {.length = OGR_Fld_GetWidth(field),
                                                           .precision = OGR_Fld_GetPrecision(field),
                                                           .unique = OGR_Fld_IsUnique(field) != 0,
                                                           .notNull = OGR_Fld_IsNullable(field) == 0});
            break;
        }
        }
        attributes.append(dp::AttributeDefinitionPointer(attribute));
    }
    result.schema = std::make_shared<const dp::TableSchema>(std::move(attributes));
    return result;
}

} // namespace orvane::files
