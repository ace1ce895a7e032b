#include "host/shell/StatementRunner.h"

#include "host/adaptor/StatementExplanation.h"
#include "host/shell/ColumnTitles.h"
#include "host/shell/Interrupt.h"
#include "host/shell/Progress.h"
#include "host/shell/Shell.h"
#include "host/shell/SqliteErrors.h"

#include "platform/sql/Script.h"
#include "platform/sql/SqlParser.h"
#include "platform/sql/SqlStrings.h"
#include <orvane/Engine.h>
#include <orvane/engine/SqliteStringBuilder.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>

namespace orvane::shell {

namespace {

struct StatementFinalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using PreparedStatement = std::unique_ptr<sqlite3_stmt, StatementFinalizer>;

double millisecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

Problem problemOf(const sql::SqlError& error) {
    Problem problem{QString::fromUtf8(error.what()), std::nullopt};
    if (const auto& place = error.place()) {
        problem.place = {place->line, place->column, std::max(1, static_cast<int>(place->word.size()))};
        // The parser's message begins with the place in the statement; the one in the whole text is shown
        // instead.
        const QString prefix =
            QCoreApplication::translate("orvane::sql", "строка %0, столбец %1: %2")
                .arg(QString::number(place->line), QString::number(place->column), QString());
        if (problem.message.startsWith(prefix))
            problem.message.remove(0, prefix.size());
    }
    return problem;
}

/// Where a word of the statement stands, letter case ignored.
std::optional<TextPlace> placeOfWord(const std::string& statement, const QString& word) {
    const sql::TokenizedText text = sql::tokenize(statement);
    for (const sql::Token& token : text.tokens) {
        if (sql::fromSqlString(text.value(token)).compare(word, Qt::CaseInsensitive) == 0) {
            const sql::TextPosition position = text.position(token.offset);
            return TextPlace{position.line, position.column, static_cast<int>(token.length)};
        }
    }
    return std::nullopt;
}

} // namespace

StatementRunner::StatementRunner(Session& session, Settings settings, Output& output,
                                 const Interrupt& interrupt)
    : session_(session), settings_(std::move(settings)), output_(output), interrupt_(interrupt) {}

Outcome StatementRunner::run(const StatementText& text) {
    if (settings_.sqlite) {
        Statement statement{text, std::string(text.text), {}};
        return runSqlite(statement, statement.text);
    }
    for (const sql::ScriptStatement& part : sql::splitScript(text.text)) {
        Statement statement{text, part.text, {part.line, part.column, 1}};
        if (const Outcome outcome = runDialect(statement); outcome != Outcome::Done)
            return outcome;
    }
    return Outcome::Done;
}

Outcome StatementRunner::runDialect(Statement& statement) {
    const std::string sqliteText = translate(statement);
    statement.times.translateMs = millisecondsSince(statement.times.begin);
    if (sqliteText.empty())
        return Outcome::Failed;
    if (!settings_.translateOnly)
        return runSqlite(statement, sqliteText);
    output_.text() += sqliteText;
    output_.text() += '\n';
    return finish(statement);
}

std::string StatementRunner::translate(Statement& statement) {
    sql::SqlParser parser(nullptr);
    if (!parser.parse(statement.text)) {
        fail(statement, parser.errors().empty() ? Problem() : problemOf(*parser.errors().front()));
        return {};
    }
    engine::SqliteStringBuilder builder(QString(), nullptr);
    builder.setSelection(session_.catalog().selection(), session_.engine().cache());
    session_.engine().tryToTranslate(statement.text, builder, Engine::ParseAsIs);
    if (!builder.errors().empty()) {
        const sql::SqlError& error = *builder.errors().front();
        Problem problem = problemOf(error);
        if (dynamic_cast<const sql::SelectionTableIsAbsent*>(&error)) {
            const QString name = dp::DataCatalogWithSelection::selectionTableName();
            problem = {Shell::tr("выборка пуста: её задаёт параметр --select"),
                       placeOfWord(statement.text, name)};
        }
        fail(statement, std::move(problem));
        return {};
    }
    const std::string text = sql::toUtf8(builder.query());
    // An expression by itself is a question for its value.
    statement.isExpression = parser.result().isExpression();
    return statement.isExpression ? "Select " + text : text;
}

Outcome StatementRunner::runSqlite(Statement& statement, const std::string& sqliteText) {
    const sql::TokenizedText userText = sql::tokenize(statement.text);
    const char* const begin = sqliteText.data();
    const char* const end = begin + sqliteText.size();
    for (const char* rest = begin; rest != end;) {
        const auto offset = static_cast<std::size_t>(rest - begin);
        std::optional<adaptor::StatementExplanation> explanation;
        if (settings_.explain)
            explanation.emplace(session_.database(),
                                std::string_view(rest, static_cast<std::size_t>(end - rest)));
        const auto prepareBegin = Clock::now();
        sqlite3_stmt* handle = nullptr;
        const int code =
            sqlite3_prepare_v2(session_.database(), rest, static_cast<int>(end - rest), &handle, &rest);
        const PreparedStatement prepared(handle);
        statement.times.prepareMs += millisecondsSince(prepareBegin);
        if (code != SQLITE_OK)
            return failSqlite(statement, sqliteText, offset);
        if (!prepared)
            continue; // a comment or nothing
        if (const Outcome outcome = execute(statement, prepared.get(), userText); outcome == Outcome::Failed)
            return failSqlite(statement, sqliteText, offset);
        else if (outcome == Outcome::Cancelled)
            return cancel();
        if (explanation)
            statement.explanation += explanation->lines();
        if (settings_.sqlite) {
            finish(statement);
            statement.times = Times();
            statement.explanation.clear();
        }
    }
    return settings_.sqlite ? Outcome::Done : finish(statement);
}

Outcome StatementRunner::execute(Statement& statement, sqlite3_stmt* prepared,
                                 const sql::TokenizedText& userText) {
    Progress progress;
    std::unique_ptr<ResultWriter> writer;
    const ResultRow row(prepared, session_.engine().cache());
    if (row.size() != 0) {
        writer = makeResultWriter(settings_.writer, output_);
        writer->begin(columnTitles(prepared, settings_.sqlite ? nullptr : &userText, statement.isExpression));
    }
    int code = SQLITE_DONE;
    while (!interrupt_.requested() && (code = sqlite3_step(prepared)) == SQLITE_ROW) {
        if (statement.times.rows++ == 0) {
            statement.times.firstRowMs = millisecondsSince(statement.times.begin);
            if (output_.isLive())
                progress.stop(); // rows show that it goes on
        }
        progress.setRows(statement.times.rows);
        writer->row(row);
    }
    if (code == SQLITE_INTERRUPT || interrupt_.requested())
        return Outcome::Cancelled;
    if (code != SQLITE_DONE)
        return Outcome::Failed;
    if (writer)
        writer->end();
    return Outcome::Done;
}

Outcome StatementRunner::finish(Statement& statement) {
    output_.commit();
    const Times& times = statement.times;
    const double totalMs = millisecondsSince(times.begin);
    for (const QString& line : statement.explanation)
        std::fprintf(stderr, "%s\n", line.toUtf8().constData());
    if (settings_.timing) {
        std::fprintf(stderr, "translate_ms=%.3f prepare_ms=%.3f first_row_ms=%.3f total_ms=%.3f rows=%lld\n",
                     times.translateMs, times.prepareMs, times.rows != 0 ? times.firstRowMs : totalMs,
                     totalMs, static_cast<long long>(times.rows));
    }
    return Outcome::Done;
}

Outcome StatementRunner::failSqlite(const Statement& statement, const std::string& sqliteText,
                                    std::size_t offset) {
    const QString message = QString::fromUtf8(sqlite3_errmsg(session_.database()));
    const int errorOffset = sqlite3_error_offset(session_.database());
    if (sqlite3_errcode(session_.database()) == SQLITE_INTERRUPT)
        return cancel();
    const sql::TokenizedText userText = sql::tokenize(statement.text);
    const Names names = session_.names();
    const SqliteErrors errors(userText, sqliteText,
                              errorOffset < 0 ? -1 : static_cast<int>(offset) + errorOffset, names);
    return fail(statement, errors.explain(message));
}

Outcome StatementRunner::fail(const Statement& statement, Problem problem) {
    output_.discard();
    if (problem.place)
        problem.place = placeInText(*problem.place, statement.start);
    const std::string message = describe(problem, statement.source);
    std::fwrite(message.data(), 1, message.size(), stderr);
    return Outcome::Failed;
}

Outcome StatementRunner::cancel() {
    output_.discard();
    std::fprintf(stderr, "orvane: %s\n", Shell::tr("прервано").toUtf8().constData());
    return Outcome::Cancelled;
}

} // namespace orvane::shell
