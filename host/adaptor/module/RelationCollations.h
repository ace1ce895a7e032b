#pragma once

#include <sqlite3.h>

namespace orvane::engine {
class EngineCache;
}

namespace orvane::adaptor {

/// Makes the collations of engine::RelationName known to a connection as they are asked for. Under them two
/// operand columns compare equal where the relation holds: what no scan takes over, SQLite tests so. A table
/// need not be there for its name to be understood. Returns an SQLite code.
int offerRelations(sqlite3* database, engine::EngineCache& cache);

} // namespace orvane::adaptor
