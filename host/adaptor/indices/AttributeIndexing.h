#pragma once

#include "host/adaptor/declaration/TableDeclaration.h"
#include "host/adaptor/indices/IndexUse.h"

#include "platform/dp/Table.h"
#include "platform/work/Cancellation.h"
#include <orvane/engine/EngineIndices.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
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
    AttributeIndexing(const TableDeclaration& declaration, engine::EngineCache& cache)
        : declaration_(declaration), cache_(cache) {}

    static bool isPattern(dp::Comparison comparison) {
        return comparison == dp::Comparison::Like || comparison == dp::Comparison::Glob;
    }
    /// Why an index on the column cannot serve a comparison under a collation; Used when it can.
    static IndexUse::Outcome judge(const TableDeclaration::Column& column, dp::Comparison comparison,
                                   dp::TextCollation collation);
    /// Whether an index on the column can serve equalities under a collation, in a table of so many rows.
    static bool serves(const TableDeclaration::Column& column, dp::TextCollation collation, double rows);

    /// Finds the features that can satisfy the terms, a superset of those that do. Nothing when no index
    /// serves them yet, or when so many rows would be found that a scan is faster. Throws std::runtime_error
    /// when the table cannot be read or the work is cancelled.
    std::optional<std::vector<dp::FeatureId>> find(dp::Table& table, engine::EngineIndices& store,
                                                   std::span<const dp::ScanTerm> terms,
                                                   const work::Cancellation& cancellation);

    /// Whether an index holds the rows of the table as it is now in the order of the attribute.
    bool hasOrder(const dp::Table& table, const engine::EngineIndices& store, int attribute) const;
    /// The row numbers in that order, NULL first, or the reverse; null when there is no such index.
    std::unique_ptr<engine::EngineIndices::RowLookup>
    inOrder(const dp::Table& table, const engine::EngineIndices& store, int attribute, bool isDescending);
    /// Counts a sort that an index on the attribute would have saved, and makes the index once that pays.
    void countSort(dp::Table& table, engine::EngineIndices& store, int attribute,
                   const work::Cancellation& cancellation);

    /// What came of the last find.
    const IndexUse& lastUse() const { return use_; }

    /// Rows that an equality on the attribute finds on average; nothing before there is an index.
    std::optional<double> averageGroup(int attribute, const engine::EngineIndices& store) const;
    /// The most rows that agree in the attribute; nothing before there is an index.
    std::optional<double> largestGroup(int attribute, const engine::EngineIndices& store) const;
    /// Rows that a range or pattern on the attribute finds, counted up to `most`; nothing before there is an
    /// index.
    std::optional<double> countRows(int attribute, dp::Comparison comparison, const dp::Cell& operand,
                                    const engine::EngineIndices& store, std::size_t most) const;

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
    Terms chooseTerms(std::span<const dp::ScanTerm> terms, const engine::EngineIndices& store) const;
    double scanCost(const Terms& terms, double rows) const;
    double buildCost(const Attributes& attributes, double rows) const;
    /// Prepares the search for an index that serves it; false when there is none.
    bool prepare(Search& search, const Conditions& conditions, double savedCost, dp::Table& table,
                 engine::EngineIndices& store, const work::Cancellation& cancellation);
    /// Adds a cost that an index would have saved, and makes it when that pays; -1 as long as it does not.
    int make(const Attributes& attributes, double savedCost, dp::Table& table, engine::EngineIndices& store,
             const work::Cancellation& cancellation);
    void follow(const dp::Table& table, engine::EngineIndices& store);
    bool isOf(const dp::Table& table, const engine::EngineIndices& store) const;
    /// The index of this table that begins with the attribute; -1 when there is none.
    int indexOn(int attribute, const engine::EngineIndices& store) const;
    /// Runs the look-up for every combination of the operands of In lists; false when more than `most` rows
    /// were found.
    static bool collect(engine::EngineIndices::RowLookup& lookup, const Terms& terms, std::size_t most,
                        std::vector<qint64>& rows);

    const TableDeclaration& declaration_;
    engine::EngineCache& cache_;
    std::map<Conditions, Search> searches_;
    std::map<Attributes, double> spent_; ///< on scans that an index would have saved, in nanoseconds
    IndexUse use_;
    std::optional<std::uint64_t> revision_;        ///< of the table that the indices were made of
    const engine::EngineIndices* store_ = nullptr; ///< that holds them; a renamed table has another
};

} // namespace orvane::adaptor
