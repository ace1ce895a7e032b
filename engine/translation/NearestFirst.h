#pragma once

#include "platform/sql/tree/Queries.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orvane::engine {

/// The query of one table whose key of order is the distance of the table's geometry from something else,
/// such that it reads the rows in that order by the hidden columns of ColumnNames.h: `Select name From t
/// Order By Distance(obj, place) Limit 5` as `Select name From t Where origin Is Nearness(place, ...) Order
/// By distance Limit 5`. Null for any other query, and where it has no limit. `tableColumns` tells the
/// columns of a table that a query within the place selects from; it may be null.
std::shared_ptr<const sql::ast::QuerySpecification>
withNearestFirst(const sql::ast::QuerySpecification& query, const sql::ast::TablePrimary& table,
                 const sql::ast::NodePtr& distance,
                 const std::function<std::vector<std::wstring>(const std::wstring&)>& tableColumns);

} // namespace orvane::engine
