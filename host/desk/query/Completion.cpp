#include "host/desk/query/Completion.h"

#include <platform/sql/lexing/Keywords.h>
#include <platform/sql/lexing/Lexer.h>
#include <platform/sql/lexing/Script.h>
#include <platform/sql/lexing/SqlStrings.h>
#include <platform/sql/parsing/SqlParser.h>
#include <platform/sql/tree/Queries.h>
#include <platform/utils/Quoting.h>

#include <algorithm>

namespace orvane::desk {

namespace {

bool isSame(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

bool isNamePart(QChar character) {
    return character.isSurrogate() || sql::isNamePart(static_cast<wchar_t>(character.unicode()));
}

/// A table in From.
struct UsedTable {
    QString name;
    QString alias;
};

/// Those of the statement around a position, as far as it can be read.
std::vector<UsedTable> usedTables(const QString& query, int position) {
    const std::string before = query.left(position).toStdString();
    const auto scriptBefore = sql::splitScript(before).statements;
    const std::size_t index = scriptBefore.empty() || scriptBefore.back().terminated
                                  ? scriptBefore.size()
                                  : scriptBefore.size() - 1;
    const auto script = sql::splitScript(query.toStdString()).statements;
    std::vector<UsedTable> used;
    if (index < script.size()) {
        sql::SqlParser parser(nullptr);
        parser.parse(script[index].text);
        for (const sql::ast::NodePtr& node : parser.tables()) {
            if (const auto* table = sql::ast::nodeAs<sql::ast::TablePrimary>(node)) {
                used.push_back({sql::fromSqlString(table->name), sql::fromSqlString(table->alias)});
            }
        }
    }
    return used;
}

void appendColumns(QStringList& names, const TableInfo& table) {
    for (const TableInfo::Column& column : table.columns) {
        names += quotedWhereNeeded(column.name);
    }
}

/// Of the table of that name, or of all where there is none.
QStringList columnsBehind(const QString& qualifier, const std::vector<UsedTable>& used,
                          const TableInfos& tables) {
    QString name = qualifier;
    for (const UsedTable& table : used) {
        if (isSame(table.alias, qualifier)) {
            name = table.name;
        }
    }
    QStringList names;
    for (const TableInfo& table : tables) {
        if (isSame(table.name, name)) {
            appendColumns(names, table);
        }
    }
    if (names.isEmpty()) { // an alias is often used before From is written
        for (const TableInfo& table : tables) {
            appendColumns(names, table);
        }
    }
    return names;
}

QStringList allNames(const std::vector<UsedTable>& used, const TableInfos& tables,
                     const QStringList& functions) {
    QStringList names = functions;
    for (const TableInfo& table : tables) {
        names += quotedWhereNeeded(table.name);
        const bool isUsed = used.empty() || std::any_of(used.begin(), used.end(), [&](const auto& each) {
                                return isSame(each.name, table.name);
                            });
        if (isUsed) {
            appendColumns(names, table);
        }
    }
    names += QStringLiteral("Selection");
    for (int keyword = 1; keyword < sql::keywordCount; ++keyword) {
        names += sql::fromSqlString(std::wstring(sql::spelling(static_cast<sql::Keyword>(keyword))));
    }
    return names;
}

/// The name before the dot that ends the text, without its quotes.
QString qualifierBefore(const QString& text) {
    const sql::TokenizedText tokens = sql::tokenize(text.toStdString());
    if (tokens.tokens.size() < 3) { // the name, the dot and the end
        return {};
    }
    return sql::fromSqlString(tokens.value(tokens.tokens[tokens.tokens.size() - 3]));
}

} // namespace

QString quotedWhereNeeded(const QString& name) {
    const std::wstring text = sql::toSqlString(name);
    return sql::isPlainName(text) && !sql::isReserved(sql::findKeyword(text)) ? name
                                                                              : utils::sqlIdentifier(name);
}

Completion complete(const QString& query, int position, const TableInfos& tables,
                    const QStringList& functions) {
    int start = position;
    while (start > 0 && isNamePart(query[start - 1])) {
        --start;
    }
    Completion completion;
    completion.word = query.mid(start, position - start);
    // With a name where one is to come the rest of the statement can be read, too.
    const auto used = usedTables(
        completion.word.isEmpty() ? QString(query).insert(position, QStringLiteral("x ")) : query, position);
    const bool isQualified = start > 0 && query[start - 1] == QLatin1Char('.');
    QStringList names = isQualified ? columnsBehind(qualifierBefore(query.left(start)), used, tables)
                                    : allNames(used, tables, functions);
    names.sort(Qt::CaseInsensitive);
    names.erase(std::unique(names.begin(), names.end(), isSame), names.end());
    for (const QString& name : qAsConst(names)) {
        const int quote = name.startsWith(QLatin1Char('"')) ? 1 : 0;
        if (name.midRef(quote).startsWith(completion.word, Qt::CaseInsensitive) && name != completion.word) {
            completion.candidates += name;
        }
    }
    return completion;
}

} // namespace orvane::desk
