#pragma once

#include "host/adaptor/planning/ScanPlan.h"
#include "host/adaptor/statistics/SpaceStatistics.h"
#include "host/adaptor/tables/VirtualTable.h"

#include <sqlite3.h>

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::adaptor {

/// A condition on a relation between the geometries of a table and an operand.
struct RelationTerm {
    int constraint; ///< of xBestIndex
    ScanPlan::Relation relation;
    bool isEquality;               ///< of operand columns, else a function
    VirtualTable* other = nullptr; ///< of the operand; null where that is not known
    std::optional<geometry::Envelope> operand =
        {}; ///< or of what is near it, in the table's system, if known
};

/// What a scan that looks a relation up finds, as far as statistics tell.
struct RelationEstimate {
    double found;      ///< rows for which the relation holds
    double candidates; ///< rows whose envelope is such that it may
    double scans;      ///< at most so many: one for each row of the operand's table
    bool isElsewhere;  ///< decided in another system
    bool isReady;      ///< without an R-tree that would have to be made first
};

/// The relations that a scan of a table may look up one of.
class RelationTerms {
public:
    explicit RelationTerms(VirtualTable& table) : table_(table) {}

    bool isEmpty() const { return terms_.empty(); }
    /// A function of the geometry and a value.
    void addFunction(sqlite3_index_info& info, int constraint);
    /// An equality of an operand column, if it is a relation.
    void addEquality(sqlite3_index_info& info, int constraint);

    /// The one that finds the fewest rows.
    std::pair<RelationTerm, RelationEstimate> best() const;
    /// Those that no SQL function tests.
    std::vector<RelationTerm> equalities() const;

private:
    RelationEstimate estimate(const RelationTerm& term) const;
    std::optional<double> countMatching(const RelationTerm& term, SpaceStatistics::Match match) const;
    geometry::GeometryPtr geometryOf(std::string_view blob) const;
    std::optional<geometry::Envelope> envelopeOf(sqlite3_value* value) const;
    std::optional<geometry::Envelope> neighbourhoodOf(sqlite3_value* value) const;
    bool isElsewhere(const RelationTerm& term) const;

    VirtualTable& table_;
    std::vector<RelationTerm> terms_;
};

} // namespace orvane::adaptor
