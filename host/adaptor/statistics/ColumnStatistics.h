#pragma once

#include "host/adaptor/declaration/TableDeclaration.h"

#include "platform/dp/Condition.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace orvane::adaptor {

/// What a sample of a table's rows tells about the values of one column. A comparison that most rows of the
/// sample pass, most rows of the table pass; for values that the sample has seen seldom or not at all, it
/// counts how many values there are that it has seen once, twice, ... Texts are equal as under the column's
/// own collation.
///
/// The answers are shares of the table's rows, no less than that of one row.
class ColumnStatistics {
public:
    explicit ColumnStatistics(const TableDeclaration::Column& column);

    /// Adds the value of the next row. Rows of one run follow each other in the table.
    void add(const dp::Cell& value, std::int64_t run);
    /// Ends the sample of a table of so many rows.
    void finish(double tableRows);

    /// Different values in the whole table but NULL; at least 1.
    double distinctValues() const { return distinct_; }
    double shareOfNulls() const;
    double shareOfOthers() const { return 1 - static_cast<double>(nulls_) / sampleRows(); }
    /// On average over the values.
    double shareOfOneValue() const { return atLeastOneRow(shareOfOthers() / distinct_); }
    /// Of a number or text.
    double shareOfValue(const dp::Cell& value) const;
    /// Of what passes all conditions. They are conditionOf() some terms.
    double shareOf(std::span<const dp::Condition> conditions) const;
    dp::Condition conditionOf(const dp::ScanTerm& term) const { return dp::Condition(term, locale_); }
    /// Of the texts that match a pattern of Like or Glob, zero-terminated UTF-8.
    double shareOfPattern(dp::Comparison comparison, const char* pattern) const;

private:
    struct Value {
        dp::Cell number; ///< NULL for a text
        std::string text;
        std::int64_t rows = 0;
        std::int64_t runs = 0; ///< that it occurs in
        std::int64_t lastRun = -1;
    };
    /// Values that occur in no more runs than this are rare: how often they occur in the table, the
    /// frequencies of all of them tell better than their own.
    static constexpr std::size_t mostRare = 10;

    double sampleRows() const { return std::max(1.0, static_cast<double>(rows_)); }
    bool isWholeTable() const { return static_cast<double>(rows_) >= tableRows_; }
    double atLeastOneRow(double share) const { return std::clamp(share, 1 / tableRows_, 1.0); }
    /// A hash that equal values share, and others hardly ever.
    std::size_t keyOf(const dp::Cell& value) const;
    bool isRare(const Value& value) const { return value.runs <= static_cast<std::int64_t>(mostRare); }
    double estimateDistinct();
    double shareOfRare(const Value& value) const;
    double shareOfUnseen() const;
    double shareOfMatches(std::int64_t rows) const;
    double shareWithin(dp::Range<double> range) const;

    const bool isText_;
    const std::shared_ptr<const dp::TextComparison> locale_; ///< null where the collation has none
    double tableRows_ = 1;
    std::int64_t rows_ = 0;
    std::int64_t nulls_ = 0;
    std::vector<Value> values_;                              ///< numbers ascend when the sample is at its end
    std::unordered_map<std::size_t, std::size_t> positions_; ///< of the values, by what equal ones share
    std::optional<std::size_t> last_;                        ///< value of the last row, unless NULL
    std::int64_t lastRun_ = -1;
    std::int64_t neighbours_ = 0;                    ///< pairs of rows that follow each other
    std::int64_t changes_ = 0;                       ///< those with two values
    std::array<double, mostRare + 2> frequencies_{}; ///< how many values occur in so many runs
    double rareRows_ = 0;
    double rareRuns_ = 0; ///< in which rare values occur, each counted by itself
    double distinct_ = 1;
    bool isSkewed_ = false; ///< the frequencies of rare values differ much
};

} // namespace orvane::adaptor
