#include "platform/geometry/editing/Access.h"

#include <algorithm>

namespace orvane::geometry {

namespace {

bool isCollectionKind(GeometryType type) {
    return (type >= GeometryType::MultiPoint && type <= GeometryType::GeometryCollection) ||
           type == GeometryType::MultiCurve || type == GeometryType::MultiSurface;
}

/// The positions of the parts one after the other, each without the one that the part before ends with.
CoordinateSequence joined(const CompoundCurve& curve) {
    std::vector<double> values;
    const std::size_t stride = strideOf(curve.dimensions());
    for (const GeometryPtr& part : curve.parts()) {
        const std::optional<CoordinateSequence> positions = positionsOf(*part);
        if (!positions || positions->dimensions() != curve.dimensions()) {
            continue;
        }
        const std::span<const double> own = positions->values();
        values.insert(values.end(),
                      own.begin() +
                          static_cast<std::ptrdiff_t>(values.empty() ? 0 : std::min(stride, own.size())),
                      own.end());
    }
    return {curve.dimensions(), values};
}

} // namespace

const std::vector<GeometryPtr>* partsOf(const Geometry& geometry) {
    return isCollectionKind(geometry.type()) ? &static_cast<const GeometryCollection&>(geometry).parts()
                                             : nullptr;
}

const Geometry& onlyPart(const Geometry& geometry) {
    const std::vector<GeometryPtr>* parts = partsOf(geometry);
    return parts && parts->size() == 1 ? onlyPart(*parts->front()) : geometry;
}

bool isCurveKind(GeometryType type) {
    return type == GeometryType::LineString || type == GeometryType::CircularString ||
           type == GeometryType::CompoundCurve;
}

bool isSurfaceKind(GeometryType type) {
    return type == GeometryType::Polygon || type == GeometryType::CurvePolygon;
}

std::optional<CoordinateSequence> positionsOf(const Geometry& curve) {
    switch (curve.type()) {
    case GeometryType::LineString: return static_cast<const LineString&>(curve).coordinates();
    case GeometryType::CircularString: return static_cast<const CircularString&>(curve).coordinates();
    case GeometryType::CompoundCurve: return joined(static_cast<const CompoundCurve&>(curve));
    default: return std::nullopt;
    }
}

std::optional<std::size_t> ringCount(const Geometry& surface) {
    switch (surface.type()) {
    case GeometryType::Polygon: return static_cast<const Polygon&>(surface).rings().size();
    case GeometryType::CurvePolygon: return static_cast<const CurvePolygon&>(surface).rings().size();
    default: return std::nullopt;
    }
}

GeometryPtr ring(const Geometry& surface, std::size_t index) {
    if (surface.type() == GeometryType::Polygon) {
        return std::make_shared<LineString>(static_cast<const Polygon&>(surface).rings()[index]);
    }
    return static_cast<const CurvePolygon&>(surface).rings()[index];
}

void visitPositions(const Geometry& geometry, const RunVisitor& visit) {
    if (geometry.type() == GeometryType::Point) {
        if (!geometry.isEmpty()) {
            visit(static_cast<const Point&>(geometry).ordinates(), 1, geometry.dimensions());
        }
    } else if (const auto positions = positionsOf(geometry)) {
        visit(positions->data(), positions->size(), positions->dimensions());
    } else if (const auto rings = ringCount(geometry)) {
        for (std::size_t i = 0; i < *rings; ++i) {
            visitPositions(*ring(geometry, i), visit);
        }
    } else if (const auto* parts = partsOf(geometry)) {
        for (const GeometryPtr& part : *parts) {
            visitPositions(*part, visit);
        }
    }
}

int topologicalDimension(const Geometry& geometry) {
    switch (geometry.type()) {
    case GeometryType::Point:
    case GeometryType::MultiPoint: return 0;
    case GeometryType::LineString:
    case GeometryType::CircularString:
    case GeometryType::CompoundCurve:
    case GeometryType::MultiLineString:
    case GeometryType::MultiCurve: return 1;
    case GeometryType::GeometryCollection: {
        int highest = 0;
        for (const GeometryPtr& part : *partsOf(geometry)) {
            highest = std::max(highest, topologicalDimension(*part));
        }
        return highest;
    }
    default: return 2;
    }
}

} // namespace orvane::geometry
