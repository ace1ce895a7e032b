#include "host/desk/window/Actions.h"

#include <QMenuBar>
#include <QPainter>
#include <QSvgRenderer>
#include <QToolBar>

namespace orvane::desk {

namespace {

// Drawn by strokes of one width in a square of 24.
constexpr char openShape[] = "M3 7v12h16l2-9H8l-2 9M3 7V5h6l2 2h7v3";
constexpr char runShape[] = "M7 4l12 8-12 8z";
constexpr char cancelShape[] = "M6 6h12v12H6z";
constexpr char showAllShape[] = "M4 9V4h5M15 4h5v5M20 15v5h-5M9 20H4v-5M9 9h6v6H9z";
constexpr char zoomInShape[] = "M10 4a6 6 0 1 0 .01 0M14.5 14.5L20 20M10 7v6M7 10h6";
constexpr char zoomOutShape[] = "M10 4a6 6 0 1 0 .01 0M14.5 14.5L20 20M7 10h6";
constexpr char exportMapShape[] = "M4 5h16v14H4zM4 16l5-5 4 4 3-3 4 4M15 9h.01";
constexpr char exportResultShape[] = "M4 5h16v9M4 5v14h8M4 10h16M10 5v14M17 15v6M14 18l3 3 3-3";

QIcon icon(const char* shape, const char* colour) {
    const QString svg =
        QStringLiteral("<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 24 24'><path d='%0' "
                       "fill='none' stroke='%1' stroke-width='1.7' stroke-linejoin='round' "
                       "stroke-linecap='round'/></svg>");
    QIcon result;
    for (const auto& [mode, used] :
         {std::pair(QIcon::Normal, colour), std::pair(QIcon::Disabled, "#B8BDC2")}) {
        QPixmap pixmap(48, 48);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        QSvgRenderer(svg.arg(QLatin1String(shape), QLatin1String(used)).toUtf8()).render(&painter);
        painter.end();
        result.addPixmap(pixmap, mode);
    }
    return result;
}

constexpr char ink[] = "#37474F";

QAction* make(QObject& parent, const QString& text, const QKeySequence& key = {}, const QIcon& image = {}) {
    auto* action = new QAction(image, text, &parent);
    action->setShortcut(key);
    return action;
}

} // namespace

Actions::Actions(QWidget& window) {
    open = make(window, tr("Открыть…"), QKeySequence::Open, icon(openShape, ink));
    exportResult = make(window, tr("Записать результат…"), QKeySequence::Save, icon(exportResultShape, ink));
    exportResult->setEnabled(false);
    exportMap = make(window, tr("Записать карту…"), QKeySequence(QStringLiteral("Ctrl+Shift+S")),
                     icon(exportMapShape, ink));
    quit = make(window, tr("Выйти"), QKeySequence::Quit);
    run = make(window, tr("Выполнить"), QKeySequence(Qt::Key_F5), icon(runShape, "#2E7D32"));
    cancel = make(window, tr("Прервать"), QKeySequence(Qt::Key_Escape), icon(cancelShape, "#C62828"));
    cancel->setEnabled(false);
    rename = make(window, tr("Переименовать"));
    label = make(window, tr("Подписи…"), QKeySequence(QStringLiteral("Ctrl+L")));
    close = make(window, tr("Закрыть слой"));
    showAll =
        make(window, tr("Показать всё"), QKeySequence(QStringLiteral("Ctrl+0")), icon(showAllShape, ink));
    zoomIn = make(window, tr("Ближе"), QKeySequence::ZoomIn, icon(zoomInShape, ink));
    zoomOut = make(window, tr("Дальше"), QKeySequence::ZoomOut, icon(zoomOutShape, ink));
    graticule = make(window, tr("Сетка координат"));
    graticule->setCheckable(true);
    system = make(window, tr("Система координат…"));
    selectNothing = make(window, tr("Снять выбор"), QKeySequence(QStringLiteral("Ctrl+Shift+A")));
    copy = make(window, tr("Копировать строки"), QKeySequence::Copy);
    history = new QMenu(tr("История"), &window);
}

void Actions::fillMenus(QMenuBar& bar) {
    QMenu* file = bar.addMenu(tr("Файл"));
    file->addActions({open, exportResult, exportMap});
    file->addSeparator();
    file->addAction(quit);
    QMenu* query = bar.addMenu(tr("Запрос"));
    query->addActions({run, cancel});
    query->addMenu(history);
    query->addSeparator();
    query->addActions({selectNothing, copy});
    QMenu* layer = bar.addMenu(tr("Слой"));
    layer->addActions({rename, label, close});
    QMenu* map = bar.addMenu(tr("Карта"));
    map->addActions({showAll, zoomIn, zoomOut});
    map->addSeparator();
    map->addActions({graticule, system});
}

void Actions::fillToolBar(QToolBar& bar) {
    bar.setMovable(false);
    bar.setIconSize({22, 22});
    bar.setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar.addAction(open);
    bar.addSeparator();
    bar.addActions({run, cancel});
    bar.addSeparator();
    bar.addActions({showAll, zoomIn, zoomOut});
    bar.addSeparator();
    bar.addActions({exportResult, exportMap});
}

void Actions::setRunning(bool isRunning) {
    cancel->setEnabled(isRunning);
}

} // namespace orvane::desk
