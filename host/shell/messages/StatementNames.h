#pragma once

#include "host/shell/messages/Names.h"

#include "platform/sql/lexing/Lexer.h"

namespace orvane::shell {

/// Which tables a statement names, and how, as far as its tokens tell: it need not be complete or right.
class StatementNames {
public:
    /// Neither is owned.
    StatementNames(const sql::TokenizedText& statement, const Names& names);

    QStringList tables() const;
    /// The table that an alias, or the table's own name, stands for; empty when it is none.
    QString tableBehind(const QString& alias) const;
    /// Whether the statement gives that name to anything: a derived table, for instance.
    bool isDeclared(const QString& alias) const;

private:
    /// The name that a token is; empty for another token.
    QString nameAt(std::size_t token) const;

    const sql::TokenizedText& statement_;
    QStringList known_;
};

} // namespace orvane::shell
