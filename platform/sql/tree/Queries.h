#pragma once

#include "platform/sql/tree/Node.h"

#include <string>

namespace orvane::sql::ast {

/// One result column: an expression with its alias, or a QualifiedAsterisk.
struct ORVANE_PLATFORM_EXPORT DerivedColumn : NodeOfKind<NodeKind::DerivedColumn> {
    explicit DerivedColumn(NodePtr columnExpression, std::wstring columnAlias = {})
        : expression(std::move(columnExpression)), alias(std::move(columnAlias)) {}

    NodePtr expression;
    std::wstring alias; ///< empty when there is none
};

/// A table of the database in From, or the target of a change.
struct ORVANE_PLATFORM_EXPORT TablePrimary : NodeOfKind<NodeKind::TablePrimary> {
    explicit TablePrimary(std::wstring tableName, std::wstring tableAlias = {})
        : name(std::move(tableName)), alias(std::move(tableAlias)) {}

    std::wstring name;
    std::wstring alias;  ///< empty when there is none
    bool isCall = false; ///< `name(arguments)`: a function that gives a table
    NodeList arguments = {};
    std::wstring columnName = {}; ///< of such a function, given as `alias(name)`; empty when there is none
};

/// A query in From: `(query) alias (columns)`.
struct ORVANE_PLATFORM_EXPORT DerivedTable : NodeOfKind<NodeKind::DerivedTable> {
    explicit DerivedTable(NodePtr tableQuery, std::wstring tableAlias = {}, NodeList tableColumns = {})
        : query(std::move(tableQuery)), alias(std::move(tableAlias)), columns(std::move(tableColumns)) {}

    NodePtr query;
    std::wstring alias; ///< empty when there is none
    NodeList columns;   ///< ColumnReference without qualifiers; empty: named by the query
};

/// `On condition`.
struct ORVANE_PLATFORM_EXPORT JoinCondition : NodeOfKind<NodeKind::JoinCondition> {
    explicit JoinCondition(NodePtr joinCondition) : condition(std::move(joinCondition)) {}

    NodePtr condition;
};

/// `Using (a, b)`.
struct ORVANE_PLATFORM_EXPORT NamedColumnsJoin : NodeOfKind<NodeKind::NamedColumnsJoin> {
    explicit NamedColumnsJoin(NodeList joinColumns) : columns(std::move(joinColumns)) {}

    NodeList columns; ///< ColumnReference without qualifiers
};

enum class JoinKind { Inner, Left, Right, Full };

/// Two joined sources.
struct ORVANE_PLATFORM_EXPORT JoinNode : NodeOfKind<NodeKind::JoinNode> {
    JoinNode(JoinKind joinKind, bool isNatural, NodePtr leftSource, NodePtr rightSource, NodePtr joinMatching)
        : join(joinKind), natural(isNatural), left(std::move(leftSource)), right(std::move(rightSource)),
          matching(std::move(joinMatching)) {}

    JoinKind join;
    bool natural;
    NodePtr left;
    NodePtr right;
    NodePtr matching; ///< JoinCondition or NamedColumnsJoin; null for a natural join
};

/// The sources after From, separated by commas.
struct ORVANE_PLATFORM_EXPORT FromSource : NodeOfKind<NodeKind::FromSource> {
    explicit FromSource(NodeList fromSources) : sources(std::move(fromSources)) {}

    NodeList sources; ///< TablePrimary, DerivedTable or JoinNode
};

/// `Into name` or `Into 'path'`: the table or the file that the result of the query becomes.
struct ORVANE_PLATFORM_EXPORT IntoClause : NodeOfKind<NodeKind::IntoClause> {
    enum class Target { Table, File };

    explicit IntoClause(std::wstring targetName, Target intoTarget = Target::Table)
        : name(std::move(targetName)), target(intoTarget) {}

    std::wstring name;
    Target target;
};

/// One term of Order By.
struct ORVANE_PLATFORM_EXPORT SortSpecification : NodeOfKind<NodeKind::SortSpecification> {
    enum class Direction { Unstated, Ascending, Descending };
    enum class Nulls { Unstated, First, Last };

    explicit SortSpecification(NodePtr sortKey) : key(std::move(sortKey)) {}

    NodePtr key;
    Direction direction = Direction::Unstated;
    Nulls nulls = Nulls::Unstated;
};

/// A query named before the statement: `With name (columns) As (query)`.
struct CommonTable {
    std::wstring name;
    NodeList columns; ///< ColumnReference without qualifiers; empty: named by the query
    NodePtr query;
    SourceRange place = {}; ///< of the name
};

/// What applies to the whole of a query.
struct ORVANE_PLATFORM_EXPORT QueryExpression : Node {
    std::vector<CommonTable> with;
    bool recursive = false;   ///< `With Recursive`
    NodeList orderBy;         ///< SortSpecification
    NodePtr limit;            ///< null when there is none
    NodePtr offset;           ///< null when there is none
    bool offsetFirst = false; ///< the text has the offset before the limit, as `Limit m, n`

    /// Whether the query would mean something else as a part of another without parentheses around it.
    bool hasClauses() const { return !with.empty() || !orderBy.empty() || limit || offset; }

protected:
    using Node::Node;
};

/// `Table name`: the query of all rows and columns of one table.
struct ORVANE_PLATFORM_EXPORT ExplicitTable : NodeOfKind<NodeKind::ExplicitTable, QueryExpression> {
    explicit ExplicitTable(std::wstring tableName) : name(std::move(tableName)) {}

    std::wstring name;
};

enum class SetQuantifier { Unstated, All, Distinct };

/// One Select.
struct ORVANE_PLATFORM_EXPORT QuerySpecification : NodeOfKind<NodeKind::QuerySpecification, QueryExpression> {
    SetQuantifier quantifier = SetQuantifier::Unstated;
    NodeList columns; ///< DerivedColumn
    /// RowValueExpressionList: the query is `Values (…), (…)`, and nothing but what QueryExpression has
    /// applies. Its columns are those of the first row under the names that SQLite gives them. Null for a
    /// Select.
    NodePtr rows;
    NodePtr into; ///< IntoClause or null
    NodePtr from; ///< FromSource, or null for a query of constants
    NodePtr where;
    NodeList groupBy;
    NodePtr having;
};

enum class SetOperator { Union, UnionAll, Intersect, Except };

/// Two queries put together, the operands being QueryExpression. Without a right one it is the left one in
/// parentheses, to which clauses are added: `(Select … Limit 5) Limit 3`.
struct ORVANE_PLATFORM_EXPORT QueryOperation : NodeOfKind<NodeKind::QueryOperation, QueryExpression> {
    QueryOperation(SetOperator setOperator, NodePtr leftQuery, NodePtr rightQuery)
        : operation(setOperator), left(std::move(leftQuery)), right(std::move(rightQuery)) {}

    SetOperator operation;
    NodePtr left;
    NodePtr right; ///< or null
};

/// The Select whose columns name those of a query: of several put together, the first. Null for `Table t`.
inline const QuerySpecification* firstSelect(const Node* query) {
    while (const auto* operation = nodeAs<QueryOperation>(query)) {
        query = operation->left.get();
    }
    return nodeAs<QuerySpecification>(query);
}

/// How many values a node gives together: those of a row or of a query. 0 where an asterisk hides it.
ORVANE_PLATFORM_EXPORT std::size_t rowSize(const NodePtr& node);

/// What stands after From when that is one source; otherwise null.
inline NodePtr onlySource(const QuerySpecification& query) {
    const auto* from = nodeAs<FromSource>(query.from);
    return from && from->sources.size() == 1 ? from->sources.front() : nullptr;
}

/// Whether the node is a QueryExpression and so stands in parentheses when used as a value.
inline bool isQuery(const Node* node) {
    return node && (node->kind == NodeKind::QuerySpecification || node->kind == NodeKind::QueryOperation ||
                    node->kind == NodeKind::ExplicitTable);
}
inline bool isQuery(const NodePtr& node) {
    return isQuery(node.get());
}

} // namespace orvane::sql::ast
