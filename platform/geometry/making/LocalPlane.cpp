#include "platform/geometry/making/LocalPlane.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::geometry {

namespace {

constexpr double radians = std::numbers::pi / 180.0;

} // namespace

GEOSCoordSequence* LocalPlane::sequence(std::span<const Position> positions, std::size_t least) const {
    std::vector<double> values;
    values.reserve(2 * std::max(positions.size(), least));
    for (const Position& position : positions) {
        double distance = 0.0;
        double azimuth = 0.0;
        geod_inverse(&shape_->ellipsoid, middle_.latitude, middle_.longitude, position.latitude,
                     position.longitude, &distance, &azimuth, nullptr);
        values.insert(values.end(),
                      {distance * std::sin(azimuth * radians), distance * std::cos(azimuth * radians)});
    }
    while (values.size() < 2 * least) {
        values.insert(values.end(), {values[values.size() - 2], values[values.size() - 1]});
    }
    GEOSCoordSequence* const made = GEOSCoordSeq_copyFromBuffer_r(
        geosContext(), values.data(), static_cast<unsigned>(values.size() / 2), 0, 0);
    if (!made) {
        throwGeosError();
    }
    return made;
}

GeosPtr LocalPlane::line(std::span<const Position> positions) const {
    return checked(positions.size() == 1
                       ? GEOSGeom_createPoint_r(geosContext(), sequence(positions, 1))
                       : GEOSGeom_createLineString_r(geosContext(), sequence(positions, 2)));
}

GeosPtr LocalPlane::ring(std::span<const Position> positions) const {
    return checked(GEOSGeom_createLinearRing_r(geosContext(), sequence(positions, 4)));
}

GeosPtr LocalPlane::area(std::vector<GeosPtr> rings) {
    std::vector<GEOSGeometry*> holes;
    for (std::size_t i = 1; i < rings.size(); ++i) {
        holes.push_back(rings[i].release());
    }
    GeosPtr area = checked(GEOSGeom_createPolygon_r(geosContext(), rings.front().release(), holes.data(),
                                                    static_cast<unsigned>(holes.size())));
    return GEOSisValid_r(geosContext(), area.get()) == 1
               ? std::move(area)
               : checked(GEOSMakeValid_r(geosContext(), area.get()));
}

GlobePosition LocalPlane::positionOf(Planar place) const {
    GlobePosition position{};
    geod_direct(&shape_->ellipsoid, middle_.latitude, middle_.longitude,
                std::atan2(place.x, place.y) / radians, std::hypot(place.x, place.y), &position.latitude,
                &position.longitude, nullptr);
    return position;
}

/// Appends what follows the begin, up to the end: on the map it has to be right between positions, too.
void LocalPlane::appendTo(GlobeRing& ring, Planar begin, const GlobePosition& atBegin, Planar end,
                          const GlobePosition& atEnd, double longest, int depth) const {
    constexpr double widest = 4.0; // degrees
    constexpr double shortest = 1.0;
    const double length = std::hypot(end.x - begin.x, end.y - begin.y);
    const double turned = std::abs(std::remainder(atEnd.longitude - atBegin.longitude, 360.0));
    if (depth > 0 && (length > longest || (turned > widest && length > shortest))) {
        const Planar middle{(begin.x + end.x) / 2.0, (begin.y + end.y) / 2.0};
        const GlobePosition atMiddle = positionOf(middle);
        appendTo(ring, begin, atBegin, middle, atMiddle, longest, depth - 1);
        appendTo(ring, middle, atMiddle, end, atEnd, longest, depth - 1);
    } else {
        ring.push_back(atEnd);
    }
}

/// With what it encloses in the plane to its left.
GlobeRing LocalPlane::ringOf(const GEOSGeometry* ring, double longest) const {
    const GEOSCoordSequence* const positions = GEOSGeom_getCoordSeq_r(geosContext(), ring);
    unsigned size = 0;
    char isLeft = 0;
    if (!positions || !GEOSCoordSeq_getSize_r(geosContext(), positions, &size) ||
        !GEOSCoordSeq_isCCW_r(geosContext(), positions, &isLeft)) {
        throwGeosError();
    }
    std::vector<Planar> places(size);
    for (unsigned i = 0; i < size; ++i) {
        GEOSCoordSeq_getXY_r(geosContext(), positions, i, &places[i].x, &places[i].y);
    }
    if (!isLeft) {
        std::reverse(places.begin(), places.end());
    }
    GlobeRing onGlobe;
    onGlobe.reserve(size);
    GlobePosition before = positionOf(places.front());
    constexpr int deepest = 24;
    for (std::size_t i = 1; i < places.size(); ++i) {
        const GlobePosition here = positionOf(places[i]);
        appendTo(onGlobe, places[i - 1], before, places[i], here, longest, deepest);
        before = here;
    }
    return onGlobe;
}

void LocalPlane::gather(const GEOSGeometry* areas, double longest, std::vector<GeosPtr>& parts) const {
    const auto context = geosContext();
    if (GEOSisEmpty_r(context, areas) != 0) {
        return;
    }
    if (GEOSGeomTypeId_r(context, areas) != GEOS_POLYGON) {
        const int count = GEOSGetNumGeometries_r(context, areas);
        for (int i = 0; i < count && GEOSGeomTypeId_r(context, areas) >= GEOS_MULTIPOINT; ++i) {
            gather(GEOSGetGeometryN_r(context, areas, i), longest, parts);
        }
        return;
    }
    GeosPtr area = globeAreaLeftOf(ringOf(GEOSGetExteriorRing_r(context, areas), longest));
    const int holes = GEOSGetNumInteriorRings_r(context, areas);
    for (int i = 0; i < holes; ++i) {
        const GeosPtr hole = globeAreaLeftOf(ringOf(GEOSGetInteriorRingN_r(context, areas, i), longest));
        area = checked(GEOSDifference_r(context, area.get(), hole.get()));
    }
    parts.push_back(std::move(area));
}

GeosPtr LocalPlane::onMap(const GEOSGeometry* areas, double longest) const {
    std::vector<GeosPtr> parts;
    gather(areas, longest, parts);
    return unitedAreas(std::move(parts));
}

} // namespace orvane::geometry
