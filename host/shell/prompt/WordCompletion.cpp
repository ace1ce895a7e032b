#include "host/shell/prompt/WordCompletion.h"

#include "host/shell/messages/StatementNames.h"
#include "host/shell/prompt/PromptCommands.h"

#include "platform/sql/lexing/Keywords.h"
#include "platform/sql/lexing/Lexer.h"
#include "platform/sql/lexing/Script.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/parsing/SqlParser.h"
#include "platform/utils/Quoting.h"

#include <QDir>

#include <algorithm>

namespace orvane::shell {

namespace {

/// Keywords, column names and the like, without doubles, in alphabetical order.
std::vector<std::string> beginningWith(const std::wstring& start, const QStringList& names) {
    QStringList fitting;
    const QString prefix = sql::fromSqlString(start);
    for (const QString& name : names) {
        if (name.startsWith(prefix, Qt::CaseInsensitive)) {
            fitting += name;
        }
    }
    fitting.sort(Qt::CaseInsensitive);
    fitting.erase(std::unique(fitting.begin(), fitting.end(),
                              [](const QString& a, const QString& b) {
                                  return a.compare(b, Qt::CaseInsensitive) == 0;
                              }),
                  fitting.end());
    std::vector<std::string> candidates;
    for (const QString& name : fitting) {
        candidates.push_back(name.toStdString());
    }
    return candidates;
}

/// As a statement may use it.
QString quotedWhereNeeded(const QString& name) {
    const std::wstring text = sql::toSqlString(name);
    if (sql::isPlainName(text) && !sql::isReserved(sql::findKeyword(text))) {
        return name;
    }
    return utils::sqlIdentifier(name);
}

QStringList quotedWhereNeeded(QStringList names) {
    std::transform(names.begin(), names.end(), names.begin(),
                   [](const QString& name) { return quotedWhereNeeded(name); });
    return names;
}

QStringList keywords() {
    QStringList words;
    for (int keyword = 1; keyword < sql::keywordCount; ++keyword) {
        words += sql::fromSqlString(std::wstring(sql::spelling(static_cast<sql::Keyword>(keyword))));
    }
    return words;
}

QStringList columnsOf(const QStringList& tables, const Names& names) {
    QStringList columns;
    for (const QString& table : tables) {
        columns += names.columns(table);
    }
    return columns;
}

/// Names of files that begin as the path does; directories end with a slash, to go on from there.
QStringList filesBeginningWith(const QString& path) {
    const int nameStart = path.lastIndexOf(QLatin1Char('/')) + 1;
    const QString directory = path.left(nameStart);
    QStringList names;
    const auto entries =
        QDir(directory.isEmpty() ? QStringLiteral(".") : directory)
            .entryInfoList({path.mid(nameStart) + QLatin1Char('*')}, QDir::AllEntries | QDir::NoDotAndDotDot);
    for (const QFileInfo& entry : entries) {
        names += directory + entry.fileName() + (entry.isDir() ? QStringLiteral("/") : QString());
    }
    return names;
}

/// A command takes its argument as it stands: names are not quoted there, and may hold blanks.
Completion completeArgument(PromptCommands::Argument kind, const QString& argument, const Names& names) {
    const QString start = kind == PromptCommands::Argument::File
                              ? argument.mid(argument.indexOf(QLatin1Char('=')) + 1) // of NAME=FILE
                              : argument;
    const std::wstring word = sql::toSqlString(start);
    switch (kind) {
    case PromptCommands::Argument::Table: return {word.size(), beginningWith(word, names.tables())};
    case PromptCommands::Argument::Function: return {word.size(), beginningWith(word, names.functions())};
    case PromptCommands::Argument::File: return {word.size(), beginningWith(word, filesBeginningWith(start))};
    default: return {};
    }
}

} // namespace

Completion completeLine(const std::string& line, const Names& names) {
    const QString text = QString::fromStdString(line);
    const int blank = text.indexOf(QLatin1Char(' '));
    if (!text.startsWith(QLatin1Char('.')) || blank < 0) {
        return completeStatement(line, names);
    }
    const auto kind = PromptCommands::argumentOf(text.left(blank));
    const QString argument = text.mid(blank + 1);
    return kind == PromptCommands::Argument::Statement ? completeStatement(argument.toStdString(), names)
                                                       : completeArgument(kind, argument, names);
}

Completion completeStatement(const std::string& statement, const Names& names) {
    const sql::TokenizedText text = sql::tokenize(statement);
    std::size_t start = text.source.size();
    while (start > 0 && sql::isNamePart(text.source[start - 1])) {
        --start;
    }
    const std::wstring word = text.source.substr(start);
    const bool isQualified = start > 0 && text.source[start - 1] == L'.';
    if (isQualified && start == 1) {
        return {word.size() + 1, beginningWith(L"." + word, PromptCommands::names())};
    }
    sql::SqlParser parsed(nullptr);
    const std::vector<sql::ScriptStatement> script = sql::splitScript(statement).statements;
    parsed.parse(script.empty() ? std::string() : script.back().text); // as far as it is written
    const StatementNames used(parsed.tables(), names);
    if (isQualified) {
        // The qualifier is the token before the dot.
        QString qualifier;
        for (const sql::Token& token : text.tokens) {
            if (token.offset + token.length == start - 1) {
                qualifier = sql::fromSqlString(text.value(token));
            }
        }
        // An alias is often used before the user has come to From.
        const QString table = used.tableBehind(qualifier);
        const QStringList columns = columnsOf(table.isEmpty() ? names.tables() : QStringList(table), names);
        return {word.size(), beginningWith(word, quotedWhereNeeded(columns))};
    }
    const QStringList tables = names.tables();
    const QStringList usedTables = used.tables();
    const QStringList columns = columnsOf(usedTables.isEmpty() ? tables : usedTables, names);
    return {word.size(),
            beginningWith(word, quotedWhereNeeded(tables + columns) + names.functions() + keywords())};
}

} // namespace orvane::shell
