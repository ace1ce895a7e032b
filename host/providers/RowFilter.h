#pragma once

#include "host/providers/ColumnBatch.h"
#include "platform/dp/ScanRequest.h"

#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace orvane::files {

/// Numbers from `low` to `high`, both included.
template<class Number>
struct Range {
    Number low = std::numeric_limits<Number>::lowest();
    Number high = std::numeric_limits<Number>::max();
};

/// What a term demands of the values of a column, in a form that a loop tests quickly: a value passes when it
/// is in one of the ranges, which ascend and do not overlap, or equals one of the texts.
struct Condition {
    std::vector<Range<std::int64_t>> integers;
    std::vector<Range<double>> reals;
    std::vector<std::string> texts; ///< sorted
    bool textsAreExcluded = false;  ///< texts other than these pass
    bool acceptsNull = false;
    bool acceptsAnyValue = false; ///< a test for not NULL
};

/// The kind of values that a column delivers, whatever their width.
enum class ValueClass : std::uint8_t { Integer, Real, Text, Other };

/// The condition of a term, empty when it cannot be tested on plain values: LIKE and GLOB, a text compared by
/// another rule than byte by byte or for order, an operand of another class than the column.
/// The condition never fails a value for which the term is true.
std::optional<Condition> conditionOf(const dp::ScanTerm& term, ValueClass valueClass);

/// Picks the rows of batches that can satisfy a request.
class RowFilter {
public:
    /// Adds a condition on a column of the batches.
    void add(int column, Condition condition) { conditions_.push_back({column, std::move(condition)}); }
    /// Keeps only the rows with these identifiers (ascending); for batches whose identifiers ascend.
    void setIds(std::vector<std::int64_t> ids) { ids_ = std::move(ids); }
    /// Keeps only the rows whose bounding box (ColumnBatch::boxes) meets the window.
    void setWindow(const dp::ScanWindow& window) { window_ = window; }

    bool isEmpty() const { return conditions_.empty() && !ids_ && !window_; }
    /// False when no row of the batch can pass, by its identifiers and bounding box.
    bool canPass(const ColumnBatch& batch) const;
    /// The positions of the rows that pass, in ascending order.
    void select(const ColumnBatch& batch, std::vector<std::int32_t>& rows) const;

private:
    struct ColumnCondition {
        int column;
        Condition condition;
    };

    void selectIds(const ColumnBatch& batch, std::vector<std::int32_t>& rows) const;

    std::vector<ColumnCondition> conditions_;
    std::optional<std::vector<std::int64_t>> ids_;
    std::optional<dp::ScanWindow> window_;
};

} // namespace orvane::files
