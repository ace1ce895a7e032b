#pragma once

#include "platform/dp/Table.h"
#include <orvane/engine/EngineIndices.h>

#include <vector>

namespace orvane::engine {
class EngineCache;
}

namespace orvane::adaptor {

/// Makes an index on attributes of a table in its store, which gets storage if it has none. Returns the
/// number of the index; -1 when there is no place for it, which is logged: a query is slower without, not
/// wrong. Announces a work::Progress and logs what it has made. Throws work::Cancelled, and
/// std::runtime_error when the table cannot be read; no part of the index is left then.
int buildIndex(const std::vector<int>& attributes, dp::Table& table, engine::EngineIndices& store,
               engine::EngineCache& cache);

} // namespace orvane::adaptor
