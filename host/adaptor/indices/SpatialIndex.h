#pragma once

#include "host/adaptor/indices/SpatialRelation.h"

#include "platform/dp/Table.h"
#include "platform/geometry/measures/Neighbourhood.h"
#include "platform/work/Cancellation.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

namespace orvane::adaptor {

/// The geometries of a table by their place: a packed R-tree over their envelopes. Answers which features
/// stand in a relation to a geometry, exactly. Geometries that were asked for are kept, up to a bound, with
/// what GEOS prepared of them; positions of point tables need no object at all. As the table was when it was
/// made; used from one thread.
class SpatialIndex {
public:
    /// Reads the geometry of every feature, with a work::Progress, as it is in a coordinate system, which may
    /// be the table's own or null like that; what has no image there counts as none. Throws
    /// std::runtime_error when the table cannot be read, work::Cancelled when the work is cancelled.
    SpatialIndex(dp::Table& table, std::shared_ptr<cs::CoordSystem> system,
                 const work::Cancellation& cancellation);

    ~SpatialIndex();
    SpatialIndex(const SpatialIndex&) = delete;
    SpatialIndex& operator=(const SpatialIndex&) = delete;

    /// Appends the features a for which the relation(a, b) holds; b in the coordinate system of the index, or
    /// one of the two without.
    void search(SpatialRelation relation, const geometry::GeometryPtr& b, dp::Table& table,
                std::vector<dp::FeatureId>& found);

    /// Appends the features whose envelopes share a position with one.
    void searchEnvelope(const geometry::Envelope& envelope, std::vector<dp::FeatureId>& found) const;
    /// Whether all geometries are single positions.
    bool arePositions() const { return arePositions_; }

    /// Appends the features that may be near the centre, all that are among them. False, with nothing
    /// appended, where any of them may be.
    bool searchNear(const geometry::Geometry& centre, const geometry::Nearness& nearness,
                    const dp::Table& table, std::vector<dp::FeatureId>& found) const;

    /// A feature that a search may find.
    struct Candidate {
        std::uint32_t position; ///< in the lists of the index, from 0 on
        double x, y;            ///< the lower corner of the envelope: the place of a position
    };

    // For searches by distance.

    std::size_t count() const { return ids_.size(); }
    const dp::FeatureId& id(const Candidate& candidate) const { return ids_[candidate.position]; }
    /// Null where it cannot be read any more.
    geometry::GeometryPtr geometryOf(const Candidate& candidate, dp::Table& table);
    /// Those whose envelopes are the closest to one.
    std::vector<Candidate> closest(const geometry::Envelope& envelope, std::size_t count) const;
    /// Those that may be near the centre, each once; none where any feature may be.
    std::optional<std::vector<Candidate>> candidatesNear(const geometry::Geometry& centre,
                                                         const geometry::Nearness& nearness,
                                                         const dp::Table& table) const;
    /// Features without geometry, and those whose geometry has no position.
    const std::vector<dp::FeatureId>& missing() const { return missing_; }
    const std::vector<dp::FeatureId>& empty() const { return empty_; }

private:
    struct Tree;

    geometry::GeometryPtr decode(const dp::Cell& cell, const dp::Table& table) const;
    geometry::GeometryPtr keep(std::uint32_t entry, geometry::GeometryPtr decoded);
    void fetch(std::span<const Candidate> candidates, dp::Table& table);
    bool holds(SpatialRelation relation, const Candidate& candidate, const geometry::GeometryPtr& b,
               dp::Table& table);

    const std::shared_ptr<cs::CoordSystem> system_;
    std::unique_ptr<Tree> tree_;
    std::vector<dp::FeatureId> ids_; ///< by position
    std::vector<dp::FeatureId> empty_;
    std::vector<dp::FeatureId> missing_;
    bool arePositions_ = true;
    double bulge_ = 0.0;                            ///< geometry::geodesicBulge of all
    std::vector<bool> isPosition_;                  ///< the envelope is the whole geometry
    std::vector<geometry::GeometryPtr> geometries_; ///< decoded so far; empty while none is
    std::uint64_t keptWeight_ = 0;
    std::unordered_map<std::uint32_t, geometry::GeometryPtr> fetched_; ///< of one search, that are not kept
};

/// The geometry of a cell; null when the bytes are none.
geometry::GeometryPtr decodeWkb(std::string_view wkb, const std::shared_ptr<cs::CoordSystem>& coordSystem);

/// Whether relation(a, b) holds of the geometry of a cell, both in one coordinate system, or one without.
bool holds(SpatialRelation relation, std::string_view wkb,
           const std::shared_ptr<cs::CoordSystem>& coordSystem, const geometry::Geometry& b);

/// Whether relation(a, b) holds, whatever the coordinate systems of the two.
bool holds(SpatialRelation relation, const geometry::Geometry& a, const geometry::Geometry& b);

} // namespace orvane::adaptor
