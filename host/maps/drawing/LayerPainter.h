#pragma once

#include "host/maps/drawing/Coverage.h"
#include "host/maps/drawing/LayerStyle.h"
#include "host/maps/labels/LabelPlacer.h"
#include "host/maps/projection/LayerProjection.h"
#include "host/maps/shapes/ShapeReader.h"

#include <QBrush>
#include <QPainter>
#include <QPainterPath>
#include <QPen>

#include <functional>

namespace orvane::maps {

/// Draws the features of one layer as they come, and keeps nothing of them:
///
///     LayerPainter layer(painter, style, LayerProjection(system, mapSystem, view));
///     for (...) {
///         if (!layer.add(ShapeView::ofWkb(wkb), Value::ofNumber(population)))
///             return; // cancelled
///     }
///
/// The painter's device may be anything; without a GUI thread a QImage. Used from the thread that made it.
class ORVANE_MAPS_EXPORT LayerPainter {
public:
    /// What else is told of the features; nothing is owned, all may be null.
    struct Extras {
        LabelPlacer* labels = nullptr;
        Coverage* coverage = nullptr;
        /// Asked now and then; once it says so, nothing more is drawn.
        std::function<bool()> isCancelled;
        bool hasAreas = true; ///< areas are filled
        bool hasLines = true; ///< outlines, lines and points are drawn
    };

    LayerPainter(QPainter& painter, const LayerStyle& style, LayerProjection projection, Extras extras);
    LayerPainter(QPainter& painter, const LayerStyle& style, LayerProjection projection);

    /// The projection tells what can be seen, so that other features need not be read.
    const LayerProjection& projection() const { return projection_; }

    /// Draws a feature; bytes that are no geometry draw nothing. The label is UTF-8. False once the drawing
    /// was cancelled.
    bool add(const ShapeView& shape, const Value& value = {}, std::string_view label = {});
    /// The same for a shape in units of the layer, which becomes one in pixels.
    bool add(FlatShape& shape, const Value& value, std::string_view label);

private:
    struct Pens {
        QBrush fill;
        QPen outline;
        QPen line;
        QBrush point;
        QPen pointOutline;
        double pointRadius;
    };

    Pens pensOf(const QColor* colour, double scale) const;
    void drawAreas(const FlatShape& shape, const Pens& pens);
    void drawOthers(const FlatShape& shape, const Pens& pens);
    void drawSpeck(QPointF position, const QColor& colour);
    void addLabel(const FlatShape& shape, std::string_view text, const Pens& pens);
    void setSmooth(bool isSmooth);
    void setPen(const QPen& pen);
    void setBrush(const QBrush& brush);

    QPainter& painter_;
    LayerStyle style_;
    LayerProjection projection_;
    Extras extras_;
    std::vector<Pens> pens_; ///< of the classes, then of what has none
    ShapeReader reader_;
    FlatShape shape_;
    QPainterPath path_;
    const QPen* currentPen_ = nullptr;
    const QBrush* currentBrush_ = nullptr;
    std::uint32_t drawn_ = 0;
    bool wantsSmooth_; ///< as the painter was given
    bool isSmooth_;
    bool isCancelled_ = false;
};

} // namespace orvane::maps
