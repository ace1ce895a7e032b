#include "engine/expression/FeatureRow.h"

#include "engine/expression/FeatureRowModule.h"

#include "platform/core/SqliteException.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/utils/Quoting.h"
#include <orvane/engine/ColumnNames.h>

#include <sqlite3.h>

#include <algorithm>
#include <stdexcept>

namespace orvane::engine {

namespace {

struct StatementFinalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

/// Whether a value is of the class that a column of the affinity is for.
bool isOfClass(const dp::Cell& cell, Affinity affinity) {
    switch (cell.type()) {
    case dp::CellType::Null: return true;
    case dp::CellType::Integer: return affinity == Affinity::Integer || affinity == Affinity::Numeric;
    case dp::CellType::Real: return affinity == Affinity::Real || affinity == Affinity::Numeric;
    case dp::CellType::Text: return affinity == Affinity::Text;
    case dp::CellType::Bytes:
    case dp::CellType::Wkb: break;
    }
    return affinity == Affinity::Blob;
}

} // namespace

dp::Cell FeatureRow::State::cell(std::size_t column) {
    Column& asked = columns[column];
    if (asked.attribute < 0 || !hasRow) {
        return {}; // a statement that others leave open may outlast the row
    }
    const QVariant& replacement = replacements[static_cast<std::size_t>(asked.attribute)];
    return storedValue(replacement.isValid() ? replacement : values.at(asked.attribute), asked.affinity,
                       asked.text);
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
        const char* const name = sqlite3_column_name(prepared, i);
        const char* collation = nullptr;
        sqlite3_table_column_metadata(database_, "temp", name_.toUtf8().constData(), name, nullptr,
                                      &collation, nullptr, nullptr, nullptr);
        state_->columns.push_back(
            {name, collation, affinityOf(sqlite3_column_decltype(prepared, i)), -1, {}});
    }
}

void FeatureRow::clear() {
    state_->hasRow = false;
    state_->values = {};
}

void FeatureRow::setAdvance(std::function<bool()> advance) {
    state_->advance = std::move(advance);
    state_->numScans = 0;
}

std::unique_ptr<dp::SqliteStatement> FeatureRow::prepareForValues(const QString& expression) {
    constexpr std::size_t lastBit = 63;
    parameters_.clear();
    QStringList names;
    QStringList values;
    for (std::size_t i = 0; i < state_->columns.size(); ++i) {
        if ((state_->usedColumns >> std::min(i, lastBit) & 1) == 0) {
            continue;
        }
        const Column& column = state_->columns[i];
        parameters_.push_back(i);
        names += utils::sqlIdentifier(QString::fromUtf8(column.name));
        // The cast gives the column its affinity; a value of its class stays what it is.
        values += QStringLiteral("Cast(? As %1) Collate %2")
                      .arg(QLatin1String(typeOf(column.affinity)), QString::fromUtf8(column.collation));
    }
    if (values.isEmpty()) {
        return nullptr;
    }
    try {
        return std::make_unique<dp::SqliteStatement>(
            database_,
            QStringLiteral("With %0(%1) As (Select %2) Select %3 From %0")
                .arg(name_, names.join(QLatin1Char(',')), values.join(QLatin1Char(',')), expression),
            QString(), dp::SqliteStatement::Use::Repeated);
    } catch (const err::SqliteException&) {
        return nullptr; // what only a table has, such as row numbers
    }
}

bool FeatureRow::bindTo(dp::SqliteStatement& statement) const {
    if (!state_->hasRow) {
        return false;
    }
    int parameter = 0;
    for (const std::size_t column : parameters_) {
        const dp::Cell cell = state_->cell(column);
        if (!isOfClass(cell, state_->columns[column].affinity)) {
            return false;
        }
        statement.bindView(++parameter, cell);
    }
    return true;
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
        const bool isStandard = isStandardType(value.userType());
        if (!isStandard || replacement->isValid()) {
            *replacement = isStandard ? QVariant() : replacementOf(value);
        }
        ++replacement;
    }
    state_->hasRow = true;
}

/// Of a value that is not standard; invalid where the value itself serves.
QVariant FeatureRow::replacementOf(const QVariant& value) const {
    QVariant made = extension_(value);
    if (!made.isValid() && value.userType() >= QMetaType::User) {
        made = value.toString();
    }
    return made;
}

void FeatureRow::follow(const dp::TableSchema& schema) {
    attributes_.clear();
    for (Column& column : state_->columns) {
        column.attribute = -1;
    }
    std::vector<std::size_t> columns;
    for (const auto& attribute : schema.attributes()) {
        columns.push_back(columnOf(*attribute));
    }
    for (std::size_t i = 0; i < columns.size(); ++i) {
        state_->columns[columns[i]].attribute = static_cast<int>(i);
    }
    state_->replacements.assign(columns.size(), QVariant());
    attributes_ = schema.attributes();
}

/// Names match as in SQL, the letter case of Latin letters ignored.
std::size_t FeatureRow::columnOf(const dp::AttributeDefinition& attribute) const {
    QByteArray name = attribute.name().toUtf8();
    if (dynamic_cast<const dp::GeometryAttributeDefinition*>(&attribute)) {
        name = sql::fromSqlString(geometryColumnName()).toLatin1();
    } else if (dynamic_cast<const dp::RenditionAttributeDefinition*>(&attribute)) {
        name = sql::fromSqlString(styleColumnName()).toLatin1();
    }
    const auto found =
        std::find_if(state_->columns.begin(), state_->columns.end(), [&name](const Column& column) {
            return sqlite3_stricmp(column.name.constData(), name.constData()) == 0;
        });
    if (found == state_->columns.end()) {
        throw std::runtime_error(
            QStringLiteral("table %0 has no column named %1").arg(name_, attribute.name()).toStdString());
    }
    return static_cast<std::size_t>(found - state_->columns.begin());
}

} // namespace orvane::engine
