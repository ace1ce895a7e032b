#include "platform/geometry/shapes/Shapes.h"

#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>

namespace orvane::geometry {

namespace {

/// Null when the map gives up.
std::optional<CoordinateSequence> mappedSequence(const CoordinateSequence& source,
                                                 const Geometry::PositionMap& map) {
    bool complete = true;
    CoordinateSequence result(source.dimensions(), source.size(), [&](double* target) {
        const std::span<const double> values = source.values();
        std::copy(values.begin(), values.end(), target);
        complete = map(target, source.size(), source.dimensions());
    });
    return complete ? std::optional(std::move(result)) : std::nullopt;
}

} // namespace

Point::Point(Dimensions dimensions) : GeometryKind(GeometryType::Point, dimensions) {
    ordinates_.fill(std::numeric_limits<double>::quiet_NaN());
}

Point::Point(double x, double y)
    : GeometryKind(GeometryType::Point, Dimensions::XY), ordinates_{x, y, 0.0, 0.0} {}

Point::Point(Dimensions dimensions, const double* ordinates)
    : GeometryKind(GeometryType::Point, dimensions), ordinates_{} {
    std::copy_n(ordinates, strideOf(dimensions), ordinates_.begin());
}

bool Point::isEmpty() const {
    return std::isnan(x()) && std::isnan(y());
}

Envelope Point::envelope() const {
    Envelope envelope;
    envelope.add(x(), y());
    return envelope;
}

bool Point::equals(const Geometry& other) const {
    if (other.type() != type() || other.dimensions() != dimensions()) {
        return false;
    }
    const auto& point = static_cast<const Point&>(other);
    const std::size_t size = strideOf(dimensions());
    return CoordinateSequence(dimensions(), std::span(ordinates_.data(), size)) ==
           CoordinateSequence(dimensions(), std::span(point.ordinates_.data(), size));
}

std::shared_ptr<Geometry> Point::mapped(const PositionMap& map) const {
    std::array<double, 4> ordinates = ordinates_;
    if (!isEmpty() && !map(ordinates.data(), 1, dimensions())) {
        return nullptr;
    }
    return std::make_shared<Point>(dimensions(), ordinates.data());
}

LineString::LineString(CoordinateSequence coordinates)
    : GeometryKind(GeometryType::LineString, coordinates.dimensions()), coordinates_(std::move(coordinates)) {
}

bool LineString::equals(const Geometry& other) const {
    return other.type() == type() && static_cast<const LineString&>(other).coordinates_ == coordinates_;
}

std::shared_ptr<Geometry> LineString::mapped(const PositionMap& map) const {
    auto coordinates = mappedSequence(coordinates_, map);
    return coordinates ? std::make_shared<LineString>(std::move(*coordinates)) : nullptr;
}

Polygon::Polygon(Dimensions dimensions, std::vector<CoordinateSequence> rings)
    : GeometryKind(GeometryType::Polygon, dimensions), rings_(std::move(rings)) {}

bool Polygon::isEmpty() const {
    return rings_.empty() || rings_.front().isEmpty();
}

Envelope Polygon::envelope() const {
    Envelope envelope;
    for (const CoordinateSequence& ring : rings_) {
        envelope.add(ring.envelope());
    }
    return envelope;
}

std::uint64_t Polygon::weight() const {
    std::uint64_t weight = 1;
    for (const CoordinateSequence& ring : rings_) {
        weight += ring.size();
    }
    return weight;
}

bool Polygon::equals(const Geometry& other) const {
    return other.type() == type() && other.dimensions() == dimensions() &&
           static_cast<const Polygon&>(other).rings_ == rings_;
}

std::shared_ptr<Geometry> Polygon::mapped(const PositionMap& map) const {
    std::vector<CoordinateSequence> rings;
    rings.reserve(rings_.size());
    for (const CoordinateSequence& ring : rings_) {
        auto changed = mappedSequence(ring, map);
        if (!changed) {
            return nullptr;
        }
        rings.push_back(std::move(*changed));
    }
    return std::make_shared<Polygon>(dimensions(), std::move(rings));
}

bool GeometryCollection::takes(GeometryType collection, GeometryType part) {
    const bool isCurve = part == GeometryType::LineString || part == GeometryType::CircularString ||
                         part == GeometryType::CompoundCurve;
    switch (collection) {
    case GeometryType::MultiPoint: return part == GeometryType::Point;
    case GeometryType::MultiLineString: return part == GeometryType::LineString;
    case GeometryType::MultiPolygon: return part == GeometryType::Polygon;
    case GeometryType::MultiCurve: return isCurve;
    case GeometryType::MultiSurface:
        return part == GeometryType::Polygon || part == GeometryType::CurvePolygon ||
               part == GeometryType::Ellipse || part == GeometryType::RoundedRectangle;
    case GeometryType::GeometryCollection: return true;
    default: return false;
    }
}

GeometryCollection::GeometryCollection(GeometryType type, Dimensions dimensions,
                                       std::vector<GeometryPtr> parts)
    : GeometryKind(type, dimensions), parts_(std::move(parts)) {
    constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    for (const GeometryPtr& part : parts_) {
        if (!part || !takes(type, part->type())) {
            throw std::invalid_argument("a collection does not take a part of this kind");
        }
        const std::uint64_t added = part->weight();
        weight_ = added > most - weight_ ? most : weight_ + added;
    }
    if (type != GeometryType::GeometryCollection && !takes(type, GeometryType::Point) &&
        !takes(type, GeometryType::LineString) && !takes(type, GeometryType::Polygon)) {
        throw std::invalid_argument("not a type of collections");
    }
}

bool GeometryCollection::isEmpty() const {
    return std::all_of(parts_.begin(), parts_.end(), [](const GeometryPtr& part) { return part->isEmpty(); });
}

Envelope GeometryCollection::envelope() const {
    Envelope envelope;
    for (const GeometryPtr& part : parts_) {
        envelope.add(part->envelope());
    }
    return envelope;
}

bool GeometryCollection::equals(const Geometry& other) const {
    if (other.type() != type() || other.dimensions() != dimensions()) {
        return false;
    }
    const auto& parts = static_cast<const GeometryCollection&>(other).parts_;
    return std::equal(parts_.begin(), parts_.end(), parts.begin(), parts.end(),
                      [](const GeometryPtr& a, const GeometryPtr& b) { return a->equals(*b); });
}

std::shared_ptr<Geometry> GeometryCollection::mapped(const PositionMap& map) const {
    std::vector<GeometryPtr> parts;
    parts.reserve(parts_.size());
    for (const GeometryPtr& part : parts_) {
        parts.push_back(part->mapped(map));
        if (!parts.back()) {
            return nullptr;
        }
    }
    GeometryType linear = type();
    if (linear == GeometryType::MultiCurve) {
        linear = GeometryType::MultiLineString;
    } else if (linear == GeometryType::MultiSurface) {
        linear = GeometryType::MultiPolygon;
    }
    return std::make_shared<GeometryCollection>(linear, dimensions(), std::move(parts));
}

} // namespace orvane::geometry
