#include "host/shell/maps/MapWriter.h"

#include "host/shell/messages/Shell.h"
#include "host/shell/output/NumberText.h"

#include "platform/sql/lexing/SqlStrings.h"
#include "platform/utils/Quoting.h"
#include <orvane/Engine.h>
#include <orvane/engine/ColumnNames.h>

#include <QSqlDriver>

#include <algorithm>
#include <set>
#include <stdexcept>

#include <unistd.h>

namespace orvane::shell {

namespace {

constexpr std::size_t blockSize = 512;

[[noreturn]] void raise(const QString& reason) {
    throw std::runtime_error(reason.toStdString());
}

std::string_view blobOf(sqlite3_stmt* statement, int column) {
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
    return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

std::string_view textOf(sqlite3_stmt* statement, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return {text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

maps::Value valueOf(sqlite3_stmt* statement, int column) {
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
    case SQLITE_FLOAT: return maps::Value::ofNumber(sqlite3_column_double(statement, column));
    case SQLITE_TEXT: return maps::Value::ofText(textOf(statement, column));
    default: return {};
    }
}

/// The value of an expression; a text lasts as long as `text`.
maps::Value valueOf(const QVariant& value, std::string& text) {
    switch (static_cast<QMetaType::Type>(value.userType())) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Double: return value.isNull() ? maps::Value() : maps::Value::ofNumber(value.toDouble());
    case QMetaType::QString:
        text = value.toString().toStdString();
        return value.isNull() ? maps::Value() : maps::Value::ofText(text);
    default: return {};
    }
}

void appendText(std::string& text, const maps::Value& value) {
    switch (value.kind) {
    case maps::Value::Kind::None: return;
    case maps::Value::Kind::Number: appendReal(text, value.number); return;
    case maps::Value::Kind::Text: text += value.text; return;
    }
}

} // namespace

namespace {

/// A terminal has a few dots in each character.
MapOptions canvasOptions(const MapRequest& request) {
    MapOptions options = request.options;
    options.isPicture = request.picture.has_value();
    if (!options.isPicture) {
        options.width = 2 * request.terminal.columns;
        options.height = 4 * request.terminal.rows;
    }
    return options;
}

} // namespace

TerminalSpace terminalSpace(bool isStandardOutput) {
    TerminalSpace space;
    const auto variable = [](const char* name) { return QString::fromLocal8Bit(qgetenv(name)); };
    const int columns = isStandardOutput ? terminalWidth() : 0;
    const int rows = isStandardOutput ? terminalHeight() : 0;
    const int asked = variable("COLUMNS").toInt();
    space.columns = columns > 0 ? columns : asked > 0 ? asked : space.columns;
    constexpr int promptRows = 3;
    space.rows = rows > 2 * promptRows ? rows - promptRows : space.rows;
    space.hasColours = isStandardOutput && ::isatty(STDOUT_FILENO) && variable("NO_COLOR").isEmpty() &&
                       variable("TERM") != QLatin1String("dumb");
    const QString colours = variable("COLORTERM");
    space.hasAllColours = colours == QLatin1String("truecolor") || colours == QLatin1String("24bit");
    return space;
}

MapWriter::MapWriter(MapRequest request, sqlite3_stmt* statement, Engine& engine, Output& output)
    : ResultWriter(output), request_(std::move(request)), statement_(statement), engine_(engine),
      canvas_(makeMapCanvas(canvasOptions(request_))), shapes_(*engine.cache()) {}

MapWriter::~MapWriter() = default;

void MapWriter::begin(const std::vector<std::string>& columns) {
    const QString fixed = sql::fromSqlString(engine::geometryColumnName());
    for (std::size_t i = 0; i < columns.size(); ++i) {
        columns_ += QString::fromStdString(columns[i]);
        const char* origin = sqlite3_column_origin_name(statement_, static_cast<int>(i));
        if (geometryColumn_ < 0 && origin && fixed == QLatin1String(origin)) {
            geometryColumn_ = static_cast<int>(i);
        }
    }
}

/// The first column with geometries, from the first row that has one.
bool MapWriter::findGeometry() {
    for (int i = 0; geometryColumn_ < 0 && i < columns_.size(); ++i) {
        if (sqlite3_column_type(statement_, i) == SQLITE_BLOB && shapes_.read(blobOf(statement_, i))) {
            geometryColumn_ = i;
        }
    }
    return geometryColumn_ >= 0;
}

void MapWriter::row(const ResultRow&) {
    ++rows_;
    if (!findGeometry()) {
        return;
    }
    if (!isPrepared_) {
        prepare();
    }
    if (sqlite3_column_type(statement_, geometryColumn_) != SQLITE_BLOB) {
        return;
    }
    if (fill_.expression || label_.expression) {
        addToBlock();
    } else {
        addRow();
    }
}

void MapWriter::prepare() {
    isPrepared_ = true;
    prepare(fill_, request_.fill);
    prepare(label_, request_.label);
    canvas_->beginResult(request_.fill, fill_.isAsked());
}

void MapWriter::prepare(Computed& computed, const QString& text) {
    if (text.isEmpty()) {
        return;
    }
    for (int i = 0; i < columns_.size(); ++i) { // a column needs no expression
        if (columns_[i].compare(text, Qt::CaseInsensitive) == 0 && i != geometryColumn_) {
            computed.column = i;
            return;
        }
    }
    if (!schema_) {
        QVector<dp::AttributeDefinitionPointer> attributes;
        std::set<QString> names;
        for (int i = 0; i < columns_.size(); ++i) {
            const bool isGeometry = i == geometryColumn_;
            if (!isGeometry && !names.insert(columns_[i].toCaseFolded()).second) {
                continue; // of two columns of one name the first is meant
            }
            // A column of bytes takes every value as it is.
            dp::AttributeDefinition* attribute =
                new dp::SimpleAttributeDefinition(columns_[i], QMetaType::QByteArray);
            if (isGeometry) {
                attribute = new dp::GeometryAttributeDefinition(columns_[i], nullptr);
            }
            attributes.push_back(dp::AttributeDefinitionPointer(attribute));
            schemaColumns_.push_back(i);
        }
        schema_ = std::make_shared<const dp::TableSchema>(std::move(attributes));
    }
    computed.expression = std::make_unique<adaptor::FeatureExpression>(engine_, *schema_);
    if (!computed.expression->setText(text)) {
        QString reason = computed.expression->lastError();
        reason.remove(QLatin1String(" Unable to execute statement")); // Qt's, and says nothing more
        raise(Shell::tr("%0: %1; столбцы ответа: %2")
                  .arg(QString::fromLatin1(computed.option), reason.trimmed(),
                       columns_.join(QStringLiteral(", "))));
    }
}

void MapWriter::addRow() {
    const auto shape = shapes_.read(blobOf(statement_, geometryColumn_));
    if (!shape) {
        return;
    }
    const maps::Value value = fill_.column < 0 ? maps::Value() : valueOf(statement_, fill_.column);
    std::string label;
    if (label_.column >= 0) {
        appendText(label, valueOf(statement_, label_.column));
    }
    canvas_->add(*shape, value, label, shapes_.system());
}

QVariant MapWriter::columnValue(int column) const {
    switch (sqlite3_column_type(statement_, column)) {
    case SQLITE_INTEGER: return static_cast<qlonglong>(sqlite3_column_int64(statement_, column));
    case SQLITE_FLOAT: return sqlite3_column_double(statement_, column);
    case SQLITE_TEXT: {
        const std::string_view text = textOf(statement_, column);
        return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
    }
    case SQLITE_BLOB: {
        const std::string_view bytes = blobOf(statement_, column);
        return QByteArray(bytes.data(), static_cast<int>(bytes.size()));
    }
    default: return {};
    }
}

void MapWriter::addToBlock() {
    auto feature = std::make_shared<dp::Feature>(schema_, dp::FeatureId());
    for (std::size_t i = 0; i < schemaColumns_.size(); ++i) {
        feature->setAttribute(static_cast<int>(i), columnValue(schemaColumns_[i]));
    }
    block_.push_back(std::move(feature));
    if (block_.size() == blockSize) {
        addBlock();
    }
}

void MapWriter::addBlock() {
    const auto valuesOf = [this](Computed& computed) {
        return computed.expression ? computed.expression->values(block_) : QVector<QVariant>();
    };
    const QVector<QVariant> fills = valuesOf(fill_);
    const QVector<QVariant> labels = valuesOf(label_);
    const auto at = [this](const Computed& computed, const QVector<QVariant>& values, std::size_t row) {
        if (computed.expression) {
            return values.at(static_cast<int>(row));
        }
        const auto position = std::find(schemaColumns_.begin(), schemaColumns_.end(), computed.column);
        return position == schemaColumns_.end()
                   ? QVariant()
                   : block_[row]->getAttribute(static_cast<int>(position - schemaColumns_.begin()));
    };
    std::string text;
    std::string label;
    for (std::size_t row = 0; row < block_.size(); ++row) {
        const QByteArray blob = block_[row]->getAttribute(schema_->geometryIndex()).toByteArray();
        const auto shape = shapes_.read({blob.constData(), static_cast<std::size_t>(blob.size())});
        if (shape) {
            label.clear();
            appendText(label, valueOf(at(label_, labels, row), text));
            canvas_->add(*shape, valueOf(at(fill_, fills, row), text), label, shapes_.system());
        }
    }
    block_.clear();
}

void MapWriter::addBackground(const QString& table) {
    const std::string query = QStringLiteral("Select %0 From %1")
                                  .arg(utils::sqlIdentifier(sql::fromSqlString(engine::geometryColumnName())),
                                       utils::sqlIdentifier(table))
                                  .toStdString();
    sqlite3* database = sqlite3_db_handle(statement_);
    sqlite3_stmt* prepared = nullptr;
    int code = sqlite3_prepare_v2(database, query.c_str(), -1, &prepared, nullptr);
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> statement(prepared, sqlite3_finalize);
    canvas_->beginBackground();
    std::int64_t rows = 0;
    std::int64_t shapes = 0;
    while (prepared && (code = sqlite3_step(prepared)) == SQLITE_ROW) {
        ++rows;
        const auto shape = sqlite3_column_type(prepared, 0) == SQLITE_BLOB ? shapes_.read(blobOf(prepared, 0))
                                                                           : std::nullopt;
        if (shape) {
            ++shapes;
            canvas_->add(*shape, {}, {}, shapes_.system());
        }
    }
    if (code != SQLITE_DONE && code != SQLITE_INTERRUPT) {
        raise(QStringLiteral("--map-background: %0").arg(QString::fromUtf8(sqlite3_errmsg(database))));
    }
    if (rows != 0 && shapes == 0) {
        raise(Shell::tr("--map-background: в таблице «%0» нет геометрии").arg(table));
    }
}

void MapWriter::end() {
    if (!block_.empty()) {
        addBlock();
    }
    if (rows_ == 0) {
        raise(Shell::tr("ответ пуст, на карте нечего показать"));
    }
    if (geometryColumn_ < 0) {
        raise(Shell::tr("в ответе нет геометрии, на карте нечего показать; столбцы: %0")
                  .arg(columns_.join(QStringLiteral(", "))));
    }
    if (canvas_->isEmpty()) {
        raise(Shell::tr("в ответе нет непустых геометрий, на карте нечего показать"));
    }
    for (const QString& table : request_.background) {
        addBackground(table);
    }
    output_.addDrawing(request_.picture ? canvas_->picture(*request_.picture)
                                        : canvas_->text(request_.terminal));
}

} // namespace orvane::shell
