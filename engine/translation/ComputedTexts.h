#pragma once

#include "platform/sql/tree/Node.h"

namespace orvane::engine {

/// Whether a value may be a text that no column holds, so that SQLite knows no collation for it. Columns have
/// their own; of functions that give numbers the usual ones are known, so that numbers are sorted the fast
/// way.
bool isComputedText(const sql::ast::NodePtr& value);

} // namespace orvane::engine
