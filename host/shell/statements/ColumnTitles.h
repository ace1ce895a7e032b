#pragma once

#include "platform/sql/lexing/Lexer.h"

#include <sqlite3.h>

#include <string>
#include <vector>

namespace orvane::shell {

/// The names of the result columns as the user knows them: aliases and columns by their names, other
/// expressions as the user wrote them. `statement` is the user's text of the prepared statement, a query or
/// an expression by itself; null when it runs untranslated.
std::vector<std::string> columnTitles(sqlite3_stmt* prepared, const sql::TokenizedText* statement,
                                      bool isExpression);

} // namespace orvane::shell
