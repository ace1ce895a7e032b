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

/// The numbers lie as Value and compare as Bound.
template<class Value, class Bound>
void keepNumbers(const ColumnChunk& chunk, const dp::Condition& condition,
                 const std::vector<dp::Range<Bound>>& ranges, std::vector<std::int32_t>& rows) {
    const auto* values = static_cast<const Value*>(chunk.values) + chunk.first;
    const auto isNull = [&](std::int32_t row) { return chunk.isNull(row) || values[row] != values[row]; };
    if (ranges.size() != 1 || condition.acceptsNull()) {
        keepIf(rows, [&](std::int32_t row) {
            return isNull(row) ? condition.acceptsNull() : condition.accepts(static_cast<Bound>(values[row]));
        });
        return;
    }
    const auto range = ranges.front();
    const auto isInside = [=](std::int32_t row) {
        const auto value = static_cast<Bound>(values[row]);
        return (value >= range.low) & (value <= range.high);
    };
    if (chunk.validity) {
        keepIf(rows, [&](std::int32_t row) { return isInside(row) & !chunk.isNull(row); });
    } else {
        keepIf(rows, isInside);
    }
}

void keepPassing(const ColumnChunk& chunk, const dp::Condition& condition, std::vector<std::int32_t>& rows) {
    switch (chunk.kind) {
    case ColumnKind::Int16: keepNumbers<std::int16_t>(chunk, condition, condition.integers(), rows); return;
    case ColumnKind::Int32: keepNumbers<std::int32_t>(chunk, condition, condition.integers(), rows); return;
    case ColumnKind::Int64: keepNumbers<std::int64_t>(chunk, condition, condition.integers(), rows); return;
    case ColumnKind::Double: keepNumbers<double>(chunk, condition, condition.reals(), rows); return;
    case ColumnKind::Text:
    case ColumnKind::Bytes:
    case ColumnKind::Wkb:
        keepIf(rows, [&](std::int32_t row) { return condition.accepts(chunk.cell(row)); });
        return;
    }
}

} // namespace

bool RowFilter::canPass(const ColumnBatch& batch) const {
    if (window_ && batch.boxes && !batch.boxes->hull.intersects(*window_)) {
        return false;
    }
    if (!ids_) {
        return true;
    }
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
        keepIf(rows, [this, boxes](std::int32_t row) { return boxes[row].intersects(*window_); });
    }
    for (const auto& [column, condition] : conditions_) {
        keepPassing(batch.columns[static_cast<std::size_t>(column)], condition, rows);
    }
}

void RowFilter::selectIds(const ColumnBatch& batch, std::vector<std::int32_t>& rows) const {
    const auto* first = static_cast<const std::int64_t*>(batch.fids.values) + batch.fids.first;
    const auto* last = first + batch.rows;
    rows.clear();
    const auto* position = first;
    for (auto id = std::lower_bound(ids_->begin(), ids_->end(), *first);
         id != ids_->end() && position != last; ++id) {
        position = std::lower_bound(position, last, *id);
        if (position != last && *position == *id) {
            rows.push_back(static_cast<std::int32_t>(position - first));
        }
    }
}

} // namespace orvane::files
