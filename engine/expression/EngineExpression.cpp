#include <orvane/engine/EngineExpression.h>

#include "platform/decimal/QDecNumber.h"
#include "platform/log/Logger.h"
#include "platform/sql/SqlStrings.h"
#include <orvane/engine/ColumnNames.h>
#include <orvane/engine/GeometryConversions.h>
#include <orvane/engine/functions/Converters.h>

#include <QCoreApplication>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlRecord>

namespace orvane::engine {

namespace {

void logInfo(int line, const char* function, const QString& text) {
    loggerInstance()->write(LogLevel::Info, QStringLiteral("EngineExpression"), line,
                            QString::fromLatin1(function), text);
}

QString quoteLiteral(QString text) {
    return escapeString(std::move(text), '\'');
}

int decimalType() {
    static const int type = QMetaType::type("QDecNumber");
    return type;
}

/// The text that stands for a date or time in the database; null for other types.
QString momentText(const QVariant& value) {
    switch (value.userType()) {
    case QMetaType::QDate: return toString(value.toDate());
    case QMetaType::QTime: return toString(value.toTime());
    case QMetaType::QDateTime: return toString(value.toDateTime());
    default: return {};
    }
}

} // namespace

EngineExpression::EngineExpression(QSqlDatabase database, const dp::TableSchema& schema, EngineCache* cache)
    : tableId_(QUuid::createUuid()), database_(std::move(database)), query_(database_) {
    if (schema.numAttributes() == 0) {
        tableId_ = QUuid();
        return;
    }
    try {
        createTable(schema, cache);
    } catch (const std::exception& exception) {
        valid_ = false;
        lastErrorText_ = QCoreApplication::translate("orvane::engine::EngineExpression",
                                                     "Ошибка создания таблицы для оценки выражений: ") +
                         QString::fromUtf8(exception.what());
    }
    if (!valid_) {
        logInfo(__LINE__,
                "orvane::engine::EngineExpression::EngineExpression(QSqlDatabase, const "
                "orvane::dp::TableSchema&, "
                "orvane::engine::EngineCache*)",
                QStringLiteral("Expression creation error: ") + lastErrorText_);
    }
}

EngineExpression::~EngineExpression() {
    if (!tableName().isEmpty()) {
        query_.exec(QStringLiteral("Drop Table If Exists %0;").arg(tableName()));
    }
}

void EngineExpression::createTable(const dp::TableSchema& schema, EngineCache* cache) {
    QString sql = QStringLiteral("Create Temporary Table ") + tableName();
    for (int i = 0; i < schema.numAttributes(); ++i) {
        sql += QLatin1Char(i == 0 ? '(' : ',') + engine::toString(schema.at(i), cache, '\'');
    }
    valid_ = query_.exec(sql + QStringLiteral(");"));
    lastErrorText_ = query_.lastError().text();
    if (!valid_) {
        return;
    }
    if (const int geometry = schema.geometryIndex(); geometry >= 0) {
        geoName_ = schema.at(geometry)->name();
    }
    if (const int style = schema.styleIndex(); style >= 0) {
        styleName_ = schema.at(style)->name();
    }
}

bool EngineExpression::setExpression(const QString& expression) {
    QString sql = QStringLiteral("Select ") + expression;
    if (!tableName().isEmpty()) {
        sql += QStringLiteral(" From ") + tableName();
    }
    valid_ = query_.prepare(sql + QLatin1Char(';'));
    lastErrorText_ = query_.lastError().text();
    return valid_;
}

bool EngineExpression::fill(const dp::FeaturePtr& feature) {
    if (tableName().isEmpty()) {
        return true;
    }
    QSqlQuery query(database_);
    if (!query.exec(QStringLiteral("Begin Transaction;"))) {
        return false;
    }
    try {
        const bool filled =
            query.exec(QStringLiteral("Delete From %0;").arg(tableName())) && insert(query, *feature);
        query.exec(QStringLiteral("Commit;"));
        return filled;
    } catch (...) {
        query.exec(QStringLiteral("Rollback;"));
        return false;
    }
}

bool EngineExpression::insert(QSqlQuery& query, const dp::Feature& feature) {
    QStringList names, placeholders;
    for (int i = 0; i < feature.numAttributes(); ++i) {
        names << fieldName(feature.schema().at(i));
        placeholders << QStringLiteral("?");
    }
    query.prepare(QStringLiteral("Insert Into %0(%1) Values(%2);")
                      .arg(tableName(), names.join(QLatin1Char(',')), placeholders.join(QLatin1Char(','))));
    for (int i = 0; i < feature.numAttributes(); ++i) {
        query.bindValue(i, toValue(feature.getAttribute(i)), QSql::In);
    }
    if (query.exec()) {
        return true;
    }
    logInfo(__LINE__, "bool orvane::engine::EngineExpression::fill(const FeaturePtr&)",
            QStringLiteral("Expression error: ") + query.lastError().text());
    return false;
}

QVariant EngineExpression::exec() {
    if (query_.exec() && query_.next()) {
        return query_.value(0);
    }
    logInfo(__LINE__, "QVariant orvane::engine::EngineExpression::exec()",
            QStringLiteral("Expression exec error: ") + query_.lastError().text());
    return {};
}

QString EngineExpression::tableName() const {
    return tableId_.isNull() ? QString() : QStringLiteral("expr") + tableId_.toString(QUuid::Id128);
}

QString EngineExpression::fieldName(const dp::AttributeDefinitionPointer& attribute) const {
    if (isGeometry(attribute)) {
        return sql::fromSqlString(geometryColumnName());
    }
    if (isStyle(attribute)) {
        return sql::fromSqlString(styleColumnName());
    }
    return database_.driver()->escapeIdentifier(attribute->name(), QSqlDriver::FieldName);
}

QStringList EngineExpression::columns() const {
    QStringList names;
    if (tableName().isEmpty()) {
        return names;
    }
    const QSqlRecord record = database_.record(tableName());
    for (int i = 0; i < record.count(); ++i) {
        names << record.fieldName(i);
    }
    return names;
}

QVariant::Type EngineExpression::type() const {
    const QSqlRecord record = query_.record();
    return record.isEmpty() ? QVariant::String : record.field(0).type();
}

void EngineExpression::setError(QString text) {
    lastErrorText_ = std::move(text);
    valid_ = false;
}

QString EngineExpression::toStr(const QVariant& value) {
    switch (value.userType()) {
    case QMetaType::Bool: return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::Int:
    case QMetaType::Short: return QString::number(value.toInt());
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::UChar: return QString::number(value.toUInt());
    case QMetaType::LongLong:
    case QMetaType::Long: return QString::number(value.toLongLong());
    case QMetaType::ULongLong:
    case QMetaType::ULong: return QString::number(value.toULongLong());
    case QMetaType::Double:
    case QMetaType::Float: return QString::number(value.toDouble(), 'g', 6);
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime: return quoteLiteral(momentText(value));
    default: break;
    }
    if (value.userType() == decimalType()) {
        return decNumberToString(value.value<QDecNumber>());
    }
    const ExtensionString extension = toExtensionString(value);
    if (!extension.handled) {
        return quoteLiteral(value.toString());
    }
    return extension.quote ? quoteLiteral(extension.text) : extension.text;
}

QVariant EngineExpression::toValue(const QVariant& value) {
    switch (value.userType()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::Short: return value.toInt();
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::UChar: return value.toUInt();
    case QMetaType::LongLong:
    case QMetaType::Long: return value.toLongLong();
    case QMetaType::ULongLong:
    case QMetaType::ULong: return value.toULongLong();
    case QMetaType::Double:
    case QMetaType::Float: return value.toDouble();
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime: return momentText(value);
    default: break;
    }
    if (value.userType() == decimalType()) {
        return value.value<QDecNumber>().toDouble();
    }
    const QVariant extension = toExtensionValue(value);
    return extension.isValid() ? extension : QVariant(value.toString());
}

EngineExpression::ExtensionString EngineExpression::toExtensionString(const QVariant&) {
    return {};
}

QVariant EngineExpression::toExtensionValue(const QVariant&) {
    return {};
}

} // namespace orvane::engine
