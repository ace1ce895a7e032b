#pragma once

#include "host/providers/columns/ColumnBatch.h"

#include <optional>
#include <string_view>

namespace orvane::files {

/// Grows one column row by row. Kinds: Int64, Double, Text, Bytes, Wkb. Texts and bytes of one column stay
/// below 2 GB; the caller ends the batch long before.
class ColumnBuilder {
public:
    explicit ColumnBuilder(ColumnKind kind) : kind_(kind), storage_(std::make_shared<Storage>()) {
        if (isVariable()) {
            storage_->offsets.push_back(0);
        }
    }

    void append(std::int64_t value) {
        appendValidity(true);
        storage_->integers.push_back(value);
    }
    void append(double value) {
        appendValidity(true);
        storage_->reals.push_back(value);
    }
    void append(std::string_view bytes) {
        storage_->data.append(bytes);
        endVariable(true);
    }
    void appendNull() {
        if (isVariable()) {
            endVariable(false);
            return;
        }
        appendValidity(false);
        if (kind_ == ColumnKind::Double) {
            storage_->reals.push_back(0);
        } else {
            storage_->integers.push_back(0);
        }
    }
    template<class Number>
    void appendOrNull(std::optional<Number> value) {
        if (value) {
            append(*value);
        } else {
            appendNull();
        }
    }
    /// Room for a value of that size, for the caller to fill in.
    char* appendSpace(std::size_t size) {
        const auto start = storage_->data.size();
        storage_->data.resize(start + size);
        endVariable(true);
        return storage_->data.data() + start;
    }
    void replaceLastByNull();

    /// Size of the texts or bytes so far.
    std::size_t dataSize() const { return storage_->data.size(); }

    /// The finished column; the builder is used up.
    ColumnChunk finish() &&;

private:
    struct Storage {
        std::vector<std::uint8_t> validity;
        std::vector<std::int64_t> integers;
        std::vector<double> reals;
        std::vector<std::int32_t> offsets;
        std::string data;
    };

    bool isVariable() const { return kind_ >= ColumnKind::Text; }
    void endVariable(bool isValid) {
        appendValidity(isValid);
        storage_->offsets.push_back(static_cast<std::int32_t>(storage_->data.size()));
    }
    void appendValidity(bool isValid) {
        if ((rows_ & 7) == 0) {
            storage_->validity.push_back(0);
        }
        storage_->validity.back() |= static_cast<std::uint8_t>(static_cast<unsigned>(isValid) << (rows_ & 7));
        hasNulls_ |= !isValid;
        ++rows_;
    }

    ColumnKind kind_;
    bool hasNulls_ = false;
    std::size_t rows_ = 0;
    std::shared_ptr<Storage> storage_;
};

/// Grows a batch row by row: each column gets a value, then the row ends.
class BatchBuilder {
public:
    explicit BatchBuilder(const std::vector<ColumnKind>& kinds) : columns(kinds.begin(), kinds.end()) {}

    /// Whether there is room for a row among so many: a batch ends early when its texts and geometries reach
    /// 64 MB, far below the 2 GB that offsets can count.
    bool takesRow(std::int64_t mostRows) const {
        constexpr std::size_t mostBytes = std::size_t{64} << 20;
        return rows_ < mostRows && bytes_ < mostBytes;
    }
    void endRow(std::int64_t id) {
        fids_.append(id);
        ++rows_;
        bytes_ = 0;
        for (const auto& column : columns) {
            bytes_ += column.dataSize();
        }
    }
    /// False when the batch has no row.
    bool finish(ColumnBatch& batch) &&;

    std::vector<ColumnBuilder> columns;

private:
    ColumnBuilder fids_{ColumnKind::Int64};
    std::int64_t rows_ = 0;
    std::size_t bytes_ = 0;
};

} // namespace orvane::files
