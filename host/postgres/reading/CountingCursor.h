#pragma once

#include "platform/dp/Cursor.h"

#include <functional>
#include <memory>

namespace orvane::postgres {

/// Walks over a known number of rows of which nothing is read, as "Count(*)" does. Whoever asks for an
/// identifier all the same gets it from a scan that is started then.
class CountingCursor final : public dp::Cursor {
public:
    using Scan = std::function<std::unique_ptr<dp::Cursor>()>;

    CountingCursor(std::int64_t rows, Scan scan) : rows_(rows), scan_(std::move(scan)) {}

    bool next() override { return ++row_ < rows_; }
    dp::Cell cell(int) override { return {}; }
    /// Invalid for a row that was removed meanwhile.
    dp::FeatureId featureId() override;

private:
    std::int64_t rows_;
    std::int64_t row_ = -1;
    Scan scan_;
    std::unique_ptr<dp::Cursor> rowsRead_; ///< null until an identifier is asked for
    std::int64_t readRow_ = -1;
};

} // namespace orvane::postgres
