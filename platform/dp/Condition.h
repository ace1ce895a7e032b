#pragma once

#include "platform/Export.h"
#include "platform/dp/ValueOrder.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace orvane::dp {

/// Numbers from `low` to `high`, both included.
template<class Number>
struct Range {
    Number low;
    Number high;
};

/// What a term demands of a value, as SQLite compares the two, in a form that a loop tests quickly. A number
/// and a number, a text and a text get SQLite's own answer. What SQLite converts before it compares - a
/// number and a text, bytes - passes, and so does whatever a pattern might match: that is for SQLite to
/// judge. Used from one thread at a time.
class ORVANE_PLATFORM_EXPORT Condition {
public:
    enum class TextTest : std::uint8_t {
        None,
        All,
        Listed,
        NotListed,
        Less,
        LessOrEqual,
        Greater,
        GreaterOrEqual
    };

    Condition() = default;
    /// Without the order of the locale every text passes a term under Locale.
    explicit Condition(const ScanTerm& term, const std::shared_ptr<const TextComparison>& locale = nullptr) {
        assign(term, locale);
    }
    /// The same in the memory of the term before.
    void assign(const ScanTerm& term, const std::shared_ptr<const TextComparison>& locale);

    /// Whether the term asks only whether there is a value.
    bool isNullTest() const { return isNullTest_; }
    bool acceptsNull() const { return acceptsNull_; }
    /// No value at all, nor NULL: a comparison with NULL is true for no row.
    bool acceptsNothing() const { return !acceptsNull_ && !acceptsOthers_; }
    /// Values that are neither numbers nor texts.
    bool acceptsOthers() const { return acceptsOthers_; }
    /// The numbers that pass, by how they are stored: ranges that ascend and do not overlap.
    const std::vector<Range<std::int64_t>>& integers() const { return integers_; }
    const std::vector<Range<double>>& reals() const { return reals_; }
    TextTest textTest() const { return textTest_; }
    TextCollation collation() const { return collation_; }
    /// What the test compares a text with, in the order of the collation.
    const std::vector<std::string>& texts() const { return texts_; }

    bool accepts(std::int64_t integer) const { return isIn(integers_, integer); }
    /// Of a number.
    bool accepts(double real) const { return isIn(reals_, real); }
    bool accepts(std::string_view text) const;
    bool accepts(const Cell& cell) const {
        switch (cell.type()) {
        case CellType::Null: return acceptsNull_;
        case CellType::Integer: return accepts(cell.integer());
        case CellType::Real: return std::isnan(cell.real()) ? acceptsNull_ : accepts(cell.real());
        case CellType::Text: return accepts(cell.view());
        default: return acceptsOthers_;
        }
    }

private:
    template<class Number>
    static bool isIn(const std::vector<Range<Number>>& ranges, Number value) {
        if (ranges.size() == 1) {
            return value >= ranges.front().low && value <= ranges.front().high;
        }
        const auto after =
            std::upper_bound(ranges.begin(), ranges.end(), value,
                             [](Number v, const Range<Number>& range) { return v < range.low; });
        return after != ranges.begin() && value <= std::prev(after)->high;
    }

    void acceptNothing();
    void acceptEveryValue();
    void compareWith(const ScanTerm& term);
    void arrangeList();
    bool isListed(std::string_view text) const;
    int compare(std::string_view a, std::string_view b) const {
        return compareTexts(a, b, collation_, locale_.get());
    }

    std::vector<Range<std::int64_t>> integers_;
    std::vector<Range<double>> reals_;
    std::vector<std::string> texts_;
    std::unordered_set<std::string> keys_; ///< of the texts that the locale gives one
    bool haveAllKeys_ = false;             ///< the texts
    mutable std::string key_;              ///< of a text that is tested, reused
    std::shared_ptr<const TextComparison> locale_;
    TextCollation collation_ = TextCollation::Binary;
    TextTest textTest_ = TextTest::None;
    bool isNullTest_ = false;
    bool acceptsNull_ = false;
    bool acceptsOthers_ = false;
};

} // namespace orvane::dp
