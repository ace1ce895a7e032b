#pragma once

#include <orvane/engine/Export.h>

#include <sqlite3.h>

namespace orvane::engine {

/// Puts a bound on the functions of SQLite whose numbers decide how much they make: a width of printf of
/// millions of characters is an error. A result code of SQLite's. Called on the engine's thread.
ORVANE_ENGINE_EXPORT int boundFunctions(sqlite3* database);

} // namespace orvane::engine
