#include <orvane/engine/SqliteStringBuilder.h>

#include "engine/translation/ComputedTexts.h"
#include "engine/translation/SpatialConditions.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/tree/CastType.h"
#include "platform/sql/tree/Queries.h"
#include <orvane/engine/FunctionNames.h>

#include <algorithm>
#include <utility>

// Operators and functions.

namespace orvane::engine {

using namespace sql;

namespace {

/// The function of the engine database or of SpatiaLite that stands for an operator of two operands; null
/// when SQLite has the operator.
const wchar_t* functionOf(OperationCode code) {
    switch (code) {
    case OperationCode::Xor: return L"xor";
    case OperationCode::Add: return L"concat";
    case OperationCode::Divide: return L"divide";
    case OperationCode::Quotient: return L"quotient";
    case OperationCode::Power: return L"involution";
    case OperationCode::Contains: return L"ContainsCentroid";
    case OperationCode::ContainsPart:
    case OperationCode::Intersects:
    case OperationCode::PartlyWithin: return L"ST_Intersects";
    case OperationCode::ContainsEntire: return L"ST_Contains";
    case OperationCode::Within: return L"CentroidWithin";
    case OperationCode::EntirelyWithin: return L"ST_Within";
    default: return nullptr;
    }
}

/// Whether the operator compares texts, so that a collation matters.
bool comparesTexts(OperationCode code) {
    switch (code) {
    case OperationCode::Equal:
    case OperationCode::NotEqual:
    case OperationCode::Less:
    case OperationCode::Greater:
    case OperationCode::LessOrEqual:
    case OperationCode::GreaterOrEqual:
    case OperationCode::IsDistinctFrom:
    case OperationCode::In:
    case OperationCode::NotIn:
    case OperationCode::Between:
    case OperationCode::NotBetween:
    case OperationCode::Is:
    case OperationCode::IsNot: return true;
    default: return false;
    }
}

/// The branches of a Case with those of the Case that its Else holds; null when it holds none. SQLite's
/// parser has room for some 20 within one another.
std::shared_ptr<ast::RowValueExpressionList> withoutInnerCase(const ast::Operation& node) {
    const auto* branches = ast::nodeAs<ast::RowValueExpressionList>(node.right());
    const auto* last = branches && !branches->elements.empty()
                           ? ast::nodeAs<ast::RowValueExpression>(branches->elements.back())
                           : nullptr;
    const auto* inner = !node.left() && last && last->values.size() == 1
                            ? ast::nodeAs<ast::Operation>(last->values[0])
                            : nullptr;
    const auto* innerBranches = inner && inner->code() == OperationCode::Case && !inner->left()
                                    ? ast::nodeAs<ast::RowValueExpressionList>(inner->right())
                                    : nullptr;
    if (!innerBranches) {
        return nullptr;
    }
    ast::NodeList all(branches->elements.begin(), branches->elements.end() - 1);
    all.insert(all.end(), innerBranches->elements.begin(), innerBranches->elements.end());
    return std::make_shared<ast::RowValueExpressionList>(std::move(all));
}

/// The function that stands for a Cast to a type that SQLite has not; null for any other operation.
const wchar_t* conversionOf(const ast::Operation& node) {
    const auto type = node.code() == OperationCode::Cast ? findCastType(node.name()) : std::nullopt;
    return type == CastType::Date        ? L"GetDate"
           : type == CastType::Time      ? L"time"
           : type == CastType::Timestamp ? L"datetime"
                                         : nullptr;
}

ast::NodePtr textOf(std::wstring text) {
    return std::make_shared<ast::String>(std::move(text));
}

/// The words by which engine::StringAgg knows how a key is ordered.
std::wstring directionOf(const ast::SortSpecification& term, const ast::Operation* collation) {
    using Sort = ast::SortSpecification;
    std::wstring words = term.direction == Sort::Direction::Descending ? L"desc" : L"";
    if (term.nulls != Sort::Nulls::Unstated) {
        words += term.nulls == Sort::Nulls::First ? L" nulls first" : L" nulls last";
    }
    return collation ? words + L' ' + toLowercase(collation->name()) : words;
}

/// An aggregate of texts as SQLite can call it: Group_Concat, or String_Agg with what orders them among its
/// arguments. Null for other functions, and for one that is that already.
std::shared_ptr<const ast::Function> joinedTexts(const ast::Function& node) {
    const std::wstring name = toLowercase(node.name);
    const bool isOurs = name == L"string_agg" && node.arguments.size() <= 2;
    if ((!isOurs && name != L"group_concat") || node.arguments.empty()) {
        return nullptr;
    }
    auto call = std::make_shared<ast::Function>(node);
    call->orderBy.clear();
    if (node.orderBy.empty() && !(node.distinct && node.arguments.size() > 1)) {
        call->name = isOurs ? L"Group_Concat" : node.name;
        return isOurs ? call : nullptr;
    }
    call->name = L"String_Agg";
    call->distinct = false;
    if (call->arguments.size() == 1) {
        call->arguments.push_back(textOf(L","));
    }
    call->arguments.push_back(textOf(node.distinct ? L"distinct" : L""));
    for (const ast::NodePtr& each : node.orderBy) {
        const auto* term = ast::nodeAs<ast::SortSpecification>(each);
        const auto* operation = ast::nodeAs<ast::Operation>(term->key);
        const auto* collation =
            operation && operation->code() == OperationCode::Collate ? operation : nullptr;
        call->arguments.push_back(collation ? collation->left() : term->key);
        call->arguments.push_back(textOf(directionOf(*term, collation)));
    }
    return call;
}

/// Whether the function compares its arguments, and so wants their collation.
bool comparesArguments(const std::wstring& lowercaseName) {
    return lowercaseName == L"max" || lowercaseName == L"min" || lowercaseName == L"nullif";
}

} // namespace

/// The right operand is rendered first. Both stand in parentheses of their own within the call.
void SqliteStringBuilder::visit(const ast::Operation& node) {
    const wchar_t* function = node.unary() ? nullptr : functionOf(node.code());
    // A bound of a frame has to be made of numbers without calls.
    const bool isPlain =
        isInBound_ && (node.code() == OperationCode::Add || node.code() == OperationCode::Quotient);
    if (function && !isPlain) {
        const std::wstring right = render(node.right());
        std::wstring text = std::wstring(function) + L"((" + render(node.left());
        text += L"),(";
        text += right;
        text += L"))";
        return push(std::move(text));
    }
    if (const wchar_t* conversion = conversionOf(node)) {
        return push(std::wstring(conversion) + L'(' + renderValue(node.left()) + L')');
    }
    if (node.code() == OperationCode::Case) {
        if (const auto flat = withoutInnerCase(node)) {
            return visit(ast::Operation(OperationCode::Case, node.left(), flat));
        }
    }
    // `Case x When y` compares as well; the other form of Case has no left operand.
    const bool simpleCase = node.code() == OperationCode::Case && node.left();
    if (!collate_.isEmpty() && (comparesTexts(node.code()) || simpleCase)) {
        const bool outer = std::exchange(isCompared_, ast::rowSize(node.left()) > 1);
        processOperation(node, [this](std::wstring& text) -> std::wstring& {
            appendCollation(text);
            return text;
        });
        isCompared_ = outer;
        return;
    }
    SqlStringBuilder::visit(node);
}

std::wstring SqliteStringBuilder::renderBound(const ast::NodePtr& offset) {
    const bool outer = std::exchange(isInBound_, true);
    std::wstring text = SqlStringBuilder::renderBound(offset);
    isInBound_ = outer;
    return text;
}

/// A white list says what may be called: nothing that the user has not written.
std::wstring SqliteStringBuilder::renderCondition(const ast::NodePtr& condition) {
    if (!whiteList_.empty()) {
        return SqlStringBuilder::renderCondition(condition);
    }
    const bool isOfQuery = !frames_.empty() && frames_.back().tables;
    const auto literalOf = [this](const ast::NodePtr& value) -> ast::NodePtr {
        const auto digits = blobOf_ ? blobOf_(render(value)) : std::nullopt;
        return digits ? std::make_shared<ast::String>(*digits, ast::String::Content::Hexadecimal) : nullptr;
    };
    return SqlStringBuilder::renderCondition(
        withLookups(condition, isOfQuery ? *frames_.back().tables : ScannedTables(), literalOf));
}

std::wstring SqliteStringBuilder::operationToString(OperationCode code) const {
    switch (code) {
    case OperationCode::Join: return L"||";
    case OperationCode::Mod: return L"%";      // SQLite has no word for it
    case OperationCode::Quotient: return L"/"; // of whole numbers; elsewhere it is a function
    default: return SqlStringBuilder::operationToString(code);
    }
}

std::wstring SqliteStringBuilder::ternaryToString(TernaryLogic::Value value) {
    return value == TernaryLogic::Unknown ? L"NULL" : SqlStringBuilder::ternaryToString(value);
}

void SqliteStringBuilder::visit(const ast::Function& node) {
    if (const auto joined = joinedTexts(node)) {
        return visit(*joined);
    }
    const std::wstring lowercase = toLowercase(node.name);
    if (lowercase == L"rownum") {
        return push(L"row_number() Over (Order By 1)");
    }
    if (!whiteList_.empty()) {
        const QString written = fromSqlString(node.name);
        if (whiteList_.count(written) == 0) {
            unsupported_.insert(written);
        }
    }
    ast::Function call = node;
    call.name = sqlFunctionName(node.name);
    call.form = node.form == ast::Function::Extraction ? ast::Function::Call : node.form;
    if (!collate_.isEmpty() && (node.distinct || comparesArguments(lowercase))) {
        for (ast::NodePtr& argument : call.arguments) {
            argument = isComputedText(argument) ? collated(argument) : argument;
        }
    }
    SqlStringBuilder::visit(call);
}

} // namespace orvane::engine
