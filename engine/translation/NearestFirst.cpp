#include "engine/translation/NearestFirst.h"

#include "engine/translation/QueryParts.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/tree/Expressions.h"
#include "platform/sql/tree/FunctionInfo.h"
#include "platform/sql/tree/NodeVisitor.h"
#include <orvane/engine/ColumnNames.h>

#include <map>
#include <set>

namespace orvane::engine {

namespace {

using namespace sql;
using TableColumns = std::function<std::vector<std::wstring>(const std::wstring&)>;

bool isGeometryOf(const ast::NodePtr& node, const ast::TablePrimary& table) {
    const auto* column = geometryReference(node);
    return column && (column->qualifier.empty() || toLowercase(column->qualifier) == qualifierOf(&table));
}

/// Whether a value does not depend on the rows of the table, and is one value: so that a scan can be told of
/// it when it starts.
class Independence {
public:
    Independence(const ast::TablePrimary& table, const TableColumns& tableColumns)
        : table_(table), tableColumns_(tableColumns) {}

    bool holds(const ast::NodePtr& value) { return !hasNamelessParameter(*value) && holds(*value, {}); }

private:
    /// `known` are the names, in lower case, that a query around has columns of.
    bool holds(const ast::Node& value, const std::set<std::wstring>& known) {
        bool isIndependent = true;
        ast::forEachNode(value, [&](const ast::Node& node) {
            if (const auto* query = ast::nodeAs<ast::QuerySpecification>(&node); query && &node != inside_) {
                isIndependent = isIndependent && holdsWithin(*query);
                return false;
            }
            isIndependent = isIndependent && isFit(node, known);
            return isIndependent;
        });
        return isIndependent;
    }

    bool isFit(const ast::Node& node, const std::set<std::wstring>& known) const {
        if (const auto* column = ast::nodeAs<ast::ColumnReference>(&node)) {
            return column->qualifier.empty() ? known.contains(toLowercase(column->name))
                                             : toLowercase(column->qualifier) != qualifierOf(&table_);
        }
        if (const auto* function = ast::nodeAs<ast::Function>(&node)) {
            const std::wstring name = toLowercase(function->name);
            return !function->over && name != L"rownum" && !name.starts_with(L"random");
        }
        return node.kind != ast::NodeKind::QueryOperation && node.kind != ast::NodeKind::ExplicitTable;
    }

    /// A query of one table whose columns are known.
    bool holdsWithin(const ast::QuerySpecification& query) {
        const auto* source = ast::nodeAs<ast::TablePrimary>(ast::onlySource(query));
        if (inside_ || !source || !tableColumns_ || qualifierOf(source) == qualifierOf(&table_)) {
            return false;
        }
        std::set<std::wstring> names{L"obj", L"object", L"style", L"tr$$_rendition", L"rowid"};
        for (const std::wstring& name : tableColumns_(source->name)) {
            names.insert(toLowercase(name));
        }
        inside_ = &query;
        const bool isIndependent = holds(query, names);
        inside_ = nullptr;
        return isIndependent;
    }

    const ast::TablePrimary& table_;
    const TableColumns& tableColumns_;
    const ast::Node* inside_ = nullptr;
};

/// Whether a call counts over rows; a function that is both does with one argument.
bool isAggregate(const ast::Function& call) {
    static const auto aggregates = [] {
        std::map<std::wstring, FunctionInfo::TypeMasks> kinds;
        for (const FunctionInfo& info : functionInfos()) {
            if ((info.types & FunctionInfo::Aggregate) != 0) {
                kinds.emplace(toLowercase(toSqlString(QString::fromLatin1(info.name))), info.types);
            }
        }
        return kinds;
    }();
    const auto found = aggregates.find(toLowercase(call.name));
    return found != aggregates.end() &&
           (!found->second.testFlag(FunctionInfo::Scalar) || call.arguments.size() == 1);
}

/// Whether each row of the result is one of the table.
bool isOfRows(const ast::QuerySpecification& query) {
    bool isPlain = query.quantifier != ast::SetQuantifier::Distinct && query.groupBy.empty() && !query.having;
    for (const ast::NodePtr& column : query.columns) {
        ast::forEachNode(*column, [&isPlain](const ast::Node& node) {
            const auto* function = ast::nodeAs<ast::Function>(&node);
            isPlain =
                isPlain && !(function && (function->over || function->filter || isAggregate(*function) ||
                                          toLowercase(function->name) == L"rownum"));
            return isPlain && !ast::isQuery(&node);
        });
    }
    return isPlain;
}

} // namespace

std::shared_ptr<const ast::QuerySpecification> withNearestFirst(const ast::QuerySpecification& query,
                                                                const ast::TablePrimary& table,
                                                                const ast::NodePtr& distance,
                                                                const TableColumns& tableColumns) {
    const auto* key = ast::nodeAs<ast::SortSpecification>(query.orderBy.front());
    const auto* call = distanceCall(distance);
    if (!call || !query.limit || !isAscending(*key) || !isOfRows(query)) {
        return nullptr;
    }
    const bool isFirst = isGeometryOf(call->arguments[0], table);
    const ast::NodePtr place = call->arguments[isFirst ? 1 : 0];
    const ast::NodePtr units = call->arguments.size() == 3
                                   ? call->arguments[2]
                                   : std::make_shared<ast::ContextuallyTypedValueSpecification>();
    if ((!isFirst && !isGeometryOf(call->arguments[1], table)) ||
        !Independence(table, tableColumns).holds(place) || !Independence(table, tableColumns).holds(units)) {
        return nullptr;
    }
    const auto number = [](const wchar_t* digits) { return std::make_shared<ast::Number>(digits); };
    const auto origin = std::make_shared<ast::Function>(
        L"Nearness", ast::NodeList{place, number(L"0"), units, number(L"0"), number(isFirst ? L"0" : L"1")});
    const ast::NodePtr isOrigin = std::make_shared<ast::Operation>(
        OperationCode::Is, std::make_shared<ast::ColumnReference>(std::wstring(), originColumnName()),
        origin);
    auto rewritten = std::make_shared<ast::QuerySpecification>(query);
    rewritten->where = conjunction(query.where, isOrigin);
    auto order = std::make_shared<ast::SortSpecification>(
        std::make_shared<ast::ColumnReference>(std::wstring(), distanceColumnName()));
    order->direction = key->direction;
    order->nulls = key->nulls;
    rewritten->orderBy = {order};
    return rewritten;
}

} // namespace orvane::engine
