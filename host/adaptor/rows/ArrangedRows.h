#pragma once

#include "host/adaptor/rows/ByteArena.h"
#include "host/adaptor/rows/ValueRanks.h"

#include "platform/dp/Cursor.h"
#include "platform/dp/ScanRequest.h"
#include "platform/work/Cancellation.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace orvane::adaptor {

/// Rows of a table in memory, arranged by some of their attributes, the keys: in order, or so that the rows
/// with one value are found at once. Takes for each row 16 bytes and 4 for each
/// key, 16 for each other attribute, besides what texts and geometries take and once the different values of
/// the keys.
class ArrangedRows {
public:
    struct Key {
        int attribute = 0;
        dp::TextCollation collation = dp::TextCollation::Binary;
        bool isDescending = false;
    };
    /// Places in the arrangement, `end` not included.
    struct Range {
        std::uint32_t begin = 0;
        std::uint32_t end = 0;
    };
    /// `attributes` are those that will be read; a key counts as one, once.
    ArrangedRows(const std::vector<int>& attributes, std::vector<Key> keys);

    /// About how many bytes so many rows take when all values of the keys differ; the length of texts is
    /// guessed.
    static double expectedBytes(double rows, std::size_t attributes, std::size_t keys);

    /// Copies the current row of a cursor.
    void add(dp::Cursor& row);
    std::size_t rowCount() const { return ids_.size(); }
    /// Bytes taken, about, apart from the different values of the keys.
    std::size_t bytes() const;

    /// Puts the rows in the order of the keys, the first one first; rows that agree in all stay in the order
    /// in which they came. NULL comes before all values. Throws work::Cancelled.
    void arrangeInOrder(const work::Cancellation& cancellation);
    /// The place of the first of those rows that agree with the last one in the first key, when there are
    /// rows and they are in order.
    std::uint32_t lastGroup() const;
    /// Arranges for find by the key with the most different values, and answers its position.
    /// Throws work::Cancelled.
    std::size_t arrangeForLookups(const work::Cancellation& cancellation);

    Range all() const { return {0, static_cast<std::uint32_t>(order_.size())}; }
    /// The rows in which the key of arrangeForLookups is equal to the operand.
    Range find(const dp::ScanValue& operand) const;

    dp::Cell cell(std::uint32_t place, int attribute) const;
    const dp::FeatureId& featureId(std::uint32_t place) const { return ids_[order_[place]]; }

private:
    /// A value that is no key.
    struct Value {
        union {
            std::int64_t integer;
            double real;
            const char* data;
        };
        std::uint32_t size;
        dp::CellType type;
    };
    struct KeyColumn {
        Key key;
        ValueRanks ranks;
        std::vector<ValueRanks::Code> codes; ///< by row
    };

    static constexpr int none = -1;

    Value kept(const dp::Cell& cell);
    void placeAsTheyCame();
    void sortBy(const KeyColumn& column);

    std::vector<KeyColumn> keys_;
    std::vector<int> plain_;    ///< attributes that are no keys
    std::vector<int> keyOf_;    ///< by attribute: position in keys_
    std::vector<int> plainOf_;  ///< by attribute: position in plain_
    std::vector<Value> values_; ///< row by row
    std::vector<dp::FeatureId> ids_;
    ByteArena bytes_;
    std::vector<std::uint32_t> order_;  ///< rows by place
    std::vector<std::uint32_t> starts_; ///< places by the rank of the last key that was sorted by
    std::size_t lookupKey_ = 0;
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
        place_ = next_;
        return next_ < end_ && ++next_ > 0;
    }
    dp::Cell cell(int attribute) override { return rows_->cell(place_, attribute); }
    dp::FeatureId featureId() override { return rows_->featureId(place_); }

private:
    const ArrangedRows* rows_ = nullptr;
    std::uint32_t place_ = 0;
    std::uint32_t next_ = 0;
    std::uint32_t end_ = 0;
};

} // namespace orvane::adaptor
