#include "engine/translation/OuterOrder.h"

#include "engine/translation/QueryParts.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/tree/Expressions.h"
#include "platform/sql/tree/NodeVisitor.h"

#include <algorithm>
#include <set>
#include <string>

namespace orvane::engine {

namespace {

using namespace sql;

/// Whether a key names a column of none of the sources.
bool namesOuter(const ast::NodePtr& key, const std::set<std::wstring>& own) {
    bool isOuter = false;
    ast::forEachNode(*key, [&](const ast::Node& node) {
        const auto* column = ast::nodeAs<ast::ColumnReference>(&node);
        isOuter = isOuter ||
                  (column && !column->qualifier.empty() && own.count(toLowercase(column->qualifier)) == 0);
        return !ast::isQuery(&node);
    });
    return isOuter;
}

/// Whether a key is the name or the number of a result column.
bool isResultColumn(const ast::NodePtr& key, const ast::NodeList& columns) {
    const auto* named = ast::nodeAs<ast::ColumnReference>(key);
    return ast::nodeAs<ast::Number>(key) ||
           (named && named->qualifier.empty() &&
            std::any_of(columns.begin(), columns.end(), [named](const ast::NodePtr& node) {
                const auto& column = static_cast<const ast::DerivedColumn&>(*node);
                return toLowercase(column.alias) == toLowercase(named->name);
            }));
}

std::wstring numbered(wchar_t letter, std::size_t number) {
    return letter + std::to_wstring(number);
}

} // namespace

std::shared_ptr<const ast::QuerySpecification> withOrderFurtherIn(const ast::QuerySpecification& query) {
    std::set<std::wstring> own;
    forEachSource(query.from, [&own](const ast::Node& source) { own.insert(qualifierOf(&source)); });
    const bool hasOuter =
        std::any_of(query.orderBy.begin(), query.orderBy.end(), [&own](const ast::NodePtr& term) {
            const auto* key = ast::nodeAs<ast::SortSpecification>(term);
            return key && namesOuter(key->key, own);
        });
    const bool isPlain =
        query.quantifier != ast::SetQuantifier::Distinct && !query.into &&
        std::all_of(query.columns.begin(), query.columns.end(), [](const ast::NodePtr& node) {
            const auto* column = ast::nodeAs<ast::DerivedColumn>(node);
            return column && column->expression->kind != ast::NodeKind::QualifiedAsterisk;
        });
    if (!hasOuter || !isPlain) {
        return nullptr;
    }
    auto inner = std::make_shared<ast::QuerySpecification>(query);
    auto outer = std::make_shared<ast::QuerySpecification>();
    outer->with = std::move(inner->with);
    outer->recursive = query.recursive;
    outer->limit = std::move(inner->limit);
    outer->offset = std::move(inner->offset);
    outer->offsetFirst = query.offsetFirst;
    inner->with.clear();
    inner->orderBy.clear();
    for (std::size_t i = 0; i < query.columns.size(); ++i) {
        const auto& column = static_cast<const ast::DerivedColumn&>(*query.columns[i]);
        const auto* reference = ast::nodeAs<ast::ColumnReference>(column.expression);
        const std::wstring name = numbered(L'c', i);
        inner->columns[i] = std::make_shared<ast::DerivedColumn>(column.expression, name);
        outer->columns.push_back(std::make_shared<ast::DerivedColumn>(
            std::make_shared<ast::ColumnReference>(std::wstring(), name),
            column.alias.empty() && reference ? reference->name : column.alias));
    }
    for (std::size_t i = 0; i < query.orderBy.size(); ++i) {
        const auto& key = static_cast<const ast::SortSpecification&>(*query.orderBy[i]);
        if (isResultColumn(key.key, query.columns)) {
            outer->orderBy.push_back(query.orderBy[i]);
            continue;
        }
        const std::wstring name = numbered(L'k', i);
        inner->columns.push_back(std::make_shared<ast::DerivedColumn>(key.key, name));
        auto moved = std::make_shared<ast::SortSpecification>(key);
        moved->key = std::make_shared<ast::ColumnReference>(std::wstring(), name);
        outer->orderBy.push_back(std::move(moved));
    }
    outer->from = std::make_shared<ast::FromSource>(
        ast::NodeList{std::make_shared<ast::DerivedTable>(std::move(inner), L"o")});
    return outer;
}

} // namespace orvane::engine
