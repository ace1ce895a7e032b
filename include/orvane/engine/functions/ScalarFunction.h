#pragma once

#include <sqlite3.h>

namespace orvane::engine {

/// A function as SQLite calls it, for the declaration of many in one line.
using ScalarFunction = void(sqlite3_context* context, int count, sqlite3_value** values);

} // namespace orvane::engine
