#pragma once

#include "platform/Export.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace orvane::sql::ast {

enum class NodeKind {
    ColumnReference,
    ContextuallyTypedValueSpecification,
    DeleteStatement,
    DerivedColumn,
    DerivedTable,
    ExplicitTable,
    FromSource,
    Function,
    InsertStatement,
    IntoClause,
    JoinCondition,
    JoinNode,
    NamedColumnsJoin,
    Number,
    Operation,
    QualifiedAsterisk,
    QueryOperation,
    QuerySpecification,
    Range,
    RowValueExpression,
    RowValueExpressionList,
    SetClause,
    SortSpecification,
    String,
    TablePrimary,
    TernaryLogicNode,
    UpdateStatement,
    SessionStatement
};

/// A stretch of a statement's text, in units of std::wstring.
struct SourceRange {
    std::size_t offset = 0;
    std::size_t length = 0;
};

/// A piece of a statement. A tree is built once, then only read; subtrees may be shared between trees.
/// Texts in nodes are std::wstring, which holds UTF-32 where wchar_t has 32 bits (and UTF-16 where it has
/// 16): lengths and offsets count its units.
struct ORVANE_PLATFORM_EXPORT Node {
    virtual ~Node();
    Node& operator=(const Node&) = delete;
    const NodeKind kind;
    /// Where the node was written, without its alias and without parentheses around it: of a table and of
    /// Into the name, of a result column the expression as it stands there, of the root everything. Empty
    /// where the text has nothing of its own for the node, and in a tree made by hand.
    SourceRange place;

protected:
    explicit Node(NodeKind nodeKind) : kind(nodeKind) {}
    Node(const Node&) = default;
};

using NodePtr = std::shared_ptr<Node>;
using NodeList = std::vector<NodePtr>;

/// Gives each kind of node its number, so that the number and the type cannot disagree.
template<NodeKind Kind, class Base = Node>
struct NodeOfKind : Base {
    static constexpr NodeKind kindOfThis = Kind;

protected:
    NodeOfKind() : Base(Kind) {}
};

/// The node as a `T`; null when it is of another kind or there is none.
template<class T>
const T* nodeAs(const Node* node) {
    return node && node->kind == T::kindOfThis ? static_cast<const T*>(node) : nullptr;
}
template<class T>
const T* nodeAs(const NodePtr& node) {
    return nodeAs<T>(node.get());
}

} // namespace orvane::sql::ast
