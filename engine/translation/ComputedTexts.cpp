#include "engine/translation/ComputedTexts.h"

#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/tree/CastType.h"
#include "platform/sql/tree/Expressions.h"
#include "platform/sql/tree/Queries.h"

#include <algorithm>

namespace orvane::engine {

namespace {

using namespace sql;

/// The usual functions that give numbers or geometries.
bool neverGivesText(const std::wstring& function) {
    static constexpr std::wstring_view names[] = {
        L"abs",    L"area",      L"avg",        L"buffer",      L"centroid",     L"centroidx",  L"centroidy",
        L"count",  L"cume_dist", L"dense_rank", L"distance",    L"instr",        L"int",        L"len",
        L"length", L"makepoint", L"median",     L"ntile",       L"percent_rank", L"percentile", L"perimeter",
        L"rank",   L"round",     L"roundby",    L"row_number",  L"rownum",       L"sign",       L"sqr",
        L"sqrt",   L"st_area",   L"st_buffer",  L"st_centroid", L"st_distance",  L"st_length",  L"st_x",
        L"st_y",   L"sum",       L"total",      L"transform",   L"val",          L"x",          L"y"};
    return std::binary_search(std::begin(names), std::end(names), toLowercase(function));
}

/// Whether a part of a value can make the whole a text.
bool mayBeText(const ast::NodePtr& value) {
    return ast::nodeAs<ast::ColumnReference>(value) || isComputedText(value);
}

bool hasTextBranch(const ast::Operation& choice) {
    const auto* branches = ast::nodeAs<ast::RowValueExpressionList>(choice.right());
    return branches &&
           std::any_of(branches->elements.begin(), branches->elements.end(), [](const auto& node) {
               const auto* branch = ast::nodeAs<ast::RowValueExpression>(node);
               return branch && !branch->values.empty() && mayBeText(branch->values.back());
           });
}

bool isNumber(const std::wstring& type) {
    const auto known = findCastType(type);
    return known == CastType::Integer || known == CastType::Real || known == CastType::Numeric;
}

bool isComputedText(const ast::Operation& operation) {
    switch (operation.code()) {
    case OperationCode::Join: return true;
    case OperationCode::Add: return mayBeText(operation.left()) || mayBeText(operation.right());
    case OperationCode::Case: return hasTextBranch(operation);
    case OperationCode::Cast: return !isNumber(operation.name());
    default: return false;
    }
}

} // namespace

bool isComputedText(const ast::NodePtr& value) {
    if (ast::isQuery(value)) {
        return true;
    }
    if (const auto* text = ast::nodeAs<ast::String>(value)) {
        return text->content == ast::String::Content::Text;
    }
    if (const auto* parameter = ast::nodeAs<ast::ContextuallyTypedValueSpecification>(value)) {
        return !parameter->parameter.empty();
    }
    if (const auto* function = ast::nodeAs<ast::Function>(value)) {
        return !neverGivesText(function->name);
    }
    const auto* operation = ast::nodeAs<ast::Operation>(value);
    return operation && isComputedText(*operation);
}

} // namespace orvane::engine
