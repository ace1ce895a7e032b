#pragma once

#include <platform/sql/parsing/SqlParser.h>

#include <QStringList>

struct sqlite3_stmt;

namespace orvane::desk {

/// The titles of the result columns as the user knows them: aliases and columns by their names, expressions
/// as they were written.
QStringList columnTitles(sqlite3_stmt* prepared, const sql::ParseResult& statement);

} // namespace orvane::desk
