#pragma once

#include <host/adaptor/Export.h>

struct sqlite3;

namespace orvane {
class Core;
namespace engine {
class EngineCache;
}
} // namespace orvane

namespace orvane::adaptor {

/// The name of the virtual-table module: "Create Virtual Table t Using OrvaneTable(name)" makes t the view of
/// the catalogue's table of that name.
ORVANE_ADAPTOR_EXPORT const char* moduleName();

/// Installs the SQL functions and the virtual-table module in the engine database
/// (Engine::loadTableAdapterModule). The core has to have the engine and the data catalogue as services when
/// the first table is made.
ORVANE_ADAPTOR_EXPORT int initialise(sqlite3* database, char** errorMessage, Core* core,
                                     engine::EngineCache* cache);

} // namespace orvane::adaptor
