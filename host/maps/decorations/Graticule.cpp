#include "host/maps/decorations/Graticule.h"

#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace orvane::maps {

namespace {

std::shared_ptr<cs::CoordSystem> degrees() {
    return cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(4326);
}

/// The globe as a ring, cut where the projection cuts it.
FlatShape globe(const MapPlane& plane) {
    FlatShape shape;
    const double west = plane.centralMeridian - plane.halfWidth;
    const double east = plane.centralMeridian + plane.halfWidth;
    shape.add(west, plane.south);
    shape.add(east, plane.south);
    shape.add(east, plane.north);
    shape.add(west, plane.north);
    shape.endPart(PartKind::Ring, 0);
    return shape;
}

void drawLines(QPainter& painter, LayerProjection& projection, FlatShape& line) {
    projection.toPixels(line);
    for (const FlatShape::Part& part : line.parts) {
        QPolygonF points;
        for (std::uint32_t i = part.begin; i < part.begin + part.count; ++i) {
            points << QPointF(line.position(i)[0], line.position(i)[1]);
        }
        painter.drawPolyline(points);
    }
    line.clear();
}

/// The distance between lines that gives about six of them.
double roundStep(double span) {
    constexpr double steps[] = {30, 20, 15, 10, 5, 2, 1, 0.5, 0.25, 1.0 / 6, 1.0 / 12, 1.0 / 30, 1.0 / 60};
    for (const double step : steps) {
        if (span / step >= 5) {
            return step;
        }
    }
    return steps[std::size(steps) - 1];
}

} // namespace

bool showsGlobe(const std::shared_ptr<cs::CoordSystem>& map, const View& view) {
    if (!map) {
        return false;
    }
    const PlaneProjection projection(degrees(), map);
    const MapPlane& plane = projection.plane();
    const auto west = projection.toPlane({plane.centralMeridian - 0.999 * plane.halfWidth, 0});
    const auto east = projection.toPlane({plane.centralMeridian + 0.999 * plane.halfWidth, 0});
    const geometry::Envelope extent = view.extent();
    return plane.isWorld && west && east && extent.maxX - extent.minX > 0.6 * (east->x() - west->x());
}

void drawGlobe(QPainter& painter, const std::shared_ptr<cs::CoordSystem>& map, const View& view,
               const QColor& fill, const QColor& outline) {
    if (!map) {
        return;
    }
    LayerProjection projection(degrees(), map, view);
    FlatShape shape = globe(planeOf(*map));
    projection.toPixels(shape);
    painter.setBrush(fill);
    painter.setPen(QPen(outline, 0.7));
    for (const FlatShape::Part& part : shape.parts) {
        if (part.kind == PartKind::Ring || part.kind == PartKind::Area) {
            QPolygonF points;
            for (std::uint32_t i = part.begin; i < part.begin + part.count; ++i) {
                points << QPointF(shape.position(i)[0], shape.position(i)[1]);
            }
            painter.drawPolygon(points);
        }
    }
}

void drawGraticule(QPainter& painter, const std::shared_ptr<cs::CoordSystem>& map, const View& view,
                   const QColor& colour) {
    if (!map) {
        return;
    }
    LayerProjection projection(degrees(), map, view);
    const MapPlane plane = planeOf(*map);
    geometry::Envelope seen = projection.visible();
    if (!std::isfinite(seen.minX)) {
        seen = {plane.centralMeridian - plane.halfWidth, plane.south, plane.centralMeridian + plane.halfWidth,
                plane.north};
    }
    const double step = roundStep(std::min(seen.maxX - seen.minX, 1.6 * (seen.maxY - seen.minY)));
    painter.setPen(QPen(colour, 0.6));
    painter.setBrush(Qt::NoBrush);
    FlatShape line;
    const double south = std::max(seen.minY, -90.0);
    const double north = std::min(seen.maxY, 90.0);
    for (double longitude = std::ceil(seen.minX / step) * step; longitude <= seen.maxX + 1e-9;
         longitude += step) {
        // Near the poles only every third goes on.
        const bool isLong = std::abs(std::remainder(longitude, 3 * step)) < 1e-6 || step < 5;
        const double reach = isLong ? 90 : 90 - step;
        if (std::max(south, -reach) < std::min(north, reach)) {
            line.add(longitude, std::max(south, -reach));
            line.add(longitude, std::min(north, reach));
            line.endPart(PartKind::Line, 0);
            drawLines(painter, projection, line);
        }
    }
    for (double latitude = std::ceil(south / step) * step; latitude <= north + 1e-9; latitude += step) {
        if (std::abs(latitude) > 90 - 1e-9) {
            continue;
        }
        const double middle = (seen.minX + seen.maxX) / 2; // a step of 360 degrees would be none
        line.add(seen.minX, latitude);
        line.add(middle, latitude);
        line.add(seen.maxX, latitude);
        line.endPart(PartKind::Line, 0);
        drawLines(painter, projection, line);
    }
}

} // namespace orvane::maps
