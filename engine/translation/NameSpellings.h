#pragma once

#include "platform/sql/tree/Node.h"
#include <orvane/engine/SqliteStringBuilder.h>

#include <functional>
#include <string>
#include <vector>

namespace orvane::engine {

/// How the names beyond ASCII that a statement uses are spelt where they are declared: as tables, as columns
/// of the tables it names, or in the statement itself. SQLite knows letter case of ASCII letters only. Empty,
/// and nothing is asked, for a statement without such names.
SqliteStringBuilder::Spellings nameSpellings(const sql::ast::Node& statement,
                                             const std::function<std::vector<std::wstring>()>& tables,
                                             const SqliteStringBuilder::TableColumns& columns);

} // namespace orvane::engine
