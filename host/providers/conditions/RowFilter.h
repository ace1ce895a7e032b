#pragma once

#include "host/providers/columns/ColumnBatch.h"
#include "platform/dp/Condition.h"

#include <optional>
#include <vector>

namespace orvane::files {

/// Picks the rows of batches that can satisfy a request.
class RowFilter {
public:
    /// Adds a condition on a column of the batches.
    void add(int column, dp::Condition condition) { conditions_.push_back({column, std::move(condition)}); }
    /// Keeps only the rows with these identifiers (ascending); for batches whose identifiers ascend.
    void setIds(std::vector<std::int64_t> ids) { ids_ = std::move(ids); }
    /// Keeps only the rows whose bounding box (ColumnBatch::boxes) meets the window.
    void setWindow(const geometry::Envelope& window) { window_ = window; }

    bool isEmpty() const { return conditions_.empty() && !ids_ && !window_; }
    /// False when no row of the batch can pass, by its identifiers and bounding box.
    bool canPass(const ColumnBatch& batch) const;
    /// The positions of the rows that pass, in ascending order.
    void select(const ColumnBatch& batch, std::vector<std::int32_t>& rows) const;

private:
    struct ColumnCondition {
        int column;
        dp::Condition condition;
    };

    void selectIds(const ColumnBatch& batch, std::vector<std::int32_t>& rows) const;

    std::vector<ColumnCondition> conditions_;
    std::optional<std::vector<std::int64_t>> ids_;
    std::optional<geometry::Envelope> window_;
};

} // namespace orvane::files
