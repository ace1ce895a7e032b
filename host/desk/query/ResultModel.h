#pragma once

#include "host/desk/rows/RowStore.h"

#include <QAbstractTableModel>

namespace orvane::desk {

/// A value as the table shows it, in one line and cut where it is long; geometries by their kind and size.
QString shortText(const Value& value);
/// The value whole, as far as a person reads it; geometries as shortText.
QString fullText(const Value& value);

/// The rows of a result, while they come and afterwards. The view is told of them in portions, as it comes to
/// their end; values are read when they are shown.
class ResultModel final : public QAbstractTableModel {
    Q_OBJECT
public:
    using QAbstractTableModel::QAbstractTableModel;

    /// Null for no result.
    void setRows(std::shared_ptr<RowStore> rows);
    const std::shared_ptr<RowStore>& rows() const { return rows_; }
    /// Looks whether there are more rows: for a result that still comes.
    void refresh();
    /// Tells the view of the rows up to that one: before it scrolls there.
    void reach(std::int64_t row);
    /// Null where the value is, and beyond the end.
    Value value(std::int64_t row, int column) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;

private:
    void showRows(std::int64_t count);

    std::shared_ptr<RowStore> rows_;
    mutable std::shared_ptr<const RowBlock> block_; ///< that was read last
    int shown_ = 0;                                 ///< rows that the view knows of
};

} // namespace orvane::desk
