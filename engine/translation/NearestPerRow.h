#pragma once

#include "platform/sql/tree/Queries.h"

#include <functional>
#include <memory>

namespace orvane::engine {

/// A query for the first few of each group that Row_Number numbers by a distance, such that only rows of the
/// second table that are among the nearest to the first table's row are joined at all. In
/// `Select … From (Select a.x, b.y, Row_Number() Over (Partition By a.x Order By Distance(a.obj, b.obj)) As n
/// From a, b Where c) q Where n <= 3` the inner query gets the condition
/// `b.rowid In (Select b.rowid From b Where c Order By Distance(a.obj, b.obj) Limit 3)`, which what is among
/// the first three of any group fulfils. Null for any other query. `hasHiddenColumns` tells of which tables
/// the nearest rows can be had.
std::shared_ptr<const sql::ast::QuerySpecification>
withNearestPerRow(const sql::ast::QuerySpecification& query,
                  const std::function<bool(const sql::ast::TablePrimary&)>& hasHiddenColumns);

} // namespace orvane::engine
