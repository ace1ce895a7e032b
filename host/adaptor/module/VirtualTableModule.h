#pragma once

struct sqlite3;

namespace orvane {
class Core;
namespace engine {
class EngineCache;
}
} // namespace orvane

namespace orvane::adaptor {

/// Registers the virtual-table module through which SQLite reads and writes the tables of the catalogue.
/// Returns SQLite's code.
int registerModule(sqlite3* database, const char* name, Core& core, engine::EngineCache& cache);

} // namespace orvane::adaptor
