#pragma once

#include "platform/Export.h"

#include <string>
#include <string_view>
#include <vector>

namespace orvane::sql {

/// One statement of a script, or a command to the program that runs it.
struct ScriptStatement {
    std::string text;        ///< from its first word on, without the ";"; of a command the line with its dot
    int line = 1;            ///< where the first word stands in the script, from 1
    int column = 1;          ///< from 1, in characters
    bool terminated = false; ///< whether a ";" follows; when not, the statement may go on with more text
    bool isCommand = false;  ///< ".name", which ends with its line
};

struct Script {
    std::vector<ScriptStatement> statements;
    bool endsInComment = false; ///< behind the last statement stands a comment that may go on
};

/// Cuts UTF-8 text into statements at every ";" outside texts, quoted names and comments. Where a statement
/// could begin, a dot and a letter begin a command. Statements of nothing but blanks and comments are left
/// out. Never fails: what is not closed reaches to the end of the script.
ORVANE_PLATFORM_EXPORT Script splitScript(std::string_view utf8);

} // namespace orvane::sql
