#pragma once

#include <orvane/engine/Export.h>

#include <optional>
#include <string>

namespace orvane::engine {

/// The collation under which an equality of operand columns (ColumnNames.h) is a relation: the SQL name of
/// the relation, and the tables of its first and second operand, by which a planner knows what it is about.
/// Written as `Within 5 roads parcels`, with the length of the first table's name in bytes. UTF-8.
struct RelationName {
    std::string relation;
    std::string first;
    std::string second;
};

ORVANE_ENGINE_EXPORT std::string toCollationName(const RelationName& name);
/// None for the names of other collations.
ORVANE_ENGINE_EXPORT std::optional<RelationName> relationNameOf(const char* collation);

} // namespace orvane::engine
