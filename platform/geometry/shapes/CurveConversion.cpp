#include "platform/geometry/shapes/Curves.h"

#include <numbers>

namespace orvane::geometry {

namespace {

CoordinateSequence sequence(std::initializer_list<double> values) {
    return CoordinateSequence(Dimensions::XY, std::span(values.begin(), values.size()));
}

std::shared_ptr<Geometry> curvePolygon(std::vector<GeometryPtr> ringParts) {
    GeometryPtr ring = ringParts.size() == 1
                           ? std::move(ringParts.front())
                           : std::make_shared<CompoundCurve>(Dimensions::XY, std::move(ringParts));
    return std::make_shared<CurvePolygon>(Dimensions::XY, std::vector<GeometryPtr>{std::move(ring)});
}

/// Two half circles: some readers do not take a full one.
std::shared_ptr<Geometry> standardCircle(const Ellipse& circle) {
    const double x = circle.centreX();
    const double y = circle.centreY();
    const double r = circle.semiAxisA();
    return curvePolygon(
        {std::make_shared<CircularString>(sequence({x + r, y, x, y + r, x - r, y, x, y - r, x + r, y}))});
}

/// Corners that are quarters of a circle, joined by sides where there is something between them.
std::shared_ptr<Geometry> standardRoundedRectangle(const RoundedRectangle& source) {
    const auto& [minX, minY, maxX, maxY] = source.rectangle();
    const double r = source.radiusX();
    const double diagonal = r / std::numbers::sqrt2;
    std::vector<GeometryPtr> parts;
    const auto addSide = [&](double x0, double y0, double x1, double y1) {
        if (x0 != x1 || y0 != y1) {
            parts.push_back(std::make_shared<LineString>(sequence({x0, y0, x1, y1})));
        }
    };
    const auto addCorner = [&](double x0, double y0, double cx, double cy, double x1, double y1, int ux,
                               int uy) {
        parts.push_back(std::make_shared<CircularString>(
            sequence({x0, y0, cx + ux * diagonal, cy + uy * diagonal, x1, y1})));
    };
    addSide(minX + r, minY, maxX - r, minY);
    addCorner(maxX - r, minY, maxX - r, minY + r, maxX, minY + r, 1, -1);
    addSide(maxX, minY + r, maxX, maxY - r);
    addCorner(maxX, maxY - r, maxX - r, maxY - r, maxX - r, maxY, 1, 1);
    addSide(maxX - r, maxY, minX + r, maxY);
    addCorner(minX + r, maxY, minX + r, maxY - r, minX, maxY - r, -1, 1);
    addSide(minX, maxY - r, minX, minY + r);
    addCorner(minX, minY + r, minX + r, minY + r, minX + r, minY, -1, -1);
    return curvePolygon(std::move(parts));
}

/// The collection with its parts converted; the same pointer when nothing changed.
template<typename Convert>
GeometryPtr withParts(const GeometryPtr& collection, GeometryType type, const Convert& convert) {
    const auto& source = static_cast<const GeometryCollection&>(*collection);
    std::vector<GeometryPtr> parts;
    parts.reserve(source.parts().size());
    bool changed = type != source.type();
    for (const GeometryPtr& part : source.parts()) {
        parts.push_back(convert(part));
        changed = changed || parts.back() != part;
    }
    if (!changed) {
        return collection;
    }
    auto result = std::make_shared<GeometryCollection>(type, source.dimensions(), std::move(parts));
    result->setCoordSystem(source.coordSystem());
    return result;
}

bool isCollection(const Geometry& geometry) {
    switch (geometry.type()) {
    case GeometryType::GeometryCollection:
    case GeometryType::MultiCurve:
    case GeometryType::MultiSurface: return true;
    default: return false;
    }
}

} // namespace

bool isCurved(const Geometry& geometry) {
    if (isCollection(geometry)) {
        const auto& parts = static_cast<const GeometryCollection&>(geometry).parts();
        return std::any_of(parts.begin(), parts.end(),
                           [](const GeometryPtr& part) { return isCurved(*part); });
    }
    return geometry.type() >= GeometryType::CircularString;
}

GeometryPtr linearized(const GeometryPtr& geometry, QSizeF tolerance) {
    if (!geometry) {
        return nullptr;
    }
    if (const auto* curve = dynamic_cast<const ApproximableCurve*>(geometry.get())) {
        return curve->approximateGeometry(tolerance);
    }
    if (const auto* surface = dynamic_cast<const ApproximableSurface*>(geometry.get())) {
        return surface->approximateGeometry(tolerance);
    }
    if (!isCollection(*geometry)) {
        return geometry;
    }
    GeometryType type = geometry->type();
    if (type == GeometryType::MultiCurve) {
        type = GeometryType::MultiLineString;
    } else if (type == GeometryType::MultiSurface) {
        type = GeometryType::MultiPolygon;
    }
    return withParts(geometry, type, [&](const GeometryPtr& part) { return linearized(part, tolerance); });
}

GeometryPtr inStandardKinds(const GeometryPtr& geometry) {
    if (!geometry) {
        return nullptr;
    }
    std::shared_ptr<Geometry> result;
    if (geometry->type() == GeometryType::Ellipse) {
        const auto& ellipse = static_cast<const Ellipse&>(*geometry);
        if (!ellipse.isCircle()) {
            return ellipse.approximateGeometry(QSizeF());
        }
        result = standardCircle(ellipse);
    } else if (geometry->type() == GeometryType::RoundedRectangle) {
        const auto& rectangle = static_cast<const RoundedRectangle&>(*geometry);
        if (rectangle.radiusX() != rectangle.radiusY() || rectangle.radiusX() == 0.0) {
            return rectangle.approximateGeometry(QSizeF());
        }
        result = standardRoundedRectangle(rectangle);
    } else {
        return isCollection(*geometry) ? withParts(geometry, geometry->type(), inStandardKinds) : geometry;
    }
    result->setCoordSystem(geometry->coordSystem());
    return result;
}

} // namespace orvane::geometry
