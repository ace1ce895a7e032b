#pragma once

#include "platform/dp/ValueOrder.h"
#include "platform/work/Cancellation.h"
#include <orvane/engine/Export.h>
#include <orvane/engine/LocaleOrder.h>
#include <orvane/engine/rows/ByteArena.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace orvane::engine {

/// The different values of a column, and their order as SQLite has it: NULL, numbers, texts, bytes. Each
/// value gets a code when it is added and, once all are there, a rank, which is the same for values that are
/// equal under the collation. Values that are equal have one code, found by hashing; for the order integers
/// alone are sorted, which is faster.
class ORVANE_ENGINE_EXPORT ValueRanks {
public:
    using Code = std::uint32_t;
    using Rank = std::uint32_t;

    /// What one more value takes, besides its text: the value, slots, rank, place in the order, and the code
    /// of its row.
    static constexpr double bytesPerValue =
        sizeof(dp::Cell) + 3 * sizeof(Code) + 2 * sizeof(Rank) + sizeof(Code);

    /// Texts are compared under the collation, which may be Locale only with `locale`; numbers by their
    /// value, whether integer or real.
    ValueRanks(dp::TextCollation collation, std::shared_ptr<const LocaleOrder> locale)
        : collation_(collation), locale_(std::move(locale)) {}

    /// The code of a value: 0 for NULL, else from 1 on.
    Code add(const dp::Cell& value, ByteArena& texts) {
        if (areIntegers_ && value.type() == dp::CellType::Integer) {
            integers_.push_back(value.integer());
            return static_cast<Code>(integers_.size());
        }
        return addHashed(value, texts);
    }
    /// Gives the ranks, in order; no more values come. Throws work::Cancelled.
    void finishInOrder(const work::Cancellation& cancellation);
    /// The same with ranks that tell only which values are equal; costs less where these have one code.
    void finishForLookups(const work::Cancellation& cancellation);

    /// Once the ranks are given.
    dp::Cell value(Code code) const {
        return areIntegers_ && code != 0 ? dp::Cell::ofInteger(integers_[rank(code) - 1]) : values_[code];
    }
    Rank rank(Code code) const { return ranks_.empty() ? code : ranks_[code]; }
    /// Ranks go from 0, which is for NULL, to below this.
    Rank rankEnd() const { return rankEnd_; }
    /// The rank of the values that are equal to the operand; nothing when there are none. NULL is equal to
    /// NULL.
    std::optional<Rank> find(const dp::Cell& operand) const;

    /// Bytes taken, about, besides the texts.
    std::size_t bytes() const {
        return values_.size() * sizeof(dp::Cell) + slots_.size() * sizeof(Code) +
               integers_.size() * sizeof(std::int64_t);
    }

private:
    bool isLess(const dp::Cell& a, const dp::Cell& b) const;
    bool isSame(const dp::Cell& a, const dp::Cell& b) const;
    int compareTexts(std::string_view a, std::string_view b) const {
        return dp::compareTexts(a, b, collation_, locale_.get());
    }
    /// Any value but an integer among integers alone.
    Code addHashed(const dp::Cell& value, ByteArena& texts);
    /// For a column with other values: hashes the integers as well.
    void hashIntegers();
    void rankIntegers(const work::Cancellation& cancellation);
    /// Ranks that tell only which integers are equal.
    void hashRanks(const work::Cancellation& cancellation);
    std::size_t slotOfInteger(std::int64_t value) const;
    bool appendKey(const dp::Cell& value, std::string& key) const;
    std::vector<Code> sorted(const work::Cancellation& cancellation) const;
    std::vector<Code> sortedByComparing(std::vector<Code> texts,
                                        const work::Cancellation& cancellation) const;
    /// The slot of a value or, when it has none, the free one for it.
    std::size_t slotOf(const dp::Cell& value) const;
    void growSlots();

    dp::TextCollation collation_;
    std::shared_ptr<const LocaleOrder> locale_;
    bool hasTexts_ = false;
    bool areIntegers_ = true;                  ///< all values; they have no slots before they have ranks
    bool hasTwins_ = false;                    ///< codes with equal values
    std::vector<std::int64_t> integers_;       ///< by code, from 1 on; once ranks are given, by rank
    std::vector<dp::Cell> values_{dp::Cell()}; ///< by code
    std::vector<Code> slots_;  ///< a hash table of the codes, of integers alone the ranks, by value; 0 for a
                               ///< free slot; a power of two
    std::vector<Rank> ranks_;  ///< by code; empty when each code is its rank
    std::vector<Code> sorted_; ///< all codes but that of NULL, by rank; empty when each code is its rank
    Rank rankEnd_ = 1;
};

} // namespace orvane::engine
