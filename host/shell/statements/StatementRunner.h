#pragma once

#include "host/shell/maps/MapWriter.h"
#include "host/shell/messages/Problem.h"
#include "host/shell/output/ResultWriter.h"
#include "host/shell/session/Session.h"

#include "host/providers/results/ResultFile.h"
#include "platform/sql/lexing/Script.h"
#include "platform/sql/parsing/SqlParser.h"

#include <chrono>
#include <memory>
#include <string>

namespace orvane::engine {
class SqliteStringBuilder;
}

namespace orvane::shell {

class Interrupt;

/// How a statement, or a text with several, ended.
enum class Outcome { Done, Failed, Cancelled };

/// Runs statements and writes their results. Messages, times and progress go to standard error. Used from the
/// thread of the engine; nothing given to the constructor is owned.
class StatementRunner {
public:
    struct Settings {
        WriterSettings writer;
        Parameters parameters;
        bool translateOnly = false; ///< write the SQLite text instead of running it
        bool sqlite = false;        ///< the texts are SQLite's already
        bool timing = false;
        bool overwrite = false; ///< Into may replace a file
        /// Takes the result instead of the output; only one result fits. Null for none.
        std::shared_ptr<files::ResultFile> dataFile;
        MapRequest map;       ///< of a picture, or where the format asks for a map
        bool explain = false; ///< tell how each statement was answered
    };

    StatementRunner(Session& session, Settings settings, Output& output, Interrupt& interrupt);

    Settings& settings() { return settings_; }
    /// Runs the statements of a text in turn, up to the first that does not succeed.
    Outcome run(const StatementText& text);
    /// Runs one of them.
    Outcome run(const StatementText& text, const sql::ScriptStatement& part);

private:
    using Clock = std::chrono::steady_clock;

    /// What --timing shows.
    struct Times {
        Clock::time_point begin = Clock::now();
        double translateMs = 0;
        double prepareMs = 0;
        double firstRowMs = 0; ///< from the beginning, as total_ms; that one when there is no row
        std::int64_t rows = 0;
    };

    /// What Into names.
    struct IntoTarget {
        QString name;
        bool isFile = false;
        std::optional<TextPlace> place = std::nullopt; ///< of the name
    };

    /// The statement that runs.
    struct Statement {
        const StatementText& source;
        std::string text;               ///< the user's
        TextPlace start;                ///< of that text in the source
        sql::SqlParser parsed{nullptr}; ///< without a tree when SQLite's text is the user's
        QStringList explanation{};      ///< of its SQLite statements
        std::optional<IntoTarget> into = {};
        std::optional<Problem> problem = {}; ///< of a failure that is not SQLite's
        Times times = {};
    };

    Outcome runDialect(Statement& statement);
    /// Gives a query its name, or takes it away.
    Outcome runView(Statement& statement, const std::string& sqliteText);
    /// The SQLite text; empty, and the reason is reported, when there is none.
    std::string translate(Statement& statement);
    /// Notes what Into names, and whether it is free; otherwise reports that and answers false.
    bool readInto(Statement& statement, const engine::SqliteStringBuilder& builder);
    std::unique_ptr<ResultWriter> makeWriter(const Statement& statement, sqlite3_stmt* prepared);
    /// Runs the SQLite statements of a text. They count as one statement, unless the user wrote them.
    Outcome runSqlite(Statement& statement, const std::string& sqliteText);
    /// Gives parameters their values; false, and a problem, where one has none.
    bool bindParameters(Statement& statement, sqlite3_stmt* prepared) const;
    Outcome execute(Statement& statement, sqlite3_stmt* prepared);
    /// Steps to the end; answers SQLite's code.
    int writeRows(Statement& statement, sqlite3_stmt* prepared, ResultWriter* writer);
    Outcome finish(Statement& statement);

    /// Reports what the database says; `offset` is where the failed one of the SQLite statements begins.
    Outcome failSqlite(const Statement& statement, const std::string& sqliteText, std::size_t offset);
    Outcome fail(const Statement& statement, Problem problem);
    Outcome cancel();

    Session& session_;
    Settings settings_;
    Output& output_;
    Interrupt& interrupt_;
    bool fileIsTaken_ = false;
    bool hasToldOfRound_ = false; ///< that its second argument is a step
};

} // namespace orvane::shell
