#include "engine/translation/QueryParts.h"

#include "engine/translation/FixedColumns.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/tree/NodeVisitor.h"
#include <orvane/engine/ColumnNames.h>

namespace orvane::engine {

using namespace sql;

std::wstring qualifierOf(const ast::Node* source) {
    if (const auto* table = ast::nodeAs<ast::TablePrimary>(source)) {
        return toLowercase(table->alias.empty() ? table->name : table->alias);
    }
    const auto* derived = ast::nodeAs<ast::DerivedTable>(source);
    return derived ? toLowercase(derived->alias) : std::wstring();
}

void forEachSource(const ast::NodePtr& from, const std::function<void(const ast::Node&)>& take) {
    if (const auto* all = ast::nodeAs<ast::FromSource>(from)) {
        for (const ast::NodePtr& each : all->sources) {
            forEachSource(each, take);
        }
    } else if (const auto* join = ast::nodeAs<ast::JoinNode>(from)) {
        forEachSource(join->left, take);
        forEachSource(join->right, take);
    } else if (from) {
        take(*from);
    }
}

const ast::ColumnReference* geometryReference(const ast::NodePtr& node) {
    const auto* column = ast::nodeAs<ast::ColumnReference>(node);
    return column && fixedColumnName(column->name) == &geometryColumnName() ? column : nullptr;
}

const ast::Function* distanceCall(const ast::NodePtr& node) {
    const auto* call = ast::nodeAs<ast::Function>(node);
    if (!call || call->over || call->filter || call->distinct || call->arguments.size() < 2 ||
        call->arguments.size() > 3) {
        return nullptr;
    }
    const std::wstring name = toLowercase(call->name);
    return name == L"distance" || name == L"st_distance" ? call : nullptr;
}

bool isAscending(const ast::SortSpecification& term) {
    return term.direction != ast::SortSpecification::Direction::Descending &&
           term.nulls != ast::SortSpecification::Nulls::Last;
}

bool hasNamelessParameter(const ast::Node& value) {
    bool has = false;
    ast::forEachNode(value, [&has](const ast::Node& node) {
        const auto* parameter = ast::nodeAs<ast::ContextuallyTypedValueSpecification>(&node);
        has = has || (parameter && parameter->parameter == L"?");
        return !has;
    });
    return has;
}

ast::NodePtr conjunction(const ast::NodePtr& a, const ast::NodePtr& b) {
    return a && b ? std::make_shared<ast::Operation>(OperationCode::And, a, b) : a ? a : b;
}

} // namespace orvane::engine
