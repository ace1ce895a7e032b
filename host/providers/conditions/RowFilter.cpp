#include "host/providers/conditions/RowFilter.h"

#include <algorithm>
#include <numeric>

namespace orvane::files {

namespace {

/// Keeps of the candidates those that pass the test.
template<class Test>
void keepIf(std::vector<std::int32_t>& rows, Test passes) {
    std::size_t kept = 0;
    for (const auto row : rows) {
        rows[kept] = row;
        kept += passes(row) ? 1 : 0;
    }
    rows.resize(kept);
}

template<class Bound>
bool isInRanges(const std::vector<Range<Bound>>& ranges, Bound value) {
    const auto after = std::upper_bound(ranges.begin(), ranges.end(), value,
                                        [](Bound v, const Range<Bound>& range) { return v < range.low; });
    return after != ranges.begin() && value <= std::prev(after)->high;
}

template<class Value, class Bound>
void keepNumbers(const ColumnChunk& chunk, const std::vector<Range<Bound>>& ranges, bool acceptsNull,
                 std::vector<std::int32_t>& rows) {
    const auto* values = static_cast<const Value*>(chunk.values) + chunk.first;
    auto isNull = [&](std::int32_t row) { return chunk.isNull(row) || values[row] != values[row]; };
    if (ranges.size() == 1) {
        const auto range = ranges.front();
        auto isInside = [=](std::int32_t row) {
            const auto value = static_cast<Bound>(values[row]);
            return (value >= range.low) & (value <= range.high);
        };
        if (acceptsNull)
            keepIf(rows, [&](std::int32_t row) { return isNull(row) || isInside(row); });
        else if (chunk.validity)
            keepIf(rows, [&](std::int32_t row) { return isInside(row) & !chunk.isNull(row); });
        else
            keepIf(rows, isInside);
        return;
    }
    keepIf(rows, [&](std::int32_t row) {
        return isNull(row) ? acceptsNull : isInRanges(ranges, static_cast<Bound>(values[row]));
    });
}

void keepTexts(const ColumnChunk& chunk, const Condition& condition, std::vector<std::int32_t>& rows) {
    keepIf(rows, [&](std::int32_t row) {
        if (chunk.isNull(row))
            return condition.acceptsNull;
        const auto text = chunk.view(row);
        const auto found = std::lower_bound(condition.texts.begin(), condition.texts.end(), text);
        return (found != condition.texts.end() && *found == text) != condition.textsAreExcluded;
    });
}

bool cellIsNull(const ColumnChunk& chunk, std::int32_t row) {
    return chunk.cell(row).isNull();
}

void keepPassing(const ColumnChunk& chunk, const Condition& condition, std::vector<std::int32_t>& rows) {
    if (condition.acceptsAnyValue) {
        keepIf(rows, [&](std::int32_t row) { return !cellIsNull(chunk, row); });
        return;
    }
    const bool hasValues = !condition.integers.empty() || !condition.reals.empty() ||
                           !condition.texts.empty() || condition.textsAreExcluded;
    if (!hasValues) {
        keepIf(rows, [&](std::int32_t row) { return condition.acceptsNull && cellIsNull(chunk, row); });
        return;
    }
    switch (chunk.kind) {
    case ColumnKind::Int16:
        keepNumbers<std::int16_t>(chunk, condition.integers, condition.acceptsNull, rows);
        return;
    case ColumnKind::Int32:
        keepNumbers<std::int32_t>(chunk, condition.integers, condition.acceptsNull, rows);
        return;
    case ColumnKind::Int64:
        keepNumbers<std::int64_t>(chunk, condition.integers, condition.acceptsNull, rows);
        return;
    case ColumnKind::Double: keepNumbers<double>(chunk, condition.reals, condition.acceptsNull, rows); return;
    case ColumnKind::Text: keepTexts(chunk, condition, rows); return;
    case ColumnKind::Bytes:
    case ColumnKind::Wkb: return;
    }
}

} // namespace

bool RowFilter::canPass(const ColumnBatch& batch) const {
    if (window_ && batch.boxes && !batch.boxes->hull.meets(*window_))
        return false;
    if (!ids_)
        return true;
    const auto id = std::lower_bound(ids_->begin(), ids_->end(), batch.fids.number<std::int64_t>(0));
    return id != ids_->end() && *id <= batch.fids.number<std::int64_t>(batch.rows - 1);
}

void RowFilter::select(const ColumnBatch& batch, std::vector<std::int32_t>& rows) const {
    if (ids_) {
        selectIds(batch, rows);
    } else {
        rows.resize(static_cast<std::size_t>(batch.rows));
        std::iota(rows.begin(), rows.end(), 0);
    }
    if (window_ && batch.boxes) {
        const auto* boxes = batch.boxes->rows.data();
        keepIf(rows, [this, boxes](std::int32_t row) { return boxes[row].meets(*window_); });
    }
    for (const auto& [column, condition] : conditions_)
        keepPassing(batch.columns[static_cast<std::size_t>(column)], condition, rows);
}

void RowFilter::selectIds(const ColumnBatch& batch, std::vector<std::int32_t>& rows) const {
    const auto* first = static_cast<const std::int64_t*>(batch.fids.values) + batch.fids.first;
    const auto* last = first + batch.rows;
    rows.clear();
    const auto* position = first;
    for (auto id = std::lower_bound(ids_->begin(), ids_->end(), *first);
         id != ids_->end() && position != last; ++id) {
        position = std::lower_bound(position, last, *id);
        if (position != last && *position == *id)
            rows.push_back(static_cast<std::int32_t>(position - first));
    }
}

} // namespace orvane::files
