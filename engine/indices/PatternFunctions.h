#pragma once

struct sqlite3_context;
struct sqlite3_value;

namespace orvane::engine {

/// caseInsensitiveLike and caseInsensitiveGlob (<orvane/engine/functions/Text.h>) for searches: the same
/// answers, but the pattern of a statement is compiled once, not for every row.
void searchLike(sqlite3_context* context, int count, sqlite3_value** values);
void searchGlob(sqlite3_context* context, int count, sqlite3_value** values);

} // namespace orvane::engine
