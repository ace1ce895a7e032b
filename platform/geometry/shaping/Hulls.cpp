#include "platform/geometry/shaping/Hulls.h"

#include "platform/geometry/overlay/GeosOperation.h"
#include "platform/geometry/overlay/Parts.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace orvane::geometry {

namespace {

std::vector<GeosPtr> copiesOf(const GEOSGeometry* form, int dimension) {
    std::vector<GeosPtr> copies;
    for (const GEOSGeometry* part : partsOf(form, dimension)) {
        copies.push_back(copyOf(part));
    }
    return copies;
}

GeosPtr multiOf(const GEOSGeometry* form, int dimension) {
    constexpr int kinds[] = {GEOS_MULTIPOINT, GEOS_MULTILINESTRING, GEOS_MULTIPOLYGON};
    return collectionOf(kinds[dimension], copiesOf(form, dimension));
}

/// The only part, or all parts as one geometry of GEOS's choice.
GeosPtr joined(std::vector<GeosPtr> parts, int kind) {
    return parts.size() == 1 ? std::move(parts.front()) : collectionOf(kind, std::move(parts));
}

/// What lies in a rectangle, cell by cell.
GeosPtr clipped(const GEOSGeometry* form, const Envelope& frame, int dimension) {
    const GEOSContextHandle_t context = geosContext();
    const GeosPtr window =
        checked(GEOSGeom_createRectangle_r(context, frame.minX, frame.minY, frame.maxX, frame.maxY));
    if (dimension == 1) {
        return checked(GEOSIntersection_r(context, form, window.get()));
    }
    const work::Cancellation cancellation;
    std::vector<GeosPtr> cells;
    for (const GEOSGeometry* cell : partsOf(form, dimension)) {
        cancellation.check();
        const GeosPtr inside = checked(GEOSIntersection_r(context, cell, window.get()));
        for (const GEOSGeometry* part : partsOf(inside.get(), dimension)) {
            cells.push_back(copyOf(part));
        }
    }
    return collectionOf(GEOS_MULTIPOLYGON, std::move(cells));
}

/// The triangulation and the diagram are made of collections of areas, or of lines.
std::shared_ptr<Geometry> tessellation(const Geometry& source, const GEOSGeometry* made, bool onlyEdges) {
    return madeFrom(source, onlyEdges ? made : multiOf(made, 2).get());
}

} // namespace

std::shared_ptr<Geometry> convexHull(const Geometry& geometry) {
    return madeFrom(geometry, checked(GEOSConvexHull_r(geosContext(), finiteForm(geometry).get())).get());
}

std::shared_ptr<Geometry> concaveHull(const Geometry& geometry, double ratio, bool allowHoles) {
    const GeosPtr form = finiteForm(geometry);
    return madeFrom(geometry,
                    checked(GEOSConcaveHull_r(geosContext(), form.get(), ratio, allowHoles ? 1 : 0)).get());
}

std::shared_ptr<Geometry> rectangle(const Envelope& envelope) {
    const double width = envelope.maxX - envelope.minX;
    const double height = envelope.maxY - envelope.minY;
    if (envelope.isEmpty() || !std::isfinite(width) || !std::isfinite(height)) {
        return std::make_shared<Polygon>(Dimensions::XY, std::vector<CoordinateSequence>());
    }
    if (width == 0.0 && height == 0.0) {
        return std::make_shared<Point>(envelope.minX, envelope.minY);
    }
    if (width == 0.0 || height == 0.0) {
        const double ends[] = {envelope.minX, envelope.minY, envelope.maxX, envelope.maxY};
        return std::make_shared<LineString>(CoordinateSequence(Dimensions::XY, ends));
    }
    const double corners[] = {envelope.minX, envelope.minY, envelope.maxX, envelope.minY, envelope.maxX,
                              envelope.maxY, envelope.minX, envelope.maxY, envelope.minX, envelope.minY};
    return std::make_shared<Polygon>(Dimensions::XY,
                                     std::vector{CoordinateSequence(Dimensions::XY, corners)});
}

std::shared_ptr<Geometry> envelopeOf(const Geometry& geometry) {
    return expandedEnvelope(geometry, 0.0, 0.0);
}

std::shared_ptr<Geometry> expandedEnvelope(const Geometry& geometry, double dx, double dy) {
    Envelope envelope = geometry.envelope();
    envelope.minX -= dx;
    envelope.maxX += dx;
    envelope.minY -= dy;
    envelope.maxY += dy;
    std::shared_ptr<Geometry> result = rectangle(envelope);
    result->setCoordSystem(geometry.coordSystem());
    return result;
}

std::shared_ptr<Geometry> boundary(const Geometry& geometry) {
    const GeosPtr form = finiteForm(geometry);
    std::vector<GeosPtr> borders;
    for (const int dimension : {1, 2}) {
        const GeosPtr border = checked(GEOSBoundary_r(geosContext(), multiOf(form.get(), dimension).get()));
        for (GeosPtr& part : copiesOf(border.get(), dimension - 1)) {
            borders.push_back(std::move(part));
        }
    }
    const bool hasLines = !partsOf(form.get(), 1).empty();
    const bool hasAreas = !partsOf(form.get(), 2).empty();
    const int kind = hasLines == hasAreas ? GEOS_GEOMETRYCOLLECTION
                     : hasAreas           ? GEOS_MULTILINESTRING
                                          : GEOS_MULTIPOINT;
    return madeFrom(geometry, joined(std::move(borders), kind).get());
}

std::shared_ptr<Geometry> collapsedParts(const GeometryPtr& geometry) {
    const int dimension = dimensionOf(*geometry);
    const GeosPtr valid = checked(GEOSMakeValid_r(geosContext(), finiteForm(*geometry).get()));
    std::vector<GeosPtr> parts;
    for (int lower = 0; lower < dimension; ++lower) {
        for (GeosPtr& part : copiesOf(valid.get(), lower)) {
            parts.push_back(std::move(part));
        }
    }
    return madeFrom(*geometry, joined(std::move(parts), GEOS_GEOMETRYCOLLECTION).get());
}

std::shared_ptr<Geometry> offsetCurve(const Geometry& geometry, double distance) {
    constexpr int quadrantSegments = 32;
    constexpr int roundJoin = 1;
    constexpr double mitreLimit = 5.0;
    const GeosPtr lines = lineWorkOf(finiteForm(geometry).get());
    std::vector<GeosPtr> curves;
    for (const GEOSGeometry* line : partsOf(lines.get(), 1)) {
        const GeosPtr curve = checked(
            GEOSOffsetCurve_r(geosContext(), line, distance, quadrantSegments, roundJoin, mitreLimit));
        for (GeosPtr& part : copiesOf(curve.get(), 1)) {
            curves.push_back(std::move(part));
        }
    }
    return madeFrom(geometry, joined(std::move(curves), GEOS_MULTILINESTRING).get());
}

std::shared_ptr<Geometry> voronoiDiagram(const Geometry& geometry, bool onlyEdges, double frame,
                                         double tolerance) {
    const GEOSContextHandle_t context = geosContext();
    const GeosPtr form = finiteForm(geometry);
    Envelope window = geometry.envelope();
    if (window.isEmpty()) {
        return tessellation(geometry, multiOf(form.get(), onlyEdges ? 1 : 2).get(), onlyEdges);
    }
    const double margin = std::max(window.maxX - window.minX, window.maxY - window.minY) * frame / 100;
    window = {window.minX - margin, window.minY - margin, window.maxX + margin, window.maxY + margin};
    const GeosPtr around =
        checked(GEOSGeom_createRectangle_r(context, window.minX, window.minY, window.maxX, window.maxY));
    const GeosPtr made =
        checked(GEOSVoronoiDiagram_r(context, form.get(), around.get(), tolerance, onlyEdges ? 1 : 0));
    return tessellation(geometry, clipped(made.get(), window, onlyEdges ? 1 : 2).get(), onlyEdges);
}

std::shared_ptr<Geometry> delaunayTriangulation(const Geometry& geometry, bool onlyEdges, double tolerance) {
    const GeosPtr form = finiteForm(geometry);
    const GeosPtr made =
        checked(GEOSDelaunayTriangulation_r(geosContext(), form.get(), tolerance, onlyEdges ? 1 : 0));
    return tessellation(geometry, made.get(), onlyEdges);
}

} // namespace orvane::geometry
