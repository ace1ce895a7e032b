#pragma once

#include "host/adaptor/functions/FunctionRecord.h"
#include <host/adaptor/Export.h>

#include <sqlite3.h>

#include <span>
#include <vector>

namespace orvane::engine {
class EngineCache;
}

namespace orvane::adaptor {

/// The records of every family, in the order of the reference.
ORVANE_ADAPTOR_EXPORT std::vector<FunctionRecord> allFunctionRecords();

/// The record of the scalar function of a name that takes so many arguments; null for none. Takes no memory.
const FunctionRecord* findScalar(const char* name, int count);

/// Registers the functions of the records with the cache as their user data. Returns SQLite's code of the
/// first registration that failed, else SQLITE_OK. The cache must outlive the connection's statements.
ORVANE_ADAPTOR_EXPORT int registerFunctions(sqlite3* database, std::span<const FunctionRecord> records,
                                            engine::EngineCache* cache);

/// Registers every family, and bounds the functions of SpatiaLite beside them.
ORVANE_ADAPTOR_EXPORT int registerAllFunctions(sqlite3* database, engine::EngineCache* cache);

} // namespace orvane::adaptor
