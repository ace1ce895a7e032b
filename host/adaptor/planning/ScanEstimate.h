#pragma once

#include "host/adaptor/indices/AttributeIndexing.h"
#include "host/adaptor/planning/RelationTerms.h"
#include "host/adaptor/statistics/ValueStatistics.h"

#include "platform/dp/Table.h"

#include <algorithm>
#include <map>
#include <optional>
#include <vector>

namespace orvane::adaptor {

/// How many rows a scan finds and what finding them costs, as one condition after the other is taken over.
/// Conditions on different columns count as independent of each other.
class ScanEstimate {
public:
    using Operand = std::optional<dp::Cell>; ///< nothing where it is known only when the scan starts

    /// Whether the comparison finds the rows of one value.
    static bool isEquality(dp::Comparison comparison) {
        return comparison == dp::Comparison::Equal || comparison == dp::Comparison::Is;
    }

    ScanEstimate(const dp::Table& table, const AttributeIndexing& indexing, const ValueStatistics& values);

    void takeTerm(const TableDeclaration::Column& column, dp::Comparison comparison,
                  dp::TextCollation collation, const Operand& operand);
    /// A pattern that an attribute index may look up, or that SQLite alone matches.
    void takePattern(const TableDeclaration::Column& column, dp::Comparison comparison,
                     const Operand& pattern);
    void takeUnservedPattern(const TableDeclaration::Column& column, dp::Comparison comparison,
                             const Operand& pattern);
    void takeRowNumbers(bool isList);
    void takeRelation(const RelationEstimate& relation);

    /// Rows of the table.
    double tableRows() const { return rows_; }
    double expectedRows() const { return std::max(1.0, passing_); }
    /// Whether at most one row is found.
    bool isUnique() const { return isUnique_; }
    /// What finding the rows costs besides handing them on, in nanoseconds.
    double findingCost() const;

private:
    /// Ranges and exclusions of one column.
    struct Bounds {
        std::vector<dp::Condition> conditions = {};
        double share = 1; ///< that passes all of them
    };

    std::optional<double> countByIndex(const TableDeclaration::Column& column, dp::Comparison comparison,
                                       const dp::Cell& operand);
    double shareOf(const TableDeclaration::Column& column, dp::Comparison comparison,
                   dp::TextCollation collation, const Operand& operand);
    double shareOfOneValue(const TableDeclaration::Column& column) const;
    double shareOfPattern(const TableDeclaration::Column& column, dp::Comparison comparison,
                          const Operand& pattern) const;
    double narrow(const ColumnStatistics& values, const dp::ScanTerm& term);
    void expectLookups(const TableDeclaration::Column& column);

    const dp::Table& table_;
    const AttributeIndexing& indexing_;
    const ValueStatistics& values_;
    const double rows_;
    double passing_; ///< rows that the conditions let pass
    double scanned_; ///< rows that have to be read for it
    bool isUnique_ = false;
    bool looksUp_ = false;  ///< an attribute index answers
    bool hasIndex_ = false; ///< and is there already
    double keptCost_ = 0;   ///< of a look-up in memory, once the scan was repeated; 0 without
    bool fetches_ = false;  ///< the rows are known by their identifiers
    double makingCost_ = 0; ///< of an index, for each row
    double filterCost_ = 0; ///< of each row that is scanned
    double sourceCost_ = 0; ///< of what the source leaves out by itself
    double relationCost_ = 0;
    std::map<int, Bounds> bounds_; ///< by attribute
};

} // namespace orvane::adaptor
