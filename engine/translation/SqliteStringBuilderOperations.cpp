#include <orvane/engine/SqliteStringBuilder.h>

#include "platform/sql/lexing/SqlStrings.h"
#include <orvane/engine/FunctionNames.h>

#include <sqlite3.h>

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

/// The name of a type with the words quoted that SQLite would take for something else (`Table`).
std::wstring quotedType(const std::wstring& name) {
    const std::size_t end = std::min(name.find(L'('), name.size());
    std::wstring type;
    for (std::size_t begin = 0; begin < end;) {
        const std::size_t behind = std::min(name.find(L' ', begin), end);
        const std::wstring word = name.substr(begin, behind - begin);
        const std::string utf8 = toUtf8(word);
        const bool isKeyword = sqlite3_keyword_check(utf8.data(), static_cast<int>(utf8.size())) != 0;
        type += (type.empty() ? L"" : L" ") + (isKeyword ? L'"' + word + L'"' : word);
        begin = behind + 1;
    }
    return type + name.substr(end);
}

} // namespace

/// The right operand is rendered first. Both stand in parentheses of their own within the call.
void SqliteStringBuilder::visit(const ast::Operation& node) {
    const wchar_t* function = node.unary() ? nullptr : functionOf(node.code());
    if (function) {
        const std::wstring right = render(node.right());
        std::wstring text = std::wstring(function) + L"((" + render(node.left());
        text += L"),(";
        text += right;
        text += L"))";
        return push(std::move(text));
    }
    if (node.code() == OperationCode::Cast) {
        return SqlStringBuilder::visit(
            ast::Operation(OperationCode::Cast, node.left(), quotedType(node.name())));
    }
    // `Case x When y` compares as well; the other form of Case has no left operand.
    const bool simpleCase = node.code() == OperationCode::Case && node.left();
    if (!collate_.isEmpty() && (comparesTexts(node.code()) || simpleCase)) {
        const std::wstring clause = L" Collate " + toSqlString(collate_);
        return processOperation(node,
                                [&clause](std::wstring& text) -> std::wstring& { return text += clause; });
    }
    SqlStringBuilder::visit(node);
}

std::wstring SqliteStringBuilder::operationToString(OperationCode code) const {
    switch (code) {
    case OperationCode::Join: return L"||";
    case OperationCode::Mod: return L"%"; // SQLite has no word for it
    default: return SqlStringBuilder::operationToString(code);
    }
}

std::wstring SqliteStringBuilder::ternaryToString(TernaryLogic::Value value) {
    return value == TernaryLogic::Unknown ? L"NULL" : SqlStringBuilder::ternaryToString(value);
}

void SqliteStringBuilder::visit(const ast::Function& node) {
    if (toLowercase(node.name) == L"rownum") {
        return push(L"row_number() Over (Order By 1)");
    }
    if (!whiteList_.empty()) {
        const QString written = fromSqlString(node.name);
        if (whiteList_.count(written) == 0) {
            unsupported_.insert(written);
        }
    }
    std::wstring name = sqlFunctionName(node.name);
    if (name == node.name) {
        return SqlStringBuilder::visit(node);
    }
    ast::Function renamed = node;
    renamed.name = std::move(name);
    SqlStringBuilder::visit(renamed);
}

} // namespace orvane::engine
