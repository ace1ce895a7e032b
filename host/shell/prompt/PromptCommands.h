#pragma once

#include "host/shell/statements/StatementRunner.h"

namespace orvane::shell {

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

    /// Carries a line out; one that is no command, or whose file does not open, is answered with a message on
    /// standard error. False when the user wants to leave.
    bool run(const QString& line);

private:
    struct Command;
    static const std::vector<Command>& commands();

    void showTables(const QString& argument);
    void showSchema(const QString& table);
    void showFunctions(const QString& pattern);
    void showHelp(const QString& topic);
    void showTranslation(const QString& statement);
    void explain(const QString& statement);
    void drawMap(const QString& statement);
    void setGeometryForm(const QString& form);
    void open(const QString& source);
    void close(const QString& table);

    void printLine(const QString& text);

    Session& session_;
    StatementRunner& runner_;
    Output& output_;
    std::string last_;
};

} // namespace orvane::shell
