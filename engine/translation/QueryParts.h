#pragma once

#include "platform/sql/tree/Expressions.h"
#include "platform/sql/tree/Queries.h"

#include <functional>
#include <string>

namespace orvane::engine {

// What translation looks for in queries about geometries.

/// The name, in lower case, that columns of a table or of a query in From have before them. Empty for none.
std::wstring qualifierOf(const sql::ast::Node* source);
inline std::wstring qualifierOf(const sql::ast::NodePtr& source) {
    return qualifierOf(source.get());
}

/// Calls `take` with each table and query that a From joins.
void forEachSource(const sql::ast::NodePtr& from, const std::function<void(const sql::ast::Node&)>& take);

/// The reference to a table's geometry that a node is; null for others.
const sql::ast::ColumnReference* geometryReference(const sql::ast::NodePtr& node);

/// The call of the general distance, with units or without, that a node is; null for others.
const sql::ast::Function* distanceCall(const sql::ast::NodePtr& node);

/// Whether the smallest come first, and NULL before them.
bool isAscending(const sql::ast::SortSpecification& term);

/// Whether a value holds a parameter that its place alone numbers, so that it cannot be written twice.
bool hasNamelessParameter(const sql::ast::Node& value);

/// a And b, or the only one that is not null.
sql::ast::NodePtr conjunction(const sql::ast::NodePtr& a, const sql::ast::NodePtr& b);

} // namespace orvane::engine
