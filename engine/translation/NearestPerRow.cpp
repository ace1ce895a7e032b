#include "engine/translation/NearestPerRow.h"

#include "engine/translation/QueryParts.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/tree/Expressions.h"
#include "platform/sql/tree/NodeVisitor.h"

#include <algorithm>
#include <optional>
#include <string>

namespace orvane::engine {

namespace {

using namespace sql;

std::optional<long> wholeNumber(const ast::NodePtr& node) {
    constexpr std::size_t mostDigits = 8;
    const auto* number = ast::nodeAs<ast::Number>(node);
    const bool isWhole = number && !number->text.empty() && number->text.size() <= mostDigits &&
                         number->text.find_first_not_of(L"0123456789") == std::wstring::npos;
    return isWhole ? std::optional(std::stol(number->text)) : std::nullopt;
}

/// The largest number that a term admits for a column; none for other terms.
std::optional<long> mostOf(const ast::Operation& term, const std::wstring& column) {
    const auto isColumn = [&column](const ast::NodePtr& node) {
        const auto* reference = ast::nodeAs<ast::ColumnReference>(node);
        return reference && toLowercase(reference->name) == column;
    };
    const bool isFirst = isColumn(term.left());
    const ast::NodePtr& other = isFirst ? term.right() : term.left();
    if (!isFirst && !isColumn(term.right())) {
        return std::nullopt;
    }
    const auto number = wholeNumber(other);
    switch (term.code()) {
    case OperationCode::Equal: return number;
    case OperationCode::LessOrEqual: return isFirst ? number : std::nullopt;
    case OperationCode::GreaterOrEqual: return isFirst ? std::nullopt : number;
    case OperationCode::Less: return isFirst && number ? std::optional(*number - 1) : std::nullopt;
    case OperationCode::Greater: return !isFirst && number ? std::optional(*number - 1) : std::nullopt;
    case OperationCode::Between: {
        const auto* range = isFirst ? ast::nodeAs<ast::Range>(term.right()) : nullptr;
        return range ? wholeNumber(range->high) : std::nullopt;
    }
    default: return std::nullopt;
    }
}

/// The same of a conjunction.
std::optional<long> mostWithin(const ast::NodePtr& condition, const std::wstring& column) {
    const auto* operation = ast::nodeAs<ast::Operation>(condition);
    if (!operation || operation->unary()) {
        return std::nullopt;
    }
    if (operation->code() != OperationCode::And) {
        return mostOf(*operation, column);
    }
    const auto left = mostWithin(operation->left(), column);
    return left ? left : mostWithin(operation->right(), column);
}

/// The two sources of a join, and what joins them.
struct Join {
    ast::NodePtr first;
    ast::NodePtr second;
    ast::NodePtr condition;
};

std::optional<Join> joinOf(const ast::NodePtr& from) {
    const auto* sources = ast::nodeAs<ast::FromSource>(from);
    Join join;
    if (sources && sources->sources.size() == 2) {
        join = {sources->sources[0], sources->sources[1], nullptr};
    } else if (sources && sources->sources.size() == 1) {
        const auto* node = ast::nodeAs<ast::JoinNode>(sources->sources.front());
        const auto* on = node ? ast::nodeAs<ast::JoinCondition>(node->matching) : nullptr;
        if (!on || node->join != ast::JoinKind::Inner) {
            return std::nullopt;
        }
        join = {node->left, node->right, on->condition};
    }
    const std::wstring first = qualifierOf(join.first);
    const std::wstring second = qualifierOf(join.second);
    return !first.empty() && !second.empty() && first != second ? std::optional(join) : std::nullopt;
}

/// The measure of an order by one distance, between a geometry of each of two tables.
const ast::Function* distanceOf(const ast::NodeList& order) {
    const auto* key = order.size() == 1 ? ast::nodeAs<ast::SortSpecification>(order.front()) : nullptr;
    const auto* call = key && isAscending(*key) ? distanceCall(key->key) : nullptr;
    return call && geometryReference(call->arguments[0]) && geometryReference(call->arguments[1]) ? call
                                                                                                  : nullptr;
}

/// Whether all columns of a value are those of one source, named in full.
bool isOf(const ast::NodePtr& source, const ast::NodePtr& value) {
    const std::wstring qualifier = qualifierOf(source);
    bool isOfSource = true;
    ast::forEachNode(*value, [&](const ast::Node& node) {
        const auto* column = ast::nodeAs<ast::ColumnReference>(&node);
        isOfSource =
            isOfSource && !ast::isQuery(&node) && (!column || toLowercase(column->qualifier) == qualifier);
        return isOfSource;
    });
    return isOfSource;
}

/// The only window function of a query's columns: a Row_Number. Null where there are others.
const ast::DerivedColumn* numberColumn(const ast::QuerySpecification& query) {
    const ast::DerivedColumn* found = nullptr;
    int numWindows = 0;
    for (const ast::NodePtr& node : query.columns) {
        const auto* column = ast::nodeAs<ast::DerivedColumn>(node);
        const auto* call = column ? ast::nodeAs<ast::Function>(column->expression) : nullptr;
        if (call && call->over && toLowercase(call->name) == L"row_number" && !column->alias.empty()) {
            found = column;
        }
        ast::forEachNode(*node, [&numWindows](const ast::Node& each) {
            const auto* function = ast::nodeAs<ast::Function>(&each);
            numWindows += function && (function->over || toLowercase(function->name) == L"rownum");
            return true;
        });
    }
    return numWindows == 1 ? found : nullptr;
}

/// The condition that a row of the second table is among the nearest to that of the first.
ast::NodePtr isAmongNearest(const ast::TablePrimary& table, const ast::NodePtr& condition,
                            const ast::NodePtr& distance, long most) {
    const std::wstring qualifier = table.alias.empty() ? table.name : table.alias;
    const auto row = std::make_shared<ast::ColumnReference>(qualifier, L"rowid");
    auto nearest = std::make_shared<ast::QuerySpecification>();
    nearest->columns.push_back(std::make_shared<ast::DerivedColumn>(row));
    nearest->from = std::make_shared<ast::FromSource>(
        ast::NodeList{std::make_shared<ast::TablePrimary>(table.name, table.alias)});
    nearest->where = condition;
    nearest->orderBy.push_back(std::make_shared<ast::SortSpecification>(distance));
    nearest->limit = std::make_shared<ast::Number>(std::to_wstring(most));
    return std::make_shared<ast::Operation>(OperationCode::In, row, std::move(nearest));
}

} // namespace

std::shared_ptr<const ast::QuerySpecification>
withNearestPerRow(const ast::QuerySpecification& query,
                  const std::function<bool(const ast::TablePrimary&)>& hasHiddenColumns) {
    const auto* derived = ast::nodeAs<ast::DerivedTable>(ast::onlySource(query));
    const auto* inner = derived ? ast::nodeAs<ast::QuerySpecification>(derived->query) : nullptr;
    const auto* numbered = inner && query.where ? numberColumn(*inner) : nullptr;
    if (!numbered || !derived->columns.empty() || !inner->with.empty() || !inner->groupBy.empty() ||
        inner->limit || inner->offset || inner->quantifier == ast::SetQuantifier::Distinct) {
        return nullptr;
    }
    const auto most = mostWithin(query.where, toLowercase(numbered->alias));
    const auto& window = *static_cast<const ast::Function&>(*numbered->expression).over;
    const ast::Function* distance = distanceOf(window.orderBy);
    const auto join = joinOf(inner->from);
    if (!most || !distance || !join) {
        return nullptr;
    }
    const ast::NodePtr condition = conjunction(join->condition, inner->where);
    const auto isOfGroup = [&](const ast::NodePtr& source) {
        return std::all_of(window.partitionBy.begin(), window.partitionBy.end(),
                           [&source](const ast::NodePtr& key) { return isOf(source, key); });
    };
    const auto measures = [&](const ast::NodePtr& a, const ast::NodePtr& b) {
        return isOf(a, distance->arguments[0]) && isOf(b, distance->arguments[1]);
    };
    const bool isSecond = isOfGroup(join->first);
    const auto* searched = isSecond || isOfGroup(join->second)
                               ? ast::nodeAs<ast::TablePrimary>(isSecond ? join->second : join->first)
                               : nullptr;
    const bool isBetween = measures(join->first, join->second) || measures(join->second, join->first);
    if (!searched || !isBetween || !hasHiddenColumns(*searched) ||
        (condition && hasNamelessParameter(*condition))) {
        return nullptr;
    }
    auto narrowed = std::make_shared<ast::QuerySpecification>(*inner);
    narrowed->where =
        conjunction(inner->where,
                    isAmongNearest(*searched, condition, std::make_shared<ast::Function>(*distance), *most));
    auto rewritten = std::make_shared<ast::QuerySpecification>(query);
    rewritten->from = std::make_shared<ast::FromSource>(
        ast::NodeList{std::make_shared<ast::DerivedTable>(std::move(narrowed), derived->alias)});
    return rewritten;
}

} // namespace orvane::engine
