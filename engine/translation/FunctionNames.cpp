#include <orvane/engine/FunctionNames.h>

#include "platform/sql/lexing/SqlStrings.h"

namespace orvane::engine {

namespace {

/// The SQL name is the dialect's between a prefix and a suffix.
struct RenamedFunction {
    const wchar_t* dialectName;
    const wchar_t* prefix;
    const wchar_t* suffix;
};

constexpr RenamedFunction renamedFunctions[] = {
    {L"Area", L"Object", L""},
    {L"Perimeter", L"Object", L""},
    {L"Round", L"", L"To"},
    {L"MakeValid", L"", L"Geo"},
};

bool isSameName(const std::wstring& a, const std::wstring& b) {
    return a.size() == b.size() && sql::toLowercase(a) == sql::toLowercase(b);
}

} // namespace

std::wstring sqlFunctionName(const std::wstring& dialectName) {
    for (const RenamedFunction& function : renamedFunctions) {
        if (isSameName(dialectName, function.dialectName)) {
            return function.prefix + dialectName + function.suffix;
        }
    }
    return dialectName;
}

QString dialectFunctionName(const QString& sqlName) {
    const std::wstring name = sql::toSqlString(sqlName);
    for (const RenamedFunction& function : renamedFunctions) {
        if (isSameName(name, function.prefix + std::wstring(function.dialectName) + function.suffix)) {
            return QString::fromWCharArray(function.dialectName);
        }
    }
    return sqlName;
}

} // namespace orvane::engine
