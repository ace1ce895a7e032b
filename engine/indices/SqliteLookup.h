#pragma once

#include "engine/indices/LookupStatements.h"
#include "engine/indices/PatternRange.h"
#include <orvane/engine/EngineIndices.h>

#include <optional>

namespace orvane::engine {

/// A search in one index table through prepared statements. A Like or Glob on a text column is narrowed by
/// the range of its pattern, so the statement is chosen when the operands are known.
class SqliteLookup : public EngineIndices::RowLookup {
public:
    struct Term {
        EngineIndices::Column column;
        bool isNarrowed = false; ///< a pattern on a column that the collator orders
    };
    struct Search {
        int index = 0;
        std::vector<qint32> orderColumns; ///< none when the order is of no concern
        bool isDescending = false;
        std::vector<Term> terms;
    };

    /// `patterns` may be null when no term is narrowed.
    SqliteLookup(std::shared_ptr<LookupStatements> statements, Search search,
                 std::shared_ptr<PatternRanges> patterns);
    ~SqliteLookup() override;

    void start(std::span<const dp::Cell> operands) override;
    bool next(qint64& row) override;

private:
    QString sql() const;
    void findRanges(std::span<const dp::Cell> operands);
    void takeStatement();
    int lowerParameter(std::size_t term) const {
        return static_cast<int>(search_.terms.size() + 2 * term + 1);
    }

    std::shared_ptr<LookupStatements> statements_;
    Search search_;
    std::shared_ptr<PatternRanges> patterns_;
    std::string shape_;                ///< of the search without the ranges of patterns
    std::vector<PatternRange> ranges_; ///< one per term when there are patterns, else none
    std::string takenShape_;
    std::optional<dp::SqliteStatement> statement_;
    bool isAtEnd_ = true;
};

} // namespace orvane::engine
