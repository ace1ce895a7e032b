#pragma once

#include "host/adaptor/SpatialRelation.h"

#include "platform/dp/Cancellation.h"
#include "platform/dp/Table.h"
#include "platform/geometry/Geometry.h"

#include <boost/geometry/geometries/box.hpp>
#include <boost/geometry/geometries/point.hpp>
#include <boost/geometry/index/rtree.hpp>

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
    /// Reads the geometry of every feature. Throws std::runtime_error when the table cannot be read or the
    /// work is cancelled.
    SpatialIndex(dp::Table& table, const dp::Cancellation& cancellation);

    std::size_t size() const { return ids_.size(); }

    /// Appends the features a for which the relation(a, b) holds. Both in one coordinate system, or one
    /// without.
    void search(SpatialRelation relation, const geometry::GeometryPtr& b, dp::Table& table,
                std::vector<dp::FeatureId>& found);

private:
    using Point = boost::geometry::model::point<double, 2, boost::geometry::cs::cartesian>;
    using Box = boost::geometry::model::box<Point>;
    using Node = std::pair<Box, std::uint32_t>;
    using Tree = boost::geometry::index::rtree<Node, boost::geometry::index::rstar<16>>;

    bool holds(SpatialRelation relation, const Node& candidate, const geometry::GeometryPtr& b,
               dp::Table& table);
    geometry::GeometryPtr geometryOf(const Node& candidate, dp::Table& table);

    Tree tree_;
    std::vector<dp::FeatureId> ids_;
    std::vector<bool> isPosition_;                  ///< the envelope is the whole geometry
    std::vector<geometry::GeometryPtr> geometries_; ///< decoded so far; empty while none is
    std::uint64_t keptWeight_ = 0;
    std::vector<Node> candidates_; ///< reused from search to search
};

/// The geometry of a cell; null when the bytes are none.
geometry::GeometryPtr decodeWkb(std::string_view wkb, const std::shared_ptr<cs::CoordSystem>& coordSystem);

/// Whether relation(a, b) holds, whatever the coordinate systems of the two.
bool holds(SpatialRelation relation, const geometry::Geometry& a, const geometry::Geometry& b);

} // namespace orvane::adaptor
