#include "host/maps/drawing/LayerPainter.h"

#include <algorithm>
#include <cmath>

namespace orvane::maps {

namespace {

/// Areas smaller than that have no outline, which would hide their colour.
constexpr double leastOutlined = 3;
const QPen noPen(Qt::NoPen);
const QBrush noBrush(Qt::NoBrush);

static_assert(sizeof(QPointF) == 2 * sizeof(double), "positions are handed to the painter as they are");

const QPointF* pointsOf(const FlatShape& shape, const FlatShape::Part& part) {
    return reinterpret_cast<const QPointF*>(shape.position(part.begin));
}

bool isFilled(const FlatShape::Part& part) {
    return part.kind == PartKind::Ring || part.kind == PartKind::Area;
}

double areaOf(const FlatShape& shape, const FlatShape::Part& part) {
    const QPointF* points = pointsOf(shape, part);
    double twice = 0;
    for (std::uint32_t i = 0; i < part.count; ++i) {
        const QPointF& a = points[i];
        const QPointF& b = points[(i + 1) % part.count];
        twice +=
            (a.x() - points->x()) * (b.y() - points->y()) - (b.x() - points->x()) * (a.y() - points->y());
    }
    return std::abs(twice) / 2;
}

/// The widest stretch within the filled rings at a height: its middle, and its width.
std::pair<double, double> widestStretch(const FlatShape& shape, double y, std::vector<double>& crossings) {
    crossings.clear();
    for (const FlatShape::Part& part : shape.parts) {
        const QPointF* points = pointsOf(shape, part);
        for (std::uint32_t i = 0; isFilled(part) && i < part.count; ++i) {
            const QPointF& a = points[i];
            const QPointF& b = points[(i + 1) % part.count];
            if ((a.y() > y) != (b.y() > y)) {
                crossings.push_back(a.x() + (y - a.y()) / (b.y() - a.y()) * (b.x() - a.x()));
            }
        }
    }
    std::sort(crossings.begin(), crossings.end());
    std::pair<double, double> widest{0, 0};
    for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
        if (const double width = crossings[i + 1] - crossings[i]; width > widest.second) {
            widest = {(crossings[i] + crossings[i + 1]) / 2, width};
        }
    }
    return widest;
}

} // namespace

LayerPainter::LayerPainter(QPainter& painter, const LayerStyle& style, LayerProjection projection)
    : LayerPainter(painter, style, std::move(projection), Extras()) {}

LayerPainter::LayerPainter(QPainter& painter, const LayerStyle& style, LayerProjection projection,
                           Extras extras)
    : painter_(painter), style_(style), projection_(std::move(projection)), extras_(std::move(extras)),
      wantsSmooth_(painter.testRenderHint(QPainter::Antialiasing)), isSmooth_(wantsSmooth_) {
    if (style_.classes) {
        for (const Classes::Class& each : style_.classes->classes()) {
            pens_.push_back(pensOf(&each.colour, each.scale));
        }
    }
    pens_.push_back(pensOf(nullptr, 1));
    path_.setFillRule(Qt::OddEvenFill);
}

LayerPainter::Pens LayerPainter::pensOf(const QColor* colour, double scale) const {
    const auto pen = [](const QColor& ink, double width) {
        return QPen(ink, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    };
    return {QBrush(colour ? *colour : style_.fill),
            style_.outlineWidth > 0 ? pen(style_.outline, style_.outlineWidth) : noPen,
            pen(colour ? *colour : style_.line, style_.lineWidth),
            QBrush(colour ? *colour : style_.point),
            pen(colour ? QColor(0x40, 0x40, 0x40) : QColor(255, 255, 255), 0.17 * style_.pointRadius),
            style_.pointRadius * scale};
}

void LayerPainter::setSmooth(bool isSmooth) {
    if (isSmooth_ != (isSmooth && wantsSmooth_)) {
        isSmooth_ = isSmooth && wantsSmooth_;
        painter_.setRenderHint(QPainter::Antialiasing, isSmooth_);
    }
}

void LayerPainter::setPen(const QPen& pen) {
    if (currentPen_ != &pen) {
        painter_.setPen(pen);
        currentPen_ = &pen;
    }
}

void LayerPainter::setBrush(const QBrush& brush) {
    if (currentBrush_ != &brush) {
        painter_.setBrush(brush);
        currentBrush_ = &brush;
    }
}

bool LayerPainter::add(const ShapeView& shape, const Value& value, std::string_view label) {
    shape_.clear();
    return reader_.read(shape, projection_.tolerance(), shape_) ? add(shape_, value, label) : !isCancelled_;
}

bool LayerPainter::add(FlatShape& shape, const Value& value, std::string_view label) {
    constexpr std::uint32_t featuresBetweenChecks = 128;
    if (++drawn_ % featuresBetweenChecks == 0 && extras_.isCancelled && extras_.isCancelled()) {
        isCancelled_ = true;
    }
    if (isCancelled_) {
        return false;
    }
    projection_.toPixels(shape);
    if (shape.isEmpty()) {
        return true;
    }
    const int numbered = style_.classes ? style_.classes->classOf(value) : -1;
    const Pens& pens = numbered >= 0 ? pens_[static_cast<std::size_t>(numbered)] : pens_.back();
    drawAreas(shape, pens);
    if (extras_.hasLines) {
        drawOthers(shape, pens);
    }
    if (extras_.labels && !label.empty()) {
        addLabel(shape, label, pens);
    }
    return true;
}

void LayerPainter::drawAreas(const FlatShape& shape, const Pens& pens) {
    std::uint32_t rings = 0;
    bool areAllRings = true;
    geometry::Envelope envelope;
    const FlatShape::Part* single = nullptr;
    for (const FlatShape::Part& part : shape.parts) {
        if (!isFilled(part)) {
            continue;
        }
        ++rings;
        single = &part;
        areAllRings = areAllRings && part.kind == PartKind::Ring;
        const geometry::Envelope own = shape.envelopeOf(part);
        envelope.add(own);
        if (extras_.coverage && (own.maxX - own.minX) * (own.maxY - own.minY) < 2 * areaOf(shape, part)) {
            extras_.coverage->add(QRectF(QPointF(own.minX, own.minY), QPointF(own.maxX, own.maxY)));
        }
    }
    if (rings == 0) {
        return;
    }
    const bool isOutlined =
        std::max(envelope.maxX - envelope.minX, envelope.maxY - envelope.minY) >= leastOutlined;
    // Small areas side by side have edges within most pixels, where smooth ones would let the paper through.
    const bool isSmall =
        std::max(envelope.maxX - envelope.minX, envelope.maxY - envelope.minY) < leastOutlined;
    setSmooth(!isSmall);
    setPen(isOutlined && areAllRings ? pens.outline : noPen);
    setBrush(extras_.hasAreas ? pens.fill : noBrush);
    if (rings == 1) {
        painter_.drawPolygon(pointsOf(shape, *single), static_cast<int>(single->count), Qt::OddEvenFill);
        return;
    }
    path_.clear();
    path_.setFillRule(Qt::OddEvenFill);
    for (const FlatShape::Part& part : shape.parts) {
        if (isFilled(part)) {
            const QPointF* points = pointsOf(shape, part);
            path_.moveTo(points[0]);
            for (std::uint32_t i = 1; i < part.count; ++i) {
                path_.lineTo(points[i]);
            }
            path_.closeSubpath();
        }
    }
    // One path of the outlines, too, unless some of them are borders, which follow.
    painter_.drawPath(path_);
    if (isOutlined && !areAllRings) {
        setPen(pens.outline);
        for (const FlatShape::Part& part : shape.parts) {
            if (part.kind == PartKind::Ring) {
                const QPointF* points = pointsOf(shape, part);
                painter_.drawPolyline(points, static_cast<int>(part.count));
                painter_.drawLine(points[part.count - 1], points[0]);
            }
        }
    }
}

void LayerPainter::drawSpeck(QPointF position, const QColor& colour) {
    const double side = wantsSmooth_ ? 0.8 : 1;
    painter_.fillRect(QRectF(position.x() - side / 2, position.y() - side / 2, side, side), colour);
}

void LayerPainter::drawOthers(const FlatShape& shape, const Pens& pens) {
    if (std::any_of(shape.parts.begin(), shape.parts.end(),
                    [](const FlatShape::Part& part) { return !isFilled(part); })) {
        setSmooth(true);
    }
    for (const FlatShape::Part& part : shape.parts) {
        const QPointF* points = pointsOf(shape, part);
        switch (part.kind) {
        case PartKind::Point:
            if (pens.pointRadius < 1) {
                drawSpeck(*points, pens.point.color());
                break;
            }
            setPen(pens.pointOutline);
            setBrush(pens.point);
            painter_.drawEllipse(*points, pens.pointRadius, pens.pointRadius);
            break;
        case PartKind::Speck: drawSpeck(*points, pens.fill.color()); break;
        case PartKind::Line:
        case PartKind::Border:
            setPen(part.kind == PartKind::Line ? pens.line : pens.outline);
            setBrush(noBrush);
            painter_.drawPolyline(points, static_cast<int>(part.count));
            break;
        case PartKind::Ring:
        case PartKind::Area: continue;
        }
        for (std::uint32_t i = 0; extras_.coverage && i < part.count; ++i) {
            extras_.coverage->add(points[i]);
        }
    }
}

void LayerPainter::addLabel(const FlatShape& shape, std::string_view text, const Pens& pens) {
    const FlatShape::Part* largest = nullptr;
    double size = -1;
    for (const FlatShape::Part& part : shape.parts) {
        const double own = isFilled(part)                ? areaOf(shape, part)
                           : part.kind == PartKind::Line ? part.count * 1e-3
                                                         : 0;
        if (own > size) {
            largest = &part;
            size = own;
        }
    }
    LabelPlacer::Candidate candidate;
    candidate.priority = size;
    const QPointF* points = pointsOf(shape, *largest);
    if (isFilled(*largest)) {
        const geometry::Envelope envelope = shape.envelopeOf(*largest);
        std::vector<double> crossings;
        std::pair<double, double> best{0, 0};
        double bestY = 0;
        // Near the middle of its height an area is mostly wide enough, and the label stands where one looks.
        for (const double share : {0.5, 0.42, 0.58, 0.34, 0.66, 0.25, 0.75}) {
            const double y = envelope.minY + share * (envelope.maxY - envelope.minY);
            if (const auto stretch = widestStretch(shape, y, crossings);
                stretch.second > 1.25 * best.second) {
                best = stretch;
                bestY = y;
            }
        }
        candidate.anchor = {best.first, bestY};
        candidate.position = LabelPlacer::Position::Within;
        candidate.room = {best.second, envelope.maxY - envelope.minY};
    } else if (largest->kind == PartKind::Line || largest->kind == PartKind::Border) {
        candidate.anchor = points[largest->count / 2];
        candidate.distance = style_.lineWidth + 2;
    } else {
        candidate.anchor = *points;
        candidate.distance = pens.pointRadius + 2;
        candidate.priority = pens.pointRadius;
        const QPointF corner(pens.pointRadius, pens.pointRadius);
        extras_.labels->block(QRectF(*points - corner, *points + corner)); // no label hides another point
    }
    if (extras_.labels->takes(candidate.priority)) {
        candidate.text = QString::fromUtf8(text.data(), static_cast<int>(text.size()));
        extras_.labels->add(std::move(candidate));
    }
}

} // namespace orvane::maps
