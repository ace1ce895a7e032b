#pragma once

#include <cstddef>
#include <string_view>

namespace orvane::shell {

/// Columns of a terminal that one character of a visible text (platform/utils/VisibleText.h) takes: 0, 1
/// or 2. Wide and full-width characters of UAX #11 take two, combining marks, joiners and tags none.
int characterWidth(char32_t character);

/// Columns of a terminal that a visible UTF-8 text takes. Emoji joined by U+200D or modified by a skin tone
/// count as one wide character.
int displayWidth(std::string_view utf8);

/// The length in bytes of the longest beginning of a UTF-8 text that fits into so many columns.
std::size_t prefixOfWidth(std::string_view utf8, int columns);

} // namespace orvane::shell
