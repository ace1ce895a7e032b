#pragma once

#include <QAction>
#include <QCoreApplication>
#include <QMenu>

class QMenuBar;
class QToolBar;

namespace orvane::desk {

/// The commands of the window, with their texts, keys and icons.
struct Actions {
    Q_DECLARE_TR_FUNCTIONS(orvane::desk::Actions)

public:
    /// All belong to the window.
    explicit Actions(QWidget& window);

    void fillMenus(QMenuBar& bar);
    void fillToolBar(QToolBar& bar);
    void setRunning(bool isRunning);

    QAction* open;
    QAction* exportResult;
    QAction* exportMap;
    QAction* quit;
    QAction* run;
    QAction* cancel;
    QAction* rename;
    QAction* label;
    QAction* close;
    QAction* showAll;
    QAction* zoomIn;
    QAction* zoomOut;
    QAction* graticule;
    QAction* system;
    QAction* selectNothing;
    QAction* copy;
    QMenu* history;
};

} // namespace orvane::desk
