#include "host/shell/drawing/Canvas.h"

#include "host/shell/drawing/TerminalMap.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>

#include <stdexcept>

namespace orvane::shell {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::shell::Shell)
};

maps::MapSettings settingsOf(const MapOptions& options, const work::Cancellation& cancellation) {
    maps::MapSettings settings;
    settings.size = QSizeF(options.width, options.height);
    settings.system = options.system;
    settings.title = options.title;
    settings.hasGraticule = options.hasGraticule;
    settings.hasTexts = options.isPicture;
    settings.isSmooth = options.isPicture;
    settings.isCancelled = [cancellation] { return cancellation.isRequested(); };
    return settings;
}

std::string bytesOf(const QBuffer& buffer) {
    return buffer.data().toStdString();
}

} // namespace

Canvas::Canvas(const MapOptions& options) : options_(options), map_(settingsOf(options, cancellation_)) {}

void Canvas::beginResult(const QString& fillTitle, bool hasFill) {
    maps::LayerSettings layer;
    layer.title = fillTitle;
    if (hasFill) {
        layer.classes = maps::ClassSettings{options_.method, options_.classes, true};
    }
    if (!options_.isPicture) {
        layer.style.pointRadius = 0.4; // one dot
        layer.style.outlineWidth = layer.style.lineWidth = 1;
    }
    map_.beginLayer(layer);
}

void Canvas::beginBackground() {
    maps::LayerSettings layer;
    layer.isBackground = true;
    layer.style.fill = QColor(0xEC, 0xEA, 0xE6);
    layer.style.outline = QColor(0xB4, 0xB0, 0xAA);
    layer.style.line = QColor(0xB4, 0xB0, 0xAA);
    layer.style.lineWidth = 0.8;
    layer.style.point = QColor(0xB4, 0xB0, 0xAA);
    layer.style.pointRadius = options_.isPicture ? 1.5 : 0.4;
    map_.beginLayer(layer);
}

bool Canvas::add(const maps::ShapeView& shape, const maps::Value& value, std::string_view label,
                 const std::shared_ptr<cs::CoordSystem>& system) {
    return map_.add(shape, value, label, system);
}

std::string Canvas::picture(PictureFormat format) {
    switch (format) {
    case PictureFormat::Svg: return svg();
    case PictureFormat::Pdf: return pdf();
    case PictureFormat::Png: break;
    }
    return png();
}

void Canvas::draw(QPainter& painter) {
    map_.draw(painter);
    painter.end();
    cancellation_.check();
}

std::string Canvas::png() {
    QImage image(options_.width, options_.height, QImage::Format_RGB32);
    if (image.isNull()) {
        throw std::runtime_error(Texts::tr("для карты не хватает памяти").toStdString());
    }
    QPainter painter(&image);
    draw(painter);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytesOf(buffer);
}

std::string Canvas::svg() {
    QBuffer buffer;
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setSize(QSize(options_.width, options_.height));
    generator.setViewBox(QRect(0, 0, options_.width, options_.height));
    generator.setTitle(options_.title);
    QPainter painter(&generator);
    draw(painter);
    return bytesOf(buffer);
}

std::string Canvas::pdf() {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    constexpr int pixelsPerInch = 96;
    writer.setResolution(pixelsPerInch);
    writer.setPageSize(QPageSize(QSizeF(options_.width, options_.height) / pixelsPerInch, QPageSize::Inch, {},
                                 QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF());
    writer.setTitle(options_.title);
    QPainter painter(&writer);
    draw(painter);
    return bytesOf(buffer);
}

std::string Canvas::text(const TerminalSpace& space) {
    return terminalMap(map_, space);
}

} // namespace orvane::shell
