#pragma once

#include <orvane/engine/Export.h>

#include <sqlite3.h>

namespace orvane::engine {

/// Puts a bound on the functions of SpatiaLite and SQLite whose numbers decide how long they run or how much
/// they make: an angle that would be brought down to a turn step by step for ever, a distance that would make
/// millions of points or cells, and a width of printf of as many characters are errors. SpatiaLite has to be
/// there already. A result code of SQLite's. Called on the engine's thread.
ORVANE_ENGINE_EXPORT int boundFunctions(sqlite3* database);

} // namespace orvane::engine
