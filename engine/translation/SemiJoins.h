#pragma once

#include "platform/sql/tree/Queries.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orvane::engine {

/// SQLite asks a subquery of Exists anew for every row around it. One whose rows are near to or in a relation
/// to the rows of the only table around becomes a list of row numbers, so that it is planned as a join:
/// `Select name From a Where Exists (Select 1 From b Where a.obj Intersects b.obj)` into `Select name From a
/// Where a.rowid In (Select a.rowid From a, b Where a.obj Intersects b.obj)`; the same with Not. All other
/// conditions of the query are repeated in the list, so that it holds nothing in vain. Null for any other
/// query. `hasHiddenColumns` tells of which tables relations can be looked up, `tableColumns` the names of
/// columns.
std::shared_ptr<const sql::ast::QuerySpecification>
withSemiJoins(const sql::ast::QuerySpecification& query,
              const std::function<bool(const sql::ast::TablePrimary&)>& hasHiddenColumns,
              const std::function<std::vector<std::wstring>(const std::wstring&)>& tableColumns);

} // namespace orvane::engine
