#pragma once

#include "platform/sql/tree/Expressions.h"
#include "platform/sql/tree/Queries.h"
#include "platform/sql/tree/Statements.h"

#include <functional>

namespace orvane::sql::ast {

/// One operation per kind of node, chosen by doVisit. Visiting children is the visitor's own affair.
class ORVANE_PLATFORM_EXPORT NodeVisitor {
public:
    virtual ~NodeVisitor();

    virtual void visit(const ColumnReference& node) = 0;
    virtual void visit(const ContextuallyTypedValueSpecification& node) = 0;
    virtual void visit(const DeleteStatement& node) = 0;
    virtual void visit(const DerivedColumn& node) = 0;
    virtual void visit(const DerivedTable& node) = 0;
    virtual void visit(const ExplicitTable& node) = 0;
    virtual void visit(const FromSource& node) = 0;
    virtual void visit(const Function& node) = 0;
    virtual void visit(const InsertStatement& node) = 0;
    virtual void visit(const IntoClause& node) = 0;
    virtual void visit(const JoinCondition& node) = 0;
    virtual void visit(const JoinNode& node) = 0;
    virtual void visit(const NamedColumnsJoin& node) = 0;
    virtual void visit(const Number& node) = 0;
    virtual void visit(const Operation& node) = 0;
    virtual void visit(const QualifiedAsterisk& node) = 0;
    virtual void visit(const QueryOperation& node) = 0;
    virtual void visit(const QuerySpecification& node) = 0;
    virtual void visit(const Range& node) = 0;
    virtual void visit(const RowValueExpression& node) = 0;
    virtual void visit(const RowValueExpressionList& node) = 0;
    virtual void visit(const SetClause& node) = 0;
    virtual void visit(const SortSpecification& node) = 0;
    virtual void visit(const String& node) = 0;
    virtual void visit(const TablePrimary& node) = 0;
    virtual void visit(const TernaryLogicNode& node) = 0;
    virtual void visit(const UpdateStatement& node) = 0;
    /// Takes the place of `visit` where a tree that was put together by hand holds no node, or one of no
    /// known kind.
    virtual void faultAction() = 0;
    virtual void visit(const SessionStatement& node) = 0;

    void doVisit(const Node& node);
    void doVisit(const NodePtr& node);
};

/// Visits every node of a tree: `root` first, a node before its children, these in the order of the text. The
/// children of a node for which `visit` answers false are left out.
ORVANE_PLATFORM_EXPORT void forEachNode(const Node& root, const std::function<bool(const Node&)>& visit);

} // namespace orvane::sql::ast
