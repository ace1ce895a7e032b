#pragma once

#include "host/adaptor/ArrangedRows.h"

#include "platform/dp/Table.h"
#include <orvane/engine/EngineIndices.h>

#include <memory>
#include <optional>
#include <vector>

namespace orvane::engine {
class EngineCache;
}

namespace orvane::adaptor {

/// The rows of a table in the order of an attribute index. Rows are fetched in portions that grow, so that
/// the first few, which is all that a limit or a maximum needs, come at once.
class IndexOrderCursor final : public dp::Cursor {
public:
    /// `order` delivers the row numbers; `attributes` are those that will be read.
    IndexOrderCursor(std::shared_ptr<dp::Table> table, engine::EngineCache& cache,
                     std::unique_ptr<engine::EngineIndices::RowLookup> order, std::vector<int> attributes);

    bool next() override;
    dp::Cell cell(int attribute) override { return cursor_.cell(attribute); }
    dp::FeatureId featureId() override { return cursor_.featureId(); }

private:
    bool fetch();

    std::shared_ptr<dp::Table> table_;
    engine::EngineCache& cache_;
    std::unique_ptr<engine::EngineIndices::RowLookup> order_;
    const std::vector<int> attributes_;
    std::size_t portion_ = 16;
    std::optional<ArrangedRows> rows_;
    ArrangedCursor cursor_;
};

} // namespace orvane::adaptor
