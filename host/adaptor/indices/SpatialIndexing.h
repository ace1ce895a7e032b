#pragma once

#include "host/adaptor/indices/Costs.h"
#include "host/adaptor/indices/SpatialIndex.h"

#include "platform/dp/Table.h"
#include "platform/work/Cancellation.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace orvane::adaptor {

/// Finds the rows of a table by the place of their geometries, and decides by what: by the R-tree over all of
/// them, or by a spatial index of the table's own, which is there already, until the look-ups in that have
/// cost what making the tree does. So a table that is asked once gives the few rows asked for, one in the
/// inner loop of a join gets its tree after a moment, and no run of queries costs much more than twice the
/// better way. Used from the thread of the engine.
class SpatialIndexing {
public:
    /// By what the rows were looked up.
    struct Use {
        bool isOfTable = false;         ///< by the table's own index
        std::optional<double> makingMs; ///< of the tree, when it was made for this look-up
    };

    /// Whether the tree of the table as it is now is there already.
    bool hasTree(const dp::Table& table) const { return tree_ && revision_ == table.revision(); }
    /// The tree of the table as it is now, made when it is not there. Throws as SpatialIndex does.
    SpatialIndex& tree(dp::Table& table, const work::Cancellation& cancellation);

    /// Narrows a request to the rows of which relation(row, b) can hold, both in one coordinate system. True
    /// when it holds of exactly those; false when it has to be tested on each.
    bool find(SpatialRelation relation, const geometry::GeometryPtr& b, dp::Table& table,
              dp::ScanRequest& request, const work::Cancellation& cancellation);
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
    SpatialIndex& makeTree(dp::Table& table, const work::Cancellation& cancellation);
    /// Whether the table's own index answers the next look-up, which is counted then.
    bool looksUpInTable(const dp::Table& table);

    Use use_;
    std::unique_ptr<SpatialIndex> tree_;
    std::uint64_t revision_ = 0; ///< of the table that the tree was made of, or the look-ups counted for
    double spent_ = 0;           ///< on look-ups in the table's own index, in nanoseconds
};

} // namespace orvane::adaptor
