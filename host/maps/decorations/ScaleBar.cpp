#include "host/maps/decorations/ScaleBar.h"

#include "host/maps/projection/LayerProjection.h"

#include <QCoreApplication>
#include <QFontMetricsF>
#include <QLocale>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace orvane::maps {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::maps)
};

constexpr double barHeight = 5;

/// Metres on a sphere (haversine), within half a percent of the ellipsoid.
double groundDistance(QPointF a, QPointF b) {
    constexpr double radius = 6371008.8;
    constexpr double toRadians = std::numbers::pi / 180;
    const double sinY = std::sin((b.y() - a.y()) * toRadians / 2);
    const double sinX = std::sin((b.x() - a.x()) * toRadians / 2);
    const double h = sinY * sinY + std::cos(a.y() * toRadians) * std::cos(b.y() * toRadians) * sinX * sinX;
    return 2 * radius * std::asin(std::sqrt(std::min(1.0, h)));
}

} // namespace

ScaleBar scaleBarOf(const std::shared_ptr<cs::CoordSystem>& map, const View& view, double most) {
    if (!map) {
        return {};
    }
    const auto degrees = cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(4326);
    const PlaneProjection projection(degrees, map);
    double least = std::numeric_limits<double>::infinity();
    double greatest = 0;
    double inTheMiddle = 0;
    for (int i = 0; i < 9; ++i) {
        const QPointF pixel(view.size().width() * (i % 3 * 0.4 + 0.1),
                            view.size().height() * (i / 3 * 0.4 + 0.1));
        for (const QPointF step : {QPointF(1, 0), QPointF(0, 1)}) {
            const auto from = projection.toLayer(view.toPlane(pixel - step));
            const auto to = projection.toLayer(view.toPlane(pixel + step));
            const double metres = from && to ? groundDistance(*from, *to) / 2 : 0.0;
            if (!(metres > 0)) {
                return {};
            }
            least = std::min(least, metres);
            greatest = std::max(greatest, metres);
            inTheMiddle = i == 4 && step.x() > 0 ? metres : inTheMiddle;
        }
    }
    if (greatest > 1.1 * least) {
        return {};
    }
    const double longest = most * inTheMiddle;
    const double power = std::pow(10, std::floor(std::log10(longest)));
    const double length = longest >= 5 * power ? 5 * power : longest >= 2 * power ? 2 * power : power;
    const bool isLong = length >= 1000;
    const QString number = QLocale().toString(isLong ? length / 1000 : length, 'g', 12);
    return {isLong ? Texts::tr("%0 км").arg(number) : Texts::tr("%0 м").arg(number), length / inTheMiddle};
}

QSizeF sizeOf(const ScaleBar& bar, const QFont& font) {
    const QFontMetricsF metrics(font);
    return {std::max(bar.pixels, metrics.horizontalAdvance(bar.text)) + 2, metrics.height() + barHeight + 2};
}

void drawScaleBar(QPainter& painter, const ScaleBar& bar, QPointF upperLeft, const QFont& font) {
    const QFontMetricsF metrics(font);
    const QColor ink(0x30, 0x30, 0x30);
    painter.setFont(font);
    painter.setPen(ink);
    painter.drawText(QPointF(upperLeft.x() + (bar.pixels - metrics.horizontalAdvance(bar.text)) / 2,
                             upperLeft.y() + metrics.ascent()),
                     bar.text);
    const double top = upperLeft.y() + metrics.height() + 1;
    const QPointF bracket[] = {{upperLeft.x(), top},
                               {upperLeft.x(), top + barHeight},
                               {upperLeft.x() + bar.pixels, top + barHeight},
                               {upperLeft.x() + bar.pixels, top}};
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(ink, 1.3, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawPolyline(bracket, 4);
}

} // namespace orvane::maps
