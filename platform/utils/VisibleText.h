#pragma once

#include "platform/Export.h"

#include <cstddef>
#include <string>
#include <string_view>

/// The one form in which texts that others wrote reach a terminal: it shows them and obeys nothing in them.
/// What would move the cursor, change the order of letters or be there unseen takes a visible form:
///
/// - control characters below U+0020 their pictures (U+2400...), U+007F the one at U+2421;
/// - other controls, line and paragraph separators and format characters "<U+202E>": marks of direction, soft
///   hyphens, tags, joiners where they join nothing;
/// - bytes that are no UTF-8 U+FFFD, one for each.
///
/// Joiners stay within emoji and between letters that they join or keep apart, tags in the flag of a region.
/// The form of a visible text is the text itself. Any thread.
namespace orvane::utils {

/// A character, or a sequence that stands for one.
struct Sign {
    std::size_t size;   ///< in bytes
    char32_t character; ///< the first; U+FFFD for a byte that is no UTF-8
    bool isVisible;     ///< as it is
};

/// What stands at a position before the end, where a character begins.
ORVANE_PLATFORM_EXPORT Sign signAt(std::string_view utf8, std::size_t position);

/// Gives a text of one line its visible form: line feeds are shown too.
ORVANE_PLATFORM_EXPORT void makeVisible(std::string& utf8);
/// Gives a text of several lines its visible form.
ORVANE_PLATFORM_EXPORT void makeLinesVisible(std::string& utf8);
/// The visible form of a text of one line.
ORVANE_PLATFORM_EXPORT std::string visibleText(std::string_view utf8);

} // namespace orvane::utils
