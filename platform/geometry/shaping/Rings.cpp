#include "platform/geometry/shaping/Rings.h"

#include "platform/geometry/overlay/Parts.h"
#include "platform/geometry/shapes/Curves.h"
#include "platform/geometry/shaping/Sequences.h"
#include "platform/geometry/shaping/Vertices.h"

#include <algorithm>
#include <vector>

namespace orvane::geometry {

namespace {

std::shared_ptr<Geometry> reversedCurve(const CompoundCurve& curve) {
    std::vector<GeometryPtr> parts;
    for (auto part = curve.parts().rbegin(); part != curve.parts().rend(); ++part) {
        parts.push_back(reversed(**part));
    }
    return std::make_shared<CompoundCurve>(curve.dimensions(), std::move(parts));
}

/// Of a line or curve.
bool isClockwise(const GeometryPtr& ring) {
    const GeometryPtr linear = linearized(ring);
    return doubledArea(static_cast<const LineString&>(*linear).coordinates()) < 0.0;
}

/// Calls `change` with the rings and whether each is the shell.
template<typename Change>
std::shared_ptr<Geometry> withRings(const Geometry& geometry, const Change& change) {
    std::shared_ptr<Geometry> result;
    if (geometry.type() == GeometryType::Polygon) {
        std::vector<CoordinateSequence> rings = static_cast<const Polygon&>(geometry).rings();
        for (CoordinateSequence& ring : rings) {
            if (change(doubledArea(ring) < 0.0, &ring == rings.data())) {
                ring = reversedSequence(ring);
            }
        }
        result = std::make_shared<Polygon>(geometry.dimensions(), std::move(rings));
    } else if (geometry.type() == GeometryType::CurvePolygon) {
        std::vector<GeometryPtr> rings = static_cast<const CurvePolygon&>(geometry).rings();
        for (GeometryPtr& ring : rings) {
            if (change(isClockwise(ring), &ring == rings.data())) {
                ring = reversed(*ring);
            }
        }
        result = std::make_shared<CurvePolygon>(geometry.dimensions(), std::move(rings));
    } else if (const auto* collection = dynamic_cast<const GeometryCollection*>(&geometry)) {
        std::vector<GeometryPtr> parts = collection->parts();
        for (GeometryPtr& part : parts) {
            part = withRings(*part, change);
        }
        result =
            std::make_shared<GeometryCollection>(geometry.type(), geometry.dimensions(), std::move(parts));
    } else {
        return geometry.clone();
    }
    result->setCoordSystem(geometry.coordSystem());
    return result;
}

CoordinateSequence closed(const CoordinateSequence& ring) {
    if (ring.isEmpty() || ring.isClosed()) {
        return ring;
    }
    return CoordinateSequence(ring.dimensions(), ring.size() + 1, [&](double* target) {
        const auto end = std::copy(ring.values().begin(), ring.values().end(), target);
        std::copy_n(ring.data(), ring.stride(), end);
    });
}

} // namespace

std::shared_ptr<Geometry> reversed(const Geometry& geometry) {
    std::shared_ptr<Geometry> result;
    switch (geometry.type()) {
    case GeometryType::LineString:
        result = std::make_shared<LineString>(
            reversedSequence(static_cast<const LineString&>(geometry).coordinates()));
        break;
    case GeometryType::CircularString:
        result = std::make_shared<CircularString>(
            reversedSequence(static_cast<const CircularString&>(geometry).coordinates()));
        break;
    case GeometryType::CompoundCurve:
        result = reversedCurve(static_cast<const CompoundCurve&>(geometry));
        break;
    case GeometryType::Polygon:
    case GeometryType::CurvePolygon: return withRings(geometry, [](bool, bool) { return true; });
    default: {
        const auto* collection = dynamic_cast<const GeometryCollection*>(&geometry);
        if (!collection) {
            return geometry.clone();
        }
        std::vector<GeometryPtr> parts = collection->parts();
        for (GeometryPtr& part : parts) {
            part = reversed(*part);
        }
        result =
            std::make_shared<GeometryCollection>(geometry.type(), geometry.dimensions(), std::move(parts));
    }
    }
    result->setCoordSystem(geometry.coordSystem());
    return result;
}

std::shared_ptr<Geometry> oriented(const Geometry& geometry, bool clockwise) {
    return withRings(geometry, [clockwise](bool isClockwise, bool isShell) {
        return isClockwise != (isShell ? clockwise : !clockwise);
    });
}

bool isOriented(const Geometry& geometry, bool clockwise) {
    bool all = true;
    withRings(geometry, [&](bool isClockwise, bool isShell) {
        all = all && isClockwise == (isShell ? clockwise : !clockwise);
        return false;
    });
    return all;
}

std::shared_ptr<Geometry> withClosedRings(const GeometryPtr& geometry) {
    return withSequences(*linearized(geometry), [](const CoordinateSequence& positions, Role role) {
        return role == Role::Shell || role == Role::Hole ? closed(positions) : positions;
    });
}

std::shared_ptr<Geometry> sanitized(const GeometryPtr& geometry) {
    return withSequences(*linearized(geometry), [](const CoordinateSequence& positions, Role role) {
        const bool isRing = role == Role::Shell || role == Role::Hole;
        const CoordinateSequence rest = withoutRepetition(isRing ? closed(positions) : positions, 0.0);
        const std::size_t least = isRing ? 4 : role == Role::Line ? 2 : 1;
        return rest.size() < least ? CoordinateSequence(positions.dimensions()) : rest;
    });
}

} // namespace orvane::geometry
