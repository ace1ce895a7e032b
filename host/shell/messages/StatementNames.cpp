#include "host/shell/messages/StatementNames.h"

#include "platform/sql/lexing/SqlStrings.h"

namespace orvane::shell {

StatementNames::StatementNames(const sql::TokenizedText& statement, const Names& names)
    : statement_(statement), known_(names.tables()) {}

QStringList StatementNames::tables() const {
    QStringList used;
    for (std::size_t i = 0; i < statement_.tokens.size(); ++i) {
        const QString name = nameAt(i);
        if (known_.contains(name, Qt::CaseInsensitive) && !used.contains(name, Qt::CaseInsensitive))
            used += name;
    }
    return used;
}

QString StatementNames::tableBehind(const QString& alias) const {
    const auto& tokens = statement_.tokens;
    for (std::size_t i = 0; i + 1 < tokens.size(); ++i) {
        const QString table = nameAt(i);
        if (!known_.contains(table, Qt::CaseInsensitive))
            continue;
        const std::size_t next = tokens[i + 1].keyword == sql::Keyword::As ? i + 2 : i + 1;
        const bool isAlias = next < tokens.size() && nameAt(next).compare(alias, Qt::CaseInsensitive) == 0;
        if (isAlias || table.compare(alias, Qt::CaseInsensitive) == 0)
            return table;
    }
    return {};
}

bool StatementNames::isDeclared(const QString& alias) const {
    for (std::size_t i = 0; i + 1 < statement_.tokens.size(); ++i) {
        if (statement_.tokens[i + 1].kind != sql::TokenKind::Dot &&
            nameAt(i).compare(alias, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

QString StatementNames::nameAt(std::size_t token) const {
    const sql::Token& found = statement_.tokens[token];
    if (found.kind != sql::TokenKind::Word && found.kind != sql::TokenKind::QuotedName)
        return {};
    return sql::fromSqlString(statement_.value(found));
}

} // namespace orvane::shell
