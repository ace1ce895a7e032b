#pragma once

#include "engine/indices/TextOrder.h"
#include "platform/dp/Cursor.h"
#include "platform/work/Cancellation.h"

#include <memory>
#include <span>
#include <vector>

namespace orvane::engine {

/// Rows of typed values in memory, and their order in an index: NULL, numbers, texts, bytes; texts by their
/// bytes or by a TextOrder. Each row has a key of bytes that is ordered as its values are. Memory is
/// proportional to the rows; size() tells when to let go of them.
class RowSorter {
public:
    /// `collated` has one entry per column: whether its texts are ordered by the collator.
    RowSorter(std::vector<bool> collated, const QCollator& collator);

    std::size_t columnCount() const { return collated_.size(); }
    /// Bytes in use, about.
    std::size_t size() const;

    /// Copies what the views show. As many values as columns.
    void add(qint64 row, std::span<const dp::Cell> values);
    /// Throws work::Cancelled; the order is then open.
    void sort(const work::Cancellation& cancellation);
    void clear();

    std::size_t rowCount() const { return rows_.size(); }
    qint64 row(std::size_t position) const { return stored_[rows_[position].ordinal].id; }
    /// Whether the rows at both positions agree in every value.
    bool isSameGroup(std::size_t positionA, std::size_t positionB) const {
        return key(rows_[positionA].ordinal) == key(rows_[positionB].ordinal);
    }
    /// The view is valid until rows are added or cleared.
    dp::Cell value(std::size_t position, std::size_t column) const;

private:
    /// What is moved while sorting: eight bytes of the key, and which row it is.
    struct Row {
        quint64 head;
        quint32 ordinal;
    };
    struct Stored {
        qint64 id;
        std::size_t key; ///< where it begins in keys_; it ends where the next one begins
    };
    struct Value {
        dp::CellType type;
        quint32 size;
        union {
            std::int64_t integer;
            double real;
            std::size_t offset; ///< in texts_
        };
    };
    using RowSpan = std::span<Row>;

    std::string_view key(std::size_t ordinal) const;
    void appendKey(const dp::Cell& value, bool isCollated);
    void sortFrom(RowSpan rows, std::size_t depth, const work::Cancellation& cancellation);
    void sortRest(RowSpan rows, std::size_t depth, const work::Cancellation& cancellation);

    std::vector<bool> collated_;
    std::unique_ptr<TextOrder> textOrder_; ///< null when no column is collated
    std::vector<Row> rows_;
    std::vector<Stored> stored_;
    std::vector<Value> values_;
    std::string keys_;
    std::string texts_;
};

} // namespace orvane::engine
