#pragma once

#include "platform/sql/tree/Node.h"

#include <string>

namespace orvane::engine {

/// A condition of Where or On in which each term about a distance is followed by what a scan can look up of
/// it: `Distance(a.obj, b.obj, 'km') < 5` by `IsNear(a.obj, Nearness(b.obj, 5, 'km', 0, 0))`, and the same
/// for b. That is true wherever the term is. Any other condition is given back as it is.
sql::ast::NodePtr withNearness(const sql::ast::NodePtr& condition);

/// Whether it is one of the functions that withNearness adds.
bool isNearnessFunction(const std::wstring& name);

} // namespace orvane::engine
