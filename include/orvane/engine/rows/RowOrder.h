#pragma once

#include "platform/utils/LargePages.h"
#include <orvane/engine/rows/ValueRanks.h>

#include <cstdint>
#include <span>
#include <vector>

namespace orvane::engine {

/// Puts rows in order by some of their values, the keys, or arranges them so that those with one value are
/// found at once. Keeps the values of the keys; rows are numbers from 0 on.
class ORVANE_ENGINE_EXPORT RowOrder {
public:
    struct Key {
        dp::TextCollation collation = dp::TextCollation::Binary;
        bool isDescending = false;
    };
    /// Places in the arrangement, `end` not included.
    struct Range {
        std::uint32_t begin = 0;
        std::uint32_t end = 0;
    };

    /// What a value takes besides its text when all values of its key differ.
    static constexpr double bytesPerValue = ValueRanks::bytesPerValue;

    /// Texts under Locale are ordered by `locale`.
    RowOrder(const std::vector<Key>& keys, const std::shared_ptr<const LocaleOrder>& locale);

    /// Takes memory for so many rows at once.
    void reserve(std::size_t rows) {
        for (Column& column : keys_) {
            column.codes.reserve(rows);
        }
    }
    /// Appends a row; each of its values by a call, key by key. The memory has to stay.
    void add(std::size_t key, const dp::Cell& value, ByteArena& memory) {
        keys_[key].codes.push_back(keys_[key].ranks.add(value, memory));
    }
    std::size_t keyCount() const { return keys_.size(); }
    std::size_t rowCount() const { return keys_.front().codes.size(); }
    /// Bytes taken, about, besides the texts.
    std::size_t bytes() const;

    /// Puts the rows in the order of the keys, the first one first, NULL before all values. Rows that agree
    /// in all are ordered by their identifiers if these are given, one for each row, else they stay in the
    /// order in which they came. Throws work::Cancelled.
    void arrangeInOrder(const work::Cancellation& cancellation, std::span<const std::int64_t> ids = {});
    /// The place of the first of those rows that agree with the last one in the first key, when there are
    /// rows and they are in order.
    std::uint32_t lastGroup() const;
    /// The first key in which the rows at both places differ, keyCount() when there is none.
    std::size_t firstDifference(std::uint32_t placeA, std::uint32_t placeB) const;

    /// Arranges for find by the key with the most different values, and answers its position.
    /// Throws work::Cancelled.
    std::size_t arrangeForLookups(const work::Cancellation& cancellation);
    /// The rows in which the key of arrangeForLookups is equal to the operand.
    Range find(const dp::Cell& operand) const;

    Range all() const { return {0, static_cast<std::uint32_t>(order_.size())}; }
    std::uint32_t row(std::uint32_t place) const { return order_[place]; }
    /// Brings the keys of a row near to the processor.
    [[gnu::always_inline]] void prefetch(std::uint32_t row) const {
        for (const Column& column : keys_) {
            __builtin_prefetch(column.codes.data() + row);
        }
    }
    dp::Cell value(std::uint32_t row, std::size_t key) const {
        return keys_[key].ranks.value(keys_[key].codes[row]);
    }

private:
    struct Column {
        bool isDescending = false;
        ValueRanks ranks;
        std::vector<ValueRanks::Code, utils::LargePages<ValueRanks::Code>> codes; ///< by row
    };

    void sortBy(const Column& column);

    std::vector<Column> keys_;
    std::vector<std::uint32_t, utils::LargePages<std::uint32_t>> order_; ///< rows by place
    std::vector<std::uint32_t> starts_; ///< places by the rank of the key that was sorted by last
    std::size_t lookupKey_ = 0;
};

} // namespace orvane::engine
