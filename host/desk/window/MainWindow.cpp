#include "host/desk/window/MainWindow.h"

#include "host/desk/map/MapFile.h"
#include "host/desk/query/Completion.h"
#include "host/desk/window/Actions.h"

#include <host/providers/results/ResultFile.h>
#include <platform/cs/CoordSystem.h>

#include <QDockWidget>
#include <QDropEvent>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLocale>
#include <QMenuBar>
#include <QMimeData>
#include <QSplitter>
#include <QStatusBar>
#include <QVBoxLayout>

#include <algorithm>

namespace orvane::desk {

MainWindow::MainWindow(const QString& historyPath, QWidget* parent)
    : QMainWindow(parent), history_(historyPath), book_(new LayerBook(session_, this)),
      tree_(new LayerTree(session_, *book_)), map_(new MapView), query_(new QueryPane(session_, history_)),
      result_(new ResultPane), messages_(new MessageBar), selection_(new QLabel), place_(new QLabel),
      actions_(std::make_unique<Actions>(*this)) {
    setWindowTitle(QStringLiteral("Orvane"));
    setAcceptDrops(true);
    makeLayout();
    makeActions();
    makeMenus();
    connectSession();
    connectSelection();
    tellSelection();
    resize(1280, 820);
}

MainWindow::~MainWindow() = default;

void MainWindow::makeLayout() {
    auto* below = new QSplitter(Qt::Horizontal);
    below->addWidget(query_);
    below->addWidget(result_);
    below->setSizes({420, 620});
    auto* parts = new QSplitter(Qt::Vertical);
    parts->addWidget(map_);
    parts->addWidget(below);
    parts->setSizes({520, 260});
    parts->setChildrenCollapsible(false);
    auto* centre = new QWidget;
    auto* layout = new QVBoxLayout(centre);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(messages_);
    layout->addWidget(parts, 1);
    setCentralWidget(centre);

    auto* dock = new QDockWidget(tr("Слои"));
    dock->setObjectName(QStringLiteral("layers"));
    dock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    dock->setWidget(tree_);
    addDockWidget(Qt::LeftDockWidgetArea, dock);
    resizeDocks({dock}, {230}, Qt::Horizontal);
    statusBar()->addWidget(selection_, 1);
    statusBar()->addPermanentWidget(place_);
}

void MainWindow::makeActions() {
    connect(actions_->open, &QAction::triggered, this, &MainWindow::chooseFiles);
    connect(actions_->exportResult, &QAction::triggered, this, &MainWindow::chooseResultFile);
    connect(actions_->exportMap, &QAction::triggered, this, &MainWindow::chooseMapFile);
    connect(actions_->quit, &QAction::triggered, this, &QWidget::close);
    connect(actions_->run, &QAction::triggered, query_, qOverload<>(&QueryPane::run));
    connect(actions_->cancel, &QAction::triggered, &session_, &Session::cancel);
    connect(actions_->rename, &QAction::triggered, tree_, &LayerTree::renameCurrent);
    connect(actions_->label, &QAction::triggered, tree_, &LayerTree::labelCurrent);
    connect(actions_->close, &QAction::triggered, tree_, &LayerTree::closeCurrent);
    connect(actions_->showAll, &QAction::triggered, map_, &MapView::showAll);
    connect(actions_->zoomIn, &QAction::triggered, map_, [this] { map_->zoom(1.5); });
    connect(actions_->zoomOut, &QAction::triggered, map_, [this] { map_->zoom(1 / 1.5); });
    connect(actions_->graticule, &QAction::toggled, map_, &MapView::setGraticule);
    connect(actions_->system, &QAction::triggered, this, &MainWindow::chooseSystem);
    connect(actions_->selectNothing, &QAction::triggered, this, [this] { selectPicked(0, {}, false); });
    connect(actions_->copy, &QAction::triggered, result_, &ResultPane::copySelected);
    actions_->copy->setShortcutContext(Qt::WidgetShortcut);
    result_->addAction(actions_->copy);
    result_->setContextMenuPolicy(Qt::ActionsContextMenu);
}

void MainWindow::makeMenus() {
    actions_->fillMenus(*menuBar());
    actions_->fillToolBar(*addToolBar(tr("Команды")));
    connect(actions_->history, &QMenu::aboutToShow, this, [this] { showHistory(*actions_->history); });
}

void MainWindow::showHistory(QMenu& menu) {
    constexpr int shown = 20;
    constexpr int longest = 90;
    menu.clear();
    const QStringList& queries = history_.queries();
    for (int i = queries.size() - 1; i >= std::max(0, static_cast<int>(queries.size()) - shown); --i) {
        QString title = queries[i].simplified();
        title = title.size() > longest ? title.left(longest) + QStringLiteral("…") : title;
        menu.addAction(title.replace(QLatin1Char('&'), QStringLiteral("&&")), this,
                       [this, text = queries[i]] { query_->editor().replaceText(text); });
    }
    menu.setEnabled(true);
}

void MainWindow::connectSession() {
    connect(&session_, &Session::reported, messages_, &MessageBar::add);
    connect(&session_, &Session::failed, messages_, &MessageBar::add);
    connect(query_, &QueryPane::reported, messages_, &MessageBar::add);
    connect(map_, &MapView::drawingFailed, messages_, &MessageBar::add);
    connect(book_, &LayerBook::labellingFailed, this, [this](quint64 table, const QString& reason) {
        const TableInfo* info = session_.table(table);
        messages_->add(tr("Подписи слоя «%0»: %1").arg(info ? info->name : QString(), reason));
    });
    connect(map_, &MapView::exported, this, [this](const QString& path, const QString& reason) {
        reason.isEmpty() ? statusBar()->showMessage(tr("Записан файл %0").arg(path)) : messages_->add(reason);
    });
    connect(&session_, &Session::resultBegun, this, &MainWindow::takeResult);
    connect(&session_, &Session::queryBegun, this, [this] { actions_->setRunning(true); });
    connect(&session_, &Session::queryEnded, this, [this] {
        actions_->setRunning(session_.isRunning());
        result_->endResult();
        book_->refresh();
    });
    connect(&session_, &Session::exported, this, [this] { actions_->setRunning(session_.isRunning()); });
    connect(book_, &LayerBook::changed, this, [this] { map_->setLayers(book_->layers()); });
    // What comes in portions ends no drawing: it is in the next one.
    const auto showMore = [this] {
        if (!map_->isDrawing()) {
            map_->setLayers(book_->layers());
        }
    };
    connect(book_, &LayerBook::grown, this, showMore);
    connect(result_, &ResultPane::rowsCame, this, showMore);
    connect(map_, &MapView::labelsMissed, book_, &LayerBook::addLabels);
    connect(map_, &MapView::pointed, place_, &QLabel::setText);
    connect(tree_, &LayerTree::showRequested, map_, &MapView::showTable);
    connect(tree_, &LayerTree::queryRequested, this, [this](const QString& table) {
        query_->run(QStringLiteral("Select * From ") + quotedWhereNeeded(table));
    });
    connect(tree_, &LayerTree::nameRequested, &query_->editor(), &SqlEditor::insertName);
}

void MainWindow::connectSelection() {
    connect(result_, &ResultPane::rowsSelected, this, &MainWindow::selectRows);
    connect(map_, &MapView::picked, this, &MainWindow::selectPicked);
    connect(&session_, &Session::selectionChanged, this, &MainWindow::tellSelection);
    connect(&session_, &Session::tablesChanged, this, &MainWindow::tellSelection);
}

void MainWindow::takeResult(const ResultRowsInfo& result) {
    result_->forgetSelection();
    result_->setResult(result);
    book_->setResult(result);
    actions_->exportResult->setEnabled(true);
}

/// Rows that are features become the selection of the next query.
void MainWindow::selectRows(const Numbers& rows) {
    book_->setSelectedRows(rows);
    const ResultRowsInfo& result = book_->result();
    if (!result.rows || result.table == 0) {
        return;
    }
    const int numberColumn = result.rows->columns().size();
    QVector<qint64> numbers;
    for (const qint64 row : rows) {
        const Value number = result_->rows().value(row, numberColumn);
        if (number.kind == Value::Kind::Integer) {
            numbers.append(number.integer);
        }
    }
    session_.selectRows(result.table, numbers);
}

void MainWindow::selectPicked(quint64 table, const Numbers& ids, bool isAdded) {
    if (ids.empty() && isAdded) {
        return;
    }
    if (table == 0 && !ids.empty()) {
        result_->selectRows(ids, isAdded); // and the table tells
        return;
    }
    result_->forgetSelection();
    book_->setSelectedRows({});
    QVector<qint64> all(ids.begin(), ids.end());
    if (isAdded && session_.selection().table == table) {
        all += session_.selection().ids;
    }
    session_.select(table, all);
}

void MainWindow::tellSelection() {
    const SelectedFeatures& selected = session_.selection();
    const TableInfo* table = session_.table(selected.table);
    selection_->setText(
        table && !selected.ids.isEmpty()
            ? tr("Selection: %0, объектов: %1").arg(table->name, QLocale().toString(selected.ids.size()))
            : tr("Ничего не выбрано"));
}

void MainWindow::open(const QStringList& paths) {
    for (const QString& path : paths) {
        session_.open(path);
    }
}

void MainWindow::chooseFiles() {
    open(QFileDialog::getOpenFileNames(this, tr("Открыть файлы")));
}

void MainWindow::chooseResultFile() {
    const QString path = QFileDialog::getSaveFileName(
        this, tr("Записать результат"), {},
        tr("Таблицы (%0)")
            .arg(QStringLiteral("*") + files::ResultFile::endings().join(QStringLiteral(" *"))));
    if (!path.isEmpty()) {
        exportResult(path);
    }
}

void MainWindow::chooseMapFile() {
    const QString path = QFileDialog::getSaveFileName(
        this, tr("Записать карту"), {},
        tr("Карты (%0)").arg(QStringLiteral("*.") + mapFileEndings().join(QStringLiteral(" *."))));
    if (!path.isEmpty()) {
        exportMap(path);
    }
}

void MainWindow::chooseSystem() {
    bool isAccepted = false;
    const auto current = map_->picture().system;
    const QString text =
        QInputDialog::getText(this, tr("Система координат карты"),
                              tr("Например, epsg:3857; пусто — подходящая для слоёв"), QLineEdit::Normal,
                              current && current->epsg() != 0 ? current->taggedString() : QString(),
                              &isAccepted)
            .trimmed();
    if (!isAccepted) {
        return;
    }
    const auto system = text.isEmpty()
                            ? nullptr
                            : cs::CoordSysFactory::defaultCoordSysFactory()->createFromTaggedString(text);
    if (!text.isEmpty() && !system) {
        messages_->add(tr("Нет системы координат «%0»").arg(text));
        return;
    }
    map_->setSystem(system);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) {
        event->acceptProposedAction();
    }
}

void MainWindow::dropEvent(QDropEvent* event) {
    QStringList paths;
    for (const QUrl& url : event->mimeData()->urls()) {
        paths += url.isLocalFile() ? url.toLocalFile() : url.toString();
    }
    open(paths);
    event->acceptProposedAction();
}

} // namespace orvane::desk
