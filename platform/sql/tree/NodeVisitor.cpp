#include "platform/sql/tree/NodeVisitor.h"

#include <algorithm>

namespace orvane::sql::ast {

namespace {

using NodeFunction = std::function<void(const Node&)>;

/// Hands the children of a node to a function.
class Children : public NodeVisitor {
public:
    explicit Children(const NodeFunction& take) : take_(take) {}

    void visit(const ColumnReference&) override {}
    void visit(const ContextuallyTypedValueSpecification&) override {}
    void visit(const DeleteStatement& node) override { add(node.table, node.where); }
    void visit(const DerivedColumn& node) override { add(node.expression); }
    void visit(const DerivedTable& node) override { add(node.query, node.columns); }
    void visit(const ExplicitTable& node) override {
        addNamed(node);
        add(node.orderBy, node.limit, node.offset);
    }
    void visit(const FromSource& node) override { add(node.sources); }
    void visit(const Function& node) override {
        add(node.arguments, node.orderBy, node.filter);
        if (node.over) {
            add(node.over->partitionBy, node.over->orderBy);
            if (node.over->frame) {
                add(node.over->frame->start.offset);
                add(node.over->frame->end ? node.over->frame->end->offset : nullptr);
            }
        }
    }
    void visit(const InsertStatement& node) override { add(node.table, node.columns, node.source); }
    void visit(const IntoClause&) override {}
    void visit(const JoinCondition& node) override { add(node.condition); }
    void visit(const JoinNode& node) override { add(node.left, node.right, node.matching); }
    void visit(const NamedColumnsJoin& node) override { add(node.columns); }
    void visit(const Number&) override {}
    void visit(const Operation& node) override { add(node.left(), node.right(), node.escape()); }
    void visit(const QualifiedAsterisk&) override {}
    void visit(const QueryOperation& node) override {
        addNamed(node);
        add(node.left, node.right, node.orderBy, node.limit, node.offset);
    }
    void visit(const QuerySpecification& node) override {
        addNamed(node);
        if (node.rows) {
            return add(node.rows, node.orderBy, node.limit, node.offset);
        }
        add(node.columns, node.into, node.from, node.where, node.groupBy, node.having, node.orderBy,
            node.limit, node.offset);
    }
    void visit(const Range& node) override { add(node.low, node.high); }
    void visit(const RowValueExpression& node) override { add(node.values); }
    void visit(const RowValueExpressionList& node) override { add(node.elements); }
    void visit(const SetClause& node) override { add(node.target, node.value); }
    void visit(const SortSpecification& node) override { add(node.key); }
    void visit(const String&) override {}
    void visit(const TablePrimary& node) override { add(node.arguments); }
    void visit(const TernaryLogicNode&) override {}
    void visit(const UpdateStatement& node) override {
        add(node.table, node.assignments, node.from, node.where);
    }
    void faultAction() override {}
    void visit(const SessionStatement& node) override { add(node.columns, node.query); }

private:
    void add(const NodePtr& child) {
        if (child) {
            take_(*child);
        }
    }
    void add(const NodeList& children) {
        for (const NodePtr& child : children) {
            add(child);
        }
    }
    template<class First, class... Rest>
    void add(const First& first, const Rest&... rest) {
        add(first);
        (add(rest), ...);
    }
    void addNamed(const QueryExpression& query) {
        for (const CommonTable& table : query.with) {
            add(table.columns, table.query);
        }
    }

    const NodeFunction& take_;
};

} // namespace

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
    case NodeKind::SessionStatement: return visit(static_cast<const SessionStatement&>(node));
    }
    faultAction();
}

std::size_t rowSize(const NodePtr& node) {
    if (const auto* row = nodeAs<RowValueExpression>(node)) {
        return row->values.size();
    }
    if (!isQuery(node)) {
        return 1;
    }
    const QuerySpecification* select = firstSelect(node.get());
    const bool hasAsterisk =
        !select || std::any_of(select->columns.begin(), select->columns.end(), [](const NodePtr& each) {
            const auto* column = nodeAs<DerivedColumn>(each);
            return column && nodeAs<QualifiedAsterisk>(column->expression);
        });
    return hasAsterisk ? 0 : select->columns.size();
}

void forEachNode(const Node& root, const std::function<bool(const Node&)>& visit) {
    if (visit(root)) {
        const NodeFunction descend = [&visit](const Node& child) { forEachNode(child, visit); };
        Children(descend).doVisit(root);
    }
}

} // namespace orvane::sql::ast
