#pragma once

#include "engine/expression/FeatureRow.h"

namespace orvane::engine {

/// Makes the virtual-table module that shows a row; null takes the module away. Returns SQLite's code.
int registerFeatureRow(sqlite3* database, const QByteArray& name,
                       const std::shared_ptr<FeatureRow::State>& state);

} // namespace orvane::engine
