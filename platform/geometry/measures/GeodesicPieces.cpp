#include "platform/geometry/measures/GeodesicPieces.h"

#include <algorithm>
#include <numbers>

namespace orvane::geometry {

namespace {

constexpr double radians = std::numbers::pi / 180.0;
constexpr double longestPiece = 500e3; // metres

/// The smallest radius that a geodesic bends with, which decides how far it leaves its chord.
double smallestRadius(const GeographicShape& shape) {
    const double a = shape.equatorialRadius;
    const double b = a * std::sqrt(1.0 - shape.eccentricitySquared);
    return std::min({a, b * b / a, a * a / b});
}

Piece pieceBetween(const GeographicShape& shape, const Position& begin, const Position& end) {
    const double radius = smallestRadius(shape);
    const double half = std::min(norm(end.vector - begin.vector) / (2.0 * radius), 1.0);
    return {begin, end, radius * half * half / (1.0 + std::sqrt(1.0 - half * half))};
}

/// From one meridian to another, -180 to 180 degrees.
double turn(double from, double to) {
    return std::remainder(to - from, 360.0);
}

} // namespace

Position positionAt(const GeographicShape& shape, double longitude, double latitude) {
    const double sine = std::sin(latitude * radians);
    const double cosine = std::cos(latitude * radians);
    const double normal = shape.equatorialRadius / std::sqrt(1.0 - shape.eccentricitySquared * sine * sine);
    return {longitude,
            latitude,
            {normal * cosine * std::cos(longitude * radians), normal * cosine * std::sin(longitude * radians),
             normal * (1.0 - shape.eccentricitySquared) * sine}};
}

void appendPieces(const GeographicShape& shape, const CoordinateSequence& sequence,
                  std::vector<Piece>& pieces) {
    if (sequence.isEmpty()) {
        return;
    }
    const std::size_t before = pieces.size();
    Position begin = positionAt(shape, sequence.x(0), sequence.y(0));
    const Position first = begin;
    for (std::size_t i = 1; i < sequence.size(); ++i) {
        const Position end = positionAt(shape, sequence.x(i), sequence.y(i));
        const double chord = norm(end.vector - begin.vector);
        if (chord > longestPiece * 0.99) {
            geod_geodesicline line;
            geod_inverseline(&line, &shape.ellipsoid, begin.latitude, begin.longitude, end.latitude,
                             end.longitude, 0);
            const auto count = static_cast<int>(std::ceil(line.s13 / longestPiece));
            for (int part = 1; part < count; ++part) {
                double latitude = 0.0;
                double longitude = 0.0;
                geod_position(&line, line.s13 * part / count, &latitude, &longitude, nullptr);
                const Position between = positionAt(shape, longitude, latitude);
                pieces.push_back(pieceBetween(shape, begin, between));
                begin = between;
            }
        }
        if (chord > 0.0) {
            pieces.push_back(pieceBetween(shape, begin, end));
        }
        begin = end;
    }
    if (pieces.size() == before) {
        pieces.push_back(pieceBetween(shape, first, first));
    }
}

GeodesicRing::GeodesicRing(const GeographicShape& shape, const CoordinateSequence& ring) : shape_(shape) {
    appendPieces(shape, ring, pieces_);
    Vector sum{};
    for (const Piece& piece : pieces_) {
        sum = sum + (1.0 / norm(piece.begin.vector)) * piece.begin.vector;
    }
    const double length = norm(sum);
    double leastCosine = -1.0;
    if (length > 1e-9) {
        leastCosine = 1.0;
        for (const Piece& piece : pieces_) {
            leastCosine =
                std::min(leastCosine, dot(sum, piece.begin.vector) / length / norm(piece.begin.vector));
        }
    }
    constexpr double nearlyHalf = 0.06; // more than a piece reaches beyond its ends
    if (leastCosine > nearlyHalf) {
        // The ring lies within a half, and what is opposite of its middle is outside.
        const double longitude = std::atan2(-sum[1], -sum[0]) / radians;
        const double latitude = std::atan2(-sum[2], std::hypot(sum[0], sum[1])) / radians;
        containsNorthPole_ = isOddNorthOf(positionAt(shape, longitude, latitude));
    } else {
        containsNorthPole_ = containsPole(ring);
    }
}

bool GeodesicRing::contains(const Position& position) const {
    return isOddNorthOf(position) != containsNorthPole_;
}

/// Where a piece crosses the meridian of a position; where it is clear on which side of the position, unless
/// asked for exactly, only about.
std::optional<GeodesicRing::Crossing> GeodesicRing::crossing(const Piece& piece, const Position& position,
                                                             bool exact) const {
    const double begin = turn(position.longitude, piece.begin.longitude);
    const double end = turn(position.longitude, piece.end.longitude);
    if ((begin < 0.0) == (end < 0.0)) {
        return std::nullopt;
    }
    const double span = std::abs(begin) + std::abs(end);
    constexpr double overPole = 180.0 - 1e-9;
    if (span >= overPole) {
        // Beyond the pole, or over it: then it counts as if it passed east of it.
        if (span > 360.0 - overPole || begin >= 0.0) {
            return std::nullopt;
        }
        return Crossing{std::copysign(90.0, piece.begin.latitude), true};
    }
    const bool goesEast = begin < 0.0;
    constexpr double deviation = 0.05; // degrees between a geodesic of this length and a great circle
    const double onSphere =
        std::atan2(std::tan(piece.begin.latitude * radians) * std::sin(std::abs(end) * radians) +
                       std::tan(piece.end.latitude * radians) * std::sin(std::abs(begin) * radians),
                   std::sin(span * radians)) /
        radians;
    if (!exact && std::abs(onSphere - position.latitude) > deviation) {
        return Crossing{onSphere, goesEast};
    }
    geod_geodesicline line;
    geod_inverseline(&line, &shape_.ellipsoid, piece.begin.latitude, piece.begin.longitude,
                     piece.end.latitude, piece.end.longitude, 0);
    double latitude = piece.begin.latitude;
    signChange(0.0, line.s13, 1e-9, [&](double along) {
        double longitude = 0.0;
        geod_position(&line, along, &latitude, &longitude, nullptr);
        return turn(position.longitude, longitude);
    });
    return Crossing{latitude, goesEast};
}

bool GeodesicRing::isOddNorthOf(const Position& position) const {
    bool isOdd = false;
    for (const Piece& piece : pieces_) {
        const auto found = crossing(piece, position, false);
        isOdd = isOdd != (found && found->latitude > position.latitude);
    }
    return isOdd;
}

/// Of a ring around more or less half of the ellipsoid: from the sign of its area, and from the side on which
/// the pole is of the northernmost piece over some meridian.
bool GeodesicRing::containsPole(const CoordinateSequence& ring) const {
    geod_polygon polygon;
    geod_polygon_init(&polygon, 0);
    for (std::size_t i = ring.isClosed() ? 1 : 0; i < ring.size(); ++i) {
        geod_polygon_addpoint(&shape_.ellipsoid, &polygon, ring.y(i), ring.x(i));
    }
    double area = 0.0;
    geod_polygon_compute(&shape_.ellipsoid, &polygon, 0, 1, &area, nullptr);
    const Piece* widest = nullptr;
    double width = 0.0;
    for (const Piece& piece : pieces_) {
        const double turned = std::abs(turn(piece.begin.longitude, piece.end.longitude));
        if (turned > width && turned < 179.0) {
            widest = &piece;
            width = turned;
        }
    }
    if (!widest) {
        return false; // along one meridian, around nothing
    }
    const double between =
        widest->begin.longitude + turn(widest->begin.longitude, widest->end.longitude) / 2.0;
    const Position somewhere = positionAt(shape_, between, -90.0);
    Crossing northernmost{-91.0, false};
    for (const Piece& piece : pieces_) {
        const auto found = crossing(piece, somewhere, true);
        if (found && found->latitude > northernmost.latitude) {
            northernmost = *found;
        }
    }
    return northernmost.goesEast ==
           (area > 0.0); // what is inside lies to the left of a ring of positive area
}

} // namespace orvane::geometry
