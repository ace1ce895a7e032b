#include <orvane/engine/EngineExpression.h>

#include "engine/expression/FeatureRow.h"

#include "platform/core/SqliteException.h"
#include "platform/decimal/QDecNumber.h"
#include "platform/dp/SqliteStatement.h"
#include "platform/log/Logger.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/utils/Quoting.h"
#include "platform/work/Cancellation.h"
#include <orvane/engine/ColumnNames.h>
#include <orvane/engine/GeometryConversions.h>
#include <orvane/engine/OwnStatements.h>
#include <orvane/engine/functions/Converters.h>

#include <QCoreApplication>
#include <QScopeGuard>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>

namespace orvane::engine {

namespace {

void logInfo(int line, const char* function, const QString& text) {
    loggerInstance()->write(LogLevel::Info, QStringLiteral("EngineExpression"), line,
                            QString::fromLatin1(function), text);
}

sqlite3* sqliteHandle(const QSqlDatabase& database) {
    const QVariant handle = database.driver()->handle();
    return handle.isValid() ? *static_cast<sqlite3* const*>(handle.constData()) : nullptr;
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

/// NULL is a null text, as the driver has it.
QVariant valueOf(const dp::SqliteStatement& statement) {
    QVariant value = statement.value(0);
    if (!value.isValid()) {
        value = QVariant(QVariant::String);
    }
    return value;
}

} // namespace

EngineExpression::EngineExpression(QSqlDatabase database, const dp::TableSchema& schema, EngineCache* cache)
    : tableId_(QUuid::createUuid()), database_(std::move(database)) {
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
    expression_.reset();
    ofValues_.reset();
    if (!tableName().isEmpty()) {
        const OwnStatements own;
        QSqlQuery(database_).exec(QStringLiteral("Drop Table If Exists %0;").arg(tableName()));
    }
}

void EngineExpression::createTable(const dp::TableSchema& schema, EngineCache* cache) {
    QStringList definitions;
    for (const auto& attribute : schema.attributes()) {
        definitions << engine::toString(attribute, cache, '\'');
    }
    if (sqlite3* handle = sqliteHandle(database_)) {
        row_ = std::make_unique<FeatureRow>(handle, tableName(), definitions, [this](const QVariant& value) {
            return toExtensionValue(value);
        });
    }
    const OwnStatements own;
    QSqlQuery query(database_);
    valid_ = query.exec(QStringLiteral("Create Virtual Table temp.%0 Using %0;").arg(tableName()));
    lastErrorText_ = query.lastError().text();
    if (!valid_) {
        return;
    }
    row_->readColumns();
    if (const int geometry = schema.geometryIndex(); geometry >= 0) {
        geoName_ = schema.at(geometry)->name();
    }
    if (const int style = schema.styleIndex(); style >= 0) {
        styleName_ = schema.at(style)->name();
    }
}

bool EngineExpression::setExpression(const QString& expression) {
    sql_ = QStringLiteral("Select ") + expression;
    if (!tableName().isEmpty()) {
        sql_ += QStringLiteral(" From ") + tableName();
    }
    sql_ += QLatin1Char(';');
    expression_.reset();
    ofValues_.reset();
    lastErrorText_.clear();
    if (row_) {
        row_->startExpression();
    }
    try {
        expression_ = std::make_unique<dp::SqliteStatement>(sqliteHandle(database_), sql_, QString(),
                                                            dp::SqliteStatement::Use::Repeated);
        ofValues_ = row_ ? row_->prepareForValues(expression) : nullptr;
    } catch (const err::SqliteException&) {
        QSqlQuery query(database_);
        query.prepare(sql_);
        lastErrorText_ = query.lastError().text(); // as the driver puts it
    }
    valid_ = expression_ != nullptr;
    return valid_;
}

bool EngineExpression::fill(const dp::FeaturePtr& feature) {
    if (tableId_.isNull()) {
        return true;
    }
    // The row changes as a transaction of its own does: not within another.
    return row_ && !row_->isInTransaction() && setRow(feature);
}

bool EngineExpression::setRow(const dp::FeaturePtr& feature) {
    try {
        if (feature) {
            row_->set(*feature);
            return true;
        }
    } catch (const std::runtime_error& failure) {
        logInfo(__LINE__, "bool orvane::engine::EngineExpression::fill(const FeaturePtr&)",
                QStringLiteral("Expression error: ") + QString::fromUtf8(failure.what()));
    } catch (...) {
    }
    row_->clear();
    return false;
}

QVariant EngineExpression::exec() {
    QString reason = lastErrorText_;
    if (expression_) {
        try {
            dp::SqliteStatement& statement =
                ofValues_ && row_->bindTo(*ofValues_) ? *ofValues_ : *expression_;
            const auto reset = qScopeGuard([&statement] { statement.reset(); });
            if (statement.next()) {
                return valueOf(statement);
            }
        } catch (const err::SqliteException& failure) {
            reason = failure.sqliteMessage();
        }
    }
    logFailure(reason);
    return {};
}

QVector<QVariant> EngineExpression::execAll(const std::vector<dp::FeaturePtr>& features) {
    const work::Cancellation cancellation;
    QVector<QVariant> values(static_cast<int>(features.size()));
    std::size_t next = 0;
    if (expression_ && row_ && !row_->isInTransaction()) {
        while (next < features.size() && execFrom(features, next, values, cancellation)) {
        }
    }
    for (; next < features.size() && !cancellation.isRequested(); ++next) {
        values[static_cast<int>(next)] = fill(features[next]) ? exec() : QVariant();
    }
    return values;
}

/// Runs the statement over the features from `next` on, up to one that fails. False, with `next` as it was,
/// for an expression that wants to see the next row before it gives the value for the one before (an
/// aggregate, to which each feature is a table of its own), and for one with a query over the row.
bool EngineExpression::execFrom(const std::vector<dp::FeaturePtr>& features, std::size_t& next,
                                QVector<QVariant>& values, const work::Cancellation& cancellation) {
    const std::size_t first = next;
    bool isAnswered = true, readsAhead = false;
    const auto needsMore = [&] { return readsAhead || row_->isReadTwice(); };
    const auto advance = [&] {
        readsAhead = readsAhead || !isAnswered;
        isAnswered = false;
        while (!needsMore() && next < features.size() && !cancellation.isRequested()) {
            if (setRow(features[next++])) {
                return true;
            }
        }
        return false;
    };
    row_->setAdvance(advance);
    const auto end = qScopeGuard([this] {
        row_->setAdvance({});
        expression_->reset();
    });
    if (!advance()) {
        return !cancellation.isRequested();
    }
    try {
        while (expression_->next() && !needsMore()) {
            values[static_cast<int>(next) - 1] = valueOf(*expression_);
            isAnswered = true;
        }
    } catch (const err::SqliteException& failure) {
        logFailure(failure.sqliteMessage());
    }
    if (needsMore()) {
        next = first;
    }
    return !needsMore() && !cancellation.isRequested();
}

void EngineExpression::logFailure(const QString& reason) const {
    logInfo(__LINE__, "QVariant orvane::engine::EngineExpression::exec()",
            QStringLiteral("Expression exec error: ") + reason);
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
    if (!expression_) {
        return QVariant::String;
    }
    // The driver tells types only of a statement that has run.
    QSqlQuery query(database_);
    query.exec(sql_);
    const QSqlRecord record = query.record();
    const QVariant::Type type = record.field(0).type();
    return type == QVariant::Invalid ? QVariant::String : type; // nothing declared, and no value yet
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
    case QMetaType::QDateTime: return utils::sqlText(momentText(value));
    default: break;
    }
    if (value.userType() == qMetaTypeId<QDecNumber>()) {
        return decNumberToString(value.value<QDecNumber>());
    }
    const ExtensionString extension = toExtensionString(value);
    if (!extension.handled) {
        return utils::sqlText(value.toString());
    }
    return extension.quote ? utils::sqlText(extension.text) : extension.text;
}

QVariant EngineExpression::toValue(const QVariant& value) {
    if (const auto standard = standardValue(value)) {
        return *standard;
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
