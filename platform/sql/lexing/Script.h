#pragma once

#include "platform/Export.h"

#include <string>
#include <string_view>
#include <vector>

namespace orvane::sql {

/// One statement of a script.
struct ScriptStatement {
    std::string text;        ///< from its first word on, without the ";"
    int line = 1;            ///< where the first word stands in the script, from 1
    int column = 1;          ///< from 1, in characters
    bool terminated = false; ///< whether a ";" follows; when not, the statement may go on with more text
};

/// Cuts UTF-8 text into statements at every ";" outside texts, quoted names and comments. Statements of
/// nothing but blanks and comments are left out. Never fails: what is not closed reaches to the end of the
/// script.
ORVANE_PLATFORM_EXPORT std::vector<ScriptStatement> splitScript(std::string_view utf8);

} // namespace orvane::sql
