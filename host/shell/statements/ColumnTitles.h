#pragma once

#include "platform/sql/parsing/SqlParser.h"

#include <sqlite3.h>

#include <string>
#include <vector>

namespace orvane::shell {

/// The names of the result columns as the user knows them: aliases and columns by their names, other
/// expressions as the user wrote them. `statement` is the user's own, a query or an expression by itself; one
/// without a tree when SQLite's text was the user's.
std::vector<std::string> columnTitles(sqlite3_stmt* prepared, const sql::ParseResult& statement);

} // namespace orvane::shell
