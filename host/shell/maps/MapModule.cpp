#include "host/shell/maps/MapCanvas.h"

#include "host/shell/messages/Shell.h"

#include <QFileInfo>
#include <QLibrary>

namespace orvane::shell {

namespace {

/// The library of the module, beside the driver's plug-in; it stays loaded.
QFunctionPointer resolve(const char* function, QString& failure) {
    // The application may not be there yet: its directory is read from the system.
    const QString directory = QFileInfo(QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget()).path();
    for (const char* plugins : {"/../plugins/", "/../" ORVANE_PLUGIN_DIR "/"}) {
        const QString path = directory + QLatin1String(plugins) + QLatin1String(mapModuleName);
        if (!QFileInfo::exists(path)) {
            continue;
        }
        QLibrary library(path);
        library.setLoadHints(QLibrary::PreventUnloadHint);
        if (const QFunctionPointer found = library.resolve(function)) {
            return found;
        }
        failure = library.errorString();
    }
    return nullptr;
}

} // namespace

std::unique_ptr<MapCanvas> makeMapCanvas(const MapOptions& options) {
    QString failure = QString::fromLatin1(mapModuleName);
    const auto make = reinterpret_cast<MakeMapCanvas>(resolve(makeMapCanvasName, failure));
    if (!make) {
        throw std::runtime_error(
            Shell::tr("карты здесь не рисуются, нет модуля: %0").arg(failure).toStdString());
    }
    return std::unique_ptr<MapCanvas>(make(options));
}

std::unique_ptr<QCoreApplication> makeDrawingApplication(int& argc, char** argv) {
    QString failure;
    const auto make = reinterpret_cast<MakeDrawingApplication>(resolve(makeDrawingApplicationName, failure));
    return std::unique_ptr<QCoreApplication>(make ? make(argc, argv) : nullptr);
}

} // namespace orvane::shell
