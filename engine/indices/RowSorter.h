#pragma once

#include "platform/dp/Cursor.h"

#include <QCollator>

#include <span>
#include <string>
#include <vector>

namespace orvane::engine {

/// Rows of typed values in memory, and their order as SQLite orders them in an index: NULL, numbers, texts,
/// bytes; texts by their bytes or, where the column says so, by a collator. Memory is proportional to the
/// rows; size() tells when to let go of them.
class RowSorter {
public:
    /// `collated` has one entry per column: whether its texts are ordered by the collator.
    RowSorter(std::vector<bool> collated, const QCollator& collator);

    std::size_t columnCount() const { return collated_.size(); }
    bool isEmpty() const { return rows_.empty(); }
    /// Bytes in use, about.
    std::size_t size() const;

    /// Copies what the views show. As many values as columns.
    void add(qint64 row, std::span<const dp::Cell> values);
    void sort();
    void clear();

    std::size_t rowCount() const { return rows_.size(); }
    qint64 row(std::size_t position) const { return ids_[rows_[position].ordinal]; }
    /// Whether the rows at both positions agree in every value.
    bool isSameGroup(std::size_t positionA, std::size_t positionB) const;
    /// The views are valid until rows are added or cleared.
    dp::Cell value(std::size_t position, std::size_t column) const {
        return cell(rows_[position].ordinal, column);
    }

private:
    /// Ordered by class and head first; only rows that agree in both are compared value by value.
    struct Row {
        quint64 head;
        quint32 valueClass;
        quint32 ordinal;
    };
    struct Value {
        dp::CellType type;
        quint32 size;
        union {
            std::int64_t integer;
            double real;
            std::size_t offset;
        };
    };

    dp::Cell cell(std::size_t ordinal, std::size_t column) const;
    quint64 head(const dp::Cell& value);
    int compareValues(std::size_t ordinalA, std::size_t ordinalB) const;
    int compareTexts(std::string_view a, std::string_view b, std::size_t column) const;

    std::vector<bool> collated_;
    QCollator collator_;
    bool foldsCase_; ///< the collator compares code by code: its order has heads, but no sort keys
    std::vector<Row> rows_;
    std::vector<qint64> ids_;
    std::vector<Value> values_;
    std::vector<QCollatorSortKey>
        sortKeys_; ///< of the texts of the first column, if a collator with rules orders them
    std::string texts_;
};

} // namespace orvane::engine
