#pragma once

#include <string>

namespace orvane::sql {

/// What the parser asks of its surroundings.
class ParseContext {
public:
    virtual ~ParseContext() = default;

    /// Whether a bare name, given in lower case, stands for a call without parentheses, as rownum does.
    virtual bool isBareFunction(const std::wstring& lowercaseName) const = 0;
};

/// The names that every dialect text may use so: rownum, current_date, current_time, current_timestamp.
bool isStandardBareFunction(const std::wstring& lowercaseName);

} // namespace orvane::sql
