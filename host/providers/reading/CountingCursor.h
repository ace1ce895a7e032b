#pragma once

#include "host/providers/reading/RowSource.h"
#include "platform/dp/Cursor.h"

#include <memory>

namespace orvane::files {

/// Walks over a known number of rows of which nothing is read, as "Count(*)" does. Whoever asks for an
/// identifier all the same gets it from a scan that is started then.
class CountingCursor final : public dp::Cursor {
public:
    CountingCursor(std::int64_t rows, std::shared_ptr<RowSource> source)
        : rows_(rows), source_(std::move(source)) {}

    bool next() override;
    dp::Cell cell(int) override { return {}; }
    dp::FeatureId featureId() override;

private:
    std::int64_t rows_;
    std::int64_t row_ = -1;
    std::shared_ptr<RowSource> source_;
    std::unique_ptr<BatchReader> reader_; ///< null until an identifier is asked for
    ColumnBatch batch_;
    std::int64_t firstOfBatch_ = 0;
};

} // namespace orvane::files
