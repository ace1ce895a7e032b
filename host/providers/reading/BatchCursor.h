#pragma once

#include "host/providers/columns/ColumnBatch.h"

namespace orvane::files {

class RowFilter;

/// Walks over the rows of batches that pass a filter. Each batch counts as a run.
class BatchCursor final : public dp::SampleCursor {
public:
    /// `slots` gives for each attribute of the table its column in the batches, -1 for none. `filter` may be
    /// null.
    BatchCursor(std::unique_ptr<BatchReader> reader, std::vector<int> slots,
                std::shared_ptr<const RowFilter> filter, bool isLookedUp = false)
        : reader_(std::move(reader)), slots_(std::move(slots)), filter_(std::move(filter)),
          isLookedUp_(isLookedUp) {}

    bool next() override;
    dp::Cell cell(int attribute) override {
        const auto slot = static_cast<std::size_t>(slots_[static_cast<std::size_t>(attribute)]);
        return batch_.columns[slot].cell(row_);
    }
    dp::FeatureId featureId() override {
        return dp::FeatureId(QVariant(static_cast<qlonglong>(*integerId())));
    }
    std::optional<std::int64_t> integerId() override { return batch_.fids.number<std::int64_t>(row_); }
    std::int64_t run() const override { return run_; }
    bool isLookedUp() const override { return isLookedUp_; }

private:
    bool nextBatch() {
        ++run_;
        return reader_->next(batch_);
    }
    bool nextSelected();

    std::unique_ptr<BatchReader> reader_;
    std::vector<int> slots_;
    std::shared_ptr<const RowFilter> filter_;
    const bool isLookedUp_;
    ColumnBatch batch_;
    std::int64_t row_ = -1;
    std::int64_t run_ = -1;
    std::vector<std::int32_t> selected_; ///< rows of the batch that pass the filter
    std::size_t nextSelected_ = 0;
};

} // namespace orvane::files
