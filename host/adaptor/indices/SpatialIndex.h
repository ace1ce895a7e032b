#pragma once

#include "host/adaptor/indices/SpatialRelation.h"

#include "platform/dp/Table.h"
#include "platform/geometry/measures/Neighbourhood.h"
#include "platform/work/Cancellation.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace orvane::adaptor {

/// The geometries of a table by their place: a packed R-tree over their envelopes. Answers which features
/// stand in a relation to a geometry, exactly. Geometries that were asked for are kept, up to a bound, with
/// what GEOS prepared of them; positions of point tables need no object at all. As the table was when it was
/// made; used from one thread.
class SpatialIndex {
public:
    /// Reads the geometry of every feature, with a work::Progress. Throws std::runtime_error when the table
    /// cannot be read, work::Cancelled when the work is cancelled.
    SpatialIndex(dp::Table& table, const work::Cancellation& cancellation);

    ~SpatialIndex();
    SpatialIndex(const SpatialIndex&) = delete;
    SpatialIndex& operator=(const SpatialIndex&) = delete;

    /// Appends the features a for which the relation(a, b) holds. Both in one coordinate system, or one
    /// without.
    void search(SpatialRelation relation, const geometry::GeometryPtr& b, dp::Table& table,
                std::vector<dp::FeatureId>& found);

    /// Appends the features that may be near the centre, all that are among them. False, with nothing
    /// appended, where any of them may be.
    bool searchNear(const geometry::Geometry& centre, const geometry::Nearness& nearness, dp::Table& table,
                    std::vector<dp::FeatureId>& found);

private:
    struct Tree;
    struct Entry;

    bool holds(SpatialRelation relation, const Entry& candidate, const geometry::GeometryPtr& b,
               dp::Table& table);
    geometry::GeometryPtr geometryOf(const Entry& candidate, dp::Table& table);

    std::unique_ptr<Tree> tree_;
    std::vector<dp::FeatureId> ids_;
    std::vector<dp::FeatureId> empty_; ///< with a geometry that has no position
    bool arePositions_ = true;
    double bulge_ = 0.0;                            ///< geometry::geodesicBulge of all
    std::vector<bool> isPosition_;                  ///< the envelope is the whole geometry
    std::vector<geometry::GeometryPtr> geometries_; ///< decoded so far; empty while none is
    std::uint64_t keptWeight_ = 0;
};

/// The geometry of a cell; null when the bytes are none.
geometry::GeometryPtr decodeWkb(std::string_view wkb, const std::shared_ptr<cs::CoordSystem>& coordSystem);

/// Whether relation(a, b) holds, whatever the coordinate systems of the two.
bool holds(SpatialRelation relation, const geometry::Geometry& a, const geometry::Geometry& b);

} // namespace orvane::adaptor
