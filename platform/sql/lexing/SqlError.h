#pragma once

#include "platform/Export.h"

#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace orvane::sql {

/// Where in the user's text a fault lies, and what would have been right there.
struct ErrorPlace {
    int line = 1;                       ///< from 1
    int column = 1;                     ///< from 1, in characters
    std::wstring word;                  ///< the offending word; empty at the end of the text
    std::vector<std::wstring> expected; ///< what could stand there; may be empty
};

/// A fault of a statement. The message is for the user and in the user's language; what() gives it in UTF-8.
class ORVANE_PLATFORM_EXPORT SqlError : public std::exception {
public:
    explicit SqlError(std::wstring message, std::optional<ErrorPlace> place = std::nullopt);
    ~SqlError() override;

    const std::wstring& message() const { return message_; }
    const char* what() const noexcept override { return utf8_.c_str(); }
    const std::optional<ErrorPlace>& place() const { return place_; }

private:
    std::wstring message_;
    std::string utf8_;
    std::optional<ErrorPlace> place_;
};

/// A fault that the parser found.
class ORVANE_PLATFORM_EXPORT SqlSyntaxError : public SqlError {
public:
    using SqlError::SqlError;
    ~SqlSyntaxError() override;
};

/// A function that may not be called here.
class ORVANE_PLATFORM_EXPORT UnknownFunction : public SqlError {
public:
    explicit UnknownFunction(std::wstring name);
    ~UnknownFunction() override;

    const std::wstring& name() const { return name_; }

private:
    std::wstring name_;
};

/// The selection is used as a table while nothing is selected.
class ORVANE_PLATFORM_EXPORT SelectionTableIsAbsent : public SqlError {
public:
    SelectionTableIsAbsent();
    ~SelectionTableIsAbsent() override;
};

/// A text that is no statement; the message is the caller's.
class ORVANE_PLATFORM_EXPORT GeneralSyntaxError : public SqlError {
public:
    using SqlError::SqlError;
    ~GeneralSyntaxError() override;
};

/// A statement of another kind than asked for; the message names the kind that was.
class ORVANE_PLATFORM_EXPORT UnexpectedParseResult : public SqlError {
public:
    using SqlError::SqlError;
    ~UnexpectedParseResult() override;
};

} // namespace orvane::sql
