#include "platform/geometry/measures/PlanarMeasures.h"

#include "platform/geometry/shapes/Arc.h"
#include "platform/geometry/shapes/Curves.h"

#include <cmath>
#include <numbers>

namespace orvane::geometry {

namespace {

double chordLength(const double* a, const double* b) {
    return std::hypot(b[0] - a[0], b[1] - a[1]);
}

double sequenceLength(const CoordinateSequence& sequence) {
    double length = 0.0;
    for (std::size_t i = 1; i < sequence.size(); ++i) {
        length += chordLength(sequence.position(i - 1), sequence.position(i));
    }
    return length;
}

double arcsLength(const CoordinateSequence& arcs) {
    double length = 0.0;
    for (std::size_t i = 0; i + 2 < arcs.size(); i += 2) {
        const auto arc = Arc::through(arcs.position(i), arcs.position(i + 1), arcs.position(i + 2));
        length += arc ? arc->length()
                      : chordLength(arcs.position(i), arcs.position(i + 1)) +
                            chordLength(arcs.position(i + 1), arcs.position(i + 2));
    }
    return length;
}

/// Of a line, a circular string or a compound curve; 0 for others.
double curveLength(const Geometry& curve) {
    switch (curve.type()) {
    case GeometryType::LineString: return sequenceLength(static_cast<const LineString&>(curve).coordinates());
    case GeometryType::CircularString:
        return arcsLength(static_cast<const CircularString&>(curve).coordinates());
    case GeometryType::CompoundCurve: {
        double length = 0.0;
        for (const GeometryPtr& part : static_cast<const CompoundCurve&>(curve).parts()) {
            length += curveLength(*part);
        }
        return length;
    }
    default: return 0.0;
    }
}

/// Twice the signed area between a chain of chords and the origin, which should be near.
double crossProducts(const CoordinateSequence& sequence, const double* origin, std::size_t step) {
    double sum = 0.0;
    for (std::size_t i = step; i < sequence.size(); i += step) {
        const double* a = sequence.position(i - step);
        const double* b = sequence.position(i);
        sum += (a[0] - origin[0]) * (b[1] - origin[1]) - (b[0] - origin[0]) * (a[1] - origin[1]);
    }
    return sum;
}

/// Signed area between a curve and the origin.
double areaBelow(const Geometry& curve, const double* origin) {
    if (curve.type() == GeometryType::CompoundCurve) {
        double area = 0.0;
        for (const GeometryPtr& part : static_cast<const CompoundCurve&>(curve).parts()) {
            area += areaBelow(*part, origin);
        }
        return area;
    }
    if (curve.type() == GeometryType::LineString) {
        return crossProducts(static_cast<const LineString&>(curve).coordinates(), origin, 1) / 2.0;
    }
    const CoordinateSequence& arcs = static_cast<const CircularString&>(curve).coordinates();
    double area = crossProducts(arcs, origin, 2) / 2.0;
    for (std::size_t i = 0; i + 2 < arcs.size(); i += 2) {
        if (const auto arc = Arc::through(arcs.position(i), arcs.position(i + 1), arcs.position(i + 2))) {
            area += arc->segmentArea();
        }
    }
    return area;
}

double ringArea(const CoordinateSequence& ring) {
    return ring.isEmpty() ? 0.0 : std::abs(crossProducts(ring, ring.position(0), 1)) / 2.0;
}

double ringArea(const Geometry& ring) {
    const Envelope envelope = ring.envelope();
    const double origin[2] = {envelope.minX, envelope.minY};
    return envelope.isEmpty() ? 0.0 : std::abs(areaBelow(ring, origin));
}

template<typename Ring, typename RingArea>
double shellWithoutHoles(const std::vector<Ring>& rings, const RingArea& areaOf) {
    double area = 0.0;
    for (std::size_t i = 0; i < rings.size(); ++i) {
        area += i == 0 ? areaOf(rings[i]) : -areaOf(rings[i]);
    }
    return area;
}

/// 4 a E(e), with the complete elliptic integral of the second kind.
double ellipsePerimeter(double a, double b) {
    const double large = std::max(a, b);
    const double small = std::min(a, b);
    return 4.0 * large * std::comp_ellint_2(std::sqrt((1.0 - small / large) * (1.0 + small / large)));
}

template<typename Measure>
double sumOfParts(const Geometry& geometry, const Measure& measure) {
    double sum = 0.0;
    if (const auto* collection = dynamic_cast<const GeometryCollection*>(&geometry)) {
        for (const GeometryPtr& part : collection->parts()) {
            sum += measure(*part);
        }
    }
    return sum;
}

} // namespace

double planarLength(const Geometry& geometry) {
    return curveLength(geometry) + sumOfParts(geometry, planarLength);
}

double planarPerimeter(const Geometry& geometry) {
    switch (geometry.type()) {
    case GeometryType::Polygon: {
        double perimeter = 0.0;
        for (const CoordinateSequence& ring : static_cast<const Polygon&>(geometry).rings()) {
            perimeter += sequenceLength(ring);
        }
        return perimeter;
    }
    case GeometryType::CurvePolygon: {
        double perimeter = 0.0;
        for (const GeometryPtr& ring : static_cast<const CurvePolygon&>(geometry).rings()) {
            perimeter += curveLength(*ring);
        }
        return perimeter;
    }
    case GeometryType::Ellipse: {
        const auto& ellipse = static_cast<const Ellipse&>(geometry);
        return ellipsePerimeter(ellipse.semiAxisA(), ellipse.semiAxisB());
    }
    case GeometryType::RoundedRectangle: {
        const auto& rectangle = static_cast<const RoundedRectangle&>(geometry);
        const Envelope& sides = rectangle.rectangle();
        const bool isRounded = rectangle.radiusX() > 0.0 && rectangle.radiusY() > 0.0;
        const double straight = 2.0 * (sides.maxX - sides.minX + sides.maxY - sides.minY);
        return isRounded ? straight - 4.0 * (rectangle.radiusX() + rectangle.radiusY()) +
                               ellipsePerimeter(rectangle.radiusX(), rectangle.radiusY())
                         : straight;
    }
    default: return sumOfParts(geometry, planarPerimeter);
    }
}

double planarArea(const Geometry& geometry) {
    switch (geometry.type()) {
    case GeometryType::Polygon:
        return shellWithoutHoles(static_cast<const Polygon&>(geometry).rings(),
                                 [](const CoordinateSequence& ring) { return ringArea(ring); });
    case GeometryType::CurvePolygon:
        return shellWithoutHoles(static_cast<const CurvePolygon&>(geometry).rings(),
                                 [](const GeometryPtr& ring) { return ringArea(*ring); });
    case GeometryType::Ellipse: {
        const auto& ellipse = static_cast<const Ellipse&>(geometry);
        return std::numbers::pi * ellipse.semiAxisA() * ellipse.semiAxisB();
    }
    case GeometryType::RoundedRectangle: {
        const auto& rectangle = static_cast<const RoundedRectangle&>(geometry);
        const Envelope& sides = rectangle.rectangle();
        return (sides.maxX - sides.minX) * (sides.maxY - sides.minY) -
               (4.0 - std::numbers::pi) * rectangle.radiusX() * rectangle.radiusY();
    }
    default: return sumOfParts(geometry, planarArea);
    }
}

} // namespace orvane::geometry
