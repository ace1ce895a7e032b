#include "platform/sql/printing/SqlStringBuilder.h"

#include "platform/sql/lexing/Keywords.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/utils/Quoting.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <utility>

namespace orvane::sql {

namespace {

/// As the dialect writes them, by operation code. Case, Cast, Exists and Collate are written by their own
/// rules.
constexpr std::array<const wchar_t*, operationCodeCount> operatorTexts{L"",
                                                                       L"Or",
                                                                       L"Xor",
                                                                       L"And",
                                                                       L"Not",
                                                                       L"=",
                                                                       L"<>",
                                                                       L"<",
                                                                       L">",
                                                                       L"Is Null",
                                                                       L"Case",
                                                                       L"Is Not Null",
                                                                       L"Exists",
                                                                       L"Like",
                                                                       L"Not Like",
                                                                       L"<=",
                                                                       L">=",
                                                                       L"Is Distinct From",
                                                                       L"Glob",
                                                                       L"In",
                                                                       L"Not In",
                                                                       L"Between",
                                                                       L"Not Between",
                                                                       L"Is",
                                                                       L"Is Not",
                                                                       L"&",
                                                                       L"-",
                                                                       L"+",
                                                                       L"Not Glob",
                                                                       L"Cast",
                                                                       L"+",
                                                                       L"-",
                                                                       L"*",
                                                                       L"/",
                                                                       L"\\",
                                                                       L"Mod",
                                                                       L"^",
                                                                       L"Contains",
                                                                       L"Contains Part",
                                                                       L"Contains Entire",
                                                                       L"Intersects",
                                                                       L"Within",
                                                                       L"Partly Within",
                                                                       L"Entirely Within",
                                                                       L"Collate",
                                                                       L"RegExp",
                                                                       L"Not RegExp"};

bool isSqliteKeyword(std::wstring_view name) {
    constexpr std::size_t longest = 32;
    std::array<char, longest> narrow{};
    if (name.size() > longest || std::any_of(name.begin(), name.end(), [](wchar_t c) { return c >= 0x80; })) {
        return false;
    }
    std::transform(name.begin(), name.end(), narrow.begin(), [](wchar_t c) { return static_cast<char>(c); });
    return sqlite3_keyword_check(narrow.data(), static_cast<int>(name.size())) != 0;
}

/// The keyword that a text begins with, if it does.
Keyword leadingKeyword(const std::wstring& text) {
    const auto end = std::find_if_not(text.begin(), text.end(), isNamePart);
    return findKeyword(std::wstring_view(text).substr(0, static_cast<std::size_t>(end - text.begin())));
}

/// Quotes the name that a text begins with when it is one of the words given and no qualifier.
void quoteLeadingWord(std::wstring& text, std::initializer_list<Keyword> words) {
    const auto end = std::find_if_not(text.begin(), text.end(), isNamePart);
    if (std::find(words.begin(), words.end(), leadingKeyword(text)) != words.end() &&
        (end == text.end() || *end != L'.')) {
        text.insert(end, L'"');
        text.insert(text.begin(), L'"');
    }
}

/// Whether an operand needs no parentheses under the parent, neither in the dialect nor in SQLite, where "||"
/// binds tighter than "*" and "<" tighter than "=".
bool standsBare(OperationCode child, OperationCode parent, bool isLeft) {
    const Precedence inner = precedenceOf(child);
    const Precedence outer = precedenceOf(parent);
    if (inner == Precedence::Primary) {
        return true;
    }
    if (outer == Precedence::Collate || inner == Precedence::Collate) {
        return inner == Precedence::Collate && outer != Precedence::Sign && outer != Precedence::Collate;
    }
    if (outer == Precedence::Sign) {
        return false;
    }
    if (outer == Precedence::Join || inner == Precedence::Join) {
        return outer < Precedence::Join || (inner == Precedence::Join && outer == Precedence::Join && isLeft);
    }
    if (outer == Precedence::Comparison && inner == Precedence::Comparison) {
        return false;
    }
    return inner > outer || (inner == outer && isLeft && outer != Precedence::Comparison);
}

} // namespace

SqlStringBuilder::~SqlStringBuilder() = default;

std::wstring SqlStringBuilder::buildString(const ast::Node& root) {
    doVisit(root);
    return pop();
}

std::wstring SqlStringBuilder::pop() {
    std::wstring text = std::move(stack_.back());
    stack_.pop_back();
    return text;
}

std::wstring SqlStringBuilder::render(const ast::NodePtr& node) {
    doVisit(node);
    return pop();
}

std::wstring SqlStringBuilder::renderValue(const ast::NodePtr& node) {
    std::wstring text = render(node);
    return ast::isQuery(node) ? L'(' + std::move(text) + L')' : text;
}

std::wstring SqlStringBuilder::renderOperand(const ast::NodePtr& node, OperationCode parent, bool isLeft) {
    const auto* operation = ast::nodeAs<ast::Operation>(node);
    std::wstring text = renderValue(node);
    if (parent == OperationCode::Contains && !isLeft) {
        quoteLeadingWord(text, {Keyword::Part, Keyword::Entire});
    }
    // A minus after a minus would begin a comment; a sign after Part would make that a column.
    const bool signMisleads = parent == OperationCode::Negate || parent == OperationCode::ContainsPart ||
                              parent == OperationCode::ContainsEntire;
    const bool isNullTest = (parent == OperationCode::Is || parent == OperationCode::IsNot) && !isLeft;
    const bool enclosed =
        (signMisleads && !text.empty() && (text.front() == L'-' || text.front() == L'+')) ||
        (isNullTest && leadingKeyword(text) == Keyword::Null &&
         node->kind != ast::NodeKind::TernaryLogicNode); // "Is Null" is an operator of its own
    if (enclosed || (operation && !standsBare(operation->code(), parent, isLeft))) {
        text.insert(text.begin(), L'(');
        text.push_back(L')');
    }
    return text;
}

void SqlStringBuilder::appendName(std::wstring& text, const std::wstring& name, NameUse use) const {
    const Keyword keyword = findKeyword(name);
    const bool reserved = (isReserved(keyword) && !(use == NameUse::Call && isFunctionWord(keyword))) ||
                          (use == NameUse::Column && isBareFunction(name));
    if (isPlainName(name) && !reserved && !isSqliteKeyword(name) &&
        !(context_ && context_->isReservedName(name))) {
        text += name;
    } else {
        text += utils::quoted(std::wstring_view(name), L'"');
    }
}

void SqlStringBuilder::appendList(std::wstring& text, const ast::NodeList& nodes) {
    const wchar_t* separator = L"";
    for (const ast::NodePtr& node : nodes) {
        text += separator;
        text += renderValue(node);
        separator = L", ";
    }
}

void SqlStringBuilder::faultAction() {
    push({});
}

void SqlStringBuilder::visit(const ast::ColumnReference& node) {
    std::wstring text;
    text.reserve(node.qualifier.size() + node.name.size() + 3);
    if (!node.qualifier.empty()) {
        appendName(text, node.qualifier);
        text.push_back(L'.');
    }
    appendName(text, node.name, node.qualifier.empty() ? NameUse::Column : NameUse::Plain);
    push(std::move(text));
}

void SqlStringBuilder::visit(const ast::ContextuallyTypedValueSpecification& node) {
    push(node.parameter.empty() ? L"Null" : node.parameter);
}

void SqlStringBuilder::visit(const ast::Number& node) {
    push(node.text);
}

void SqlStringBuilder::visit(const ast::String& node) {
    std::wstring text;
    text.reserve(node.value.size() + 3);
    if (node.content == ast::String::Content::Hexadecimal) {
        text.push_back(L'X');
    }
    text += utils::quoted(std::wstring_view(node.value), L'\'');
    push(std::move(text));
}

void SqlStringBuilder::visit(const ast::TernaryLogicNode& node) {
    push(ternaryToString(node.value));
}

void SqlStringBuilder::visit(const ast::QualifiedAsterisk& node) {
    std::wstring text;
    if (!node.qualifier.empty()) {
        appendName(text, node.qualifier);
        text.push_back(L'.');
    }
    text.push_back(L'*');
    push(std::move(text));
}

void SqlStringBuilder::visit(const ast::Range& node) {
    std::wstring text = renderOperand(node.low, OperationCode::Between, false);
    text += L" And ";
    text += renderOperand(node.high, OperationCode::Between, false);
    push(std::move(text));
}

void SqlStringBuilder::visit(const ast::RowValueExpression& node) {
    std::wstring text = L"(";
    appendList(text, node.values);
    text.push_back(L')');
    push(std::move(text));
}

void SqlStringBuilder::visit(const ast::RowValueExpressionList& node) {
    std::wstring text;
    appendList(text, node.elements);
    push(std::move(text));
}

std::wstring SqlStringBuilder::operationToString(OperationCode code) const {
    const auto index = static_cast<std::size_t>(code);
    return index < operatorTexts.size() ? operatorTexts[index] : L"";
}

std::wstring SqlStringBuilder::ternaryToString(TernaryLogic::Value value) {
    switch (value) {
    case TernaryLogic::False: return L"False";
    case TernaryLogic::True: return L"True";
    case TernaryLogic::Unknown: break;
    }
    return L"Unknown";
}

void SqlStringBuilder::visit(const ast::Operation& node) {
    renderOperation(node, nullptr);
}

void SqlStringBuilder::processOperation(const ast::Operation& node, const TextFunction& collated) {
    renderOperation(node, collated);
}

std::wstring SqlStringBuilder::renderCollated(const ast::Operation& node, const TextFunction& collated) {
    const auto isCollated = [](const ast::NodePtr& operand) {
        const auto* operation = ast::nodeAs<ast::Operation>(operand);
        return operation && operation->code() == OperationCode::Collate;
    };
    const auto* range = ast::nodeAs<ast::Range>(node.right());
    const bool stated = isCollated(node.left()) || isCollated(node.right()) ||
                        (range && (isCollated(range->low) || isCollated(range->high)));
    // SQLite takes the collations of a row from the values of the query that gives it.
    const bool isRowQuery =
        ast::isQuery(node.left()) && (ast::rowSize(node.left()) > 1 || ast::rowSize(node.right()) > 1 ||
                                      (range && ast::rowSize(range->low) > 1));
    if (!collated || stated || isRowQuery) {
        return renderOperand(node.left(), node.code(), true);
    }
    const auto* row = ast::nodeAs<ast::RowValueExpression>(node.left());
    if (!row) {
        std::wstring text = renderOperand(node.left(), OperationCode::Collate, true);
        return std::move(collated(text));
    }
    std::wstring text = L"(";
    for (const ast::NodePtr& value : row->values) {
        std::wstring element = renderOperand(value, OperationCode::Collate, true);
        text += text.size() > 1 ? L", " : L"";
        text += collated(element);
    }
    text.push_back(L')');
    return text;
}

void SqlStringBuilder::renderOperation(const ast::Operation& node, const TextFunction& collated) {
    const OperationCode code = node.code();
    std::wstring text;
    switch (code) {
    case OperationCode::Case: return renderCase(node, collated);
    case OperationCode::Cast:
        text = L"Cast(" + renderValue(node.left()) + L" As " + node.name() + L')';
        return push(std::move(text));
    case OperationCode::Collate:
        text = renderOperand(node.left(), code, true);
        text += L' ' + operationToString(code) + L' ';
        appendName(text, node.name());
        return push(std::move(text));
    case OperationCode::Negate:
    case OperationCode::UnaryPlus:
        return push(operationToString(code) + renderOperand(node.left(), code, false));
    case OperationCode::Not:
    case OperationCode::Exists:
        return push(operationToString(code) + L' ' + renderOperand(node.left(), code, false));
    default: break;
    }
    text = renderCollated(node, collated);
    text.push_back(L' ');
    text += operationToString(code);
    if (!node.unary()) {
        text.push_back(L' ');
        if (code == OperationCode::In || code == OperationCode::NotIn) {
            appendInOperand(text, node);
        } else {
            text += renderOperand(node.right(), code, false);
        }
        if (node.escape()) {
            text += L" Escape " + renderOperand(node.escape(), code, false);
        }
    }
    push(std::move(text));
}

/// SQLite wants the rows that a row value is looked for in as a query, each in parentheses.
void SqlStringBuilder::appendInOperand(std::wstring& text, const ast::Operation& node) {
    const auto* rows = node.left() && ast::rowSize(node.left()) != 1
                           ? ast::nodeAs<ast::RowValueExpressionList>(node.right())
                           : nullptr;
    text.push_back(L'(');
    if (!rows) {
        text += render(node.right());
    } else {
        const wchar_t* separator = L"Values ";
        for (const ast::NodePtr& row : rows->elements) {
            const bool isRow = row->kind == ast::NodeKind::RowValueExpression;
            text += separator + (isRow ? render(row) : L'(' + renderValue(row) + L')');
            separator = L", ";
        }
    }
    text.push_back(L')');
}

void SqlStringBuilder::renderCase(const ast::Operation& node, const TextFunction& collated) {
    std::wstring text = L"Case";
    if (node.left()) {
        text += L' ' + renderCollated(node, collated);
    }
    if (const auto* branches = ast::nodeAs<ast::RowValueExpressionList>(node.right())) {
        for (const ast::NodePtr& element : branches->elements) {
            const auto* branch = ast::nodeAs<ast::RowValueExpression>(element);
            if (branch && branch->values.size() == 2) {
                text += L" When " + renderValue(branch->values[0]);
                text += L" Then " + renderValue(branch->values[1]);
            } else if (branch && branch->values.size() == 1) {
                text += L" Else " + renderValue(branch->values[0]);
            }
        }
    }
    push(text + L" End");
}

void SqlStringBuilder::visit(const ast::Function& node) {
    std::wstring text;
    if (node.form == ast::Function::Bare) {
        push(node.name);
        return;
    }
    appendName(text, node.name, NameUse::Call);
    if (const auto* part = node.form == ast::Function::Extraction && node.arguments.size() == 2
                               ? ast::nodeAs<ast::String>(node.arguments.front())
                               : nullptr) {
        text += L'(' + part->value + L" From " + renderValue(node.arguments.back()) + L')';
        return push(std::move(text));
    }
    text += node.distinct ? L"(Distinct " : L"(";
    const wchar_t* separator = L"";
    for (const ast::NodePtr& argument : node.arguments) {
        text += separator;
        text += renderValue(argument);
        separator = L",";
    }
    if (!node.orderBy.empty()) {
        text += L" Order By ";
        appendList(text, node.orderBy);
    }
    text.push_back(L')');
    if (node.filter) {
        text += L" Filter (Where " + renderValue(node.filter) + L')';
    }
    if (node.over) {
        appendWindow(text, *node.over);
    }
    push(std::move(text));
}

void SqlStringBuilder::appendWindow(std::wstring& text, const ast::Window& window) {
    text += L" Over (";
    const wchar_t* separator = L"";
    if (!window.partitionBy.empty()) {
        appendKeys(text, L"Partition By ", window.partitionBy);
        separator = L" ";
    }
    if (!window.orderBy.empty()) {
        text += separator;
        text += L"Order By ";
        appendList(text, window.orderBy);
        separator = L" ";
    }
    if (window.frame) {
        constexpr const wchar_t* units[] = {L"Rows ", L"Range ", L"Groups "};
        constexpr const wchar_t* exclusions[] = {L"", L" Exclude Current Row", L" Exclude Group",
                                                 L" Exclude Ties"};
        text += separator;
        text += units[static_cast<int>(window.frame->unit)];
        text += window.frame->end ? L"Between " : L"";
        appendBound(text, window.frame->start);
        if (window.frame->end) {
            text += L" And ";
            appendBound(text, *window.frame->end);
        }
        text += exclusions[static_cast<int>(window.frame->exclusion)];
    }
    text.push_back(L')');
}

std::wstring SqlStringBuilder::renderBound(const ast::NodePtr& offset) {
    return renderOperand(offset, OperationCode::Between, false);
}

void SqlStringBuilder::appendBound(std::wstring& text, const ast::Window::Bound& bound) {
    constexpr const wchar_t* kinds[] = {L"Unbounded Preceding", L" Preceding", L"Current Row", L" Following",
                                        L"Unbounded Following"};
    if (bound.offset) {
        text += renderBound(bound.offset);
    }
    text += kinds[static_cast<int>(bound.kind)];
}

} // namespace orvane::sql
