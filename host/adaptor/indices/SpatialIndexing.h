#pragma once

#include "host/adaptor/indices/Costs.h"
#include "host/adaptor/indices/SpatialIndex.h"

#include "platform/dp/Table.h"
#include "platform/work/Cancellation.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace orvane::cs {
class CoordSystem;
}

namespace orvane::adaptor {

/// Finds the rows of a table by the place of their geometries, and decides by what: by the R-tree over all of
/// them, or by a spatial index of the table's own, which is there already, until the look-ups in that have
/// cost what making the tree does. So a table that is asked once gives the few rows asked for, one in the
/// inner loop of a join gets its tree after a moment, and no run of queries costs much more than twice the
/// better way. Where the table has no such index, the first rows asked for are found by testing all. A
/// relation that is decided in another coordinate system is looked up in an R-tree of the geometries as they
/// are there. Used from the thread of the engine.
class SpatialIndexing {
public:
    /// By what the rows were looked up.
    struct Use {
        bool isOfTable = false;         ///< by the table's own index
        bool isScan = false;            ///< by testing the envelopes of all
        std::optional<double> makingMs; ///< of the tree, when it was made for this look-up
    };

    /// Whether the tree of the table as it is now is there already.
    bool hasTree(const dp::Table& table) const { return tree_ && revision_ == table.revision(); }
    /// The tree of the table as it is now, made when it is not there. Throws as SpatialIndex does.
    SpatialIndex& tree(dp::Table& table, const work::Cancellation& cancellation);

    /// Narrows a request to the rows of which relation(row, b) can hold, both in one coordinate system. True
    /// when it holds of exactly those; false when it has to be tested on each. `isRepeated`: more such
    /// look-ups are to come.
    bool find(SpatialRelation relation, const geometry::GeometryPtr& b, bool isRepeated, dp::Table& table,
              dp::ScanRequest& request, const work::Cancellation& cancellation);
    /// The same in the coordinate system of b, which is not the table's. Where it is not `isRepeated`, rows
    /// are tested until that has cost what making an R-tree does.
    bool findElsewhere(SpatialRelation relation, const geometry::GeometryPtr& b, bool isRepeated,
                       dp::Table& table, dp::ScanRequest& request, const work::Cancellation& cancellation);
    /// Whether findElsewhere() has its R-tree.
    bool hasTreeIn(const cs::CoordSystem& system, const dp::Table& table) const;
    /// Narrows a request to the rows whose envelopes share a position with one, and perhaps some more.
    void findInEnvelope(const geometry::Envelope& envelope, dp::Table& table, dp::ScanRequest& request,
                        const work::Cancellation& cancellation);
    /// Narrows a request to the rows that may be near the centre, as far as that can be told.
    void findNear(const geometry::Geometry& centre, const geometry::Nearness& nearness, dp::Table& table,
                  dp::ScanRequest& request, const work::Cancellation& cancellation);
    /// What came of the last of these.
    const Use& lastUse() const { return use_; }

    /// Counts a row that came through a window and was tested by itself.
    void countRow() { spent_ += cost::testedRow; }

private:
    /// The geometries in another coordinate system.
    struct Elsewhere {
        std::shared_ptr<cs::CoordSystem> system;
        std::unique_ptr<SpatialIndex> tree = {};
        double spent = 0; ///< on testing rows, in nanoseconds
    };

    /// Lets go of what was made of the table as it was.
    void follow(const dp::Table& table);
    std::unique_ptr<SpatialIndex> make(dp::Table& table, const std::shared_ptr<cs::CoordSystem>& system,
                                       const work::Cancellation& cancellation);
    Elsewhere& elsewhere(const std::shared_ptr<cs::CoordSystem>& system);
    SpatialIndex& makeTree(dp::Table& table, const work::Cancellation& cancellation);
    /// Whether the table's own index answers the next look-up, which is counted then.
    bool looksUpInTable(const dp::Table& table);
    /// Whether testing all rows answers the next look-up, which is counted as dear as making the tree.
    bool scansTable(const dp::Table& table);

    Use use_;
    std::unique_ptr<SpatialIndex> tree_;
    std::vector<Elsewhere> elsewhere_;
    std::uint64_t revision_ = 0; ///< of the table that the trees were made of, or the look-ups counted for
    double spent_ = 0;           ///< on look-ups in the table's own index, in nanoseconds
};

} // namespace orvane::adaptor
