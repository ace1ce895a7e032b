#include "engine/translation/SemiJoins.h"

#include "engine/translation/FixedColumns.h"
#include "engine/translation/QueryParts.h"
#include "engine/translation/SpatialConditions.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/tree/Expressions.h"
#include "platform/sql/tree/NodeVisitor.h"

#include <algorithm>
#include <set>
#include <utility>

namespace orvane::engine {

namespace {

using namespace sql;

/// The terms of a conjunction, as they stand.
void addTerms(const ast::NodePtr& condition, ast::NodeList& terms) {
    const auto* operation = ast::nodeAs<ast::Operation>(condition);
    if (operation && operation->code() == OperationCode::And && operation->right()) {
        addTerms(operation->left(), terms);
        addTerms(operation->right(), terms);
    } else if (condition) {
        terms.push_back(condition);
    }
}

struct Existence {
    const ast::QuerySpecification* query = nullptr; ///< null where a term is none
    bool isDenied = false;
};

Existence existenceOf(const ast::NodePtr& term) {
    const auto* operation = ast::nodeAs<ast::Operation>(term);
    const bool isDenied = operation && operation->code() == OperationCode::Not;
    if (isDenied) {
        operation = ast::nodeAs<ast::Operation>(operation->left());
    }
    const bool isExistence = operation && operation->code() == OperationCode::Exists;
    return {isExistence ? ast::nodeAs<ast::QuerySpecification>(operation->left()) : nullptr, isDenied};
}

class SemiJoin {
public:
    SemiJoin(const ast::TablePrimary& table, const ast::NodePtr& condition, std::set<std::wstring> columns)
        : table_(table), columns_(std::move(columns)) {
        addTerms(condition, terms_);
    }

    /// Null where no term can be turned.
    ast::NodePtr turned() const {
        ast::NodePtr repeated;
        for (const ast::NodePtr& term : terms_) {
            if (!existenceOf(term).query) {
                if (!isRepeatable(term)) {
                    return nullptr;
                }
                repeated = conjunction(repeated, term);
            }
        }
        ast::NodePtr whole;
        bool isTurned = false;
        for (const ast::NodePtr& term : terms_) {
            const auto [query, isDenied] = existenceOf(term);
            const bool isFit = query && isPlain(*query) && isAboutSpace(*query);
            isTurned = isTurned || isFit;
            whole = conjunction(whole, isFit ? listed(*query, isDenied, repeated) : term);
        }
        return isTurned ? whole : nullptr;
    }

private:
    /// Whether a term means the same further in: it names columns of the table, by the table.
    bool isRepeatable(const ast::NodePtr& term) const {
        bool isFit = !hasNamelessParameter(*term);
        ast::forEachNode(*term, [&](const ast::Node& node) {
            const auto* column = ast::nodeAs<ast::ColumnReference>(&node);
            const auto* function = ast::nodeAs<ast::Function>(&node);
            isFit = isFit && !ast::isQuery(&node) &&
                    !(column && toLowercase(column->qualifier) != qualifierOf(&table_)) &&
                    !(function && toLowercase(function->name).starts_with(L"random"));
            return isFit;
        });
        return isFit;
    }

    /// Whether the query has a row for each that passes its condition, and means the same with the table
    /// beside its own: no name without a qualifier could be one of the table.
    bool isPlain(const ast::QuerySpecification& query) const {
        bool isFit = query.from && query.where && query.with.empty() && query.groupBy.empty() &&
                     !query.having && !query.limit && !query.offset && !query.into &&
                     !hasNamelessParameter(query);
        forEachSource(query.from, [&](const ast::Node& source) {
            isFit = isFit && qualifierOf(&source) != qualifierOf(&table_);
        });
        for (const ast::NodePtr& column : query.columns) {
            ast::forEachNode(*column, [&isFit](const ast::Node& node) {
                isFit = isFit && node.kind != ast::NodeKind::Function && !ast::isQuery(&node);
                return isFit;
            });
        }
        ast::forEachNode(query, [&](const ast::Node& node) {
            const auto* column = ast::nodeAs<ast::ColumnReference>(&node);
            isFit = isFit &&
                    !(column && column->qualifier.empty() && columns_.contains(toLowercase(column->name)));
            return isFit;
        });
        return isFit;
    }

    /// Whether some term relates the place of the table's row to that of another table's.
    bool isAboutSpace(const ast::QuerySpecification& query) const {
        ast::NodeList terms;
        addTerms(query.where, terms);
        std::set<std::wstring> own;
        forEachSource(query.from, [&own](const ast::Node& source) { own.insert(qualifierOf(&source)); });
        return std::any_of(terms.begin(), terms.end(), [&](const ast::NodePtr& term) {
            const auto [first, second] = relatedGeometries(term);
            if (!first || !second) {
                return false;
            }
            const std::wstring a = toLowercase(first->qualifier), b = toLowercase(second->qualifier);
            return (a == qualifierOf(&table_) && own.contains(b)) ||
                   (b == qualifierOf(&table_) && own.contains(a));
        });
    }

    ast::NodePtr listed(const ast::QuerySpecification& query, bool isDenied,
                        const ast::NodePtr& repeated) const {
        const std::wstring& qualifier = table_.alias.empty() ? table_.name : table_.alias;
        const auto row = std::make_shared<ast::ColumnReference>(qualifier, L"rowid");
        auto list = std::make_shared<ast::QuerySpecification>(query);
        list->quantifier = ast::SetQuantifier::Unstated;
        list->orderBy.clear();
        list->columns = {std::make_shared<ast::DerivedColumn>(row)};
        ast::NodeList sources = static_cast<const ast::FromSource&>(*query.from).sources;
        sources.insert(sources.begin(), std::make_shared<ast::TablePrimary>(table_.name, table_.alias));
        list->from = std::make_shared<ast::FromSource>(std::move(sources));
        list->where = conjunction(query.where, repeated);
        return std::make_shared<ast::Operation>(isDenied ? OperationCode::NotIn : OperationCode::In, row,
                                                std::move(list));
    }

    const ast::TablePrimary& table_;
    const std::set<std::wstring> columns_; ///< of the table, in lower case
    ast::NodeList terms_;
};

} // namespace

std::shared_ptr<const ast::QuerySpecification>
withSemiJoins(const ast::QuerySpecification& query,
              const std::function<bool(const ast::TablePrimary&)>& hasHiddenColumns,
              const std::function<std::vector<std::wstring>(const std::wstring&)>& tableColumns) {
    const auto* table = ast::nodeAs<ast::TablePrimary>(ast::onlySource(query));
    ast::NodeList terms;
    addTerms(query.where, terms);
    const bool hasExistence = std::any_of(terms.begin(), terms.end(), [](const ast::NodePtr& term) {
        return existenceOf(term).query != nullptr;
    });
    // The first rows alone may cost less than the list.
    if (!table || !hasExistence || query.limit || !tableColumns || !hasHiddenColumns(*table)) {
        return nullptr;
    }
    std::set<std::wstring> columns{L"obj", L"object", L"style", L"tr$$_rendition", L"rowid"};
    for (const std::wstring& name : tableColumns(table->name)) {
        columns.insert(toLowercase(name));
    }
    const ast::NodePtr where = SemiJoin(*table, query.where, std::move(columns)).turned();
    if (!where) {
        return nullptr;
    }
    auto rewritten = std::make_shared<ast::QuerySpecification>(query);
    rewritten->where = where;
    return rewritten;
}

} // namespace orvane::engine
