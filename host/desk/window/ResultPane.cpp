#include "host/desk/window/ResultPane.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QSignalBlocker>

#include <algorithm>

namespace orvane::desk {

ResultPane::ResultPane(QWidget* parent) : QTableView(parent), model_(new ResultModel(this)) {
    setModel(model_);
    setSelectionBehavior(SelectRows);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setShowGrid(false);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setHorizontalScrollMode(ScrollPerPixel);
    constexpr int tickMs = 100;
    tick_.setInterval(tickMs);
    connect(&tick_, &QTimer::timeout, this, &ResultPane::takeRows);
    selectionTimer_.setSingleShot(true);
    selectionTimer_.setInterval(0);
    connect(&selectionTimer_, &QTimer::timeout, this, [this] { Q_EMIT rowsSelected(selectedRows()); });
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, &selectionTimer_,
            qOverload<>(&QTimer::start));
}

void ResultPane::setResult(const ResultRowsInfo& result) {
    coming_ = result.rows;
    told_ = -1;
    tick_.start();
    takeRows();
}

void ResultPane::endResult() {
    tick_.stop();
    takeRows();
    if (coming_ && model_->rows() != coming_) {
        model_->setRows(coming_); // without rows
    }
    coming_.reset();
}

void ResultPane::takeRows() {
    const std::int64_t count = coming_ ? coming_->rowCount() : 0;
    if (!coming_ || count == told_) {
        return;
    }
    told_ = count;
    if (model_->rows() == coming_) {
        model_->refresh();
    } else if (count > 0) {
        model_->setRows(coming_);
        constexpr int widest = 260;
        resizeColumnsToContents(); // to what is seen
        for (int column = 0; column < model_->columnCount(); ++column) {
            setColumnWidth(column, std::min(columnWidth(column) + 8, widest));
        }
    }
    Q_EMIT rowsCame();
}

Numbers ResultPane::selectedRows() const {
    Numbers rows;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            rows.push_back(row);
        }
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

void ResultPane::selectRows(const Numbers& rows, bool isAdded) {
    if (rows.empty()) {
        return clearSelection();
    }
    model_->reach(rows.back());
    QItemSelection selection;
    for (auto first = rows.begin(); first != rows.end();) {
        auto last = first;
        while (std::next(last) != rows.end() && *std::next(last) == *last + 1) {
            ++last;
        }
        selection.append({model_->index(static_cast<int>(*first), 0),
                          model_->index(static_cast<int>(*last), model_->columnCount() - 1)});
        first = std::next(last);
    }
    selectionModel()->select(selection,
                             isAdded ? QItemSelectionModel::Select : QItemSelectionModel::ClearAndSelect);
    scrollTo(model_->index(static_cast<int>(rows.front()), 0));
}

void ResultPane::forgetSelection() {
    const QSignalBlocker blocker(selectionTimer_);
    clearSelection();
    selectionTimer_.stop();
}

void ResultPane::copySelected() {
    QString text;
    for (const qint64 row : selectedRows()) {
        QStringList cells;
        for (int column = 0; column < model_->columnCount(); ++column) {
            const Value value = model_->value(row, column);
            cells += value.kind == Value::Kind::Null ? QString() : fullText(value);
        }
        text += cells.join(QLatin1Char('\t')) + QLatin1Char('\n');
    }
    QApplication::clipboard()->setText(text);
}

} // namespace orvane::desk
