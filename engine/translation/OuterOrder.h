#pragma once

#include "platform/sql/tree/Queries.h"

#include <memory>

namespace orvane::engine {

/// SQLite does not look for the names in Order By in the queries around: a query whose keys of order name
/// columns of those is turned into one of a query further in, where the keys are result columns: `Select x
/// From b Order By Area(a.obj) - y Limit 1` into `Select c0 As x From (Select x As c0, Area(a.obj) - y As k0
/// From b) Order By k0 Limit 1`. Null where that need not be, or cannot.
std::shared_ptr<const sql::ast::QuerySpecification>
withOrderFurtherIn(const sql::ast::QuerySpecification& query);

} // namespace orvane::engine
