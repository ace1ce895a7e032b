#pragma once

#include "host/desk/map/MapPicture.h"

#include <QElapsedTimer>
#include <QImage>
#include <QThreadPool>
#include <QTimer>
#include <QWidget>

#include <atomic>

class QRubberBand;

namespace orvane::desk {

/// Shows layers on a map that can be moved and zoomed. It is drawn in a thread of its own; meanwhile what was
/// drawn last is shown, moved and scaled, and then what is drawn so far. A change ends the drawing and begins
/// the next.
///
/// The mouse: drag to move, the wheel or a double click to zoom, click to pick, Shift and drag to pick all
/// within a rectangle; with Ctrl what is picked is added. Keys: arrows, plus, minus, Home for everything.
class MapView final : public QWidget {
    Q_OBJECT
public:
    explicit MapView(QWidget* parent = nullptr);
    ~MapView() override;

    /// From the lowest on. The first layers that come choose the system of the map and are shown whole.
    void setLayers(std::vector<MapLayer> layers);
    const MapPicture& picture() const { return picture_; }
    /// Shows all layers, or those of one table.
    void showAll();
    void showTable(quint64 table);
    void zoom(double factor);
    void setGraticule(bool isShown);
    /// Null for one that suits the layers.
    void setSystem(std::shared_ptr<cs::CoordSystem> system);
    /// Draws the map into a file, of what is seen now; exported() tells.
    void exportTo(const QString& path);
    bool isDrawing() const { return isDrawing_; }
    /// What was drawn last.
    const QImage& image() const { return image_; }

Q_SIGNALS:
    /// Features were picked, none for a click beside them. Table 0 stands for the result, whose rows have
    /// their numbers.
    void picked(quint64 table, const orvane::desk::Numbers& ids, bool isAdded);
    void labelsMissed(const orvane::desk::MissedLabels& labels);
    /// Where the mouse is, in the system of the map.
    void pointed(const QString& text);
    void drawn();
    void drawingFailed(const QString& reason);
    /// An empty reason for success.
    void exported(const QString& path, const QString& reason);

protected:
    QSize sizeHint() const override { return {640, 420}; }
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void setView(const maps::View& view);
    void chooseSystem();
    void fit(const std::vector<MapLayer>& layers);
    void redraw();
    void drawInThread(quint64 number, const MapPicture& picture, double pixelRatio);
    void take(quint64 number, const QImage& image, const maps::View& view);
    void end(quint64 number, const MissedLabels& missed);
    void pick(const QRectF& pixels, Qt::KeyboardModifiers modifiers);
    bool isCurrent(quint64 number) const { return number == drawing_.load(std::memory_order_relaxed); }

    MapPicture picture_;
    std::shared_ptr<cs::CoordSystem> wantedSystem_; ///< the user's; null for a suitable one
    bool isPlaced_ = false;                         ///< the view shows something somebody wants to see
    bool isDrawing_ = false;
    QTimer redrawTimer_;

    QImage image_;
    maps::View imageView_;

    QPoint pressed_;
    QPoint dragged_;
    bool isDragging_ = false;
    QRubberBand* band_;

    std::atomic<quint64> drawing_{0}; ///< number of the drawing that is wanted
    std::atomic<bool> isEnding_{false};
    QThreadPool threads_; ///< the last: nothing is drawn any more when the others go
};

} // namespace orvane::desk
