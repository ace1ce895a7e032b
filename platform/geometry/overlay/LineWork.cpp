#include "platform/geometry/overlay/LineWork.h"

#include "platform/geometry/overlay/GeosOperation.h"
#include "platform/geometry/overlay/Parts.h"
#include "platform/geometry/shapes/Curves.h"
#include "platform/geometry/shapes/Failure.h"

#include <map>
#include <utility>
#include <vector>

namespace orvane::geometry {

namespace {

using Place = std::pair<double, double>;

GeosPtr linesOf(const GEOSGeometry* form) {
    std::vector<GeosPtr> lines;
    for (const GEOSGeometry* line : partsOf(form, 1)) {
        lines.push_back(copyOf(line));
    }
    return collectionOf(GEOS_MULTILINESTRING, std::move(lines));
}

GeosPtr merged(const GEOSGeometry* lines) {
    return checked(GEOSLineMerge_r(geosContext(), lines));
}

/// Whether lines end, or pass, in places.
struct Ends {
    int ofLines = 0;
    int ofPieces = 0;
};

void countEnds(const GEOSGeometry* lines, std::map<Place, Ends>& places, int Ends::*count) {
    const GEOSContextHandle_t context = geosContext();
    for (const GEOSGeometry* line : partsOf(lines, 1)) {
        const GEOSCoordSequence* sequence = GEOSGeom_getCoordSeq_r(context, line);
        unsigned size = 0;
        GEOSCoordSeq_getSize_r(context, sequence, &size);
        for (const unsigned index : {0U, size - 1}) {
            Place place;
            GEOSCoordSeq_getXY_r(context, sequence, index, &place.first, &place.second);
            ++(places[place].*count);
        }
    }
}

/// The rings that the lines of a geometry are, in the kinds that they have.
std::vector<GeometryPtr> closedLines(const GeometryPtr& geometry) {
    std::vector<GeometryPtr> rings;
    forEachPart(geometry, [&](const GeometryPtr& part) {
        if (dimensionOf(*part) != 1) {
            throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "Полигон строится из замкнутых линий."));
        }
        const GeometryPtr linear = linearized(part);
        const CoordinateSequence& positions = static_cast<const LineString&>(*linear).coordinates();
        if (positions.size() < 4 || !positions.isClosed()) {
            throw failure(QT_TRANSLATE_NOOP("orvane::geometry",
                                            "Полигон строится из замкнутых линий; эта линия не замкнута."));
        }
        rings.push_back(part);
    });
    return rings;
}

} // namespace

std::shared_ptr<Geometry> mergedLines(const Geometry& geometry) {
    return madeFrom(geometry, merged(linesOf(finiteForm(geometry).get()).get()).get());
}

std::shared_ptr<Geometry> nodedLines(const Geometry& geometry) {
    const GeosPtr lines = lineWorkOf(finiteForm(geometry).get());
    return madeFrom(geometry, checked(GEOSUnaryUnion_r(geosContext(), lines.get())).get());
}

std::shared_ptr<Geometry> ringsCutAtNodes(const Geometry& geometry) {
    const GeosPtr form = finiteForm(geometry);
    std::vector<GeosPtr> areas;
    for (const GEOSGeometry* area : partsOf(form.get(), 2)) {
        areas.push_back(copyOf(area));
    }
    const GeosPtr rings = lineWorkOf(collectionOf(GEOS_GEOMETRYCOLLECTION, std::move(areas)).get());
    const GeosPtr noded = checked(GEOSUnaryUnion_r(geosContext(), rings.get()));
    return madeFrom(geometry, merged(noded.get()).get());
}

std::shared_ptr<Geometry> selfIntersections(const Geometry& geometry) {
    const GeosPtr lines = lineWorkOf(finiteForm(geometry).get());
    const GeosPtr pieces = checked(GEOSUnaryUnion_r(geosContext(), lines.get()));
    std::map<Place, Ends> places;
    countEnds(lines.get(), places, &Ends::ofLines);
    countEnds(pieces.get(), places, &Ends::ofPieces);
    std::vector<GeometryPtr> points;
    for (const auto& [place, ends] : places) {
        if (ends.ofPieces != ends.ofLines) {
            points.push_back(std::make_shared<Point>(place.first, place.second));
        }
    }
    std::shared_ptr<Geometry> result = multiOf(0, Dimensions::XY, std::move(points));
    result->setCoordSystem(geometry.coordSystem());
    return result;
}

std::shared_ptr<Geometry> sharedPaths(const Geometry& a, const Geometry& b) {
    const GeosPtr linesA = lineWorkOf(finiteForm(a).get());
    const GeosPtr linesB = lineWorkOf(finiteForm(b).get());
    const GeosPtr shared = checked(GEOSIntersection_r(geosContext(), linesA.get(), linesB.get()));
    const std::shared_ptr<Geometry> paths = madeFrom(a, merged(linesOf(shared.get()).get()).get());
    return extracted(paths, 1);
}

std::shared_ptr<Geometry> builtArea(const Geometry& geometry) {
    const GeosPtr lines = lineWorkOf(finiteForm(geometry).get());
    return madeFrom(geometry, checked(GEOSBuildArea_r(geosContext(), lines.get())).get());
}

std::shared_ptr<Geometry> polygonOf(const GeometryPtr& shell, const GeometryPtr& holes) {
    std::vector<GeometryPtr> rings = closedLines(shell);
    if (rings.size() != 1) {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "Граница полигона — одна замкнутая линия."));
    }
    if (holes) {
        const std::vector<GeometryPtr> inner = closedLines(holes);
        rings.insert(rings.end(), inner.begin(), inner.end());
    }
    const Dimensions dimensions = shell->dimensions();
    std::vector<CoordinateSequence> linear;
    bool curved = false;
    for (const GeometryPtr& ring : rings) {
        if (isCurved(*ring)) {
            curved = true;
        } else {
            linear.push_back(static_cast<const LineString&>(*ring).coordinates());
        }
    }
    std::shared_ptr<Geometry> polygon;
    if (curved) {
        polygon = std::make_shared<CurvePolygon>(dimensions, std::move(rings));
    } else {
        polygon = std::make_shared<Polygon>(dimensions, std::move(linear));
    }
    polygon->setCoordSystem(shell->coordSystem());
    return polygon;
}

} // namespace orvane::geometry
