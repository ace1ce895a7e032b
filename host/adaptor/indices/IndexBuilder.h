#pragma once

#include "platform/dp/Table.h"
#include <orvane/engine/EngineIndices.h>

#include <vector>

namespace orvane::engine {
class EngineCache;
}

namespace orvane::adaptor {

/// The index of the store that begins with the attributes, in any order, and holds the rows; -1 when there is
/// none.
int findIndex(const std::vector<int>& attributes, const engine::EngineIndices& store);

/// The same, made of the table's rows when there is none yet, in a store that gets storage if it has none. -1
/// when it cannot be made, which is logged: a query is slower without, not wrong. Announces a work::Progress
/// and logs what it has made. Throws work::Cancelled, and no other exception.
int buildIndex(const std::vector<int>& attributes, dp::Table& table, engine::EngineIndices& store,
               engine::EngineCache& cache);

} // namespace orvane::adaptor
