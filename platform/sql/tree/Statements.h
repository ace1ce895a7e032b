#pragma once

#include "platform/sql/tree/Node.h"

namespace orvane::sql::ast {

/// `column = value`, or `(a, b) = (1, 2)`.
struct ORVANE_PLATFORM_EXPORT SetClause : NodeOfKind<NodeKind::SetClause> {
    SetClause(NodePtr setTarget, NodePtr setValue)
        : target(std::move(setTarget)), value(std::move(setValue)) {}

    NodePtr target; ///< ColumnReference, or RowValueExpression of them
    NodePtr value;
};

struct ORVANE_PLATFORM_EXPORT DeleteStatement : NodeOfKind<NodeKind::DeleteStatement> {
    NodePtr table; ///< TablePrimary
    NodePtr where; ///< null: every row
};

struct ORVANE_PLATFORM_EXPORT InsertStatement : NodeOfKind<NodeKind::InsertStatement> {
    NodePtr table;    ///< TablePrimary
    NodeList columns; ///< ColumnReference; empty: all columns in order
    NodePtr source;   ///< RowValueExpressionList of rows, or a query; null for `Default Values`
};

struct ORVANE_PLATFORM_EXPORT UpdateStatement : NodeOfKind<NodeKind::UpdateStatement> {
    NodePtr table;        ///< TablePrimary
    NodeList assignments; ///< SetClause
    NodePtr from;         ///< FromSource of further tables, or null
    NodePtr where;        ///< null: every row
};

/// What concerns the session rather than the rows of a table: transactions, and queries that are given a
/// name.
struct ORVANE_PLATFORM_EXPORT SessionStatement : NodeOfKind<NodeKind::SessionStatement> {
    enum class Action { Begin, Commit, Rollback, SetSavepoint, RollbackTo, Release, CreateView, DropView };

    explicit SessionStatement(Action statementAction) : action(statementAction) {}

    Action action;
    std::wstring name;     ///< of the savepoint or view
    NodeList columns;      ///< ColumnReference: of the view; empty: named by the query
    NodePtr query;         ///< of the view
    bool ifExists = false; ///< no view to drop is no fault

    bool isOfView() const { return action == Action::CreateView || action == Action::DropView; }
};

} // namespace orvane::sql::ast
