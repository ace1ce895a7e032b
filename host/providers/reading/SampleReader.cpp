#include "host/providers/reading/SampleReader.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>

namespace orvane::files {

namespace {

/// Of rows that follow each other, so that a page of a file is worth reading.
constexpr std::int64_t rowsPerRun = 8;

double lengthOf(IdRange range) {
    return static_cast<double>(range.high) - static_cast<double>(range.low) + 1;
}

/// Some rows of a batch.
ColumnBatch slice(const ColumnBatch& batch, std::int64_t first, std::int64_t rows) {
    ColumnBatch result = batch;
    result.rows = rows;
    result.boxes = nullptr;
    result.fids.first += first;
    for (auto& column : result.columns) {
        column.first += first;
    }
    return result;
}

/// Numbers from 0 up to `end`, ascending.
template<class Number, class Distribution>
std::vector<Number> randomNumbers(std::int64_t count, Distribution distribution) {
    std::mt19937_64 source; // NOLINT: plans are the same for the same table
    std::vector<Number> numbers(static_cast<std::size_t>(count));
    std::generate(numbers.begin(), numbers.end(), [&] { return distribution(source); });
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

} // namespace

double lengthOf(const std::vector<IdRange>& ranges) {
    double length = 0;
    for (const auto& range : ranges) {
        length += lengthOf(range);
    }
    return length;
}

std::vector<IdRange> randomRuns(const std::vector<IdRange>& ranges, std::int64_t rows, double perRow) {
    std::vector<IdRange> runs;
    const auto count = std::max<std::int64_t>(1, rows / rowsPerRun);
    const auto width = static_cast<std::int64_t>(std::ceil(static_cast<double>(rowsPerRun) * perRow));
    double before = 0; // identifiers in earlier ranges
    auto range = ranges.begin();
    for (const double place :
         randomNumbers<double>(count, std::uniform_real_distribution<double>(0, lengthOf(ranges)))) {
        while (range != ranges.end() && place >= before + lengthOf(*range)) {
            before += lengthOf(*range++);
        }
        if (range == ranges.end()) {
            break; // what the rounding of sums may come to
        }
        const auto offset = static_cast<std::uint64_t>(place - before);
        IdRange run;
        run.low = std::clamp(static_cast<std::int64_t>(static_cast<std::uint64_t>(range->low) + offset),
                             range->low, range->high);
        const auto behind = static_cast<std::uint64_t>(range->high) - static_cast<std::uint64_t>(run.low);
        run.high = behind < static_cast<std::uint64_t>(width) ? range->high : run.low + width - 1;
        if (!runs.empty() && run.low <= runs.back().high) {
            runs.back().high = std::max(runs.back().high, run.high);
        } else {
            runs.push_back(run);
        }
    }
    return runs;
}

bool RunReader::next(ColumnBatch& batch) {
    while (row_ < batch_.rows || (row_ = 0, reader_->next(batch_))) {
        const auto id = batch_.fids.number<std::int64_t>(row_);
        while (run_ < runs_.size() && runs_[run_].high < id) {
            ++run_;
        }
        if (run_ == runs_.size()) {
            return false;
        }
        const auto first = row_;
        const bool isInRun = id >= runs_[run_].low;
        const auto limit = isInRun ? runs_[run_].high : runs_[run_].low - 1;
        while (row_ < batch_.rows && batch_.fids.number<std::int64_t>(row_) <= limit) {
            ++row_;
        }
        if (isInRun) {
            batch = slice(batch_, first, row_ - first);
            return true;
        }
    }
    batch_ = {};
    return false;
}

RandomRowReader::RandomRowReader(CachedColumns columns, std::int64_t rows)
    : reader_(columns, nullptr, nullptr), readsAll_(columns.rows->rows <= rows) {
    if (!readsAll_) {
        rows_ = randomNumbers<std::int64_t>(
            rows, std::uniform_int_distribution<std::int64_t>(0, columns.rows->rows - 1));
        rows_.erase(std::unique(rows_.begin(), rows_.end()), rows_.end());
    }
}

bool RandomRowReader::next(ColumnBatch& batch) {
    if (readsAll_) {
        return reader_.next(batch);
    }
    if (next_ == rows_.size()) {
        return false;
    }
    const auto row = rows_[next_++];
    while (row >= first_ + batch_.rows) {
        first_ += batch_.rows;
        if (!reader_.next(batch_)) {
            return false;
        }
    }
    batch = slice(batch_, row - first_, 1);
    return true;
}

bool FirstRowReader::next(ColumnBatch& batch) {
    const auto reader = std::exchange(reader_, nullptr);
    return reader && reader->next(batch);
}

} // namespace orvane::files
