#include "host/shell/drawing/Canvas.h"

#include <QGuiApplication>

using namespace orvane::shell;

extern "C" {

/// Throws what the canvas throws.
Q_DECL_EXPORT MapCanvas* orvaneMakeMapCanvas(const MapOptions& options);
Q_DECL_EXPORT QCoreApplication* orvaneMakeDrawingApplication(int& argc, char** argv);
}

MapCanvas* orvaneMakeMapCanvas(const MapOptions& options) {
    return new Canvas(options);
}

/// Fonts need a platform; this one needs no display.
QCoreApplication* orvaneMakeDrawingApplication(int& argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // What Qt has to say of a desktop that is not there concerns nobody.
    const QtMessageHandler before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    auto* application = new QGuiApplication(argc, argv);
    qInstallMessageHandler(before);
    return application;
}
