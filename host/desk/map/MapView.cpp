#include "host/desk/map/MapView.h"

#include "host/desk/map/MapFile.h"
#include "host/desk/map/MapPicking.h"

#include <platform/cs/CoordSystem.h>

#include <QMouseEvent>
#include <QRubberBand>

#include <algorithm>
#include <cmath>

namespace orvane::desk {

MapView::MapView(QWidget* parent) : QWidget(parent), band_(new QRubberBand(QRubberBand::Rectangle, this)) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(200, 150);
    setAttribute(Qt::WA_OpaquePaintEvent);
    threads_.setMaxThreadCount(2); // a picture, and a file
    redrawTimer_.setSingleShot(true);
    redrawTimer_.setInterval(0);
    connect(&redrawTimer_, &QTimer::timeout, this, &MapView::redraw);
}

MapView::~MapView() {
    isEnding_ = true;
    ++drawing_;
    threads_.waitForDone();
}

void MapView::setLayers(std::vector<MapLayer> layers) {
    picture_.layers = std::move(layers);
    const bool hasSomething =
        std::any_of(picture_.layers.begin(), picture_.layers.end(),
                    [](const MapLayer& layer) { return !layer.features->envelope().isEmpty(); });
    if (!hasSomething) {
        isPlaced_ = false;
    } else if (!isPlaced_) {
        isPlaced_ = true;
        showAll();
    }
    redrawTimer_.start();
}

void MapView::chooseSystem() {
    const auto before = picture_.system;
    picture_.system = wantedSystem_ ? wantedSystem_ : suitableSystem(picture_.layers);
    const bool isSame = before && picture_.system && before->equals(*picture_.system);
    if (!isSame && before != picture_.system) {
        image_ = QImage(); // of another plane
    }
}

void MapView::fit(const std::vector<MapLayer>& layers) {
    try {
        setView(viewOf(layers, picture_.system, size()));
    } catch (const std::exception& failure) {
        Q_EMIT drawingFailed(QString::fromUtf8(failure.what()));
    }
}

void MapView::showAll() {
    chooseSystem();
    fit(picture_.layers);
}

void MapView::showTable(quint64 table) {
    std::vector<MapLayer> layers;
    std::copy_if(picture_.layers.begin(), picture_.layers.end(), std::back_inserter(layers),
                 [table](const MapLayer& layer) { return layer.table == table; });
    if (!layers.empty()) {
        fit(layers);
    }
}

void MapView::setGraticule(bool isShown) {
    picture_.hasGraticule = isShown;
    redrawTimer_.start();
}

void MapView::setSystem(std::shared_ptr<cs::CoordSystem> system) {
    wantedSystem_ = std::move(system);
    showAll();
}

void MapView::setView(const maps::View& view) {
    picture_.view = view;
    update();
    redrawTimer_.start();
}

void MapView::zoom(double factor) {
    setView(picture_.view.zoomed(factor, rect().center()));
}

void MapView::redraw() {
    const quint64 number = ++drawing_;
    isDrawing_ = true;
    threads_.start([this, number, picture = picture_, pixelRatio = devicePixelRatioF()] {
        drawInThread(number, picture, pixelRatio);
    });
}

void MapView::drawInThread(quint64 number, const MapPicture& picture, double pixelRatio) {
    if (!isCurrent(number)) {
        return;
    }
    constexpr int firstLookMs = 250; // a picture that takes longer is shown as it grows
    constexpr int laterLooksMs = 500;
    QImage image((picture.view.size() * pixelRatio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(pixelRatio);
    const auto show = [&] {
        QMetaObject::invokeMethod(
            this, [this, number, shown = image.copy(), view = picture.view] { take(number, shown, view); },
            Qt::QueuedConnection);
    };
    MissedLabels missed;
    QString failure;
    {
        QElapsedTimer timer;
        timer.start();
        int lookMs = firstLookMs;
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        try {
            missed = drawMap(painter, picture, [&] {
                if (isCurrent(number) && timer.hasExpired(lookMs)) {
                    show();
                    lookMs = laterLooksMs;
                    timer.restart();
                }
                return isCurrent(number);
            });
        } catch (const std::exception& exception) {
            failure = QString::fromUtf8(exception.what());
        }
    }
    if (isCurrent(number)) {
        show();
        QMetaObject::invokeMethod(
            this,
            [this, number, missed, failure] {
                if (!failure.isEmpty()) {
                    Q_EMIT drawingFailed(failure);
                }
                end(number, missed);
            },
            Qt::QueuedConnection);
    }
}

void MapView::take(quint64 number, const QImage& image, const maps::View& view) {
    if (isCurrent(number)) {
        image_ = image;
        imageView_ = view;
        update();
    }
}

void MapView::end(quint64 number, const MissedLabels& missed) {
    if (!isCurrent(number)) {
        return;
    }
    isDrawing_ = false;
    const bool isAnyMissed =
        std::any_of(missed.begin(), missed.end(), [](const auto& each) { return !each.second.isEmpty(); });
    if (isAnyMissed) {
        Q_EMIT labelsMissed(missed);
    }
    Q_EMIT drawn();
}

void MapView::exportTo(const QString& path) {
    threads_.start([this, path, picture = picture_] {
        QString reason;
        try {
            writeMap(path, picture, [this] { return !isEnding_; });
        } catch (const std::exception& failure) {
            reason = QString::fromUtf8(failure.what());
        }
        QMetaObject::invokeMethod(
            this, [this, path, reason] { Q_EMIT exported(path, reason); }, Qt::QueuedConnection);
    });
}

/// The last picture, where what it shows belongs now.
void MapView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0xEE, 0xF4, 0xF8));
    if (!image_.isNull()) {
        const maps::View& view = picture_.view;
        const QPointF from = view.toPixel(imageView_.toPlane(imageView_.rect().topLeft()));
        const QPointF to = view.toPixel(imageView_.toPlane(imageView_.rect().bottomRight()));
        painter.setRenderHint(QPainter::SmoothPixmapTransform,
                              view.unitsPerPixel() != imageView_.unitsPerPixel());
        const QRectF place(from, to);
        constexpr double largest = 20'000; // beyond it a painter loses its way
        if (std::max(place.width(), place.height()) < largest) {
            painter.drawImage(place, image_);
        }
    }
    if (picture_.layers.empty()) {
        painter.setPen(palette().color(QPalette::Disabled, QPalette::Text));
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap,
                         tr("Откройте файл с геометрией или перетащите его сюда"));
    }
}

void MapView::resizeEvent(QResizeEvent*) {
    setView(picture_.view.resized(size()));
}

void MapView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        pressed_ = dragged_ = event->pos();
        isDragging_ = false;
    }
}

void MapView::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() & Qt::LeftButton) {
        constexpr int stillClick = 4; // pixels that a hand trembles
        isDragging_ = isDragging_ || (event->pos() - pressed_).manhattanLength() > stillClick;
        if (isDragging_ && (event->modifiers() & Qt::ShiftModifier)) {
            band_->setGeometry(QRect(pressed_, event->pos()).normalized());
            band_->show();
        } else if (isDragging_ && !band_->isVisible()) {
            setCursor(Qt::ClosedHandCursor);
            setView(picture_.view.panned(event->pos() - dragged_));
        }
        dragged_ = event->pos();
    }
    const QPointF place = picture_.view.toPlane(event->localPos());
    const bool isGeographic = picture_.system && picture_.system->isGeographic();
    Q_EMIT pointed(picture_.layers.empty() ? QString()
                                           : QStringLiteral("%0  %1")
                                                 .arg(place.x(), 0, 'f', isGeographic ? 5 : 1)
                                                 .arg(place.y(), 0, 'f', isGeographic ? 5 : 1));
}

void MapView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        return;
    }
    unsetCursor();
    if (band_->isVisible()) {
        band_->hide();
        pick(QRectF(QRect(pressed_, event->pos()).normalized()), event->modifiers());
    } else if (!isDragging_) {
        pick(QRectF(event->localPos(), QSizeF()), event->modifiers());
    }
    isDragging_ = false;
}

void MapView::pick(const QRectF& pixels, Qt::KeyboardModifiers modifiers) {
    try {
        const PickedFeatures found =
            pixels.isEmpty() ? pickAt(picture_, pixels.topLeft()) : pickWithin(picture_, pixels);
        Q_EMIT picked(found.layer ? found.layer->table : 0, found.ids, modifiers & Qt::ControlModifier);
    } catch (const std::exception& failure) {
        Q_EMIT drawingFailed(QString::fromUtf8(failure.what()));
    }
}

void MapView::mouseDoubleClickEvent(QMouseEvent* event) {
    setView(picture_.view.zoomed(2, event->localPos()));
}

void MapView::wheelEvent(QWheelEvent* event) {
    constexpr double perNotch = 120;
    setView(picture_.view.zoomed(std::pow(1.25, event->angleDelta().y() / perNotch), event->position()));
}

void MapView::keyPressEvent(QKeyEvent* event) {
    const double step = 0.2;
    switch (event->key()) {
    case Qt::Key_Left: return setView(picture_.view.panned({width() * step, 0}));
    case Qt::Key_Right: return setView(picture_.view.panned({-width() * step, 0}));
    case Qt::Key_Up: return setView(picture_.view.panned({0, height() * step}));
    case Qt::Key_Down: return setView(picture_.view.panned({0, -height() * step}));
    case Qt::Key_Plus:
    case Qt::Key_Equal: return zoom(1.5);
    case Qt::Key_Minus: return zoom(1 / 1.5);
    case Qt::Key_Home: return showAll();
    default: QWidget::keyPressEvent(event);
    }
}

} // namespace orvane::desk
