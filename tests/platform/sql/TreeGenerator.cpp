#include "platform/sql/TreeGenerator.h"

#include <array>

namespace orvane::tests {

using namespace sql;
using namespace sql::ast;

std::wstring TreeGenerator::name() {
    static const std::array names{
        L"a",    L"name",   L"Имя",      L"x y",    L"q\"q",     L"select",       L"Left", L"date",
        L"part", L"entire", L"Entirely", L"rownum", L"🚲",        L"obj",          L"1st",  L"tr$$_rendition",
        L"]",    L"fetch",  L"values",   L"table",  L"contains", L"current_date", L"'",    L"over"};
    return pick(names);
}

NodePtr TreeGenerator::column() {
    return std::make_shared<ColumnReference>(chance(30) ? name() : L"", name());
}

NodeList TreeGenerator::columns() {
    NodeList list;
    for (int i = below(3); i >= 0; --i) {
        list.push_back(std::make_shared<ColumnReference>(L"", name()));
    }
    return list;
}

NodeList TreeGenerator::expressions(int depth, int fewest, int most) {
    NodeList list;
    for (int i = fewest + below(most - fewest + 1); i > 0; --i) {
        list.push_back(expression(depth));
    }
    return list;
}

NodePtr TreeGenerator::expression(int depth) {
    if (depth > 0 && chance(70)) {
        return operation(depth - 1);
    }
    static const std::array numbers{
        L"0", L"1.5", L".5", L"2.", L"1e10", L"0x1F", L"123456789012345678901234567890"};
    static const std::array texts{L"", L"it's", L"Омск", L"😀", L"--", L"a\nb", L"\"", L"/*"};
    static const std::array parameters{L"", L"?", L"?3", L":имя"};
    switch (below(8)) {
    case 0: return std::make_shared<Number>(pick(numbers));
    case 1: return std::make_shared<String>(pick(texts));
    case 2: return std::make_shared<String>(L"00fF", String::Content::Hexadecimal);
    case 3: return std::make_shared<TernaryLogicNode>(static_cast<TernaryLogic::Value>(below(3)));
    case 4: return std::make_shared<ContextuallyTypedValueSpecification>(pick(parameters));
    case 5: return std::make_shared<Function>(L"Current_Date", NodeList(), Function::Bare);
    default: return column();
    }
}

NodePtr TreeGenerator::operation(int depth) {
    using Code = OperationCode;
    static const std::array binary{
        Code::Or,     Code::Xor,        Code::And,          Code::Equal,         Code::NotEqual,
        Code::Less,   Code::Greater,    Code::LessOrEqual,  Code::Join,          Code::IsDistinctFrom,
        Code::Add,    Code::Subtract,   Code::Multiply,     Code::Divide,        Code::Quotient,
        Code::Mod,    Code::Power,      Code::Contains,     Code::ContainsPart,  Code::ContainsEntire,
        Code::Within, Code::Intersects, Code::PartlyWithin, Code::EntirelyWithin};
    static const std::array unary{Code::Not, Code::Negate, Code::UnaryPlus, Code::IsNull, Code::IsNotNull};
    switch (below(12)) {
    case 0: return std::make_shared<Operation>(pick(unary), expression(depth));
    case 1: return std::make_shared<Operation>(Code::Collate, expression(depth), name());
    case 2: return std::make_shared<Operation>(Code::Cast, expression(depth), std::wstring(L"Decimal(10,2)"));
    case 3: return std::make_shared<Operation>(Code::Exists, query(depth));
    case 4: return caseOf(depth);
    case 5: return function(depth);
    case 6: return query(depth);
    case 7: return rowValue(depth);
    case 8:
    case 9: return comparison(depth);
    default: return std::make_shared<Operation>(pick(binary), expression(depth), expression(depth));
    }
}

NodePtr TreeGenerator::comparison(int depth) {
    using Code = OperationCode;
    const auto either = [this](Code one, Code other) { return chance(50) ? one : other; };
    switch (below(4)) {
    case 0:
        return std::make_shared<Operation>(either(Code::Between, Code::NotBetween), expression(depth),
                                           std::make_shared<Range>(expression(depth), expression(depth)));
    case 1: {
        const Code code = chance(50) ? either(Code::Like, Code::NotLike) : either(Code::Glob, Code::NotGlob);
        return std::make_shared<Operation>(code, expression(depth), expression(depth),
                                           chance(30) ? expression(depth) : nullptr);
    }
    case 2:
        return std::make_shared<Operation>(either(Code::Is, Code::IsNot), expression(depth),
                                           expression(depth));
    default: break;
    }
    const Code code = either(Code::In, Code::NotIn);
    if (chance(40)) {
        NodePtr asked = query(depth);
        const auto* select = nodeAs<QuerySpecification>(asked); // after In, Values begins a list
        return select && select->rows && !select->hasClauses()
                   ? expression(0)
                   : std::make_shared<Operation>(code, expression(0), std::move(asked));
    }
    const bool rows = chance(30);
    const auto value =
        [&](int valueDepth) -> NodePtr { // every one of a list is as long as what is looked for
        NodePtr one =
            rows ? std::make_shared<RowValueExpression>(expressions(0, 2, 2)) : expression(valueDepth);
        return rows || rowSize(one) == 1 ? one : column();
    };
    NodeList elements;
    for (int i = 1 + below(2); i >= 0; --i) {
        elements.push_back(value(depth));
    }
    return std::make_shared<Operation>(code, value(0),
                                       std::make_shared<RowValueExpressionList>(std::move(elements)));
}

NodePtr TreeGenerator::caseOf(int depth) {
    NodeList branches;
    for (int i = below(2); i >= 0; --i) {
        branches.push_back(
            std::make_shared<RowValueExpression>(NodeList{expression(depth), expression(depth)}));
    }
    if (chance(50)) {
        branches.push_back(std::make_shared<RowValueExpression>(NodeList{expression(depth)}));
    }
    return std::make_shared<Operation>(OperationCode::Case, chance(50) ? expression(depth) : nullptr,
                                       std::make_shared<RowValueExpressionList>(std::move(branches)));
}

NodePtr TreeGenerator::function(int depth) {
    auto node = std::make_shared<Function>(name(), expressions(depth, 0, 3));
    if (node->arguments.empty() && chance(50)) {
        node->arguments.push_back(std::make_shared<QualifiedAsterisk>());
    } else {
        node->distinct = !node->arguments.empty() && chance(20);
    }
    if (chance(20)) {
        node->filter = expression(depth);
    }
    if (chance(30)) {
        node->over = window(depth);
    }
    return node;
}

std::shared_ptr<Window> TreeGenerator::window(int depth) {
    auto node = std::make_shared<Window>();
    node->partitionBy = expressions(depth, 0, 2);
    if (chance(60)) {
        node->orderBy.push_back(sortTerm(depth));
    }
    // A frame begins before everything at the earliest and ends after everything at the latest.
    const auto bound = [&](int earliest) {
        Window::Bound result{static_cast<Window::BoundKind>(earliest + below(4)), nullptr};
        if (result.kind == Window::BoundKind::Preceding || result.kind == Window::BoundKind::Following) {
            result.offset = expression(depth);
        }
        return result;
    };
    if (chance(60)) {
        Window::Frame frame{
            static_cast<Window::Unit>(below(3)), bound(0), {}, static_cast<Window::Exclusion>(below(4))};
        if (chance(50)) {
            frame.end = bound(1);
        }
        node->frame = frame;
    }
    return node;
}

NodePtr TreeGenerator::sortTerm(int depth) {
    auto term = std::make_shared<SortSpecification>(expression(depth));
    term->direction = static_cast<SortSpecification::Direction>(below(3));
    term->nulls = static_cast<SortSpecification::Nulls>(below(3));
    return term;
}

NodePtr TreeGenerator::query(int depth) {
    const int kind = below(10);
    if (kind == 0) {
        auto table = std::make_shared<ExplicitTable>(name());
        finish(*table, 0);
        return table;
    }
    return kind <= 3 ? setOperation(depth) : select(depth);
}

void TreeGenerator::finish(QueryExpression& query, int depth) {
    if (depth > 0 && chance(20)) {
        query.recursive = chance(50);
        query.with.push_back({name(), chance(50) ? columns() : NodeList(), this->query(depth - 1)});
    }
    if (chance(30)) {
        query.orderBy.push_back(sortTerm(depth));
    }
    query.limit = chance(30) ? expression(depth) : nullptr;
    query.offset = chance(20) ? expression(depth) : nullptr;
    query.offsetFirst = query.limit && query.offset && chance(50);
}

NodePtr TreeGenerator::select(int depth) {
    const int inner = depth > 0 ? depth - 1 : 0;
    auto node = std::make_shared<QuerySpecification>();
    if (chance(10)) {
        NodeList rows;
        for (int i = below(3); i >= 0; --i) {
            rows.push_back(
                std::make_shared<RowValueExpression>(NodeList{expression(inner), expression(inner)}));
        }
        node->rows = std::make_shared<RowValueExpressionList>(std::move(rows));
        node->columns = {std::make_shared<DerivedColumn>(expression(0)),
                         std::make_shared<DerivedColumn>(expression(0))};
        finish(*node, depth);
        return node;
    }
    node->quantifier = static_cast<SetQuantifier>(below(3));
    for (int i = below(3); i >= 0; --i) {
        node->columns.push_back(
            chance(20) ? std::make_shared<DerivedColumn>(std::make_shared<QualifiedAsterisk>(maybeName()))
                       : std::make_shared<DerivedColumn>(expression(inner), maybeName()));
    }
    if (chance(80)) {
        NodeList sources;
        for (int i = below(3); i >= 0; --i) {
            sources.push_back(source(inner));
        }
        node->from = std::make_shared<FromSource>(std::move(sources));
    }
    node->where = chance(50) ? expression(inner) : nullptr;
    node->groupBy = expressions(inner, 0, 1);
    node->having = chance(20) ? expression(inner) : nullptr;
    finish(*node, depth);
    return node;
}

NodePtr TreeGenerator::setOperation(int depth) {
    const int inner = depth > 0 ? depth - 1 : 0;
    const auto operand = [&] { return depth > 0 ? query(inner) : std::make_shared<ExplicitTable>(name()); };
    NodePtr left = operand();
    NodePtr right = operand();
    auto node = std::make_shared<QueryOperation>(static_cast<SetOperator>(below(4)), left, right);
    finish(*node, inner);
    return node;
}

NodePtr TreeGenerator::source(int depth) {
    if (depth > 0 && chance(50)) {
        const bool natural = chance(20);
        NodePtr matching;
        if (!natural) {
            matching = chance(50) ? NodePtr(std::make_shared<JoinCondition>(expression(depth - 1)))
                                  : std::make_shared<NamedColumnsJoin>(columns());
        }
        return std::make_shared<JoinNode>(static_cast<JoinKind>(below(4)), natural, source(depth - 1),
                                          source(depth - 1), std::move(matching));
    }
    if (depth > 0 && chance(30)) {
        const std::wstring alias = maybeName();
        const bool isNamed = !alias.empty() && chance(30);
        return std::make_shared<DerivedTable>(query(depth - 1), alias, isNamed ? columns() : NodeList());
    }
    auto table = std::make_shared<TablePrimary>(name(), maybeName());
    if (depth > 0 && chance(10)) {
        table->name = L"Generate_Series";
        table->isCall = true;
        table->arguments = expressions(depth - 1, 0, 3);
        table->columnName = table->alias.empty() ? std::wstring() : maybeName();
    }
    return table;
}

NodePtr TreeGenerator::insert() {
    auto node = std::make_shared<InsertStatement>();
    node->table = std::make_shared<TablePrimary>(name(), maybeName());
    node->columns = chance(50) ? columns() : NodeList();
    const int kind = below(3);
    if (kind == 1) {
        NodeList rows;
        for (int i = below(3); i >= 0; --i) {
            rows.push_back(std::make_shared<RowValueExpression>(expressions(2, 2, 2)));
        }
        node->source = std::make_shared<RowValueExpressionList>(std::move(rows));
    } else if (kind == 2) {
        node->source = query(2);
        const auto* select = nodeAs<QuerySpecification>(node->source);
        if (select && select->rows && !select->hasClauses()) {
            node->source = select->rows;
        }
    }
    return node;
}

NodePtr TreeGenerator::update() {
    auto node = std::make_shared<UpdateStatement>();
    node->table = std::make_shared<TablePrimary>(name(), maybeName());
    for (int i = below(2); i >= 0; --i) {
        NodePtr target = chance(70) ? NodePtr(std::make_shared<ColumnReference>(L"", name()))
                                    : std::make_shared<RowValueExpression>(columns());
        node->assignments.push_back(std::make_shared<SetClause>(std::move(target), expression(2)));
    }
    node->from = chance(30) ? std::make_shared<FromSource>(NodeList{source(1)}) : nullptr;
    node->where = chance(60) ? expression(2) : nullptr;
    return node;
}

NodePtr TreeGenerator::statement() {
    switch (below(8)) {
    case 0: return insert();
    case 1: return update();
    case 2: {
        auto node = std::make_shared<DeleteStatement>();
        node->table = std::make_shared<TablePrimary>(name(), maybeName());
        node->where = chance(60) ? expression(3) : nullptr;
        return node;
    }
    case 3: return expression(4);
    case 4: {
        auto node = std::static_pointer_cast<QuerySpecification>(select(2));
        node->into = std::make_shared<IntoClause>(name(), chance(50) ? IntoClause::Target::Table
                                                                     : IntoClause::Target::File);
        return node;
    }
    default: return query(4);
    }
}

} // namespace orvane::tests
