#pragma once

#include <cstddef>
#include <string_view>

namespace orvane::shell {

/// Columns of a terminal that one character takes: 0, 1 or 2. Wide and full-width characters of UAX #11 take
/// two, combining marks and format controls none.
int characterWidth(char32_t character);

/// Columns of a terminal that a UTF-8 text takes. Emoji joined by U+200D or modified by a skin tone count as
/// one wide character. Each byte that is no UTF-8 counts as one column.
int displayWidth(std::string_view utf8);

/// The length in bytes of the longest beginning of a UTF-8 text that fits into so many columns.
std::size_t prefixOfWidth(std::string_view utf8, int columns);

} // namespace orvane::shell
