#pragma once

#include "host/desk/map/MapPicture.h"
#include "host/desk/query/ResultModel.h"
#include "host/desk/session/QueryRunner.h"

#include <QTableView>
#include <QTimer>

namespace orvane::desk {

/// The rows of the result as a table. Selected rows are told by their numbers.
class ResultPane final : public QTableView {
    Q_OBJECT
public:
    explicit ResultPane(QWidget* parent = nullptr);

    /// Shows rows, which may still come. What was shown stays until the first of them is there.
    void setResult(const ResultRowsInfo& result);
    /// No more rows come.
    void endResult();
    ResultModel& rows() { return *model_; }
    Numbers selectedRows() const;
    /// Selects rows, besides those selected or in their place, and scrolls to the first.
    void selectRows(const Numbers& rows, bool isAdded);
    /// Without telling anybody.
    void forgetSelection();
    /// The selected rows as lines of cells separated by tabs.
    void copySelected();

Q_SIGNALS:
    void rowsSelected(const orvane::desk::Numbers& rows);
    /// There are more rows than before, or the last is there.
    void rowsCame();

private:
    void takeRows();

    ResultModel* model_;
    std::shared_ptr<RowStore> coming_;
    std::int64_t told_ = 0; ///< of the rows that come
    QTimer tick_;
    QTimer selectionTimer_; ///< several changes in a row are one
};

} // namespace orvane::desk
