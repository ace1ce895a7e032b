#include <orvane/engine/SqliteStringBuilder.h>

#include "engine/translation/ComputedTexts.h"
#include "engine/translation/FixedColumns.h"
#include "engine/translation/NearestFirst.h"
#include "engine/translation/NearestPerRow.h"
#include "engine/translation/OuterOrder.h"
#include "engine/translation/SemiJoins.h"
#include "engine/translation/SpatialConditions.h"
#include "platform/sql/lexing/SqlStrings.h"

#include <algorithm>
#include <utility>

// Queries as SQLite has to see them: no Into, no operand with clauses of its own in a compound query, and the
// collation wherever computed texts are compared, which SQLite would otherwise compare byte by byte.

namespace orvane::engine {

using namespace sql;

namespace {

bool isAsterisk(const ast::DerivedColumn& column) {
    return column.expression && column.expression->kind == ast::NodeKind::QualifiedAsterisk;
}

/// A result column that a term of Group By or Order By refers to.
struct Referred {
    const ast::DerivedColumn* column = nullptr;
    std::size_t number = 0; ///< from 1; 0 when an asterisk stands before it
};

/// The column that a name or a number stands for; none when it is no name of a result column.
Referred referredColumn(const ast::NodePtr& key, const ast::NodeList& columns) {
    const auto* reference = ast::nodeAs<ast::ColumnReference>(key);
    const auto* number = ast::nodeAs<ast::Number>(key);
    if (!number && (!reference || !reference->qualifier.empty())) {
        return {};
    }
    const std::wstring name = reference ? toLowercase(reference->name) : std::wstring();
    bool isCounted = true;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const auto* column = ast::nodeAs<ast::DerivedColumn>(columns[i]);
        isCounted = isCounted && column && !isAsterisk(*column);
        const bool fits = reference ? column && toLowercase(column->alias) == name
                                    : isCounted && number->text == std::to_wstring(i + 1);
        if (fits) {
            return {column, isCounted ? i + 1 : 0};
        }
    }
    return {};
}

} // namespace

void SqliteStringBuilder::appendCollation(std::wstring& text) const {
    text += L" Collate " + toSqlString(collate_);
}

ast::NodePtr SqliteStringBuilder::collated(const ast::NodePtr& value) const {
    return std::make_shared<ast::Operation>(OperationCode::Collate, value, toSqlString(collate_));
}

/// `Values (…), (…)`: SQLite takes the collations from the first row, and no order or limit behind it.
void SqliteStringBuilder::visitRows(const ast::QuerySpecification& node) {
    const bool outer = std::exchange(isCompared_, false);
    const bool isCompared = outer && !collate_.isEmpty();
    frames_.emplace_back();
    frames_.back().columns = &node.columns;
    frames_.back().isBehindWhere = true;
    namedQueries_.push_back(&node.with);
    const auto& rows = static_cast<const ast::RowValueExpressionList&>(*node.rows).elements;
    std::wstring text;
    for (const ast::NodePtr& row : rows) {
        ast::RowValueExpression first = static_cast<const ast::RowValueExpression&>(*row);
        for (ast::NodePtr& value : first.values) {
            value = isCompared && row == rows.front() && isComputedText(value) ? collated(value) : value;
        }
        text += text.empty() ? L"Values " : L", ";
        doVisit(first);
        text += pop();
    }
    if (!node.orderBy.empty() || node.limit || node.offset) {
        text = L"Select * From (" + text + L')';
        appendResultClauses(text, node);
    }
    text = renderWith(node) + text;
    namedQueries_.pop_back();
    frames_.pop_back();
    isCompared_ = outer;
    push(std::move(text));
}

void SqliteStringBuilder::visit(const ast::QuerySpecification& node) {
    if (node.rows) {
        return visitRows(node);
    }
    auto rewritten = nearestFirst(node);
    if (!rewritten) {
        rewritten = withNearestPerRow(
            node, [&](const ast::TablePrimary& table) { return hasHiddenColumns(table, node.with); });
    }
    if (!rewritten && !frames_.empty()) {
        rewritten = withOrderFurtherIn(node);
    }
    if (!rewritten) {
        rewritten = withSemiJoins(
            node, [&](const ast::TablePrimary& table) { return hasHiddenColumns(table, node.with); },
            tableColumns_);
    }
    visitSpecification(rewritten ? *rewritten : node);
}

/// Whether a name in From is one of a table with hidden columns.
bool SqliteStringBuilder::hasHiddenColumns(const ast::TablePrimary& table, const NamedQueries& named) const {
    const auto isNamed = [&table](const ast::CommonTable& each) {
        return toLowercase(each.name) == toLowercase(table.name);
    };
    return hasHiddenColumns_ && whiteList_.empty() && !namedQuery(table.name) &&
           std::none_of(named.begin(), named.end(), isNamed) && hasHiddenColumns_(table.name);
}

/// Null where the rows cannot be had in the order of a distance.
std::shared_ptr<const ast::QuerySpecification>
SqliteStringBuilder::nearestFirst(const ast::QuerySpecification& node) const {
    const auto* table = ast::nodeAs<ast::TablePrimary>(ast::onlySource(node));
    const auto* key =
        node.orderBy.size() == 1 ? ast::nodeAs<ast::SortSpecification>(node.orderBy.front()) : nullptr;
    if (!table || !key) {
        return nullptr;
    }
    const Referred referred = referredColumn(key->key, node.columns);
    const ast::NodePtr distance = referred.column ? referred.column->expression : key->key;
    auto rewritten = withNearestFirst(node, *table, distance, tableColumns_);
    return rewritten && hasHiddenColumns(*table, node.with) ? rewritten : nullptr;
}

void SqliteStringBuilder::visitSpecification(const ast::QuerySpecification& node) {
    const bool outer = std::exchange(isCompared_, false);
    frames_.emplace_back();
    frames_.back().columns = &node.columns;
    frames_.back().tables =
        std::make_shared<ScannedTables>(node.from, [this, &node](const ast::TablePrimary& table) {
            return hasHiddenColumns(table, node.with);
        });
    frames_.back().isCompared = outer || node.quantifier == ast::SetQuantifier::Distinct;
    if (frames_.size() == 1 && !node.groupBy.empty()) {
        isAggregate_ = true;
    }
    namedQueries_.push_back(&node.with);
    SqlStringBuilder::visit(node);
    namedQueries_.pop_back();
    frames_.pop_back();
    isCompared_ = outer;
}

void SqliteStringBuilder::visit(const ast::QueryOperation& node) {
    namedQueries_.push_back(&node.with);
    const bool outer = isCompared_;
    isCompared_ = isCompared_ || node.right;
    SqlStringBuilder::visit(node);
    isCompared_ = outer;
    namedQueries_.pop_back();
    if (frames_.empty()) {
        insertOffset_ = 0; // a further column would have to stand in each part
    }
}

/// SQLite has no `Table t`.
void SqliteStringBuilder::visit(const ast::ExplicitTable& node) {
    ast::QuerySpecification query;
    query.with = node.with;
    query.recursive = node.recursive;
    query.orderBy = node.orderBy;
    query.limit = node.limit;
    query.offset = node.offset;
    query.offsetFirst = node.offsetFirst;
    query.columns.push_back(std::make_shared<ast::DerivedColumn>(std::make_shared<ast::QualifiedAsterisk>()));
    query.from =
        std::make_shared<ast::FromSource>(ast::NodeList{std::make_shared<ast::TablePrimary>(node.name)});
    visit(query);
}

/// The query of a view is seen by the queries that name it, as one in From is.
void SqliteStringBuilder::visit(const ast::SessionStatement& node) {
    frames_.emplace_back();
    isCompared_ = true;
    SqlStringBuilder::visit(node);
    isCompared_ = false;
    frames_.pop_back();
}

/// SQLite has no Into.
void SqliteStringBuilder::visit(const ast::IntoClause& node) {
    (node.target == ast::IntoClause::Target::File ? intoFile_ : intoTable_) = node.name;
    push({});
}

/// The user sees the outermost result columns, so a geometry or style among them keeps the name it was asked
/// for by; queries further in are seen by the queries around them, which ask for the fixed names.
void SqliteStringBuilder::visit(const ast::DerivedColumn& node) {
    const bool isCompared = !frames_.empty() && frames_.back().isCompared && !collate_.isEmpty() &&
                            !fixedColumnName(node.alias) && isComputedText(node.expression);
    const bool isOutermost = frames_.size() == 1 && enclosing_ == 0;
    std::wstring text = renderValue(node.expression);
    std::wstring alias = node.alias;
    const auto* reference = ast::nodeAs<ast::ColumnReference>(node.expression);
    if (alias.empty() && reference && callOfColumn(*reference)) {
        alias = reference->name;
    } else if (isOutermost && alias.empty() && reference && fixedColumnName(reference->name)) {
        alias = reference->name;
    } else if (!isOutermost && fixedColumnName(alias)) {
        alias = *fixedColumnName(alias);
    } else if (isCompared && alias.empty()) {
        alias = text; // as SQLite would name it
    }
    if (isCompared) {
        text = node.expression->kind == ast::NodeKind::Operation ? L'(' + text + L')' : text;
        appendCollation(text);
    }
    if (!alias.empty()) {
        text += L" As ";
        appendName(text, alias);
    }
    push(std::move(text));
}

/// SQLite names the columns of a query only in With.
void SqliteStringBuilder::visit(const ast::DerivedTable& node) {
    if (node.columns.empty()) {
        const bool outer = std::exchange(isCompared_, true);
        SqlStringBuilder::visit(node);
        isCompared_ = outer;
        return;
    }
    const ast::CommonTable named{node.alias, node.columns, node.query};
    ast::QuerySpecification query;
    query.with.push_back(named);
    std::wstring text = L'(' + renderWith(query) + L"Select * From ";
    appendName(text, node.alias);
    text += L") ";
    appendName(text, node.alias);
    push(std::move(text));
}

std::wstring SqliteStringBuilder::renderWith(const ast::QueryExpression& query) {
    if (query.with.empty()) {
        return {};
    }
    frames_.emplace_back(); // a named query is never the outermost
    const bool outer = std::exchange(isCompared_, true);
    std::wstring text = SqlStringBuilder::renderWith(query);
    isCompared_ = outer;
    frames_.pop_back();
    return text;
}

/// A name or number of a result column stands for its expression. One of a geometry or style name would be
/// taken for the table's column.
std::wstring SqliteStringBuilder::renderKey(const ast::NodePtr& key) {
    const bool knowsColumns = !frames_.empty() && frames_.back().isBehindWhere && frames_.back().columns;
    const Referred referred = knowsColumns ? referredColumn(key, *frames_.back().columns) : Referred();
    const ast::NodePtr value = referred.column ? referred.column->expression : key;
    const auto* reference = ast::nodeAs<ast::ColumnReference>(key);
    ast::NodePtr written = key;
    if (referred.column && reference && fixedColumnName(reference->name)) {
        written =
            referred.number == 0 ? value : std::make_shared<ast::Number>(std::to_wstring(referred.number));
    }
    const bool isCollated =
        !collate_.isEmpty() && isComputedText(value) && !(knowsColumns && frames_.back().isCompound);
    return isCollated ? render(collated(written)) : renderValue(written);
}

/// The terms that order a compound query are its columns, which are collated already.
void SqliteStringBuilder::appendResultClauses(std::wstring& text, const ast::QueryExpression& query) {
    if (query.kind != ast::NodeKind::QueryOperation) {
        return SqlStringBuilder::appendResultClauses(text, query);
    }
    const ast::QuerySpecification* first = ast::firstSelect(&query);
    frames_.push_back({{}, first ? &first->columns : nullptr, false, true, true});
    SqlStringBuilder::appendResultClauses(text, query);
    frames_.pop_back();
}

/// SQLite has no offset without a limit; a negative limit is none.
void SqliteStringBuilder::appendLimit(std::wstring& text, const ast::QueryExpression& query) {
    if (query.offset && !query.limit) {
        text += L" Limit -1";
    }
    SqlStringBuilder::appendLimit(text, query);
}

/// SQLite applies set operators strictly from left to right, and puts at most 500 queries together.
bool SqliteStringBuilder::needsEnclosing(const ast::NodePtr& query, const ast::QueryOperation& parent) const {
    const auto* select = ast::nodeAs<ast::QuerySpecification>(query);
    if (select && select->rows) {
        return true; // no order may stand behind Values
    }
    constexpr std::size_t together = 400;
    std::size_t operands = 1;
    for (const auto* node = ast::nodeAs<ast::QueryOperation>(query); node;
         node = ast::nodeAs<ast::QueryOperation>(node->left)) {
        ++operands;
    }
    return query == parent.right ? operands > 1 : operands % together == 0;
}

std::wstring SqliteStringBuilder::renderEnclosed(const ast::NodePtr& query) {
    ++enclosing_;
    std::wstring text = L"Select * From (" + render(query) + L')';
    --enclosing_;
    return text;
}

} // namespace orvane::engine
