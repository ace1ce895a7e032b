#include "engine/expression/FeatureRow.h"

#include "engine/expression/FeatureRowModule.h"

#include "platform/core/SqliteException.h"
#include "platform/decimal/QDecNumber.h"
#include "platform/sql/SqlStrings.h"
#include <orvane/engine/ColumnNames.h>
#include <orvane/engine/functions/Converters.h>

#include <QDateTime>

#include <sqlite3.h>

#include <stdexcept>

namespace orvane::engine {

namespace {

struct StatementFinalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

/// The affinity of a declared type, by the rules of SQLite (https://www.sqlite.org/datatype3.html, 3.1).
FeatureRow::Column::Affinity affinityOf(const char* declaredType) {
    const QByteArray type = QByteArray(declaredType).toUpper();
    if (type.contains("INT")) {
        return FeatureRow::Column::Integer;
    }
    if (type.contains("CHAR") || type.contains("CLOB") || type.contains("TEXT")) {
        return FeatureRow::Column::Text;
    }
    if (type.contains("BLOB") || type.isEmpty()) {
        return FeatureRow::Column::Blob;
    }
    if (type.contains("REAL") || type.contains("FLOA") || type.contains("DOUB")) {
        return FeatureRow::Column::Real;
    }
    return FeatureRow::Column::Numeric;
}

} // namespace

bool isStandardType(int metaType) {
    switch (metaType) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::UChar:
    case QMetaType::LongLong:
    case QMetaType::Long:
    case QMetaType::ULongLong:
    case QMetaType::ULong:
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime: return true;
    case QMetaType::QString: return false;
    default: return metaType == qMetaTypeId<QDecNumber>();
    }
}

std::optional<QVariant> standardValue(const QVariant& value) {
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
    case QMetaType::QDate: return toString(value.toDate());
    case QMetaType::QTime: return toString(value.toTime());
    case QMetaType::QDateTime: return toString(value.toDateTime());
    default: break;
    }
    if (isStandardType(value.userType())) {
        return value.value<QDecNumber>().toDouble();
    }
    return std::nullopt;
}

FeatureRow::FeatureRow(sqlite3* database, QString name, const QStringList& definitions, Extension extension)
    : database_(database), name_(std::move(name)), extension_(std::move(extension)),
      state_(std::make_shared<State>()) {
    state_->declaration = "Create Table x(" + definitions.join(QLatin1Char(',')).toUtf8() + ')';
    if (registerFeatureRow(database_, name_.toUtf8(), state_) != SQLITE_OK) {
        throw err::SqliteException(database_, name_);
    }
}

FeatureRow::~FeatureRow() {
    clear();
    registerFeatureRow(database_, name_.toUtf8(), nullptr);
}

void FeatureRow::readColumns() {
    const QByteArray sql = "Select * From " + name_.toUtf8();
    sqlite3_stmt* prepared = nullptr;
    const int code = sqlite3_prepare_v2(database_, sql.constData(), sql.size(), &prepared, nullptr);
    const std::unique_ptr<sqlite3_stmt, StatementFinalizer> statement(prepared);
    if (code != SQLITE_OK) {
        throw err::SqliteException(database_, name_);
    }
    for (int i = 0; i < sqlite3_column_count(prepared); ++i) {
        state_->columns.push_back(
            {sqlite3_column_name(prepared, i), affinityOf(sqlite3_column_decltype(prepared, i))});
    }
}

void FeatureRow::clear() {
    state_->hasRow = false;
    state_->values = {};
}

bool FeatureRow::isInTransaction() const {
    return !sqlite3_get_autocommit(database_);
}

void FeatureRow::set(const dp::Feature& feature) {
    state_->hasRow = false;
    // The copy of the list keeps it from being replaced by another at the same place.
    if (!attributes_.isSharedWith(feature.schema().attributes())) {
        follow(feature.schema());
    }
    state_->values = feature.values();
    QVariant* replacement = state_->replacements.data();
    for (const QVariant& value : qAsConst(state_->values)) {
        const int type = value.userType();
        if (!isStandardType(type)) {
            *replacement = extension_(value);
            if (!replacement->isValid() && type >= QMetaType::User) {
                *replacement = value.toString();
            }
        } else if (replacement->isValid()) {
            *replacement = QVariant();
        }
        ++replacement;
    }
    state_->hasRow = true;
}

void FeatureRow::follow(const dp::TableSchema& schema) {
    attributes_.clear();
    for (Column& column : state_->columns) {
        column.attribute = -1;
    }
    for (int i = 0; i < schema.numAttributes(); ++i) {
        Column* column = columnOf(*schema.at(i));
        if (!column) {
            throw std::runtime_error(QStringLiteral("table %0 has no column named %1")
                                         .arg(name_, schema.at(i)->name())
                                         .toStdString());
        }
        column->attribute = i;
    }
    attributes_ = schema.attributes();
    state_->replacements.assign(static_cast<std::size_t>(attributes_.size()), QVariant());
}

/// Null when there is none. Names match as in SQL, the letter case of Latin letters ignored.
FeatureRow::Column* FeatureRow::columnOf(const dp::AttributeDefinition& attribute) {
    QByteArray name = attribute.name().toUtf8();
    if (dynamic_cast<const dp::GeometryAttributeDefinition*>(&attribute)) {
        name = sql::fromSqlString(geometryColumnName()).toLatin1();
    } else if (dynamic_cast<const dp::RenditionAttributeDefinition*>(&attribute)) {
        name = sql::fromSqlString(styleColumnName()).toLatin1();
    }
    for (Column& column : state_->columns) {
        if (sqlite3_stricmp(column.name.constData(), name.constData()) == 0) {
            return &column;
        }
    }
    return nullptr;
}

} // namespace orvane::engine
