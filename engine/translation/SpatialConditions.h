#pragma once

#include "platform/sql/tree/Expressions.h"
#include "platform/sql/tree/Queries.h"

#include <functional>
#include <map>
#include <string>
#include <utility>

namespace orvane::engine {

/// The tables of a From, whose geometries a scan can look up.
class ScannedTables {
public:
    /// Outside of queries: every column counts.
    ScannedTables() = default;
    using HasHiddenColumns = std::function<bool(const sql::ast::TablePrimary&)>;
    /// The From may be null. `hasHiddenColumns` tells of which tables have the operand columns of
    /// ColumnNames.h.
    ScannedTables(const sql::ast::NodePtr& from, HasHiddenColumns hasHiddenColumns);

    bool areSeveral() const { return sources_ > 1; }
    /// Whether the node is the geometry of one of them.
    bool haveGeometry(const sql::ast::NodePtr& node) const;
    /// The table with operand columns whose geometry the node is; null for none.
    const sql::ast::TablePrimary* tableWithOperands(const sql::ast::NodePtr& node) const;

private:
    bool isQuery_ = false;
    std::size_t sources_ = 0;
    HasHiddenColumns hasHiddenColumns_;
    /// By the names, in lower case, under which columns name them.
    std::map<std::wstring, const sql::ast::TablePrimary*> tables_;
};

/// The geometries of tables that a relation, or a bound on a distance, is between; null for other conditions.
std::pair<const sql::ast::ColumnReference*, const sql::ast::ColumnReference*>
relatedGeometries(const sql::ast::NodePtr& condition);

/// A condition of Where or On such that a scan of one of the tables can look up what it says of a geometry. A
/// term about a distance is followed by what is looked up of it: `Distance(a.obj, b.obj, 'km') < 5` by
/// `IsNear(a.obj, Nearness(b.obj, 5, 'km', 0, 0))`, and the same for b. A relation between two of the tables
/// becomes an equality of their operand columns, which SQLite offers to either, also among alternatives. Of a
/// function SQLite asks a table about first operands only, so that a relation whose second operand alone is a
/// geometry of the tables is turned round where it has a converse, else followed by `MayMeet(second, first)`.
/// Any other condition is given back as it is.
///
/// `literalOf` gives the value of an expression without columns as a literal, null where it cannot. With it a
/// join is planned by what is near to or in relation to the value: SQLite tells a table of literals only.
using LiteralOf = std::function<sql::ast::NodePtr(const sql::ast::NodePtr&)>;
sql::ast::NodePtr withLookups(const sql::ast::NodePtr& condition, const ScannedTables& tables,
                              const LiteralOf& literalOf);

} // namespace orvane::engine
