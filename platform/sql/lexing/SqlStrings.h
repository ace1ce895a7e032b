#pragma once

#include "platform/Export.h"

#include <QString>

#include <cstddef>
#include <string>
#include <string_view>

namespace orvane::sql {

ORVANE_PLATFORM_EXPORT std::wstring toSqlString(const QString& text);
ORVANE_PLATFORM_EXPORT QString fromSqlString(const std::wstring& text);
/// What is no character becomes U+FFFD.
ORVANE_PLATFORM_EXPORT std::string toUtf8(std::wstring_view text);

/// Every character by its simple lower-case mapping; the length stays.
ORVANE_PLATFORM_EXPORT std::wstring toLowercase(const std::wstring& text);

/// Appends UTF-8 text to `wide`. Returns the number of bytes read: less than the size of the text when the
/// next byte begins no valid character (overlong forms, surrogates and values beyond U+10FFFF are none).
ORVANE_PLATFORM_EXPORT std::size_t appendUtf8(std::wstring& wide, std::string_view text);

/// Whether SQL reads the text as one bare name, keywords aside: a letter, "_" or any symbol beyond ASCII that
/// is neither blank nor punctuation, then also digits and "$".
ORVANE_PLATFORM_EXPORT bool isPlainName(std::wstring_view text);
ORVANE_PLATFORM_EXPORT bool isNameStart(wchar_t symbol);
ORVANE_PLATFORM_EXPORT bool isNamePart(wchar_t symbol);
/// Blanks between words, those beyond ASCII included (they come with text pasted from documents).
ORVANE_PLATFORM_EXPORT bool isBlank(wchar_t symbol);

} // namespace orvane::sql
