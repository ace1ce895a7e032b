#pragma once

#include "host/adaptor/rows/RowIds.h"

#include "platform/dp/Cursor.h"
#include "platform/utils/LargePages.h"
#include "platform/work/Cancellation.h"
#include <orvane/engine/rows/ByteArena.h>
#include <orvane/engine/rows/RowOrder.h>

#include <array>
#include <cstdint>
#include <vector>

namespace orvane::adaptor {

/// Rows of a table in memory, arranged by some of their attributes, the keys: in order, or so that the rows
/// with one value are found at once. Takes for each row 12 bytes and 4 for each key, 16 for each other
/// attribute, besides what longer texts and geometries take and once the different values of the keys.
class ArrangedRows {
public:
    struct Key {
        int attribute = 0;
        dp::TextCollation collation = dp::TextCollation::Binary;
        bool isDescending = false;
    };
    using Range = engine::RowOrder::Range;

    /// `attributes` are those that will be read; a key counts as one, once.
    ArrangedRows(const std::vector<int>& attributes, const std::vector<Key>& keys);

    /// About how many bytes so many rows take when all values of the keys differ; the length of texts is
    /// guessed.
    static double expectedBytes(double rows, std::size_t attributes, std::size_t keys);

    /// Takes memory for so many rows at once.
    void reserve(std::size_t rows);
    /// Copies the current row of a cursor.
    void add(dp::Cursor& row);
    std::size_t rowCount() const { return ids_.size(); }
    /// Bytes taken, about.
    std::size_t bytes() const;

    /// As the functions of RowOrder.
    void arrangeInOrder(const work::Cancellation& cancellation) { order_.arrangeInOrder(cancellation); }
    std::uint32_t lastGroup() const { return order_.lastGroup(); }
    std::size_t arrangeForLookups(const work::Cancellation& cancellation) {
        return order_.arrangeForLookups(cancellation);
    }
    Range all() const { return order_.all(); }
    Range find(const dp::Cell& operand) const { return order_.find(operand); }

    dp::Cell cell(std::uint32_t place, int attribute) const;
    /// Brings what will be read of a row near to the processor. Inlined early: GCC drops calls of functions
    /// that do no more than this.
    [[gnu::always_inline]] void prefetch(std::uint32_t place) const {
        const std::uint32_t row = order_.row(place);
        const Value* const values = values_.data() + row * plain_.size();
        __builtin_prefetch(values);
        __builtin_prefetch(values +
                           plain_.size()); // the row may begin in one line of the cache and end in the next
        order_.prefetch(row);
    }
    dp::FeatureId featureId(std::uint32_t place) const { return ids_.at(order_.row(place)); }

private:
    /// A value that is no key: a number, or a text or bytes, which are short or else in `bytes_`.
    struct Value {
        static constexpr std::uint8_t isElsewhere = 255;

        alignas(8) std::array<char, 14> bytes; ///< of the value, or of a pointer and a 32-bit size
        std::uint8_t size;
        dp::CellType type;
    };

    static constexpr int none = -1;

    Value kept(const dp::Cell& cell);

    std::vector<int> keys_;                               ///< their attributes
    std::vector<int> plain_;                              ///< attributes that are no keys
    std::vector<int> keyOf_;                              ///< by attribute: position in keys_
    std::vector<int> plainOf_;                            ///< by attribute: position in plain_
    std::vector<Value, utils::LargePages<Value>> values_; ///< row by row
    RowIds ids_;
    engine::ByteArena bytes_;
    engine::RowOrder order_;
};

/// Walks over a range of arranged rows.
class ArrangedCursor final : public dp::Cursor {
public:
    void start(const ArrangedRows& rows, ArrangedRows::Range range) {
        rows_ = &rows;
        next_ = range.begin;
        end_ = range.end;
    }
    bool next() override {
        if (end_ - next_ > ahead) {
            rows_->prefetch(next_ + ahead);
        }
        place_ = next_;
        return next_ < end_ && ++next_ > 0;
    }
    dp::Cell cell(int attribute) override { return rows_->cell(place_, attribute); }
    dp::FeatureId featureId() override { return rows_->featureId(place_); }

private:
    static constexpr std::uint32_t ahead = 8; ///< about what the memory takes, in rows through SQLite

    const ArrangedRows* rows_ = nullptr;
    std::uint32_t place_ = 0;
    std::uint32_t next_ = 0;
    std::uint32_t end_ = 0;
};

} // namespace orvane::adaptor
