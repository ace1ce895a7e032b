#pragma once

#include "host/adaptor/rows/ArrangedRows.h"

#include "platform/dp/Table.h"
#include "platform/work/Cancellation.h"
#include <orvane/engine/EngineIndices.h>

#include <memory>
#include <optional>
#include <vector>

namespace orvane::engine {
class EngineCache;
}

namespace orvane::adaptor {

/// The rows of a table in the order of an attribute index; those that agree in it by further attributes. Rows
/// are fetched in portions that grow, so that the first few, which is all that a limit or a maximum needs,
/// come at once. A portion is put in order in memory, and with further attributes its last rows wait for all
/// that agree with them: memory is proportional to the largest such group.
class IndexOrderCursor final : public dp::Cursor {
public:
    /// `order` delivers the row numbers in the order of the first key; `attributes` are those that will be
    /// read.
    IndexOrderCursor(std::shared_ptr<dp::Table> table, engine::EngineCache& cache,
                     std::unique_ptr<engine::EngineIndices::RowLookup> order, std::vector<int> attributes,
                     std::vector<ArrangedRows::Key> keys, const work::Cancellation& cancellation);

    /// Throws work::Cancelled.
    bool next() override;
    dp::Cell cell(int attribute) override { return cursor_.cell(attribute); }
    dp::FeatureId featureId() override { return cursor_.featureId(); }

private:
    bool fetch();

    std::shared_ptr<dp::Table> table_;
    engine::EngineCache& cache_;
    std::unique_ptr<engine::EngineIndices::RowLookup> order_;
    const std::vector<int> attributes_;
    const std::vector<ArrangedRows::Key> keys_;
    const work::Cancellation cancellation_;
    std::size_t portion_ = 16;
    std::vector<dp::FeatureId> waiting_; ///< rows of the last portion that belong to the next
    std::optional<ArrangedRows> rows_;
    ArrangedCursor cursor_;
};

} // namespace orvane::adaptor
