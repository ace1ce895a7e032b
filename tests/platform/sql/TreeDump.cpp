#include "platform/sql/TreeDump.h"

#include "platform/sql/tree/NodeVisitor.h"

namespace orvane::tests {

namespace {

using namespace sql::ast;

class Dump : public NodeVisitor {
public:
    std::wstring text;

    void visit(const ColumnReference& n) override { add(L"column", n.qualifier, n.name); }
    void visit(const ContextuallyTypedValueSpecification& n) override { add(L"value", n.parameter); }
    void visit(const DeleteStatement& n) override { add(L"delete", n.table, n.where); }
    void visit(const DerivedColumn& n) override { add(L"result", n.expression, n.alias); }
    void visit(const DerivedTable& n) override { add(L"derived", n.query, n.alias, n.columns); }
    void visit(const ExplicitTable& n) override { addQuery(n, L"table", n.name); }
    void visit(const FromSource& n) override { add(L"from", n.sources); }
    void visit(const InsertStatement& n) override { add(L"insert", n.table, n.columns, n.source); }
    void visit(const IntoClause& n) override { add(L"into", n.name, static_cast<int>(n.target)); }
    void visit(const JoinCondition& n) override { add(L"on", n.condition); }
    void visit(const JoinNode& n) override {
        add(L"join", static_cast<int>(n.join), n.natural, n.left, n.right, n.matching);
    }
    void visit(const NamedColumnsJoin& n) override { add(L"using", n.columns); }
    void visit(const Number& n) override { add(L"number", n.text); }
    void visit(const Operation& n) override {
        add(L"operation", static_cast<int>(n.code()), n.left(), n.right(), n.escape(), n.name());
    }
    void visit(const QualifiedAsterisk& n) override { add(L"all", n.qualifier); }
    void visit(const QueryOperation& n) override {
        addQuery(n, L"set", static_cast<int>(n.operation), n.left, n.right);
    }
    void visit(const QuerySpecification& n) override {
        if (n.rows) {
            return addQuery(n, L"values", n.rows);
        }
        addQuery(n, L"select", static_cast<int>(n.quantifier), n.columns, n.into, n.from, n.where, n.groupBy,
                 n.having);
    }
    void visit(const Range& n) override { add(L"range", n.low, n.high); }
    void visit(const RowValueExpression& n) override { add(L"row", n.values); }
    void visit(const RowValueExpressionList& n) override { add(L"rows", n.elements); }
    void visit(const SetClause& n) override { add(L"set", n.target, n.value); }
    void visit(const SortSpecification& n) override {
        add(L"sort", n.key, static_cast<int>(n.direction), static_cast<int>(n.nulls));
    }
    void visit(const String& n) override { add(L"string", n.value, static_cast<int>(n.content)); }
    void visit(const TablePrimary& n) override {
        add(L"source", n.name, n.alias, n.isCall, n.arguments, n.columnName);
    }
    void visit(const TernaryLogicNode& n) override { add(L"truth", static_cast<int>(n.value)); }
    void visit(const UpdateStatement& n) override { add(L"update", n.table, n.assignments, n.from, n.where); }
    void visit(const Function& n) override {
        add(L"function", n.name, n.distinct, n.form, n.arguments, n.orderBy, n.filter);
        if (n.over) {
            add(L"over", n.over->partitionBy, n.over->orderBy);
            if (const auto& frame = n.over->frame) {
                add(L"frame", static_cast<int>(frame->unit), static_cast<int>(frame->exclusion),
                    static_cast<int>(frame->start.kind), frame->start.offset);
                if (frame->end) {
                    add(L"to", static_cast<int>(frame->end->kind), frame->end->offset);
                }
            }
        }
    }
    void faultAction() override { text += L"<none>"; }
    void visit(const SessionStatement& n) override {
        add(L"session", static_cast<int>(n.action), n.name, n.columns, n.query, n.ifExists);
    }

private:
    template<class... Fields>
    void addQuery(const QueryExpression& n, const wchar_t* kind, const Fields&... fields) {
        for (const CommonTable& table : n.with) {
            add(L"with", table.name, n.recursive, table.columns, table.query);
        }
        add(kind, fields..., n.orderBy, n.limit, n.offset, n.offsetFirst);
    }
    template<class... Fields>
    void add(const wchar_t* name, const Fields&... fields) {
        text += L'(';
        text += name;
        (addField(fields), ...);
        text += L')';
    }
    void addField(const std::wstring& value) { text += L" {" + value + L'}'; }
    void addField(int value) { text += L' ' + std::to_wstring(value); }
    void addField(const NodePtr& node) {
        text += L' ';
        doVisit(node);
    }
    void addField(const NodeList& nodes) {
        text += L" [";
        for (const NodePtr& node : nodes) {
            addField(node);
        }
        text += L']';
    }
};

} // namespace

std::wstring dumpTree(const sql::ast::Node& node) {
    Dump dump;
    dump.doVisit(node);
    return dump.text;
}

} // namespace orvane::tests
