#include "host/shell/prompt/Console.h"

#include "host/shell/messages/Shell.h"
#include "host/shell/messages/StandardError.h"

#include "platform/sql/lexing/Script.h"

#include <QRegularExpression>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <utility>

namespace orvane::shell {

namespace {

/// The command that a statement of other shells stands for; empty for anything else.
QString commandFor(const std::string& statement) {
    const auto expression = [](const char* pattern) {
        return QRegularExpression(QLatin1String(pattern), QRegularExpression::CaseInsensitiveOption |
                                                              QRegularExpression::DotMatchesEverythingOption);
    };
    static const std::pair<QRegularExpression, const char*> habits[] = {
        {expression("^(?:exit|quit)\\s*()$"), ".quit"},
        {expression("^help\\b\\s*(.*)$"), ".help"},
        {expression("^show\\s+tables\\s*()$"), ".tables"},
        {expression("^desc(?:ribe)?\\s+[\"\\[`]?(.*?)[\"\\]`]?\\s*$"), ".schema"},
        {expression("^explain\\s+(?:query\\s+plan\\s+)?(.*)$"), ".explain"},
    };
    const QString text = QString::fromStdString(statement);
    for (const auto& [habit, command] : habits) {
        if (const auto match = habit.match(text); match.hasMatch()) {
            return (QLatin1String(command) + QLatin1Char(' ') + match.captured(1)).trimmed();
        }
    }
    return {};
}

} // namespace

std::string readScript(const std::string& path) {
    std::string text;
    if (path == "-") {
        return {std::istreambuf_iterator<char>(std::cin), {}};
    }
    std::ifstream file(path, std::ios::binary);
    // A stream opens a directory, too, and throws when it is read.
    const bool opened = file.is_open() && !(std::filesystem::is_directory(path) && (errno = EISDIR));
    if (opened) {
        text.assign(std::istreambuf_iterator<char>(file), {});
    }
    if (!opened || file.bad()) {
        throw UsageError(QStringLiteral("%0: %1").arg(QString::fromStdString(path),
                                                      QString::fromLocal8Bit(std::strerror(errno))));
    }
    if (text.rfind("\xEF\xBB\xBF", 0) == 0) {
        text.erase(0, 3); // a byte order mark is no part of the first statement
    }
    return text;
}

bool Console::isComplete(const std::string& text, const std::string& lastLine) {
    const auto script = sql::splitScript(text);
    const bool isBlank = lastLine.find_first_not_of(" \t") == std::string::npos;
    const bool isOpen =
        script.endsInComment || (!script.statements.empty() && !script.statements.back().terminated &&
                                 commandFor(script.statements.back().text).isEmpty());
    return isBlank || !isOpen;
}

Outcome Console::run(const StatementText& text) {
    if (runner_.settings().sqlite && text.text.substr(0, 1) != ".") {
        return runner_.run(text);
    }
    for (const sql::ScriptStatement& part : sql::splitScript(text.text).statements) {
        const QString command = part.isCommand ? QString::fromStdString(part.text) : commandFor(part.text);
        if (command.isEmpty()) {
            commands_.setLast(part.text);
        }
        const Outcome outcome = command.isEmpty() ? runner_.run(text, part) : runCommand(command.trimmed());
        if (outcome != Outcome::Done || isLeaving_) {
            return outcome;
        }
    }
    return Outcome::Done;
}

Outcome Console::runCommand(const QString& command) {
    const QString name = command.section(QLatin1Char(' '), 0, 0);
    if (name.compare(QLatin1String(".quit"), Qt::CaseInsensitive) == 0) {
        isLeaving_ = true;
        return Outcome::Done;
    }
    if (name.compare(QLatin1String(".read"), Qt::CaseInsensitive) == 0) {
        return readFile(command.mid(name.size()).trimmed().toStdString());
    }
    return commands_.run(command);
}

/// A script may read others, but not itself.
Outcome Console::readFile(const std::string& path) {
    constexpr std::size_t mostScripts = 50;
    try {
        const std::string text = readScript(path);
        if (depth_ == mostScripts) {
            throw UsageError(Shell::tr(".read: файлы читают друг друга без конца"));
        }
        ++depth_;
        const Outcome outcome = run({QString::fromStdString(path), text});
        --depth_;
        return outcome;
    } catch (const UsageError& error) {
        printMessage(QString::fromUtf8(error.what()));
        return Outcome::Failed;
    }
}

} // namespace orvane::shell
