#include "host/maps/decorations/Legend.h"

#include <QFontMetricsF>

#include <algorithm>

namespace orvane::maps {

namespace {

/// The measures of a legend in a font.
struct Layout {
    explicit Layout(const QFont& font) : metrics(font) {
        line = metrics.height() * 1.25;
        padding = metrics.height() * 0.6;
        symbolWidth = metrics.height() * 1.7;
        gap = metrics.height() * 0.5;
    }
    QFontMetricsF metrics;
    double line, padding, symbolWidth, gap;
};

QFont bold(QFont font) {
    font.setBold(true);
    return font;
}

void drawSymbol(QPainter& painter, const Legend& legend, const Classes::Class& each, const QRectF& rect) {
    painter.setPen(QPen(legend.style.outline, legend.style.outlineWidth));
    painter.setBrush(each.colour);
    switch (legend.symbol) {
    case Legend::Symbol::Area: painter.drawRect(rect); return;
    case Legend::Symbol::Line:
        painter.setPen(QPen(each.colour, std::max(2.0, legend.style.lineWidth)));
        painter.drawLine(QPointF(rect.left(), rect.center().y()), QPointF(rect.right(), rect.center().y()));
        return;
    case Legend::Symbol::Point: {
        painter.setPen(QPen(QColor(0x40, 0x40, 0x40), 0.6));
        const double radius = std::min(legend.style.pointRadius * each.scale, rect.height() * 0.6);
        painter.drawEllipse(rect.center(), radius, radius);
        return;
    }
    }
}

} // namespace

QSizeF sizeOf(const Legend& legend, const QFont& font) {
    const Layout layout(font);
    double width = legend.title.isEmpty() ? 0 : QFontMetricsF(bold(font)).horizontalAdvance(legend.title);
    double height = legend.title.isEmpty() ? 0 : layout.line;
    for (const Classes::Class& each : legend.style.classes->classes()) {
        width =
            std::max(width, layout.symbolWidth + layout.gap + layout.metrics.horizontalAdvance(each.title));
        height += layout.line;
    }
    return {width + 2 * layout.padding, height + 2 * layout.padding};
}

void drawLegend(QPainter& painter, const Legend& legend, QPointF upperLeft, const QFont& font) {
    const Layout layout(font);
    painter.setPen(QPen(QColor(0xC0, 0xC0, 0xC0), 0.8));
    painter.setBrush(QColor(255, 255, 255, 225));
    painter.drawRect(QRectF(upperLeft, sizeOf(legend, font)));
    const QColor ink(0x20, 0x20, 0x20);
    const double left = upperLeft.x() + layout.padding;
    double top = upperLeft.y() + layout.padding;
    const double toBaseline = (layout.line - layout.metrics.height()) / 2 + layout.metrics.ascent();
    if (!legend.title.isEmpty()) {
        painter.setFont(bold(font));
        painter.setPen(ink);
        painter.drawText(QPointF(left, top + toBaseline), legend.title);
        top += layout.line;
    }
    painter.setFont(font);
    for (const Classes::Class& each : legend.style.classes->classes()) {
        drawSymbol(painter, legend, each,
                   {left, top + layout.line * 0.15, layout.symbolWidth, layout.line * 0.7});
        painter.setPen(ink);
        painter.drawText(QPointF(left + layout.symbolWidth + layout.gap, top + toBaseline), each.title);
        top += layout.line;
    }
}

} // namespace orvane::maps
