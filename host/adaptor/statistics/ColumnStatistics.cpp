#include "host/adaptor/statistics/ColumnStatistics.h"

#include "platform/utils/Numbers.h"
#include <orvane/engine/LocaleOrder.h>
#include <orvane/engine/functions/PatternMatch.h>

#include <cmath>
#include <functional>
#include <limits>
#include <numeric>
#include <string_view>
#include <utility>

namespace orvane::adaptor {

namespace {

/// A condition that no row of the sample passes finds some rows of a large table, or none.
constexpr double mostUnseenRows = 10;
/// Values that occur in so many runs are no accident.
constexpr std::int64_t enoughRuns = 10;

double asReal(const dp::Cell& number) {
    return number.type() == dp::CellType::Integer ? static_cast<double>(number.integer()) : number.real();
}

/// A number in one form, however it is stored.
dp::Cell plainNumber(const dp::Cell& number) {
    if (number.type() == dp::CellType::Real) {
        const auto whole = utils::wholePart(number.real());
        if (whole && static_cast<double>(*whole) == number.real()) {
            return dp::Cell::ofInteger(*whole);
        }
    }
    return number;
}

} // namespace

ColumnStatistics::ColumnStatistics(const TableDeclaration::Column& column)
    : isText_(column.kind == TableDeclaration::Kind::Text),
      locale_(column.isLocaleText() ? engine::LocaleOrder::current() : nullptr) {}

/// Texts that only the collator can tell to be equal count as different.
std::size_t ColumnStatistics::keyOf(const dp::Cell& value) const {
    if (value.type() != dp::CellType::Text) {
        const dp::Cell number = plainNumber(value);
        return number.type() == dp::CellType::Integer ? std::hash<std::int64_t>()(number.integer())
                                                      : std::hash<double>()(number.real());
    }
    std::string key;
    const bool hasKey = locale_ && locale_->plainKey(value.view(), key);
    return std::hash<std::string_view>()(hasKey ? std::string_view(key) : value.view());
}

void ColumnStatistics::add(const dp::Cell& value, std::int64_t run) {
    ++rows_;
    const bool follows = run == std::exchange(lastRun_, run);
    const bool isOwnKind = isText_ ? value.type() == dp::CellType::Text : dp::isNumber(value);
    if (dp::isNull(value) || !isOwnKind) {
        nulls_ += dp::isNull(value);
        last_.reset();
        return;
    }
    const auto [found, isNew] = positions_.try_emplace(keyOf(value), values_.size());
    if (isNew) {
        values_.push_back(isText_ ? Value{{}, std::string(value.view())} : Value{plainNumber(value), {}});
    }
    Value& known = values_[found->second];
    ++known.rows;
    known.runs += std::exchange(known.lastRun, run) != run;
    if (follows && last_) {
        ++neighbours_;
        changes_ += *last_ != found->second;
    }
    last_ = found->second;
}

void ColumnStatistics::finish(double tableRows) {
    tableRows_ = std::max(tableRows, sampleRows());
    if (!isText_) {
        std::sort(values_.begin(), values_.end(),
                  [](const Value& a, const Value& b) { return dp::compareNumbers(a.number, b.number) < 0; });
        for (std::size_t i = 0; i < values_.size(); ++i) {
            positions_[keyOf(values_[i].number)] = i;
        }
    }
    for (const Value& value : values_) {
        if (value.runs < static_cast<std::int64_t>(frequencies_.size())) {
            ++frequencies_[static_cast<std::size_t>(value.runs)];
        }
        if (isRare(value)) {
            rareRows_ += static_cast<double>(value.rows);
            rareRuns_ += static_cast<double>(value.runs);
        }
    }
    const double known = std::max(1.0, static_cast<double>(values_.size()));
    distinct_ = std::clamp(estimateDistinct(), known, std::max(known, tableRows_ * shareOfOthers()));
}

/// Common values are all known. Of the rare ones there are as many as the estimator Duj1 says (Haas, Stokes:
/// Estimating the number of classes in a finite population, 1998), or where their frequencies differ much,
/// GEE (Charikar and others: Towards estimation error guarantees for distinct values, 2000). Neighbours tell
/// how often a sorted column changes its value; it has no more values than that.
double ColumnStatistics::estimateDistinct() {
    const auto known = static_cast<double>(values_.size());
    if (isWholeTable() || rareRuns_ == 0) {
        return known;
    }
    const double fraction = sampleRows() / tableRows_;
    const double rare = std::accumulate(frequencies_.begin(), frequencies_.end() - 1, 0.0);
    const double once = frequencies_[1];
    double estimate = rareRuns_ * rare / (rareRuns_ - once + once * fraction);
    double pairs = 0;
    for (std::size_t i = 2; i <= mostRare; ++i) {
        pairs += static_cast<double>(i * (i - 1)) * frequencies_[i];
    }
    const double variation = estimate / rareRuns_ * (pairs / rareRuns_ + fraction) - 1; // squared
    constexpr double muchVariation = 0.5;
    isSkewed_ = variation > muchVariation;
    if (isSkewed_) {
        estimate = std::max(estimate, once / std::sqrt(fraction) + rare - once);
    }
    estimate += known - rare;
    if (constexpr std::int64_t enoughNeighbours = 100; neighbours_ >= enoughNeighbours) {
        const double changes = std::max(static_cast<double>(changes_), 0.5);
        estimate =
            std::min(estimate, tableRows_ * shareOfOthers() * changes / static_cast<double>(neighbours_));
    }
    return estimate;
}

double ColumnStatistics::shareOfNulls() const {
    return nulls_ > 0 || isWholeTable() ? atLeastOneRow(static_cast<double>(nulls_) / sampleRows())
                                        : shareOfMatches(0);
}

double ColumnStatistics::shareOfValue(const dp::Cell& value) const {
    const auto found = positions_.find(keyOf(value));
    if (found == positions_.end()) {
        return shareOfUnseen();
    }
    const Value& known = values_[found->second];
    return isRare(known) && !isWholeTable() ? shareOfRare(known)
                                            : static_cast<double>(known.rows) / sampleRows();
}

/// Good and Turing's estimate: what occurred once is expected as often as it takes to explain the number of
/// values that occurred twice. Beyond a few occurrences the value's own count is better.
double ColumnStatistics::shareOfRare(const Value& value) const {
    constexpr std::int64_t fewRuns = 3;
    constexpr double enoughValues = 5;
    const auto runs = static_cast<std::size_t>(value.runs);
    if (value.runs > fewRuns || frequencies_[runs] < enoughValues) {
        return atLeastOneRow(static_cast<double>(value.rows) / sampleRows());
    }
    const double expected =
        static_cast<double>(runs + 1) * (frequencies_[runs + 1] + 0.5) / (frequencies_[runs] + 0.5);
    return atLeastOneRow(rareRows_ / sampleRows() * expected / rareRuns_);
}

/// All unseen values together are as frequent as those that were seen once. Where those are so few that the
/// value may well not exist, or the frequencies differ much, it has the geometric mean of that and one row.
double ColumnStatistics::shareOfUnseen() const {
    if (isWholeTable()) {
        return 1 / tableRows_;
    }
    constexpr double enoughValues = 10;
    constexpr double medianOfNone = 0.2275; // of the rate of what was not seen (Jeffreys)
    const double once = std::max(frequencies_[1], medianOfNone);
    const double shareOfRun = rareRuns_ > 0 ? rareRows_ / sampleRows() / rareRuns_ : 1 / sampleRows();
    const double unseen = std::max(1.0, distinct_ - static_cast<double>(values_.size()));
    const double share = once * shareOfRun / unseen;
    return once < enoughValues || isSkewed_ ? atLeastOneRow(std::sqrt(share / tableRows_))
                                            : std::min(atLeastOneRow(share), shareOfOneValue());
}

double ColumnStatistics::shareOfMatches(std::int64_t rows) const {
    if (rows == 0 && !isWholeTable()) {
        return std::min(mostUnseenRows, std::sqrt(tableRows_ / sampleRows())) / tableRows_;
    }
    return atLeastOneRow(static_cast<double>(rows) / sampleRows());
}

double ColumnStatistics::shareOf(std::span<const dp::Condition> conditions) const {
    const auto allAccept = [&](const auto& value) {
        return std::all_of(conditions.begin(), conditions.end(),
                           [&](const dp::Condition& condition) { return condition.accepts(value); });
    };
    std::int64_t matches = allAccept(dp::Cell()) ? nulls_ : 0;
    std::int64_t runs = 0;
    for (const Value& value : values_) {
        const bool passes = isText_ ? allAccept(std::string_view(value.text)) : allAccept(value.number);
        matches += passes ? value.rows : 0;
        runs += passes ? value.runs : 0;
    }
    const bool areRanges =
        std::all_of(conditions.begin(), conditions.end(),
                    [](const dp::Condition& condition) { return condition.reals().size() == 1; });
    constexpr double manyUnseen = 20;
    if (isText_ || isWholeTable() || !areRanges || runs >= enoughRuns || frequencies_[1] < manyUnseen) {
        return shareOfMatches(matches);
    }
    dp::Range<double> range = conditions.front().reals().front();
    for (const dp::Condition& condition : conditions) {
        range.low = std::max(range.low, condition.reals().front().low);
        range.high = std::min(range.high, condition.reals().front().high);
    }
    return shareWithin(range);
}

/// Of a range so narrow that few values of the sample are in it, or none: its part of a wider one around it,
/// in which the values are taken to be spread evenly. Beyond the least and the greatest value of the sample
/// they become fewer: one more row at a gap's distance is as likely as the next one of the sample was.
double ColumnStatistics::shareWithin(dp::Range<double> range) const {
    auto first = std::partition_point(values_.begin(), values_.end(),
                                      [&](const Value& value) { return asReal(value.number) < range.low; });
    auto last = std::partition_point(first, values_.end(),
                                     [&](const Value& value) { return asReal(value.number) <= range.high; });
    double rows = 0;
    std::int64_t runs = 0;
    bool areIntegers = true;
    const auto take = [&](const Value& value) {
        rows += static_cast<double>(value.rows);
        runs += value.runs;
        areIntegers = areIntegers && value.number.type() == dp::CellType::Integer;
    };
    std::for_each(first, last, take);
    while ((runs < enoughRuns || last - first < 2) && (first != values_.begin() || last != values_.end())) {
        if (first != values_.begin()) {
            take(*--first);
        }
        if (last != values_.end()) {
            take(*last++);
        }
    }
    const double low = asReal(first->number);
    const double high = asReal((last - 1)->number);
    const double gap = (high - low) / static_cast<double>(last - first - 1);
    const auto gapsBelow = [&](double place) { // in which rows are, from one gap before the least value on
        return place < low    ? std::exp((place - low) / gap)
               : place > high ? 2 + (high - low) / gap - std::exp((high - place) / gap)
                              : 1 + (place - low) / gap;
    };
    if (areIntegers) { // each stands for what is nearest to it
        range.low = std::ceil(range.low) - 0.5;
        range.high = std::floor(range.high) + 0.5;
    }
    const double gaps = range.low < range.high ? gapsBelow(range.high) - gapsBelow(range.low) : 0;
    const double share = gaps * rows / static_cast<double>(last - first) / sampleRows();
    return atLeastOneRow(std::isfinite(share) ? share : 0); // there may be infinite values
}

double ColumnStatistics::shareOfPattern(dp::Comparison comparison, const char* pattern) const {
    const auto* bytes = reinterpret_cast<const unsigned char*>(pattern);
    const auto match = comparison == dp::Comparison::Like ? engine::PatternMatch::like(bytes, 0)
                                                          : engine::PatternMatch::glob(bytes);
    std::int64_t matches = 0;
    for (const Value& value : values_) {
        matches += match.matches(reinterpret_cast<const unsigned char*>(value.text.c_str())) ? value.rows : 0;
    }
    return shareOfMatches(matches);
}

} // namespace orvane::adaptor
