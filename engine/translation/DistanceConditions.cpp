#include "engine/translation/DistanceConditions.h"

#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/tree/Expressions.h"
#include "platform/sql/tree/NodeVisitor.h"
#include "platform/sql/tree/Queries.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace orvane::engine {

namespace {

using namespace sql;

constexpr const wchar_t* isNear = L"IsNear";
constexpr const wchar_t* nearness = L"Nearness";

/// A function that tells a distance, or (`isTest`) whether it is at most its third argument.
struct DistanceFunction {
    std::wstring_view name;
    const wchar_t* kind; ///< the number of a geometry::DistanceKind
    bool isTest;
};
constexpr DistanceFunction functions[] = {
    {L"distance", L"0", false},
    {L"st_distance", L"0", false},
    {L"sphericalobjectdistance", L"1", false},
    {L"cartesianobjectdistance", L"2", false},
    {L"withindistance", L"0", true},
    {L"ptdistwithin", L"0", true},
};

/// What a term says: the distance between two objects is at most a value.
struct DistanceTerm {
    const ast::Function* call = nullptr;
    const DistanceFunction* function = nullptr;
    ast::NodePtr most;
};

std::optional<DistanceTerm> callOf(const ast::NodePtr& node, bool isTest) {
    const auto* call = ast::nodeAs<ast::Function>(node);
    if (!call || call->over || call->filter || call->distinct) {
        return std::nullopt;
    }
    const std::wstring name = toLowercase(call->name);
    const auto* known =
        std::find_if(std::begin(functions), std::end(functions), [&](const DistanceFunction& each) {
            return each.isTest == isTest && each.name == name;
        });
    const std::size_t fewest = isTest ? 3 : 2;
    if (known == std::end(functions) || call->arguments.size() < fewest ||
        call->arguments.size() > fewest + 1) {
        return std::nullopt;
    }
    return DistanceTerm{call, known, isTest ? call->arguments[2] : nullptr};
}

std::optional<DistanceTerm> termOf(const ast::NodePtr& condition) {
    const auto* operation = ast::nodeAs<ast::Operation>(condition);
    if (!operation) {
        return callOf(condition, true);
    }
    std::optional<DistanceTerm> term;
    ast::NodePtr most;
    switch (operation->code()) {
    case OperationCode::Greater:
    case OperationCode::GreaterOrEqual:
        term = callOf(operation->right(), false);
        most = operation->left();
        break;
    case OperationCode::Equal:
    case OperationCode::Less:
    case OperationCode::LessOrEqual:
        term = callOf(operation->left(), false);
        most = operation->right();
        break;
    case OperationCode::Between:
        if (const auto* range = ast::nodeAs<ast::Range>(operation->right())) {
            term = callOf(operation->left(), false);
            most = range->high;
        }
        break;
    default: break;
    }
    if (term) {
        term->most = most;
    }
    return term;
}

/// Whether a value may be written a second time: not where it is numbered by its place, dear, or another one
/// each time.
bool isRepeatable(const ast::NodePtr& value) {
    bool isFit = true;
    ast::forEachNode(*value, [&isFit](const ast::Node& node) {
        const auto* parameter = ast::nodeAs<ast::ContextuallyTypedValueSpecification>(&node);
        const auto* function = ast::nodeAs<ast::Function>(&node);
        const bool isUnfit =
            (parameter && parameter->parameter == L"?") ||
            (function && (function->over || toLowercase(function->name).starts_with(L"random"))) ||
            node.kind == ast::NodeKind::QuerySpecification || node.kind == ast::NodeKind::QueryOperation ||
            node.kind == ast::NodeKind::ExplicitTable;
        isFit = isFit && !isUnfit;
        return isFit;
    });
    return isFit;
}

ast::NodePtr number(const wchar_t* digits) {
    return std::make_shared<ast::Number>(digits);
}

ast::NodePtr both(const ast::NodePtr& a, const ast::NodePtr& b) {
    return std::make_shared<ast::Operation>(OperationCode::And, a, b);
}

ast::NodePtr withHints(const ast::NodePtr& condition, const DistanceTerm& term) {
    const ast::NodeList& arguments = term.call->arguments;
    const std::size_t unitsPosition = term.function->isTest ? 3 : 2;
    const ast::NodePtr units = arguments.size() > unitsPosition
                                   ? arguments[unitsPosition]
                                   : std::make_shared<ast::ContextuallyTypedValueSpecification>();
    if (!term.most || !isRepeatable(term.most) || !isRepeatable(units) || !isRepeatable(arguments[0]) ||
        !isRepeatable(arguments[1])) {
        return condition;
    }
    ast::NodePtr whole = condition;
    for (const std::size_t column : {0U, 1U}) {
        if (!ast::nodeAs<ast::ColumnReference>(arguments[column])) {
            continue;
        }
        const ast::NodePtr centre = arguments[1 - column];
        const bool centreIsFirst = column == 1;
        auto value = std::make_shared<ast::Function>(
            nearness, ast::NodeList{centre, term.most, units, number(term.function->kind),
                                    number(centreIsFirst ? L"1" : L"0")});
        whole =
            both(whole,
                 std::make_shared<ast::Function>(isNear, ast::NodeList{arguments[column], std::move(value)}));
    }
    return whole;
}

} // namespace

bool isNearnessFunction(const std::wstring& name) {
    return name == isNear || name == nearness;
}

ast::NodePtr withNearness(const ast::NodePtr& condition) {
    const auto conjunction = [](const ast::NodePtr& node) {
        const auto* operation = ast::nodeAs<ast::Operation>(node);
        return operation && operation->code() == OperationCode::And && operation->right() ? operation
                                                                                          : nullptr;
    };
    // Long chains of And go deep to the left.
    std::vector<ast::NodePtr> chain{condition};
    while (const auto* operation = conjunction(chain.back())) {
        chain.push_back(operation->left());
    }
    ast::NodePtr whole = chain.back();
    if (const auto term = whole ? termOf(whole) : std::nullopt) {
        whole = withHints(whole, *term);
    }
    for (std::size_t i = chain.size() - 1; i-- > 0;) {
        const auto* operation = conjunction(chain[i]);
        const ast::NodePtr right = withNearness(operation->right());
        const bool isSame = whole == operation->left() && right == operation->right();
        whole = isSame ? chain[i] : both(whole, right);
    }
    return whole;
}

} // namespace orvane::engine
