#pragma once

#include "host/shell/statements/StatementRunner.h"

namespace orvane::shell {

struct TableInfo;

/// The commands of the prompt, which begin with a dot. What they show is one result of the output.
class PromptCommands {
public:
    /// None is owned.
    PromptCommands(Session& session, StatementRunner& runner, Output& output)
        : session_(session), runner_(runner), output_(output) {}

    /// What stands behind the name of a command.
    enum class Argument { None, Table, Function, Text, File, Statement };

    /// The statements that ran last, which a map without a query shows.
    void setLast(const std::string& text) { last_ = text; }

    /// Their names with the dot.
    static QStringList names();
    /// None for what is no command.
    static Argument argumentOf(const QString& name);

    /// Carries a line out; one that is no command, or fails, is answered with a message on standard error.
    /// Leaving and reading scripts are the Console's.
    Outcome run(const QString& line);

private:
    struct Command;
    static const std::vector<Command>& commands();

    Outcome showTables(const QString& argument);
    Outcome showSchema(const QString& table);
    Outcome showInfo(const QString& table);
    Outcome showFunctions(const QString& pattern);
    Outcome showHelp(const QString& topic);
    Outcome showTranslation(const QString& statement);
    Outcome explain(const QString& statement);
    Outcome drawMap(const QString& statement);
    Outcome setGeometryForm(const QString& form);
    Outcome setFormat(const QString& format);
    Outcome setParameter(const QString& text);
    Outcome open(const QString& source);
    Outcome close(const QString& table);

    static Outcome fail(const QString& message);
    void printInfo(const TableInfo& info);
    void printLine(const QString& text);
    void printColumns(const std::vector<QStringList>& lines);

    Session& session_;
    StatementRunner& runner_;
    Output& output_;
    std::string last_;
};

} // namespace orvane::shell
