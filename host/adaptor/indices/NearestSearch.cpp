#include "host/adaptor/indices/NearestSearch.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/measures/Measures.h"

#include <algorithm>
#include <limits>

namespace orvane::adaptor {

namespace {

constexpr std::size_t smallestPortion = 8;
constexpr std::size_t portionGrowth = 4;
/// Of the features of a table: beyond it a scan of the rest is cheaper.
constexpr std::size_t largestShare = 16;

} // namespace

geometry::GeometryPtr placedIn(const std::shared_ptr<cs::CoordSystem>& coordSystem,
                               const geometry::GeometryPtr& geometry) {
    if (!coordSystem || geometry->coordSystem()) {
        return geometry;
    }
    const auto placed = geometry->clone();
    placed->setCoordSystem(coordSystem);
    return geometry::fitGeometry(placed);
}

std::optional<double> measuredDistance(const geometry::GeometryPtr& own, const geometry::Geometry& centre,
                                       const geometry::Nearness& asked) {
    if (!own || own->isEmpty() || centre.isEmpty()) {
        return std::nullopt;
    }
    const geometry::GeometryPtr placed = placedIn(centre.coordSystem(), own);
    return asked.centreIsFirst ? geometry::distance(centre, *placed, asked.units)
                               : geometry::distance(*placed, centre, asked.units);
}

NearestSearch::NearestSearch(SpatialIndex& index, dp::Table& table, const geometry::Geometry& centre,
                             geometry::Nearness asked, std::size_t wanted)
    : index_(index), table_(table), centre_(centre), asked_(std::move(asked)),
      portion_(std::max(wanted, smallestPortion)), reach_(-std::numeric_limits<double>::infinity()) {
    const auto own = centre.coordSystem();
    const auto plane = table.coordSystem();
    const bool isElsewhere = own && plane && own != plane && !own->equals(*plane);
    const geometry::GeometryPtr placed = isElsewhere ? centre.transformed(plane) : nullptr;
    place_ = isElsewhere ? (placed ? placed->envelope() : geometry::Envelope()) : centre.envelope();
}

std::optional<double> NearestSearch::distanceOf(const SpatialIndex::Candidate& candidate) {
    const auto [known, isNew] = measured_.try_emplace(candidate.position);
    if (isNew) {
        known->second = measuredDistance(index_.geometryOf(candidate, table_), centre_, asked_);
    }
    return known->second;
}

std::vector<NearestSearch::Found> NearestSearch::next() {
    std::vector<Found> found;
    if (!isBegun_) {
        isBegun_ = true;
        for (const auto* without : {&index_.missing(), &index_.empty()}) {
            for (const dp::FeatureId& id : *without) {
                found.push_back({id, std::nullopt});
            }
        }
    }
    while (found.empty() && !place_.isEmpty() && portion_ <= index_.count() / largestShare) {
        double farthest = 0.0;
        for (const SpatialIndex::Candidate& candidate : index_.closest(place_, portion_)) {
            farthest = std::max(farthest, distanceOf(candidate).value_or(0.0));
        }
        portion_ *= portionGrowth;
        asked_.distance = farthest;
        const auto candidates = index_.candidatesNear(centre_, asked_, table_);
        if (!candidates) {
            return {};
        }
        for (const SpatialIndex::Candidate& candidate : *candidates) {
            const auto distance = distanceOf(candidate);
            if (distance && *distance > reach_ && *distance <= farthest) {
                found.push_back({index_.id(candidate), distance});
            }
        }
        reach_ = std::max(reach_, farthest);
    }
    return found;
}

} // namespace orvane::adaptor
