#pragma once

#include "host/providers/reading/BatchCache.h"
#include "platform/dp/Condition.h"

#include <cstdint>
#include <vector>

namespace orvane::files {

/// Identifiers from one to another, both included.
using IdRange = dp::Range<std::int64_t>;

/// How many identifiers the ranges span.
double lengthOf(const std::vector<IdRange>& ranges);

/// Runs of identifiers at random places of the ranges, which ascend and do not overlap, as do the runs. There
/// are so few that finding each is no matter, and so many that what they have in common is no accident. With
/// `perRow` identifiers to one row they have about `rows` rows. The same ones at every call.
std::vector<IdRange> randomRuns(const std::vector<IdRange>& ranges, std::int64_t rows, double perRow);

/// Passes on the rows within the runs, a batch for each; all rows come in the order of their identifiers.
class RunReader final : public BatchReader {
public:
    RunReader(std::unique_ptr<BatchReader> reader, std::vector<IdRange> runs)
        : reader_(std::move(reader)), runs_(std::move(runs)) {}

    bool next(ColumnBatch& batch) override;

private:
    std::unique_ptr<BatchReader> reader_;
    std::vector<IdRange> runs_;
    std::size_t run_ = 0;
    ColumnBatch batch_;
    std::int64_t row_ = 0; ///< of the batch, the first that was not passed on
};

/// Passes on so many rows, a batch for each, from random places of columns in memory, or all of them. The
/// same ones at every call.
class RandomRowReader final : public BatchReader {
public:
    RandomRowReader(CachedColumns columns, std::int64_t rows);

    bool next(ColumnBatch& batch) override;

private:
    CachedReader reader_;
    std::vector<std::int64_t> rows_; ///< ascending; none for all
    std::size_t next_ = 0;
    ColumnBatch batch_;
    std::int64_t first_ = 0; ///< row of the batch
    bool readsAll_ = false;
};

/// Passes on the first batch only.
class FirstRowReader final : public BatchReader {
public:
    explicit FirstRowReader(std::unique_ptr<BatchReader> reader) : reader_(std::move(reader)) {}

    bool next(ColumnBatch& batch) override;

private:
    std::unique_ptr<BatchReader> reader_; ///< null after the first batch
};

} // namespace orvane::files
