#include "platform/geometry/overlay/Parts.h"

#include "platform/geometry/shapes/Curves.h"
#include "platform/geometry/shapes/Failure.h"

#include <algorithm>

namespace orvane::geometry {

namespace {

bool isCollection(GeometryType type) {
    switch (type) {
    case GeometryType::MultiPoint:
    case GeometryType::MultiLineString:
    case GeometryType::MultiPolygon:
    case GeometryType::GeometryCollection:
    case GeometryType::MultiCurve:
    case GeometryType::MultiSurface: return true;
    default: return false;
    }
}

int dimensionOfPart(GeometryType type) {
    switch (type) {
    case GeometryType::Point: return 0;
    case GeometryType::LineString:
    case GeometryType::CircularString:
    case GeometryType::CompoundCurve: return 1;
    default: return 2;
    }
}

std::shared_ptr<Geometry> inSystemOf(const GeometryPtr& source, std::shared_ptr<Geometry> made) {
    made->setCoordSystem(source->coordSystem());
    return made;
}

void requireFewParts(std::size_t count) {
    if (count > mostParts) {
        throwTooManyParts();
    }
}

/// Calls `visit` with the positions of every line and ring of a geometry without curves, and of every point.
template<typename Visit>
void forEachSequence(const GeometryPtr& linear, const Visit& visit) {
    forEachPart(linear, [&](const GeometryPtr& part) {
        switch (part->type()) {
        case GeometryType::Point:
            if (!part->isEmpty()) {
                visit(CoordinateSequence(
                    part->dimensions(),
                    std::span(static_cast<const Point&>(*part).ordinates(), strideOf(part->dimensions()))));
            }
            break;
        case GeometryType::LineString: visit(static_cast<const LineString&>(*part).coordinates()); break;
        default:
            for (const CoordinateSequence& ring : static_cast<const Polygon&>(*part).rings()) {
                visit(ring);
            }
        }
    });
}

} // namespace

void throwTooManyParts() {
    throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "В результате было бы больше %0 частей."),
                  QString::number(mostParts));
}

void forEachPart(const GeometryPtr& geometry, const std::function<void(const GeometryPtr&)>& visit) {
    if (!isCollection(geometry->type())) {
        visit(geometry);
        return;
    }
    for (const GeometryPtr& part : static_cast<const GeometryCollection&>(*geometry).parts()) {
        forEachPart(part, visit);
    }
}

int dimensionOf(const Geometry& geometry) {
    if (!isCollection(geometry.type())) {
        return dimensionOfPart(geometry.type());
    }
    int dimension = -1;
    for (const GeometryPtr& part : static_cast<const GeometryCollection&>(geometry).parts()) {
        dimension = std::max(dimension, dimensionOf(*part));
    }
    return dimension;
}

std::shared_ptr<Geometry> multiOf(int dimension, Dimensions dimensions, std::vector<GeometryPtr> parts) {
    requireFewParts(parts.size());
    const bool curved =
        std::any_of(parts.begin(), parts.end(), [](const GeometryPtr& part) { return isCurved(*part); });
    const GeometryType kinds[] = {GeometryType::MultiPoint,
                                  curved ? GeometryType::MultiCurve : GeometryType::MultiLineString,
                                  curved ? GeometryType::MultiSurface : GeometryType::MultiPolygon};
    return std::make_shared<GeometryCollection>(kinds[dimension], dimensions, std::move(parts));
}

std::shared_ptr<Geometry> gathered(Dimensions dimensions, std::vector<GeometryPtr> parts) {
    requireFewParts(parts.size());
    if (parts.size() == 1) {
        return parts.front()->clone();
    }
    const int dimension = parts.empty() ? -1 : dimensionOf(*parts.front());
    const bool isUniform = std::all_of(parts.begin(), parts.end(), [dimension](const GeometryPtr& part) {
        return !isCollection(part->type()) && dimensionOf(*part) == dimension;
    });
    if (isUniform && dimension >= 0) {
        return multiOf(dimension, dimensions, std::move(parts));
    }
    return std::make_shared<GeometryCollection>(GeometryType::GeometryCollection, dimensions,
                                                std::move(parts));
}

std::shared_ptr<Geometry> extracted(const GeometryPtr& geometry, int dimension) {
    std::vector<GeometryPtr> found;
    forEachPart(geometry, [&](const GeometryPtr& part) {
        if (dimensionOfPart(part->type()) == dimension && !part->isEmpty()) {
            found.push_back(part);
        }
    });
    return inSystemOf(geometry, multiOf(dimension, geometry->dimensions(), std::move(found)));
}

std::shared_ptr<Geometry> ringsOf(const GeometryPtr& geometry) {
    const GeometryPtr standard = inStandardKinds(geometry);
    std::vector<GeometryPtr> rings;
    forEachPart(standard, [&](const GeometryPtr& part) {
        if (part->type() == GeometryType::Polygon) {
            for (const CoordinateSequence& ring : static_cast<const Polygon&>(*part).rings()) {
                rings.push_back(std::make_shared<LineString>(ring));
            }
        } else if (part->type() == GeometryType::CurvePolygon) {
            const auto& curves = static_cast<const CurvePolygon&>(*part).rings();
            rings.insert(rings.end(), curves.begin(), curves.end());
        }
    });
    return inSystemOf(geometry, multiOf(1, geometry->dimensions(), std::move(rings)));
}

std::shared_ptr<Geometry> segmentsOf(const GeometryPtr& geometry) {
    std::vector<GeometryPtr> parts;
    forEachSequence(linearized(geometry), [&](const CoordinateSequence& sequence) {
        requireFewParts(parts.size() + sequence.size());
        if (sequence.size() == 1) {
            parts.push_back(std::make_shared<Point>(sequence.dimensions(), sequence.data()));
        }
        for (std::size_t i = 1; i < sequence.size(); ++i) {
            parts.push_back(std::make_shared<LineString>(CoordinateSequence(
                sequence.dimensions(), std::span(sequence.position(i - 1), 2 * sequence.stride()))));
        }
    });
    const bool isOnlyPoints = geometry->type() == GeometryType::Point;
    return inSystemOf(geometry, parts.size() == 1 && !isOnlyPoints
                                    ? multiOf(dimensionOf(*parts.front()), geometry->dimensions(), parts)
                                    : gathered(geometry->dimensions(), std::move(parts)));
}

std::shared_ptr<Geometry> positionsOf(const GeometryPtr& geometry) {
    std::vector<GeometryPtr> points;
    forEachSequence(linearized(geometry), [&](const CoordinateSequence& sequence) {
        requireFewParts(points.size() + sequence.size());
        for (std::size_t i = 0; i < sequence.size(); ++i) {
            points.push_back(std::make_shared<Point>(sequence.dimensions(), sequence.position(i)));
        }
    });
    return inSystemOf(geometry, multiOf(0, geometry->dimensions(), std::move(points)));
}

std::shared_ptr<Geometry> collected(const GeometryPtr& a, const GeometryPtr& b) {
    std::vector<GeometryPtr> parts;
    for (const GeometryPtr& geometry : {a, b}) {
        forEachPart(geometry, [&](const GeometryPtr& part) {
            if (!part->isEmpty()) {
                parts.push_back(part);
            }
        });
    }
    return inSystemOf(a, gathered(parts.empty() ? a->dimensions() : parts.front()->dimensions(), parts));
}

} // namespace orvane::geometry
