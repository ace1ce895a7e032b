#pragma once

#include "host/shell/messages/Names.h"

#include "platform/sql/tree/Queries.h"

namespace orvane::shell {

/// Which tables a statement names, and how.
class StatementNames {
public:
    /// The tables as sql::SqlParser::tables() lists them, of a statement that need not be complete.
    StatementNames(sql::ast::NodeList tables, const Names& names);

    /// The open ones.
    QStringList tables() const;
    /// The open table that stands under a name: an alias or, where it has none, its own; empty when it is
    /// none.
    QString tableBehind(const QString& name) const;
    /// The alias that hides a table's own name; empty when nothing does.
    QString aliasOf(const QString& table) const;
    /// How many sources stand under a name: tables, named queries, queries in From.
    int countOf(const QString& name) const;

private:
    QStringList known_;
    std::vector<std::pair<QString, QString>> sources_; ///< name and alias; a query has no name
};

} // namespace orvane::shell
