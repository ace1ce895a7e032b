#include "host/shell/statements/StatementRunner.h"

#include "host/adaptor/explaining/StatementExplanation.h"
#include "host/shell/messages/PeerNames.h"
#include "host/shell/messages/Shell.h"
#include "host/shell/messages/SqliteErrors.h"
#include "host/shell/messages/StandardError.h"
#include "host/shell/output/DataWriter.h"
#include "host/shell/output/Progress.h"
#include "host/shell/session/Interrupt.h"
#include "host/shell/statements/ColumnTitles.h"

#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/tree/NodeVisitor.h"
#include "platform/utils/Quoting.h"
#include <orvane/Engine.h>
#include <orvane/engine/OwnStatements.h>
#include <orvane/engine/SqliteStringBuilder.h>

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace orvane::shell {

namespace {

struct StatementFinalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using PreparedStatement = std::unique_ptr<sqlite3_stmt, StatementFinalizer>;

constexpr const char* transactionWords[] = {"begin", "commit", "rollback"};

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
        if (problem.message.startsWith(prefix)) {
            problem.message.remove(0, prefix.size());
        }
    }
    return problem;
}

void printNotes(const QStringList& notes) {
    for (const QString& note : notes) {
        printMessage(note);
    }
}

/// Where the first node stands that fits.
std::optional<TextPlace> placeOf(const sql::ParseResult& statement,
                                 const std::function<bool(const sql::ast::Node&)>& fits) {
    const sql::ast::Node* found = nullptr;
    sql::ast::forEachNode(*statement.node(), [&](const sql::ast::Node& node) {
        found = !found && fits(node) ? &node : found;
        return !found;
    });
    if (!found) {
        return std::nullopt;
    }
    const sql::TextPosition position = sql::positionIn(statement.source(), found->place.offset);
    return TextPlace{position.line, position.column, static_cast<int>(found->place.length)};
}

/// Whether a text is no more than a word that begins or ends a transaction. To the parser it is a column.
bool isTransactionWord(const std::string& text) {
    const QString word = QString::fromStdString(text).trimmed();
    return std::any_of(std::begin(transactionWords), std::end(transactionWords), [&word](const char* each) {
        return word.compare(QLatin1String(each), Qt::CaseInsensitive) == 0;
    });
}

bool isInto(const sql::ast::Node& node) {
    return node.kind == sql::ast::NodeKind::IntoClause;
}

bool isSelectionTable(const sql::ast::Node& node) {
    const auto* table = sql::ast::nodeAs<sql::ast::TablePrimary>(&node);
    return table &&
           sql::fromSqlString(table->name)
                   .compare(dp::DataCatalogWithSelection::selectionTableName(), Qt::CaseInsensitive) == 0;
}

} // namespace

StatementRunner::StatementRunner(Session& session, Settings settings, Output& output, Interrupt& interrupt)
    : session_(session), settings_(std::move(settings)), output_(output), interrupt_(interrupt) {}

Outcome StatementRunner::run(const StatementText& text) {
    if (settings_.sqlite) {
        Statement statement{text, std::string(text.text), {}};
        return runSqlite(statement, statement.text);
    }
    for (const sql::ScriptStatement& part : sql::splitScript(text.text).statements) {
        if (const Outcome outcome = run(text, part); outcome != Outcome::Done) {
            return outcome;
        }
    }
    return Outcome::Done;
}

Outcome StatementRunner::run(const StatementText& text, const sql::ScriptStatement& part) {
    const auto isInTransaction = [this] { return sqlite3_get_autocommit(session_.database()) == 0; };
    const bool wasInTransaction = isInTransaction();
    Statement statement{text, part.text, {part.line, part.column, 1}};
    const Outcome outcome = runDialect(statement);
    const auto& tree = statement.parsed.result().node();
    if (outcome == Outcome::Done && tree && roundsAsElsewhere(*tree) &&
        !std::exchange(hasToldOfRound_, true)) {
        printMessage(
            Shell::tr("Round(x, 2) округляет до числа, кратного двум; до двух знаков — RoundBy(x, 2)"));
    }
    if (outcome != Outcome::Done && wasInTransaction && !isInTransaction()) {
        printMessage(Shell::tr("транзакция отменена: её изменения взяты назад"));
    }
    return outcome;
}

/// The engine's own statements may change the schema; what the view's query may do is seen when it is
/// prepared as any other, by which its faults are found as well.
Outcome StatementRunner::runView(Statement& statement, const std::string& sqliteText) {
    const auto& view = static_cast<const sql::ast::SessionStatement&>(*statement.parsed.result().node());
    const QString name = sql::fromSqlString(view.name);
    const bool isMade = view.action == sql::ast::SessionStatement::Action::CreateView;
    const QStringList taken = session_.names().tables();
    if (isMade && taken.contains(name, Qt::CaseInsensitive)) {
        return fail(statement, {Shell::tr("таблица «%1» уже есть").arg(name), std::nullopt});
    }
    sqlite3* const database = session_.database();
    const auto runOwn = [database](const std::string& text) {
        const engine::OwnStatements own;
        return sqlite3_exec(database, text.c_str(), nullptr, nullptr, nullptr);
    };
    if (runOwn(sqliteText) != SQLITE_OK) {
        return failSqlite(statement, sqliteText, 0);
    }
    sqlite3_stmt* handle = nullptr;
    const std::string quoted = utils::sqlIdentifier(name).toStdString();
    const bool isSound = !isMade || sqlite3_prepare_v2(database, ("Select * From temp." + quoted).c_str(), -1,
                                                       &handle, nullptr) == SQLITE_OK;
    sqlite3_finalize(handle);
    if (isSound) {
        return finish(statement);
    }
    const Outcome outcome = failSqlite(statement, sqliteText, 0);
    runOwn("Drop View temp." + quoted);
    return outcome;
}

Outcome StatementRunner::runDialect(Statement& statement) {
    const std::string sqliteText = translate(statement);
    statement.times.translateMs = millisecondsSince(statement.times.begin);
    if (sqliteText.empty()) {
        return Outcome::Failed;
    }
    if (!settings_.translateOnly) {
        const auto* session = sql::ast::nodeAs<sql::ast::SessionStatement>(statement.parsed.result().node());
        return session && session->isOfView() ? runView(statement, sqliteText)
                                              : runSqlite(statement, sqliteText);
    }
    output_.text() += sqliteText;
    output_.text() += '\n';
    return finish(statement);
}

std::string StatementRunner::translate(Statement& statement) {
    engine::SqliteStringBuilder builder(QString(), nullptr);
    builder.setSelection(session_.catalog().selection(), session_.engine().cache());
    if (!statement.parsed.parse(isTransactionWord(statement.text) ? statement.text + " Transaction"
                                                                  : statement.text)) {
        fail(statement, problemOf(*statement.parsed.errors().front()));
        return {};
    }
    session_.engine().tryToTranslate(statement.parsed.result(), builder, Engine::ParseAsIs);
    if (!builder.errors().empty()) {
        const sql::SqlError& error = *builder.errors().front();
        Problem problem = problemOf(error);
        if (dynamic_cast<const sql::SelectionTableIsAbsent*>(&error)) {
            problem = {Shell::tr("выборка пуста: её задаёт параметр --select"),
                       placeOf(statement.parsed.result(), isSelectionTable)};
        }
        fail(statement, std::move(problem));
        return {};
    }
    if (!readInto(statement, builder)) {
        return {};
    }
    const std::string text = sql::toUtf8(builder.query());
    // An expression by itself is a question for its value.
    return builder.isExpression() ? "Select " + text : text;
}

bool StatementRunner::readInto(Statement& statement, const engine::SqliteStringBuilder& builder) {
    const bool isFile = !builder.intoFile().empty();
    const std::wstring& name = isFile ? builder.intoFile() : builder.intoTable();
    if (name.empty()) {
        return true;
    }
    IntoTarget into{sql::fromSqlString(name), isFile, placeOf(statement.parsed.result(), isInto)};
    if (!isFile && session_.names().tables().contains(into.name, Qt::CaseInsensitive)) {
        fail(statement, {Shell::tr("таблица «%1» уже есть").arg(into.name), into.place});
        return false;
    }
    statement.into = std::move(into);
    return true;
}

std::unique_ptr<ResultWriter> StatementRunner::makeWriter(const Statement& statement,
                                                          sqlite3_stmt* prepared) {
    DataWriter::Target target;
    if (statement.into && statement.into->isFile) {
        const auto file = std::make_shared<files::ResultFile>(statement.into->name, settings_.overwrite);
        target = [file](files::ResultRows& rows) {
            const QStringList notes = file->write(rows);
            file->publish();
            printNotes(notes);
        };
    } else if (statement.into) {
        target = [this, name = statement.into->name](files::ResultRows& rows) {
            session_.addResult(name, rows);
        };
    } else if (settings_.dataFile) {
        if (std::exchange(fileIsTaken_, true)) {
            throw DataError(Shell::tr("в файл данных записывается только один ответ").toStdString());
        }
        target = [this](files::ResultRows& rows) { printNotes(settings_.dataFile->write(rows)); };
    } else if (settings_.map.picture || settings_.writer.format == Format::Map) {
        if (settings_.map.picture && std::exchange(fileIsTaken_, true)) {
            throw DataError(Shell::tr("на карте рисуется только один ответ").toStdString());
        }
        return std::make_unique<MapWriter>(settings_.map, prepared, session_.engine(), output_);
    } else {
        return makeResultWriter(settings_.writer, output_);
    }
    return std::make_unique<DataWriter>(prepared, session_.catalog(), *session_.engine().cache(),
                                        std::move(target), output_);
}

Outcome StatementRunner::runSqlite(Statement& statement, const std::string& sqliteText) {
    const char* const begin = sqliteText.data();
    const char* const end = begin + sqliteText.size();
    for (const char* rest = begin; rest != end;) {
        QCoreApplication::sendPostedEvents(); // the statement before may have been a rollback
        const auto offset = static_cast<std::size_t>(rest - begin);
        std::optional<adaptor::StatementExplanation> explanation;
        if (settings_.explain) {
            explanation.emplace(session_.database(),
                                std::string_view(rest, static_cast<std::size_t>(end - rest)));
        }
        const auto prepareBegin = Clock::now();
        sqlite3_stmt* handle = nullptr;
        const int code =
            sqlite3_prepare_v2(session_.database(), rest, static_cast<int>(end - rest), &handle, &rest);
        const PreparedStatement prepared(handle);
        statement.times.prepareMs += millisecondsSince(prepareBegin);
        if (code != SQLITE_OK) {
            return failSqlite(statement, sqliteText, offset);
        }
        if (!prepared) {
            continue; // a comment or nothing
        }
        if (const Outcome outcome = execute(statement, prepared.get()); outcome == Outcome::Failed) {
            return statement.problem ? fail(statement, *statement.problem)
                                     : failSqlite(statement, sqliteText, offset);
        } else if (outcome == Outcome::Cancelled) {
            return cancel();
        }
        if (explanation) {
            statement.explanation += explanation->lines();
        }
        if (settings_.sqlite) {
            finish(statement);
            statement.times = Times();
            statement.explanation.clear();
        }
    }
    return settings_.sqlite ? Outcome::Done : finish(statement);
}

bool StatementRunner::bindParameters(Statement& statement, sqlite3_stmt* prepared) const {
    const int count = sqlite3_bind_parameter_count(prepared);
    bool hasNumbers = false; // SQLite then counts those between that no statement names, too
    for (int i = 1; i <= count; ++i) {
        const char* const text = sqlite3_bind_parameter_name(prepared, i);
        hasNumbers = hasNumbers || (text && *text == '?');
    }
    int nameless = 0;
    for (int i = 1; i <= count; ++i) {
        const char* const text = sqlite3_bind_parameter_name(prepared, i);
        const QString shown = text ? QString::fromUtf8(text) : QStringLiteral("?");
        const QString name = text ? shown.mid(1).toLower() : QString::number(++nameless);
        const auto value = settings_.parameters.find(name.toStdString());
        if (value == settings_.parameters.end() && !text && hasNumbers) {
            continue;
        }
        if (value == settings_.parameters.end()) {
            statement.problem = {
                Shell::tr("у параметра %0 нет значения: его задают --parameter %1=… или .set %1=…")
                    .arg(shown, name),
                std::nullopt};
            return false;
        }
        std::visit(
            [&](const auto& known) {
                using Value = std::decay_t<decltype(known)>;
                if constexpr (std::is_same_v<Value, std::int64_t>) {
                    sqlite3_bind_int64(prepared, i, known);
                } else if constexpr (std::is_same_v<Value, double>) {
                    sqlite3_bind_double(prepared, i, known);
                } else if constexpr (std::is_same_v<Value, std::string>) {
                    sqlite3_bind_text64(prepared, i, known.data(), known.size(), SQLITE_STATIC, SQLITE_UTF8);
                }
            },
            value->second);
    }
    return true;
}

Outcome StatementRunner::execute(Statement& statement, sqlite3_stmt* prepared) {
    if (!bindParameters(statement, prepared)) {
        return Outcome::Failed;
    }
    int code = SQLITE_DONE;
    std::optional<PatientWork> patience;
    if (sqlite3_stmt_readonly(prepared) == 0) {
        patience.emplace(interrupt_, Interrupt::Patience::Long); // what was changed is being taken back
    }
    try {
        std::unique_ptr<ResultWriter> writer;
        if (sqlite3_column_count(prepared) != 0) {
            writer = makeWriter(statement, prepared);
            writer->begin(writer->showsTitles() ? columnTitles(prepared, statement.parsed.result())
                                                : std::vector<std::string>());
        }
        code = writeRows(statement, prepared, writer.get());
        if (writer && code == SQLITE_DONE && !interrupt_.requested()) {
            writer->end();
        }
    } catch (const OutputError&) {
        throw; // no statement is at fault
    } catch (const std::runtime_error& error) {
        statement.problem = {QString::fromUtf8(error.what()),
                             statement.into ? statement.into->place : std::nullopt};
    }
    if (code == SQLITE_INTERRUPT || interrupt_.requested()) {
        return Outcome::Cancelled;
    }
    return code == SQLITE_DONE && !statement.problem ? Outcome::Done : Outcome::Failed;
}

int StatementRunner::writeRows(Statement& statement, sqlite3_stmt* prepared, ResultWriter* writer) {
    Progress progress;
    const ResultRow row(prepared, session_.engine().cache());
    int code = SQLITE_DONE;
    while (!interrupt_.requested() && (code = sqlite3_step(prepared)) == SQLITE_ROW) {
        if (statement.times.rows++ == 0) {
            statement.times.firstRowMs = millisecondsSince(statement.times.begin);
            if (output_.isLive()) {
                progress.stop(); // rows show that it goes on
            }
        }
        progress.setRows(statement.times.rows);
        writer->row(row);
    }
    return code;
}

Outcome StatementRunner::finish(Statement& statement) {
    output_.commit();
    const Times& times = statement.times;
    const double totalMs = millisecondsSince(times.begin);
    for (const QString& line : statement.explanation) {
        printErrorLine(line);
    }
    if (settings_.timing) {
        std::fprintf(stderr, "translate_ms=%.3f prepare_ms=%.3f first_row_ms=%.3f total_ms=%.3f rows=%lld\n",
                     times.translateMs, times.prepareMs, times.rows != 0 ? times.firstRowMs : totalMs,
                     totalMs, static_cast<long long>(times.rows));
    }
    return Outcome::Done;
}

Outcome StatementRunner::failSqlite(const Statement& statement, const std::string& sqliteText,
                                    std::size_t offset) {
    QString message = QString::fromUtf8(sqlite3_errmsg(session_.database()));
    if (message == QLatin1String("not authorized") || message == QLatin1String("authorization denied")) {
        message = QStringLiteral("not authorized: ") + session_.engine().refusedAction();
    }
    const int errorOffset = sqlite3_error_offset(session_.database());
    if (sqlite3_errcode(session_.database()) == SQLITE_INTERRUPT) {
        return cancel();
    }
    const sql::TokenizedText userText = sql::tokenize(statement.text);
    const Names names = session_.names();
    const SqliteErrors errors(userText, statement.parsed.tables(), sqliteText,
                              errorOffset < 0 ? -1 : static_cast<int>(offset) + errorOffset, names);
    return fail(statement, errors.explain(message));
}

Outcome StatementRunner::fail(const Statement& statement, Problem problem) {
    output_.discard();
    if (problem.place) {
        problem.place = placeInText(*problem.place, statement.start);
    }
    const std::string message = describe(problem, statement.source);
    std::fwrite(message.data(), 1, message.size(), stderr);
    return Outcome::Failed;
}

Outcome StatementRunner::cancel() {
    output_.discard();
    printMessage(Shell::tr("прервано"));
    interrupt_.setTold();
    return Outcome::Cancelled;
}

} // namespace orvane::shell
