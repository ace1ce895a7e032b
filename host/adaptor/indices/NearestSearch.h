#pragma once

#include "host/adaptor/indices/SpatialIndex.h"

#include <optional>
#include <unordered_map>
#include <vector>

namespace orvane::adaptor {

/// The geometry in a coordinate system if it has none of its own.
geometry::GeometryPtr placedIn(const std::shared_ptr<cs::CoordSystem>& coordSystem,
                               const geometry::GeometryPtr& geometry);
/// A distance as the SQL function tells it, the centre having a system if the geometry has one: none for a
/// geometry that is null or empty. Throws std::runtime_error as geometry::distance does.
std::optional<double> measuredDistance(const geometry::GeometryPtr& own, const geometry::Geometry& centre,
                                       const geometry::Nearness& asked);

/// The features of a table in the order of their distance from a geometry, a few at a time: those that lie
/// closest in the plane tell how far to look on the ground. For one scan, from one thread.
class NearestSearch {
public:
    struct Found {
        dp::FeatureId id;
        std::optional<double> distance;
    };

    /// Of what is asked the distance counts for nothing, and the kind is the general one. The centre, the
    /// index and the table outlive the search. `wanted` features are likely all that is asked for.
    NearestSearch(SpatialIndex& index, dp::Table& table, const geometry::Geometry& centre,
                  geometry::Nearness asked, std::size_t wanted);

    /// The next features, at first those without a distance. None at the end, and when the others have to be
    /// measured all the same.
    std::vector<Found> next();
    /// All features at most so far away have been found; less than any distance at first.
    double reach() const { return reach_; }

private:
    std::optional<double> distanceOf(const SpatialIndex::Candidate& candidate);

    SpatialIndex& index_;
    dp::Table& table_;
    const geometry::Geometry& centre_;
    geometry::Nearness asked_;
    geometry::Envelope place_; ///< of the centre, in the plane of the table
    std::size_t portion_;
    double reach_;
    bool isBegun_ = false;
    std::unordered_map<std::uint32_t, std::optional<double>> measured_; ///< by position
};

} // namespace orvane::adaptor
