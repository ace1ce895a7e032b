#pragma once

#include "host/adaptor/declaration/TableDeclaration.h"
#include "host/adaptor/indices/IndexUse.h"
#include "host/adaptor/rows/ArrangedRows.h"
#include "host/adaptor/statistics/ValueStatistics.h"

#include "platform/dp/Table.h"
#include "platform/work/Cancellation.h"
#include <orvane/engine/EngineIndices.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::engine {
class EngineCache;
}

namespace orvane::adaptor {

/// Answers the terms of scans from attribute indices, and decides when one is made: once the scans that it
/// would have saved are worth what making it costs. So a table that is asked once is scanned, a table in the
/// inner loop of a join is indexed after a moment, and no run of queries costs much more than twice the
/// better way. Which indices there are the store knows. They are made of the table as it is and dropped when
/// it changes. Used from the thread of the engine.
class AttributeIndexing {
public:
    /// Answers the index store of a table; null without an engine. No function at all where no index is to be
    /// made.
    using Stores = std::function<engine::EngineIndices*(const std::shared_ptr<dp::Table>&)>;

    /// `table` is null once it was closed.
    AttributeIndexing(const std::shared_ptr<dp::Table>& table, const TableDeclaration& declaration,
                      const ValueStatistics& values, engine::EngineCache& cache, Stores stores)
        : table_(table), declaration_(declaration), values_(values), cache_(cache),
          stores_(std::move(stores)) {}

    /// Whether indices are made when they pay. Where they are not, nothing below is found or known.
    bool isOn() const { return stores_ != nullptr; }

    static bool isPattern(dp::Comparison comparison) {
        return comparison == dp::Comparison::Like || comparison == dp::Comparison::Glob;
    }
    /// Why an index on the column cannot serve a comparison under a collation; Used when it can.
    static IndexUse::Outcome judge(const TableDeclaration::Column& column, dp::Comparison comparison,
                                   dp::TextCollation collation);
    /// Whether an index on the column can serve equalities under a collation, in a table of so many rows.
    static bool serves(const TableDeclaration::Column& column, dp::TextCollation collation, double rows);

    /// Whether an index can look texts up by how the pattern begins.
    bool narrows(dp::Comparison comparison, std::string_view pattern) const;

    /// Finds the features that can satisfy the terms, a superset of those that do. Nothing when no index
    /// serves them yet, or when so many rows would be found that a scan is faster. Throws work::Cancelled.
    std::optional<std::vector<dp::FeatureId>> find(std::span<const dp::ScanTerm> terms,
                                                   const work::Cancellation& cancellation);

    /// Whether an index holds the rows of the table as it is now in the order of the attribute.
    bool hasOrder(int attribute) const { return indexOn(attribute) >= 0 && revision_ == table_->revision(); }
    /// The rows in the order of the keys; null when no index has that of the first.
    std::unique_ptr<dp::Cursor> openInOrder(const std::vector<int>& attributes,
                                            std::vector<ArrangedRows::Key> keys,
                                            const work::Cancellation& cancellation);
    /// Counts a sort, or a scan in a join, that an index on the attribute would have saved, and makes the
    /// index once that pays. Throws work::Cancelled.
    void countSort(int attribute, const work::Cancellation& cancellation);
    void countJoin(int attribute, const work::Cancellation& cancellation);

    /// What came of the last find.
    IndexUse lastUse() const { return isOn() ? use_ : IndexUse{IndexUse::Outcome::SwitchedOff}; }

    /// Rows that an equality on the attribute finds on average; nothing before there is an index.
    std::optional<double> averageGroup(int attribute) const;
    /// The most rows that agree in the attribute; nothing before there is an index.
    std::optional<double> largestGroup(int attribute) const;
    /// Rows that a range or pattern on the attribute finds, counted up to `most`; nothing before there is an
    /// index.
    std::optional<double> countRows(int attribute, dp::Comparison comparison, const dp::Cell& operand,
                                    std::size_t most) const;

    /// Drops the indices with their place on the disk.
    void drop();
    /// Forgets the indices: their storage is gone.
    void forget();

private:
    using Attributes = std::vector<int>;
    using Terms = std::vector<const dp::ScanTerm*>;
    using Conditions = std::vector<std::pair<int, std::uint8_t>>;

    /// A look-up by certain comparisons of certain attributes.
    struct Search {
        Attributes attributes;
        int index = -1; ///< that the look-up was prepared for
        std::unique_ptr<engine::EngineIndices::RowLookup> rows;
        int failures = 0; ///< how much more often it found too many rows than not
    };

    const TableDeclaration::Column& column(int attribute) const;
    bool isServed(const dp::ScanTerm& term, const engine::EngineIndices& store) const;
    bool findsAboutOne(const dp::ScanTerm& term, double rows) const;
    Terms chooseTerms(std::span<const dp::ScanTerm> terms, const engine::EngineIndices& store,
                      double rows) const;
    double scanCost(const Terms& terms, double rows) const;
    double savedCost(const Terms& terms, double scanning) const;
    double buildCost(const Attributes& attributes, double rows) const;
    /// Prepares the search for an index that serves it; false when there is none.
    bool prepare(Search& search, const Conditions& conditions, double savedCost, engine::EngineIndices& store,
                 const work::Cancellation& cancellation);
    /// Adds a cost that an index would have saved, and makes it when that pays; -1 as long as it does not.
    int make(const Attributes& attributes, double savedCost, engine::EngineIndices& store,
             const work::Cancellation& cancellation);
    /// The table's store; null when no index is made, and for a closed table.
    engine::EngineIndices* store() const { return table_ && stores_ ? stores_(table_) : nullptr; }
    void follow(engine::EngineIndices& store);
    void countSaved(int attribute, double perRow, const work::Cancellation& cancellation);
    /// The index that begins with the attribute, of the table as it was when it was asked last; -1 when there
    /// is none.
    int indexOn(int attribute) const;
    /// Runs the look-up for every combination of the operands of In lists; false when more than `most` rows
    /// were found.
    static bool collect(engine::EngineIndices::RowLookup& lookup, const Terms& terms, std::size_t most,
                        std::vector<qint64>& rows);

    const std::shared_ptr<dp::Table>& table_;
    const TableDeclaration& declaration_;
    const ValueStatistics& values_;
    engine::EngineCache& cache_;
    const Stores stores_;
    std::map<Conditions, Search> searches_;
    std::map<Attributes, double> spent_; ///< on scans that an index would have saved, in nanoseconds
    IndexUse use_;
    std::optional<std::uint64_t> revision_;        ///< of the table that the indices were made of
    const engine::EngineIndices* known_ = nullptr; ///< that holds them; a renamed table has another
};

} // namespace orvane::adaptor
