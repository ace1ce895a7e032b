#pragma once

#include "host/providers/ColumnBatch.h"

namespace orvane::files {

/// Walks over the rows of batches.
class BatchCursor final : public dp::Cursor {
public:
    /// `slots` gives for each attribute of the table its column in the batches, -1 for none.
    BatchCursor(std::unique_ptr<BatchReader> reader, std::vector<int> slots)
        : reader_(std::move(reader)), slots_(std::move(slots)) {}

    bool next() override;
    dp::Cell cell(int attribute) override {
        const auto slot = static_cast<std::size_t>(slots_[static_cast<std::size_t>(attribute)]);
        return batch_.columns[slot].cell(row_);
    }
    dp::FeatureId featureId() override {
        return dp::FeatureId(QVariant(static_cast<qlonglong>(batch_.fids.number<std::int64_t>(row_))));
    }

private:
    std::unique_ptr<BatchReader> reader_;
    std::vector<int> slots_;
    ColumnBatch batch_;
    std::int64_t row_ = -1;
};

} // namespace orvane::files
