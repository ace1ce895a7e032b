#include "platform/geometry/shaping/Sequences.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace orvane::geometry {

namespace {

std::shared_ptr<Geometry> pointWith(const Point& point, const SequenceMap& map) {
    if (point.isEmpty()) {
        return point.clone();
    }
    const Dimensions dimensions = point.dimensions();
    const CoordinateSequence mapped = map(
        CoordinateSequence(dimensions, std::span(point.ordinates(), strideOf(dimensions))), Role::Position);
    return mapped.isEmpty() ? std::make_shared<Point>(dimensions)
                            : std::make_shared<Point>(dimensions, mapped.data());
}

std::shared_ptr<Geometry> polygonWith(const Polygon& polygon, const SequenceMap& map) {
    std::vector<CoordinateSequence> rings;
    for (const CoordinateSequence& ring : polygon.rings()) {
        CoordinateSequence mapped = map(ring, &ring == &polygon.rings().front() ? Role::Shell : Role::Hole);
        if (!mapped.isEmpty()) {
            rings.push_back(std::move(mapped));
        } else if (rings.empty()) {
            break;
        }
    }
    return std::make_shared<Polygon>(polygon.dimensions(), std::move(rings));
}

std::shared_ptr<Geometry> collectionWith(const GeometryCollection& collection, const SequenceMap& map) {
    std::vector<GeometryPtr> parts;
    for (const GeometryPtr& part : collection.parts()) {
        GeometryPtr mapped = withSequences(*part, map);
        if (!mapped->isEmpty()) {
            parts.push_back(std::move(mapped));
        }
    }
    return std::make_shared<GeometryCollection>(collection.type(), collection.dimensions(), std::move(parts));
}

} // namespace

std::shared_ptr<Geometry> withSequences(const Geometry& linear, const SequenceMap& map) {
    std::shared_ptr<Geometry> result;
    switch (linear.type()) {
    case GeometryType::Point: result = pointWith(static_cast<const Point&>(linear), map); break;
    case GeometryType::LineString:
        result = std::make_shared<LineString>(
            map(static_cast<const LineString&>(linear).coordinates(), Role::Line));
        break;
    case GeometryType::Polygon: result = polygonWith(static_cast<const Polygon&>(linear), map); break;
    default: result = collectionWith(static_cast<const GeometryCollection&>(linear), map);
    }
    result->setCoordSystem(linear.coordSystem());
    return result;
}

/// The shoelace formula about the first position, so that large coordinates lose nothing.
double doubledArea(const CoordinateSequence& ring) {
    double area = 0.0;
    for (std::size_t i = 1; i + 1 < ring.size(); ++i) {
        area += (ring.x(i) - ring.x(0)) * (ring.y(i + 1) - ring.y(0)) -
                (ring.x(i + 1) - ring.x(0)) * (ring.y(i) - ring.y(0));
    }
    return area;
}

CoordinateSequence reversedSequence(const CoordinateSequence& positions) {
    const std::size_t stride = positions.stride();
    return CoordinateSequence(positions.dimensions(), positions.size(), [&](double* target) {
        for (std::size_t i = positions.size(); i-- > 0; target += stride) {
            std::copy_n(positions.position(i), stride, target);
        }
    });
}

} // namespace orvane::geometry
