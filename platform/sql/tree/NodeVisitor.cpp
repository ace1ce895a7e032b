#include "platform/sql/tree/NodeVisitor.h"

namespace orvane::sql::ast {

Node::~Node() = default;
NodeVisitor::~NodeVisitor() = default;

void NodeVisitor::doVisit(const NodePtr& node) {
    if (node) {
        doVisit(*node);
    } else {
        faultAction();
    }
}

void NodeVisitor::doVisit(const Node& node) {
    switch (node.kind) {
    case NodeKind::ColumnReference: return visit(static_cast<const ColumnReference&>(node));
    case NodeKind::ContextuallyTypedValueSpecification:
        return visit(static_cast<const ContextuallyTypedValueSpecification&>(node));
    case NodeKind::DeleteStatement: return visit(static_cast<const DeleteStatement&>(node));
    case NodeKind::DerivedColumn: return visit(static_cast<const DerivedColumn&>(node));
    case NodeKind::DerivedTable: return visit(static_cast<const DerivedTable&>(node));
    case NodeKind::ExplicitTable: return visit(static_cast<const ExplicitTable&>(node));
    case NodeKind::FromSource: return visit(static_cast<const FromSource&>(node));
    case NodeKind::Function: return visit(static_cast<const Function&>(node));
    case NodeKind::InsertStatement: return visit(static_cast<const InsertStatement&>(node));
    case NodeKind::IntoClause: return visit(static_cast<const IntoClause&>(node));
    case NodeKind::JoinCondition: return visit(static_cast<const JoinCondition&>(node));
    case NodeKind::JoinNode: return visit(static_cast<const JoinNode&>(node));
    case NodeKind::NamedColumnsJoin: return visit(static_cast<const NamedColumnsJoin&>(node));
    case NodeKind::Number: return visit(static_cast<const Number&>(node));
    case NodeKind::Operation: return visit(static_cast<const Operation&>(node));
    case NodeKind::QualifiedAsterisk: return visit(static_cast<const QualifiedAsterisk&>(node));
    case NodeKind::QueryOperation: return visit(static_cast<const QueryOperation&>(node));
    case NodeKind::QuerySpecification: return visit(static_cast<const QuerySpecification&>(node));
    case NodeKind::Range: return visit(static_cast<const Range&>(node));
    case NodeKind::RowValueExpression: return visit(static_cast<const RowValueExpression&>(node));
    case NodeKind::RowValueExpressionList: return visit(static_cast<const RowValueExpressionList&>(node));
    case NodeKind::SetClause: return visit(static_cast<const SetClause&>(node));
    case NodeKind::SortSpecification: return visit(static_cast<const SortSpecification&>(node));
    case NodeKind::String: return visit(static_cast<const String&>(node));
    case NodeKind::TablePrimary: return visit(static_cast<const TablePrimary&>(node));
    case NodeKind::TernaryLogicNode: return visit(static_cast<const TernaryLogicNode&>(node));
    case NodeKind::UpdateStatement: return visit(static_cast<const UpdateStatement&>(node));
    }
    faultAction();
}

} // namespace orvane::sql::ast
