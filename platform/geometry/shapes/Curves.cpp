#include "platform/geometry/shapes/Curves.h"

#include "platform/geometry/shapes/Arc.h"

#include <cmath>
#include <numbers>
#include <stdexcept>

namespace orvane::geometry {

namespace {

bool samePart(const GeometryPtr& a, const GeometryPtr& b) {
    return a->equals(*b);
}

bool sameParts(const std::vector<GeometryPtr>& a, const std::vector<GeometryPtr>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), samePart);
}

/// Appends the approximation of a line, a circular string or a compound curve without a first position that
/// repeats the last one of `out`.
void appendCurve(const Geometry& curve, QSizeF tolerance, std::vector<double>& out) {
    const std::size_t stride = strideOf(curve.dimensions());
    const auto continues = [&](const double* first) {
        return out.size() >= stride && out[out.size() - stride] == first[0] &&
               out[out.size() - stride + 1] == first[1];
    };
    if (curve.type() == GeometryType::CompoundCurve) {
        for (const GeometryPtr& part : static_cast<const CompoundCurve&>(curve).parts()) {
            appendCurve(*part, tolerance, out);
        }
        return;
    }
    const bool isArcs = curve.type() == GeometryType::CircularString;
    const CoordinateSequence& coordinates = isArcs ? static_cast<const CircularString&>(curve).coordinates()
                                                   : static_cast<const LineString&>(curve).coordinates();
    if (coordinates.isEmpty()) {
        return;
    }
    const double* first = coordinates.position(0);
    if (!continues(first)) {
        out.insert(out.end(), first, first + stride);
    }
    if (isArcs) {
        appendArcs(coordinates, tolerance, out);
    } else {
        out.insert(out.end(), first + stride, first + coordinates.size() * stride);
    }
}

CoordinateSequence approximated(const Geometry& curve, QSizeF tolerance) {
    std::vector<double> values;
    appendCurve(curve, tolerance, values);
    return CoordinateSequence(curve.dimensions(), values);
}

template<typename Result>
std::shared_ptr<Result> inSystemOf(const Geometry& source, std::shared_ptr<Result> result) {
    result->setCoordSystem(source.coordSystem());
    return result;
}

/// Appends the part of an ellipse with the given semi-axes between two parametric angles, begin included.
void appendEllipse(double centreX, double centreY, double a, double b, double rotation, double from,
                   double sweep, QSizeF tolerance, std::vector<double>& out) {
    // An ellipse is a stretched circle: no chord leaves it by more than the chord of the larger circle would.
    const std::size_t count = segmentCount(sweep, std::max(a, b), tolerance);
    const double cosine = std::cos(rotation);
    const double sine = std::sin(rotation);
    for (std::size_t k = 0; k < count; ++k) {
        const double angle = from + sweep * static_cast<double>(k) / static_cast<double>(count);
        const double x = a * std::cos(angle);
        const double y = b * std::sin(angle);
        out.push_back(centreX + x * cosine - y * sine);
        out.push_back(centreY + x * sine + y * cosine);
    }
}

std::shared_ptr<Polygon> polygonOf(std::vector<double> values) {
    values.push_back(values[0]);
    values.push_back(values[1]);
    return std::make_shared<Polygon>(
        Dimensions::XY, std::vector<CoordinateSequence>{CoordinateSequence(Dimensions::XY, values)});
}

} // namespace

std::shared_ptr<Geometry> ApproximableCurve::mapped(const PositionMap& map) const {
    return approximateGeometry(QSizeF())->mapped(map);
}

std::shared_ptr<Geometry> ApproximableSurface::mapped(const PositionMap& map) const {
    return approximateGeometry(QSizeF())->mapped(map);
}

CircularString::CircularString(CoordinateSequence coordinates)
    : GeometryKind(GeometryType::CircularString, coordinates.dimensions()),
      coordinates_(std::move(coordinates)) {
    if (coordinates_.size() == 1 || (coordinates_.size() != 0 && coordinates_.size() % 2 == 0)) {
        throw std::invalid_argument("a circular string takes an odd number of positions from three up");
    }
}

GeometryPtr CircularString::approximateGeometry(QSizeF tolerance) const {
    return inSystemOf(*this, std::make_shared<LineString>(approximated(*this, tolerance)));
}

Envelope CircularString::envelope() const {
    Envelope envelope = coordinates_.envelope();
    for (std::size_t i = 0; i + 2 < coordinates_.size(); i += 2) {
        if (const auto arc = Arc::through(coordinates_.position(i), coordinates_.position(i + 1),
                                          coordinates_.position(i + 2))) {
            arc->addTo(envelope);
        }
    }
    return envelope;
}

bool CircularString::equals(const Geometry& other) const {
    return other.type() == type() && static_cast<const CircularString&>(other).coordinates_ == coordinates_;
}

CompoundCurve::CompoundCurve(Dimensions dimensions, std::vector<GeometryPtr> parts)
    : GeometryKind(GeometryType::CompoundCurve, dimensions), parts_(std::move(parts)) {
    for (const GeometryPtr& part : parts_) {
        if (!part || part->dimensions() != dimensions ||
            (part->type() != GeometryType::LineString && part->type() != GeometryType::CircularString)) {
            throw std::invalid_argument(
                "a compound curve takes lines and circular strings of its dimensions");
        }
    }
}

GeometryPtr CompoundCurve::approximateGeometry(QSizeF tolerance) const {
    return inSystemOf(*this, std::make_shared<LineString>(approximated(*this, tolerance)));
}

bool CompoundCurve::isEmpty() const {
    return std::all_of(parts_.begin(), parts_.end(), [](const GeometryPtr& part) { return part->isEmpty(); });
}

Envelope CompoundCurve::envelope() const {
    Envelope envelope;
    for (const GeometryPtr& part : parts_) {
        envelope.add(part->envelope());
    }
    return envelope;
}

std::uint64_t CompoundCurve::weight() const {
    std::uint64_t weight = 1;
    for (const GeometryPtr& part : parts_) {
        weight += part->weight();
    }
    return weight;
}

bool CompoundCurve::equals(const Geometry& other) const {
    return other.type() == type() && other.dimensions() == dimensions() &&
           sameParts(parts_, static_cast<const CompoundCurve&>(other).parts_);
}

CurvePolygon::CurvePolygon(Dimensions dimensions, std::vector<GeometryPtr> rings)
    : GeometryKind(GeometryType::CurvePolygon, dimensions), rings_(std::move(rings)) {
    for (const GeometryPtr& ring : rings_) {
        if (!ring || ring->dimensions() != dimensions ||
            !GeometryCollection::takes(GeometryType::MultiCurve, ring->type())) {
            throw std::invalid_argument("the rings of a curve polygon are curves of its dimensions");
        }
    }
}

GeometryPtr CurvePolygon::approximateGeometry(QSizeF tolerance) const {
    std::vector<CoordinateSequence> rings;
    rings.reserve(rings_.size());
    for (const GeometryPtr& ring : rings_) {
        rings.push_back(approximated(*ring, tolerance));
    }
    return inSystemOf(*this, std::make_shared<Polygon>(dimensions(), std::move(rings)));
}

bool CurvePolygon::isEmpty() const {
    return rings_.empty() || rings_.front()->isEmpty();
}

Envelope CurvePolygon::envelope() const {
    Envelope envelope;
    for (const GeometryPtr& ring : rings_) {
        envelope.add(ring->envelope());
    }
    return envelope;
}

std::uint64_t CurvePolygon::weight() const {
    std::uint64_t weight = 1;
    for (const GeometryPtr& ring : rings_) {
        weight += ring->weight();
    }
    return weight;
}

bool CurvePolygon::equals(const Geometry& other) const {
    return other.type() == type() && other.dimensions() == dimensions() &&
           sameParts(rings_, static_cast<const CurvePolygon&>(other).rings_);
}

Ellipse::Ellipse(double centreX, double centreY, double semiAxisA, double semiAxisB, double rotation)
    : GeometryKind(GeometryType::Ellipse, Dimensions::XY), centreX_(centreX), centreY_(centreY),
      semiAxisA_(semiAxisA), semiAxisB_(semiAxisB), rotation_(rotation) {
    const bool isFinite = std::isfinite(centreX) && std::isfinite(centreY) && std::isfinite(semiAxisA) &&
                          std::isfinite(semiAxisB) && std::isfinite(rotation);
    if (!isFinite || semiAxisA <= 0.0 || semiAxisB <= 0.0) {
        throw std::invalid_argument("the semi-axes of an ellipse are positive and finite");
    }
}

GeometryPtr Ellipse::approximateGeometry(QSizeF tolerance) const {
    std::vector<double> values;
    appendEllipse(centreX_, centreY_, semiAxisA_, semiAxisB_, rotation_ * std::numbers::pi / 180.0, 0.0,
                  2.0 * std::numbers::pi, tolerance, values);
    return inSystemOf(*this, polygonOf(std::move(values)));
}

Envelope Ellipse::envelope() const {
    const double rotation = rotation_ * std::numbers::pi / 180.0;
    const double halfWidth = std::hypot(semiAxisA_ * std::cos(rotation), semiAxisB_ * std::sin(rotation));
    const double halfHeight = std::hypot(semiAxisA_ * std::sin(rotation), semiAxisB_ * std::cos(rotation));
    return {centreX_ - halfWidth, centreY_ - halfHeight, centreX_ + halfWidth, centreY_ + halfHeight};
}

bool Ellipse::equals(const Geometry& other) const {
    if (other.type() != type()) {
        return false;
    }
    const auto& e = static_cast<const Ellipse&>(other);
    return centreX_ == e.centreX_ && centreY_ == e.centreY_ && semiAxisA_ == e.semiAxisA_ &&
           semiAxisB_ == e.semiAxisB_ && rotation_ == e.rotation_;
}

RoundedRectangle::RoundedRectangle(const Envelope& rectangle, double radiusX, double radiusY)
    : GeometryKind(GeometryType::RoundedRectangle, Dimensions::XY), rectangle_(rectangle),
      radiusX_(std::min(radiusX, (rectangle.maxX - rectangle.minX) / 2.0)),
      radiusY_(std::min(radiusY, (rectangle.maxY - rectangle.minY) / 2.0)) {
    const bool isFinite = std::isfinite(rectangle.maxX - rectangle.minX) && std::isfinite(radiusX_) &&
                          std::isfinite(rectangle.maxY - rectangle.minY) && std::isfinite(radiusY_);
    if (!isFinite || !(rectangle.minX < rectangle.maxX && rectangle.minY < rectangle.maxY) || radiusX < 0.0 ||
        radiusY < 0.0) {
        throw std::invalid_argument("a rounded rectangle has positive finite sides and radii of 0 or more");
    }
}

GeometryPtr RoundedRectangle::approximateGeometry(QSizeF tolerance) const {
    const auto& [minX, minY, maxX, maxY] = rectangle_;
    if (radiusX_ == 0.0 || radiusY_ == 0.0) {
        return inSystemOf(*this, polygonOf({minX, minY, maxX, minY, maxX, maxY, minX, maxY}));
    }
    const double quarter = std::numbers::pi / 2.0;
    const double centres[4][2] = {{maxX - radiusX_, maxY - radiusY_},
                                  {minX + radiusX_, maxY - radiusY_},
                                  {minX + radiusX_, minY + radiusY_},
                                  {maxX - radiusX_, minY + radiusY_}};
    const double ends[4][2] = {
        {maxX - radiusX_, maxY}, {minX, maxY - radiusY_}, {minX + radiusX_, minY}, {maxX, minY + radiusY_}};
    std::vector<double> values;
    for (int corner = 0; corner < 4; ++corner) {
        appendEllipse(centres[corner][0], centres[corner][1], radiusX_, radiusY_, 0.0, corner * quarter,
                      quarter, tolerance, values);
        values.insert(values.end(), {ends[corner][0], ends[corner][1]});
    }
    return inSystemOf(*this, polygonOf(std::move(values)));
}

bool RoundedRectangle::equals(const Geometry& other) const {
    if (other.type() != type()) {
        return false;
    }
    const auto& r = static_cast<const RoundedRectangle&>(other);
    return rectangle_ == r.rectangle_ && radiusX_ == r.radiusX_ && radiusY_ == r.radiusY_;
}

} // namespace orvane::geometry
