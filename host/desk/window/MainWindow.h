#pragma once

#include "host/desk/layers/LayerBook.h"
#include "host/desk/layers/LayerTree.h"
#include "host/desk/map/MapView.h"
#include "host/desk/window/MessageBar.h"
#include "host/desk/window/QueryPane.h"
#include "host/desk/window/ResultPane.h"

#include <QMainWindow>

class QLabel;

namespace orvane::desk {

struct Actions;

/// The window: layers at the left, the map above, the query and its rows below.
class MainWindow final : public QMainWindow {
    Q_OBJECT
public:
    /// The history of queries is in that file.
    explicit MainWindow(const QString& historyPath, QWidget* parent = nullptr);
    ~MainWindow() override;

    void open(const QStringList& paths);
    /// Writes the result, or the map, into a file; what comes of it is told in the window.
    void exportResult(const QString& path) { session_.exportResult(path); }
    void exportMap(const QString& path) { map_->exportTo(path); }

    Session& session() { return session_; }
    LayerBook& layers() { return *book_; }
    LayerTree& tree() { return *tree_; }
    MapView& map() { return *map_; }
    QueryPane& query() { return *query_; }
    ResultPane& result() { return *result_; }
    MessageBar& messages() { return *messages_; }

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void makeLayout();
    void makeActions();
    void makeMenus();
    void connectSession();
    void connectSelection();
    void chooseFiles();
    void chooseResultFile();
    void chooseMapFile();
    void chooseSystem();
    void showHistory(QMenu& menu);
    void takeResult(const ResultRowsInfo& result);
    void selectRows(const Numbers& rows);
    void selectPicked(quint64 table, const Numbers& ids, bool isAdded);
    void tellSelection();

    Session session_;
    QueryHistory history_;
    LayerBook* book_;
    LayerTree* tree_;
    MapView* map_;
    QueryPane* query_;
    ResultPane* result_;
    MessageBar* messages_;
    QLabel* selection_;
    QLabel* place_;
    std::unique_ptr<Actions> actions_;
};

} // namespace orvane::desk
