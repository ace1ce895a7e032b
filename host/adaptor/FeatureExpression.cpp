#include "host/adaptor/FeatureExpression.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/sql/lexing/SqlError.h"
#include "platform/sql/lexing/SqlStrings.h"
#include <orvane/engine/ColumnNames.h>
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/GeometryConversions.h>
#include <orvane/engine/SpatialiteBlob.h>
#include <orvane/engine/SqliteStringBuilder.h>

#include <QCoreApplication>

namespace orvane::adaptor {

namespace {

using geometry::GeometryPtr;

/// The schema with texts for dates and times, as which the virtual tables declare them: under the affinity of
/// a date SQLite would compare '2024' as a number.
dp::TableSchema withMomentsAsTexts(const dp::TableSchema& schema) {
    QVector<dp::AttributeDefinitionPointer> attributes = schema.attributes();
    for (dp::AttributeDefinitionPointer& attribute : attributes) {
        switch (attribute.constData()->type()) {
        case QMetaType::QDate:
        case QMetaType::QTime:
        case QMetaType::QDateTime:
            attribute = new dp::SimpleAttributeDefinition(attribute.constData()->name(), QMetaType::QString);
            break;
        default: break;
        }
    }
    return dp::TableSchema(std::move(attributes));
}

/// SpatiaLite's blob where that loses nothing, else the engine's own: as GeometryResult chooses for tables.
QByteArray blobOf(const GeometryPtr& geometry, engine::EngineCache& cache) {
    const std::shared_ptr<cs::CoordSystem> coordSystem = geometry->coordSystem();
    const int srid = coordSystem ? coordSystem->epsg() : 0;
    if (!coordSystem || srid > 0) {
        const QByteArray wkb = geometry::GeometryFactory::toWkb(geometry, QSysInfo::LittleEndian);
        std::string blob;
        if (engine::appendSpatialiteBlob({wkb.constData(), static_cast<std::size_t>(wkb.size())}, srid,
                                         blob)) {
            return {blob.data(), static_cast<int>(blob.size())};
        }
    }
    return engine::toOrvGeo(geometry, &cache);
}

} // namespace

FeatureExpression::FeatureExpression(Engine& engine, const dp::TableSchema& schema)
    : EngineExpression(engine.engineDatabase(), withMomentsAsTexts(schema), engine.cache()), engine_(engine) {
}

bool FeatureExpression::setText(const QString& expression) {
    engine::SqliteStringBuilder builder(QString(), nullptr);
    builder.setTableColumns([this](const std::wstring&) {
        std::vector<std::wstring> names;
        for (const QString& name : columns()) {
            names.push_back(sql::toSqlString(name));
        }
        return names;
    });
    engine_.tryToTranslate(expression.toStdString(), builder, Engine::ExpressionOnly);
    if (!builder.errors().empty()) {
        const sql::SqlError& error = *builder.errors().front();
        setError(dynamic_cast<const sql::UnexpectedParseResult*>(&error)
                     ? QCoreApplication::translate("orvane::adaptor", "нужно выражение, а не запрос")
                     : QString::fromUtf8(error.what()));
        return false;
    }
    const std::wstring& text = builder.query();
    usesGeometry_ = text.find(engine::geometryColumnName()) != std::wstring::npos;
    return setExpression(sql::fromSqlString(text));
}

QVariant FeatureExpression::value(const dp::FeaturePtr& feature) {
    return isValid() && fill(feature) ? exec() : QVariant();
}

QVector<QVariant> FeatureExpression::values(const std::vector<dp::FeaturePtr>& features) {
    return isValid() ? execAll(features) : QVector<QVariant>(static_cast<int>(features.size()));
}

QVariant FeatureExpression::toExtensionValue(const QVariant& value) {
    static const int geometryType = qMetaTypeId<GeometryPtr>();
    const int type = value.userType();
    if (type == geometryType) {
        const auto geometry = usesGeometry_ ? value.value<GeometryPtr>() : nullptr;
        return geometry ? blobOf(geometry, *engine_.cache()) : QVariant(QVariant::ByteArray);
    }
    return type == QMetaType::QByteArray ? value : QVariant();
}

} // namespace orvane::adaptor
