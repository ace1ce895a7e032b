#include "host/adaptor/planning/ScanEstimate.h"

#include "host/adaptor/indices/Costs.h"

#include <charconv>
#include <cmath>
#include <string>
#include <utility>

namespace orvane::adaptor {

namespace {

using dp::Comparison;
using Kind = TableDeclaration::Kind;

/// The look-ups that share what making an index costs, while there is none yet: a few look-ups in a large
/// table are dear, so what one scan of it finds comes first.
constexpr double assumedLookups = 10'000;
/// Those that share what making an R-tree costs, at the least: it stays for later joins.
constexpr double fewestLookups = 500;
/// Up to so many rows an index is asked how many a condition finds.
constexpr std::size_t mostCounted = 1000;
/// Rows that share one value, in a table of any size of whose values nothing is known.
constexpr double assumedGroup = 25;
/// Values of an In list, which are known only when the scan starts.
constexpr double assumedList = 25;

/// The share of rows that a term lets pass, as far as nothing is known of the values.
double selectivity(Comparison comparison) {
    switch (comparison) {
    case Comparison::Equal:
    case Comparison::Is:
    case Comparison::IsNull: return 0.05;
    case Comparison::In: return 0.2;
    case Comparison::Like:
    case Comparison::Glob: return 0.1;
    case Comparison::NotEqual:
    case Comparison::IsNot:
    case Comparison::IsNotNull: return 0.9;
    default: return 0.33;
    }
}

bool isNullTest(Comparison comparison) {
    return comparison == Comparison::IsNull || comparison == Comparison::IsNotNull;
}

bool excludesValue(Comparison comparison) {
    return comparison == Comparison::NotEqual || comparison == Comparison::IsNot;
}

std::optional<dp::ScanValue> numberIn(std::string_view text) {
    const char* const end = text.data() + text.size();
    std::int64_t integer = 0;
    if (const auto read = std::from_chars(text.data(), end, integer);
        read.ec == std::errc() && read.ptr == end) {
        return integer;
    }
    double real = 0;
    const auto read = std::from_chars(text.data(), end, real);
    return read.ec == std::errc() && read.ptr == end ? std::optional<dp::ScanValue>(real) : std::nullopt;
}

/// The operand as SQLite converts it before it compares the column with it; nothing where that is not known
/// to be one of the column's kind.
std::optional<dp::ScanValue> asKindOf(const TableDeclaration::Column& column, const dp::Cell& operand) {
    const bool isNumber = column.kind == Kind::Number;
    switch (operand.type()) {
    case dp::CellType::Integer:
        return isNumber ? dp::ScanValue(operand.integer()) : dp::ScanValue(std::to_string(operand.integer()));
    case dp::CellType::Real: return isNumber ? std::optional<dp::ScanValue>(operand.real()) : std::nullopt;
    case dp::CellType::Text:
        return isNumber ? numberIn(operand.view()) : dp::ScanValue(std::string(operand.view()));
    default: return std::nullopt;
    }
}

} // namespace

ScanEstimate::ScanEstimate(const dp::Table& table, const AttributeIndexing& indexing,
                           const ValueStatistics& values)
    : table_(table), indexing_(indexing), values_(values),
      rows_(std::max(1.0, static_cast<double>(table.featureCount().value_or(cost::assumedRows)))),
      passing_(rows_), scanned_(rows_) {}

void ScanEstimate::takeTerm(const TableDeclaration::Column& column, Comparison comparison,
                            dp::TextCollation collation, const Operand& operand) {
    const bool isServed = indexing_.isOn() && AttributeIndexing::serves(column, collation, rows_);
    // Texts that a file keeps apart may be equal under the collation, so only numbers are known to be unique.
    const bool findsOne = isEquality(comparison) && column.unique && column.kind == Kind::Number;
    const bool isKnown = operand && column.comparesAsIs(operand->type()) && isServed;
    const auto counted = isKnown && !findsOne && !excludesValue(comparison)
                             ? countByIndex(column, comparison, *operand)
                             : std::nullopt;
    const double share = findsOne  ? 1 / rows_
                         : counted ? *counted / rows_
                                   : shareOf(column, comparison, collation, operand);
    passing_ *= share;
    isUnique_ = isUnique_ || findsOne;
    if (isEquality(comparison) && isServed && (!operand || indexing_.averageGroup(column.attribute))) {
        expectLookups(column); // at once, or soon: a join that repeats the scan gets its index
    }
    if (!operand && isEquality(comparison) && rows_ <= cost::mostRowsBeforeIndex) {
        const double lookup = column.kind == Kind::Number ? cost::keptNumber : cost::keptText;
        keptCost_ = keptCost_ > 0 ? std::min(keptCost_, lookup) : lookup;
    }
    filterCost_ = std::max(filterCost_, column.kind == Kind::Text ? cost::textTest : cost::numberTest);
    if (table_.usesTerm(column.attribute, comparison, collation)) {
        scanned_ *= share;
        sourceCost_ = std::max(sourceCost_, table_.looksUp(column.attribute, comparison, collation)
                                                ? cost::sourceLookup
                                                : rows_ * cost::numberTest);
    }
}

void ScanEstimate::takePattern(const TableDeclaration::Column& column, Comparison comparison,
                               const Operand& pattern) {
    const bool isServed = indexing_.isOn() && AttributeIndexing::serves(column, column.collation, rows_);
    const bool isText = pattern && pattern->type() == dp::CellType::Text;
    const auto counted = isServed && isText ? countByIndex(column, comparison, *pattern) : std::nullopt;
    passing_ *= counted ? *counted / rows_ : shareOfPattern(column, comparison, pattern);
    if (isServed && !pattern) {
        expectLookups(column);
    }
    filterCost_ = cost::patternTest;
}

void ScanEstimate::takeUnservedPattern(const TableDeclaration::Column& column, Comparison comparison,
                                       const Operand& pattern) {
    passing_ *= shareOfPattern(column, comparison, pattern);
    filterCost_ = cost::patternTest;
}

void ScanEstimate::takeRowNumbers(bool isList) {
    passing_ = std::min(passing_, isList ? assumedGroup : 1.0);
    fetches_ = true;
    isUnique_ = isUnique_ || !isList;
}

void ScanEstimate::takeRelation(const RelationEstimate& relation) {
    passing_ *= std::min(1.0, relation.found / rows_);
    fetches_ = true;
    // One tree serves all scans; without, each would have to look at all envelopes, and in another coordinate
    // system at all geometries, which must not cost more than SQLite takes its own tests for.
    const double scans = relation.scans > 1 ? std::clamp(relation.scans, fewestLookups, assumedLookups) : 1.0;
    const double scanning = relation.isElsewhere ? cost::handedRow * 0.9 : cost::boxTest;
    const double treeRow = relation.isElsewhere ? cost::transformedRow : cost::treeRow;
    const double making = relation.isReady ? 0 : rows_ * std::min(scanning, treeRow / scans);
    // A function that nobody took over SQLite would call for each pair of rows, and take for free.
    const double opening = relation.scans > 1 ? cost::treeLevel * std::log2(rows_ + 1) : 0;
    relationCost_ = opening + relation.candidates * cost::relation + making;
}

void ScanEstimate::expectLookups(const TableDeclaration::Column& column) {
    looksUp_ = true;
    hasIndex_ = hasIndex_ || indexing_.averageGroup(column.attribute);
    makingCost_ =
        std::max(makingCost_, column.kind == Kind::Number ? cost::indexedNumber : cost::indexedText);
}

/// Rows that a comparison with a known value finds, if there is an index and they are not many.
std::optional<double> ScanEstimate::countByIndex(const TableDeclaration::Column& column,
                                                 Comparison comparison, const dp::Cell& operand) {
    const auto count = indexing_.countRows(column.attribute, comparison, operand, mostCounted);
    if (!count || *count >= mostCounted) {
        return std::nullopt;
    }
    expectLookups(column);
    return std::max(*count, 1.0);
}

/// The share of rows that a term lets pass: what is known of the values, else a guess.
double ScanEstimate::shareOf(const TableDeclaration::Column& column, Comparison comparison,
                             dp::TextCollation collation, const Operand& operand) {
    const ColumnStatistics* const values = values_.find(column.attribute);
    if (!values) {
        return isEquality(comparison) ? shareOfOneValue(column) : selectivity(comparison);
    }
    if (isNullTest(comparison)) {
        return comparison == Comparison::IsNull ? values->shareOfNulls() : values->shareOfOthers();
    }
    if (comparison == Comparison::In) {
        return std::min(assumedList * shareOfOneValue(column), selectivity(comparison));
    }
    if (operand && operand->isNull() && isEquality(comparison)) {
        return comparison == Comparison::Is ? values->shareOfNulls() : 1 / rows_;
    }
    auto value = operand ? asKindOf(column, *operand) : std::nullopt;
    if (isEquality(comparison)) {
        return value ? values->shareOfValue(dp::cellOf(*value)) : shareOfOneValue(column);
    }
    return value ? narrow(*values, {column.attribute, comparison, collation, {std::move(*value)}})
                 : selectivity(comparison);
}

/// What a range or exclusion leaves of the rows that those before on the same column let pass.
double ScanEstimate::narrow(const ColumnStatistics& values, const dp::ScanTerm& term) {
    Bounds& bounds = bounds_[term.attribute];
    bounds.conditions.push_back(values.conditionOf(term));
    const double share = values.shareOf(bounds.conditions);
    return share / std::exchange(bounds.share, share);
}

/// The share of rows with one value of which nothing is known.
double ScanEstimate::shareOfOneValue(const TableDeclaration::Column& column) const {
    if (const auto group = indexing_.averageGroup(column.attribute)) {
        return *group / rows_;
    }
    const ColumnStatistics* const values = values_.find(column.attribute);
    return values ? values->shareOfOneValue()
                  : std::min(selectivity(Comparison::Equal), assumedGroup / rows_);
}

double ScanEstimate::shareOfPattern(const TableDeclaration::Column& column, Comparison comparison,
                                    const Operand& pattern) const {
    const ColumnStatistics* const values = values_.find(column.attribute);
    if (!values || !pattern || pattern->type() != dp::CellType::Text || column.kind != Kind::Text) {
        return selectivity(comparison);
    }
    return values->shareOfPattern(comparison, std::string(pattern->view()).c_str());
}

double ScanEstimate::findingCost() const {
    const double fetching = passing_ * (cost::foundRow - cost::handedRow);
    const double scanning = scanned_ * filterCost_ + sourceCost_ + relationCost_;
    if (fetches_) {
        return fetching + relationCost_;
    }
    double least = scanning;
    if (looksUp_) {
        const double making = hasIndex_ ? 0 : rows_ * makingCost_ / assumedLookups;
        least = std::min(least, cost::opening + fetching + making);
    }
    if (keptCost_ > 0) {
        const double keeping = rows_ * (cost::keptRow + 2 * cost::keptValue) / assumedLookups;
        least = std::min(least, keptCost_ + keeping);
    }
    return least;
}

} // namespace orvane::adaptor
