#include "host/desk/map/MapFile.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QImage>
#include <QPdfWriter>
#include <QSaveFile>
#include <QStringList>
#include <QSvgGenerator>

#include <stdexcept>

namespace orvane::desk {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::desk::MapFile)
};

constexpr int pixelsPerInch = 96;
constexpr int pngScale = 2; ///< pixels of the file for one of the screen, for print

[[noreturn]] void raise(const QString& path, const QString& cause) {
    throw std::runtime_error(QStringLiteral("%0: %1").arg(path, cause).toStdString());
}

void writeSvg(QIODevice& file, const MapPicture& picture, const std::function<bool()>& goesOn) {
    QSvgGenerator svg;
    svg.setOutputDevice(&file);
    svg.setResolution(pixelsPerInch);
    svg.setSize(picture.view.size().toSize());
    svg.setViewBox(picture.view.rect());
    QPainter painter(&svg);
    drawMap(painter, picture, goesOn);
}

void writePdf(QIODevice& file, const MapPicture& picture, const std::function<bool()>& goesOn) {
    QPdfWriter pdf(&file);
    pdf.setResolution(pixelsPerInch);
    pdf.setPageSize(QPageSize(picture.view.size() * 72 / pixelsPerInch, QPageSize::Point));
    pdf.setPageMargins(QMarginsF());
    QPainter painter(&pdf);
    drawMap(painter, picture, goesOn);
}

bool writePng(QIODevice& file, const MapPicture& picture, const std::function<bool()>& goesOn) {
    QImage image((picture.view.size() * pngScale).toSize(), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) {
        return false;
    }
    image.setDevicePixelRatio(pngScale);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    drawMap(painter, picture, goesOn);
    painter.end();
    return !goesOn() || image.save(&file, "PNG");
}

} // namespace

QStringList mapFileEndings() {
    return {QStringLiteral("png"), QStringLiteral("svg"), QStringLiteral("pdf")};
}

bool writeMap(const QString& path, const MapPicture& picture, const std::function<bool()>& goesOn) {
    const QString ending = QFileInfo(path).suffix().toLower();
    if (!mapFileEndings().contains(ending)) {
        raise(path,
              Texts::tr("карта записывается в файлы %0").arg(mapFileEndings().join(QStringLiteral(", "))));
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        raise(path, file.errorString());
    }
    if (ending == QLatin1String("svg")) {
        writeSvg(file, picture, goesOn);
    } else if (ending == QLatin1String("pdf")) {
        writePdf(file, picture, goesOn);
    } else if (!writePng(file, picture, goesOn)) {
        raise(path, file.errorString());
    }
    if (!goesOn()) {
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) {
        raise(path, file.errorString());
    }
    return true;
}

} // namespace orvane::desk
