#include "host/providers/columns/ColumnBuilder.h"

namespace orvane::files {

namespace {

/// Gives back spare capacity where that is much, for batches can live long, and tells the bytes kept.
template<class Container>
std::size_t fit(Container& container) {
    if (container.capacity() - container.size() > container.size() / 4) {
        container.shrink_to_fit();
    }
    return container.capacity() * sizeof(typename Container::value_type);
}

} // namespace

void ColumnBuilder::replaceLastByNull() {
    storage_->offsets.pop_back();
    storage_->data.resize(static_cast<std::size_t>(storage_->offsets.back()));
    storage_->offsets.push_back(storage_->offsets.back());
    storage_->validity.back() &= static_cast<std::uint8_t>(~(1U << ((rows_ - 1) & 7)));
    hasNulls_ = true;
}

ColumnChunk ColumnBuilder::finish() && {
    auto& storage = *storage_;
    ColumnChunk chunk;
    chunk.kind = kind_;
    if (hasNulls_) {
        chunk.validity = storage.validity.data();
    }
    chunk.bytes = storage.validity.capacity() + fit(storage.integers) + fit(storage.reals) +
                  fit(storage.offsets) + fit(storage.data);
    if (isVariable()) {
        chunk.values = storage.offsets.data();
        chunk.data = storage.data.data();
    } else if (kind_ == ColumnKind::Double) {
        chunk.values = storage.reals.data();
    } else {
        chunk.values = storage.integers.data();
    }
    chunk.owner = std::move(storage_);
    return chunk;
}

bool BatchBuilder::finish(ColumnBatch& batch) && {
    batch.rows = rows_;
    batch.fids = std::move(fids_).finish();
    batch.columns.clear();
    for (auto& column : columns) {
        batch.columns.push_back(std::move(column).finish());
    }
    return rows_ > 0;
}

} // namespace orvane::files
