#include "host/adaptor/planning/RelationTerms.h"

#include "host/adaptor/indices/Costs.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/measures/Neighbourhood.h"
#include "platform/geometry/shapes/Geometry.h"
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/NearnessBlob.h>
#include <orvane/engine/RelationName.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace orvane::adaptor {

using geometry::GeometryPtr;

namespace {

using Match = SpaceStatistics::Match;

/// The envelopes of a layer that meet one geometry, as far as nothing is known of it: a share of a small
/// layer, and what is around one place of a large one.
constexpr double assumedShare = 0.01;
constexpr double assumedNeighbours = 100;

/// Which envelopes match where the relation holds, and for how many of those it does: shapes fill about half
/// of their envelopes.
struct Likelihood {
    Match match;
    double share;
};

Likelihood likelihoodOf(SpatialRelation relation) {
    switch (relation) {
    case SpatialRelation::Intersects: return {Match::Meet, 0.7};
    case SpatialRelation::Contains:
    case SpatialRelation::Covers: return {Match::SecondWithin, 0.6};
    case SpatialRelation::Within:
    case SpatialRelation::CoveredBy: return {Match::FirstWithin, 0.6};
    case SpatialRelation::ContainsCentroid: return {Match::WithinCentre, 0.6};
    case SpatialRelation::CentroidWithin: return {Match::CentreWithin, 0.6};
    case SpatialRelation::Touches:
    case SpatialRelation::Crosses:
    case SpatialRelation::Overlaps: return {Match::Meet, 0.2};
    case SpatialRelation::Equals:
    case SpatialRelation::MayMeet:
    case SpatialRelation::Near: break;
    }
    return {Match::Meet, 1.0};
}

/// Empty for other values.
std::string_view blobOf(sqlite3_value* value) {
    if (sqlite3_value_type(value) != SQLITE_BLOB) {
        return {};
    }
    const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
    return {bytes, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

double sizeOf(const VirtualTable& table) {
    return std::max(1.0, static_cast<double>(table.table().featureCount().value_or(cost::assumedRows)));
}

} // namespace

void RelationTerms::addFunction(sqlite3_index_info& info, int constraint) {
    const int operation = info.aConstraint[constraint].op - SQLITE_INDEX_CONSTRAINT_FUNCTION;
    RelationTerm& term =
        terms_.emplace_back(constraint, ScanPlan::Relation{static_cast<SpatialRelation>(operation)}, false);
    sqlite3_value* operand = nullptr;
    if (sqlite3_vtab_rhs_value(&info, constraint, &operand) == SQLITE_OK) {
        term.operand =
            term.relation.relation == SpatialRelation::Near ? neighbourhoodOf(operand) : envelopeOf(operand);
    }
}

void RelationTerms::addEquality(sqlite3_index_info& info, int constraint) {
    const auto name = engine::relationNameOf(sqlite3_vtab_collation(&info, constraint));
    const auto relation = name ? spatialRelationOf(name->relation.c_str()) : std::nullopt;
    if (!relation || info.aConstraint[constraint].op != SQLITE_INDEX_CONSTRAINT_EQ) {
        return;
    }
    const bool isSecond = info.aConstraint[constraint].iColumn == table_.declaration().secondOperandColumn();
    terms_.emplace_back(constraint, ScanPlan::Relation{*relation, isSecond, true}, true,
                        table_.otherTable(QString::fromStdString(isSecond ? name->first : name->second)));
}

GeometryPtr RelationTerms::geometryOf(std::string_view blob) const {
    return table_.cache().geometryInfo(blob.data(), static_cast<unsigned>(blob.size()), true).geometry();
}

/// None of what is no geometry.
std::optional<geometry::Envelope> RelationTerms::envelopeOf(sqlite3_value* value) const try {
    auto geometry = geometryOf(blobOf(value));
    const auto system = table_.table().coordSystem();
    const auto other = geometry ? geometry->coordSystem() : nullptr;
    if (system && other && !system->equals(*other)) {
        geometry = geometry->transformed(system);
    }
    return geometry && !geometry->isEmpty() ? std::optional(geometry->envelope()) : std::nullopt;
} catch (const std::runtime_error&) {
    return std::nullopt;
}

/// The first of the windows that hold what is near; the others are the same elsewhere, over the 180th
/// meridian.
std::optional<geometry::Envelope> RelationTerms::neighbourhoodOf(sqlite3_value* value) const try {
    const auto asked = engine::readNearness(blobOf(value));
    const auto centre = asked ? geometryOf(asked->centre) : nullptr;
    const auto windows =
        centre ? geometry::neighbourhood(*centre, asked->asked, {table_.table().coordSystem(), true, 0.0})
               : std::nullopt;
    return windows && !windows->empty() ? std::optional(windows->front()) : std::nullopt;
} catch (const std::runtime_error&) {
    return std::nullopt;
}

/// Matching envelopes of the table for one operand.
std::optional<double> RelationTerms::countMatching(const RelationTerm& term, Match match) const {
    if (term.other) {
        const auto pairs = table_.space().countPairs(term.other->space(), match);
        const auto* others = pairs ? term.other->space().statistics() : nullptr;
        return others ? std::optional(*pairs / std::max(1.0, others->rows())) : std::nullopt;
    }
    const auto* own = term.operand ? table_.space().statistics() : nullptr;
    return own ? std::optional(own->countMatching(*term.operand, match)) : std::nullopt;
}

/// Not where only vertices, or the centroid, have to lie in something: these have an image in the table.
bool RelationTerms::isElsewhere(const RelationTerm& term) const {
    const auto own = table_.table().coordSystem();
    const auto other = term.other ? term.other->table().coordSystem() : nullptr;
    if (!term.relation.countsElsewhere() || !own || !other || own->equals(*other) ||
        holdsVertices(term.relation.ofColumn())) {
        return false;
    }
    const SpaceStatistics* statistics = table_.space().statistics();
    return !statistics || !statistics->arePositions();
}

RelationEstimate RelationTerms::estimate(const RelationTerm& term) const {
    const auto [match, share] = likelihoodOf(term.relation.ofColumn());
    RelationEstimate estimate{};
    estimate.candidates =
        countMatching(term, Match::Meet).value_or(std::min(sizeOf(table_) * assumedShare, assumedNeighbours));
    const auto matching = match == Match::Meet ? std::nullopt : countMatching(term, match);
    estimate.found = matching.value_or(estimate.candidates) * share;
    if (term.relation.relation == SpatialRelation::Equals) {
        estimate.found = std::min(estimate.found, 1.0);
    }
    estimate.scans = term.other ? sizeOf(*term.other) : 1.0;
    estimate.isElsewhere = isElsewhere(term);
    const SpatialIndexing& indexing = table_.spatialIndexing();
    estimate.isReady = estimate.isElsewhere
                           ? indexing.hasTreeIn(*term.other->table().coordSystem(), table_.table())
                           : indexing.hasTree(table_.table()) || table_.table().usesWindow();
    return estimate;
}

std::pair<RelationTerm, RelationEstimate> RelationTerms::best() const {
    std::pair<RelationTerm, RelationEstimate> best{terms_.front(), estimate(terms_.front())};
    for (std::size_t i = 1; i < terms_.size(); ++i) {
        const RelationEstimate other = estimate(terms_[i]);
        if (std::pair(other.isElsewhere, other.found) <
            std::pair(best.second.isElsewhere, best.second.found)) {
            best = {terms_[i], other};
        }
    }
    return best;
}

std::vector<RelationTerm> RelationTerms::equalities() const {
    std::vector<RelationTerm> equalities;
    std::copy_if(terms_.begin(), terms_.end(), std::back_inserter(equalities),
                 [](const RelationTerm& term) { return term.isEquality; });
    return equalities;
}

} // namespace orvane::adaptor
