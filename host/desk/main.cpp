#include "host/desk/window/Language.h"
#include "host/desk/window/MainWindow.h"

#include <QApplication>
#include <QStandardPaths>
#include <QStyleFactory>

#include <clocale>

int main(int argc, char** argv) {
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C"); // Qt has taken the user's; numbers of queries are written in one way
    QApplication::setApplicationName(QStringLiteral("orvane-desk"));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    for (const char* directory : {"/../plugins", "/../" ORVANE_PLUGIN_DIR}) {
        QApplication::addLibraryPath(QApplication::applicationDirPath() + QString::fromLatin1(directory));
    }
    const orvane::desk::Language language;
    const QString data = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    orvane::desk::MainWindow window(data + QStringLiteral("/history.json"));
    window.show();
    window.open(QApplication::arguments().mid(1));
    return QApplication::exec();
}
