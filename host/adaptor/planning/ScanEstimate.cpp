#include "host/adaptor/planning/ScanEstimate.h"

#include "host/adaptor/indices/Costs.h"

namespace orvane::adaptor {

namespace {

using dp::Comparison;
using Kind = TableDeclaration::Kind;

/// Rows of a table whose size nobody knows.
constexpr std::int64_t assumedRows = 100'000;
/// The look-ups that share what making an index costs, while there is none yet: a few look-ups in a large
/// table are dear, so what one scan of it finds comes first.
constexpr double assumedLookups = 10'000;
/// Up to so many rows an index is asked how many a condition finds.
constexpr std::size_t mostCounted = 1000;
/// Rows that share one value, in a table of any size.
constexpr double assumedGroup = 25;

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

} // namespace

ScanEstimate::ScanEstimate(const dp::Table& table, const AttributeIndexing& indexing)
    : table_(table), indexing_(indexing),
      rows_(std::max(1.0, static_cast<double>(table.featureCount().value_or(assumedRows)))), passing_(rows_),
      scanned_(rows_) {}

void ScanEstimate::takeTerm(const TableDeclaration::Column& column, Comparison comparison,
                            dp::TextCollation collation, const Operand& operand) {
    const bool isServed = indexing_.isOn() && AttributeIndexing::serves(column, collation, rows_);
    const bool isOwnKind = operand && column.comparesAsIs(operand->type());
    // Texts that a file keeps apart may be equal under the collation, so only numbers are known to be unique.
    const bool findsOne = isEquality(comparison) && column.unique && column.kind == Kind::Number;
    const double share = findsOne                ? 1 / rows_
                         : isServed && isOwnKind ? shareByIndex(column, comparison, *operand)
                                                 : shareOf(column, comparison);
    passing_ *= share;
    isUnique_ = isUnique_ || findsOne;
    if (isEquality(comparison) && isServed && (!operand || indexing_.averageGroup(column.attribute))) {
        expectLookups(column); // at once, or soon: a join that repeats the scan gets its index
    }
    filterCost_ = std::max(filterCost_, column.kind == Kind::Text ? cost::textTest : cost::numberTest);
    if (table_.usesTerm(column.attribute, comparison, collation)) {
        scanned_ *= share;
    }
}

void ScanEstimate::takePattern(const TableDeclaration::Column& column, Comparison comparison,
                               const Operand& pattern) {
    const bool isServed = indexing_.isOn() && AttributeIndexing::serves(column, column.collation, rows_);
    const bool isText = pattern && pattern->type() == dp::CellType::Text;
    passing_ *= isServed && isText ? shareByIndex(column, comparison, *pattern) : selectivity(comparison);
    if (isServed && !pattern) {
        expectLookups(column);
    }
    filterCost_ = cost::patternTest;
}

void ScanEstimate::takeUnservedPattern(Comparison comparison) {
    passing_ *= selectivity(comparison);
    filterCost_ = cost::patternTest;
}

void ScanEstimate::takeRowNumbers(bool isList) {
    passing_ = std::min(passing_, isList ? assumedGroup : 1.0);
    fetches_ = true;
    isUnique_ = isUnique_ || !isList;
}

void ScanEstimate::takeRelation(const RelationEstimate& relation, bool isReady) {
    passing_ *= std::min(1.0, relation.found / rows_);
    if (relation.isElsewhere) {
        relationCost_ = rows_ * (cost::handedRow + cost::testedRow);
        return;
    }
    fetches_ = true;
    // One tree serves all scans; without, each would have to look at all envelopes.
    const double scans = std::clamp(relation.scans, 1.0, assumedLookups);
    const double making = isReady ? 0 : rows_ * std::min(cost::boxTest, cost::treeRow / scans);
    // A function that nobody took over SQLite would call for each pair of rows, and take for free.
    const double opening = relation.scans > 1 ? cost::opening : 0;
    relationCost_ = opening + relation.candidates * cost::relation + making;
}

void ScanEstimate::expectLookups(const TableDeclaration::Column& column) {
    looksUp_ = true;
    hasIndex_ = hasIndex_ || indexing_.averageGroup(column.attribute);
    makingCost_ =
        std::max(makingCost_, column.kind == Kind::Number ? cost::indexedNumber : cost::indexedText);
}

/// The share of rows that a term lets pass whose operand is known.
double ScanEstimate::shareByIndex(const TableDeclaration::Column& column, Comparison comparison,
                                  const dp::Cell& operand) {
    if (isEquality(comparison) || comparison == Comparison::NotEqual || comparison == Comparison::IsNot) {
        return shareOf(column, comparison);
    }
    const auto count = indexing_.countRows(column.attribute, comparison, operand, mostCounted);
    if (!count || *count >= mostCounted) {
        return selectivity(comparison);
    }
    expectLookups(column);
    return std::max(*count, 1.0) / rows_;
}

/// What an attribute index knows of the values, else a guess.
double ScanEstimate::shareOf(const TableDeclaration::Column& column, Comparison comparison) const {
    if (!isEquality(comparison)) {
        return selectivity(comparison);
    }
    if (const auto group = indexing_.averageGroup(column.attribute)) {
        return *group / rows_;
    }
    return std::min(selectivity(comparison), assumedGroup / rows_);
}

double ScanEstimate::findingCost() const {
    const double fetching = passing_ * (cost::foundRow - cost::handedRow);
    const double scanning = scanned_ * filterCost_ + relationCost_;
    if (fetches_) {
        return fetching + relationCost_;
    }
    const double making = hasIndex_ ? 0 : rows_ * makingCost_ / assumedLookups;
    return looksUp_ ? std::min(scanning, fetching + making) : scanning;
}

} // namespace orvane::adaptor
