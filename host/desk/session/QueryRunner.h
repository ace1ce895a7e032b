#pragma once

#include "host/desk/rows/RowStore.h"
#include "host/desk/session/EngineHost.h"
#include "host/desk/session/Tables.h"

#include <orvane/engine/SqliteStringBuilder.h>
#include <platform/sql/parsing/SqlParser.h>

#include <functional>
#include <memory>
#include <string>

struct sqlite3_stmt;

namespace orvane::desk {

/// The rows of a query.
struct ResultRowsInfo {
    std::shared_ptr<RowStore> rows;
    /// Each row is a feature of this table, 0 where it is none. Behind the last column of the rows stands
    /// then the feature's row number, or NULL.
    quint64 table = 0;
};

/// Runs the user's queries. Used from the thread of the engine.
class QueryRunner {
public:
    struct Hooks {
        /// A statement has begun that has rows; they come from now on.
        std::function<void(const ResultRowsInfo& result)> begun;
        /// Called between rows; false cancels.
        std::function<bool()> goesOn;
    };

    QueryRunner(EngineHost& host, Hooks hooks) : host_(host), hooks_(std::move(hooks)) {}

    /// Runs the statements of a text in turn, up to the first that does not succeed.
    QueryOutcome run(const std::string& text);
    /// Writes the rows of the last result into a file, whose ending says the format. The query runs again:
    /// only so every type is known.
    QueryOutcome exportResult(const QString& path);

private:
    struct Translated {
        std::wstring sql;
        QString intoTable;
        QString intoFile;
        std::size_t insertOffset = 0;         ///< for one more column; 0 where rows are no features
        std::vector<engine::TableRef> tables; ///< of the outermost query
    };

    QueryOutcome runStatement(const std::string& text);
    Translated translate(const std::string& text, const sql::ParseResult& parsed);
    std::string withRowNumbers(const Translated& translated, sqlite3_stmt* plain, quint64& table);
    QueryOutcome store(sqlite3_stmt* prepared, const QStringList& titles, quint64 table);
    QueryOutcome keep(sqlite3_stmt* prepared, const QStringList& titles, const QString& table,
                      const QString& file, bool overwrite);
    /// How stepping ended with that code of SQLite's.
    QueryOutcome outcomeOf(int code) const;

    EngineHost& host_;
    Hooks hooks_;
    std::string lastSql_;
    QStringList lastTitles_;
};

} // namespace orvane::desk
