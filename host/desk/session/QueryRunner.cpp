#include "host/desk/session/QueryRunner.h"

#include "host/desk/session/ColumnTitles.h"
#include "host/desk/session/QueryFault.h"

#include <host/providers/results/ResultFile.h>
#include <host/providers/results/ResultRows.h>
#include <orvane/Engine.h>
#include <orvane/engine/ColumnNames.h>
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/SqliteStringBuilder.h>
#include <platform/cs/CoordSystem.h>
#include <platform/geometry/forms/GeometryFactory.h>
#include <platform/sql/lexing/Script.h>
#include <platform/sql/lexing/SqlStrings.h>
#include <platform/sql/tree/Expressions.h>
#include <platform/sql/tree/FunctionInfo.h>
#include <platform/sql/tree/NodeVisitor.h>
#include <platform/sql/tree/Queries.h>
#include <platform/utils/Quoting.h>
#include <platform/work/Cancellation.h>

#include <QElapsedTimer>

#include <sqlite3.h>

#include <algorithm>

namespace orvane::desk {

namespace {

struct StatementFinalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using PreparedStatement = std::unique_ptr<sqlite3_stmt, StatementFinalizer>;

/// A fault of the statement that runs.
struct StatementFailed {
    QueryFault fault;
};

PreparedStatement prepare(sqlite3* database, const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database, sql.data(), static_cast<int>(sql.size()), &statement, nullptr);
    return PreparedStatement(statement);
}

/// Whether a call makes one value of many rows.
bool isAggregate(const sql::ast::Function& node) {
    const std::string name = sql::toUtf8(node.name);
    for (const sql::FunctionInfo& info : sql::functionInfos()) {
        if (qstricmp(info.name, name.c_str()) == 0) { // Min and Max of several values are plain functions
            return (info.types & sql::FunctionInfo::Aggregate) && !node.over &&
                   (!(info.types & sql::FunctionInfo::Scalar) || node.arguments.size() == 1);
        }
    }
    return false;
}

/// Whether each row of a query stands for one of its table.
bool keepsRows(const sql::ast::Node& query) {
    const auto* select = sql::ast::nodeAs<sql::ast::QuerySpecification>(&query);
    if (!select) {
        return query.kind == sql::ast::NodeKind::ExplicitTable;
    }
    bool hasAggregate = !select->groupBy.empty() || select->having;
    for (const sql::ast::NodePtr& column : select->columns) {
        sql::ast::forEachNode(*column, [&hasAggregate](const sql::ast::Node& node) {
            const auto* function = sql::ast::nodeAs<sql::ast::Function>(&node);
            hasAggregate = hasAggregate || (function && isAggregate(*function));
            return !sql::ast::isQuery(&node);
        });
    }
    return !hasAggregate && select->quantifier != sql::ast::SetQuantifier::Distinct;
}

/// The table whose geometry is the first in the result, else the first of all. Null where there is none.
const engine::TableRef* tableOfRows(const std::vector<engine::TableRef>& tables, sqlite3_stmt* prepared) {
    const QString geometryName = sql::fromSqlString(engine::geometryColumnName());
    for (int column = 0; column < sqlite3_column_count(prepared); ++column) {
        if (QString::fromUtf8(sqlite3_column_origin_name(prepared, column)) == geometryName) {
            const QString name = QString::fromUtf8(sqlite3_column_table_name(prepared, column));
            const auto isNamed = [&name](const engine::TableRef& table) {
                return sql::fromSqlString(table.name).compare(name, Qt::CaseInsensitive) == 0;
            };
            if (std::count_if(tables.begin(), tables.end(), isNamed) == 1) {
                return &*std::find_if(tables.begin(), tables.end(), isNamed);
            }
        }
    }
    return tables.empty() ? nullptr : &tables.front();
}

/// A blob of fewer bytes, or that begins in another way, is no geometry: those of every kind begin with a
/// small number.
bool mayBeGeometry(const char* bytes, int size) {
    return size >= 5 && static_cast<unsigned char>(*bytes) <= 13;
}

/// Copies the current row of a statement, geometries in the coordinate system of the first one.
class RowCopy {
public:
    RowCopy(sqlite3_stmt* statement, engine::EngineCache& cache, RowStore& rows)
        : statement_(statement), cache_(cache), rows_(rows), count_(sqlite3_column_count(statement)) {}

    void copy() {
        for (int column = 0; column < count_; ++column) {
            copy(column);
        }
        rows_.endRow();
    }

private:
    void copy(int column) {
        const auto size = [&] { return static_cast<std::size_t>(sqlite3_column_bytes(statement_, column)); };
        switch (sqlite3_column_type(statement_, column)) {
        case SQLITE_INTEGER: return rows_.append(std::int64_t{sqlite3_column_int64(statement_, column)});
        case SQLITE_FLOAT: return rows_.append(sqlite3_column_double(statement_, column));
        case SQLITE_TEXT: {
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
            return rows_.appendText({text, size()});
        }
        case SQLITE_BLOB: {
            const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement_, column));
            return copyBlob(bytes, static_cast<int>(size()));
        }
        default: return rows_.appendNull();
        }
    }

    void copyBlob(const char* bytes, int size) {
        geometry::GeometryPtr shape =
            mayBeGeometry(bytes, size)
                ? cache_.geometryInfo(bytes, static_cast<unsigned>(size), false).geometry()
                : nullptr;
        if (!shape) {
            return rows_.appendBytes({bytes, static_cast<std::size_t>(size)});
        }
        geometry::Envelope envelope = shape->envelope();
        if (const auto system = shape->coordSystem(); system && system != system_) {
            if (!system_) {
                system_ = system;
                rows_.setCoordSystem(system);
            } else if (!system->equals(*system_)) {
                const auto placed = shape->transformed(system_);
                // What has no place in the other system is in the table, but not on the map.
                envelope = placed ? placed->envelope() : geometry::Envelope();
                shape = placed ? placed : shape;
            }
        }
        const QByteArray wkb = geometry::GeometryFactory::toWkb(shape, QSysInfo::LittleEndian);
        rows_.appendGeometry({wkb.constData(), static_cast<std::size_t>(wkb.size())}, envelope);
    }

    sqlite3_stmt* statement_;
    engine::EngineCache& cache_;
    RowStore& rows_;
    int count_;
    std::shared_ptr<cs::CoordSystem> system_;
};

} // namespace

QueryOutcome QueryRunner::run(const std::string& text) {
    QElapsedTimer timer;
    timer.start();
    const auto changesBefore = sqlite3_total_changes64(host_.database());
    QueryOutcome outcome;
    for (const sql::ScriptStatement& statement : sql::splitScript(text).statements) {
        try {
            outcome = runStatement(statement.text);
        } catch (const StatementFailed& failed) {
            outcome = {QueryOutcome::Kind::Failed, failed.fault.message, failed.fault.place};
        } catch (const work::Cancelled&) {
            outcome = outcomeOf(SQLITE_INTERRUPT);
        } catch (const std::exception& failure) {
            outcome = {QueryOutcome::Kind::Failed, reasonOf(failure), std::nullopt};
        }
        if (outcome.place) {
            outcome.place = shifted(*outcome.place, statement.line, statement.column);
        }
        host_.settle(); // a statement may have been a rollback, or the last reader of a closed table
        if (outcome.kind != QueryOutcome::Kind::Done) {
            break;
        }
    }
    outcome.changedRows = sqlite3_total_changes64(host_.database()) - changesBefore;
    outcome.milliseconds = timer.elapsed();
    return outcome;
}

QueryRunner::Translated QueryRunner::translate(const std::string& text, const sql::ParseResult& parsed) {
    engine::SqliteStringBuilder builder(QString(), nullptr);
    builder.setSelection(host_.catalog().selection(), host_.engine().cache());
    builder.setNeedDependencies(true);
    host_.engine().tryToTranslate(parsed, builder, Engine::ParseAsIs);
    if (!builder.errors().empty()) {
        throw StatementFailed{faultOf(*builder.errors().front(), text)};
    }
    Translated translated;
    // An expression by itself is a question for its value.
    translated.sql = (builder.isExpression() ? L"Select " : L"") + builder.query();
    translated.intoTable = sql::fromSqlString(builder.intoTable());
    translated.intoFile = sql::fromSqlString(builder.intoFile());
    if (keepsRows(*parsed.node())) {
        translated.insertOffset = builder.insertOffset();
        translated.tables = builder.primaries();
    }
    return translated;
}

/// The text with the row numbers of the table as one more column; the table's key is put into `table`. Empty
/// where rows are no features.
std::string QueryRunner::withRowNumbers(const Translated& translated, sqlite3_stmt* plain, quint64& table) {
    const auto* source = tableOfRows(translated.tables, plain);
    const auto object = source ? host_.catalog().dataObject(sql::fromSqlString(source->name)) : nullptr;
    if (translated.insertOffset == 0 || !object) {
        return {};
    }
    const std::wstring& name = source->alias.empty() ? source->name : source->alias;
    std::wstring numbered = translated.sql;
    numbered.insert(translated.insertOffset,
                    L", " + utils::quoted(std::wstring_view(name), L'"') + L".rowid");
    table = reinterpret_cast<quintptr>(object.get());
    return sql::toUtf8(numbered);
}

QueryOutcome QueryRunner::runStatement(const std::string& text) {
    sql::SqlParser parser(nullptr);
    if (!parser.parse(text)) {
        throw StatementFailed{faultOf(*parser.errors().front(), text)};
    }
    const Translated translated = translate(text, parser.result());
    const std::string sqliteText = sql::toUtf8(translated.sql);
    const PreparedStatement plain = prepare(host_.database(), sqliteText);
    if (!plain) {
        QString message = QString::fromUtf8(sqlite3_errmsg(host_.database()));
        if (message == QLatin1String("not authorized")) {
            message += QStringLiteral(": ") + host_.engine().refusedAction();
        }
        throw StatementFailed{faultOf(message, text)};
    }
    const QStringList titles = columnTitles(plain.get(), parser.result());
    QueryOutcome outcome;
    if (!translated.intoTable.isEmpty() || !translated.intoFile.isEmpty()) {
        outcome = keep(plain.get(), titles, translated.intoTable, translated.intoFile, false);
    } else if (titles.isEmpty()) {
        outcome = outcomeOf(sqlite3_step(plain.get()));
    } else {
        lastSql_ = sqliteText;
        lastTitles_ = titles;
        quint64 table = 0;
        const std::string numbered = withRowNumbers(translated, plain.get(), table);
        const PreparedStatement withNumbers =
            numbered.empty() ? nullptr : prepare(host_.database(), numbered);
        // A query that With names may have no row numbers.
        outcome = withNumbers ? store(withNumbers.get(), titles, table) : store(plain.get(), titles, 0);
    }
    if (outcome.kind == QueryOutcome::Kind::Failed && !outcome.message.isEmpty()) {
        const QueryFault fault = faultOf(outcome.message, text);
        outcome.message = fault.message;
        outcome.place = fault.place;
    }
    return outcome;
}

QueryOutcome QueryRunner::store(sqlite3_stmt* prepared, const QStringList& titles, quint64 table) {
    const auto rows = std::make_shared<RowStore>(titles);
    hooks_.begun({rows, table});
    RowCopy copy(prepared, *host_.engine().cache(), *rows);
    constexpr int publishMs = 100; // often enough for the eye
    QElapsedTimer sincePublished;
    sincePublished.start();
    int code = SQLITE_ROW;
    bool goesOn = true;
    while (goesOn && (code = sqlite3_step(prepared)) == SQLITE_ROW) {
        copy.copy();
        goesOn = hooks_.goesOn();
        if (sincePublished.hasExpired(publishMs)) {
            rows->publish();
            sincePublished.restart();
        }
    }
    rows->publish();
    QueryOutcome outcome = outcomeOf(goesOn ? code : SQLITE_INTERRUPT);
    outcome.rows = rows->rowCount();
    return outcome;
}

QueryOutcome QueryRunner::keep(sqlite3_stmt* prepared, const QStringList& titles, const QString& table,
                               const QString& file, bool overwrite) {
    const auto target = file.isEmpty() ? nullptr : std::make_unique<files::ResultFile>(file, overwrite);
    files::ResultRows rows(prepared, titles, host_.catalog(), *host_.engine().cache());
    int code = SQLITE_ROW;
    bool goesOn = true;
    while (goesOn && (code = sqlite3_step(prepared)) == SQLITE_ROW) {
        rows.append();
        goesOn = hooks_.goesOn();
    }
    QueryOutcome outcome = outcomeOf(goesOn ? code : SQLITE_INTERRUPT);
    if (outcome.kind != QueryOutcome::Kind::Done) {
        return outcome;
    }
    if (target) {
        outcome.message = target->write(rows).join(QLatin1Char('\n'));
        target->publish();
    } else {
        files::addResultTable(host_.catalog(), table, rows);
    }
    outcome.rows = rows.rowCount();
    return outcome;
}

QueryOutcome QueryRunner::outcomeOf(int code) const {
    if (code == SQLITE_DONE || code == SQLITE_ROW) {
        return {};
    }
    return code == SQLITE_INTERRUPT
               ? QueryOutcome{QueryOutcome::Kind::Cancelled, {}, std::nullopt}
               : QueryOutcome{QueryOutcome::Kind::Failed, QString::fromUtf8(sqlite3_errmsg(host_.database())),
                              std::nullopt};
}

QueryOutcome QueryRunner::exportResult(const QString& path) {
    QElapsedTimer timer;
    timer.start();
    QueryOutcome outcome;
    try {
        const auto prepared = prepare(host_.database(), lastSql_);
        if (!prepared) {
            throw std::runtime_error(sqlite3_errmsg(host_.database()));
        }
        outcome = keep(prepared.get(), lastTitles_, {}, path, true);
    } catch (const work::Cancelled&) {
        outcome = outcomeOf(SQLITE_INTERRUPT);
    } catch (const std::exception& failure) {
        outcome = {QueryOutcome::Kind::Failed, reasonOf(failure), std::nullopt};
    }
    outcome.milliseconds = timer.elapsed();
    return outcome;
}

} // namespace orvane::desk
