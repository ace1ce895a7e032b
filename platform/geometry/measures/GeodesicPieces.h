#pragma once

#include "platform/geometry/measures/Geodesics.h"
#include "platform/geometry/shapes/Coordinates.h"

#include <array>
#include <cmath>
#include <optional>
#include <vector>

namespace orvane::geometry {

/// In space, metres from the centre of the ellipsoid.
using Vector = std::array<double, 3>;

inline Vector operator+(const Vector& a, const Vector& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
inline Vector operator-(const Vector& a, const Vector& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
inline Vector operator*(double factor, const Vector& a) {
    return {factor * a[0], factor * a[1], factor * a[2]};
}
inline double dot(const Vector& a, const Vector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
inline double norm(const Vector& a) {
    return std::sqrt(dot(a, a));
}

/// On the ellipsoid, degrees.
struct Position {
    double longitude, latitude;
    Vector vector;
};

/// A geodesic of 500 km at the most, or a point as one of no length. It stays within `sagitta` metres of its
/// chord.
struct Piece {
    Position begin, end;
    double sagitta;

    bool isPoint() const { return begin.vector == end.vector; }
};

Position positionAt(const GeographicShape& shape, double longitude, double latitude);

/// Appends the geodesics between the positions of a sequence: at least one piece unless it is empty.
void appendPieces(const GeographicShape& shape, const CoordinateSequence& sequence,
                  std::vector<Piece>& pieces);

/// Where between `low` and `high` a function changes its sign, to a precision. `low` when it does not.
template<typename Function>
double signChange(double low, double high, double precision, const Function& function) {
    double atLow = function(low);
    double atHigh = function(high);
    if ((atLow > 0.0) == (atHigh > 0.0)) {
        return low;
    }
    constexpr int mostSteps = 80;
    double middle = low;
    for (int step = 0; step < mostSteps && high - low > precision; ++step) {
        // False position, halved now and then so that it cannot creep.
        middle = step % 3 == 2 ? (low + high) / 2.0 : low + (high - low) * atLow / (atLow - atHigh);
        const double value = function(middle);
        if (value == 0.0) {
            break;
        }
        const bool isLow = (value > 0.0) == (atLow > 0.0);
        (isLow ? low : high) = middle;
        (isLow ? atLow : atHigh) = value;
    }
    return middle;
}

/// The inside of a ring of geodesics: the part of the ellipsoid that is no half of it, whichever way the ring
/// runs; where it crosses itself, what an odd number of borders parts from the outside.
class GeodesicRing {
public:
    GeodesicRing(const GeographicShape& shape, const CoordinateSequence& ring);

    /// Of a position that does not lie on the ring.
    bool contains(const Position& position) const;

private:
    struct Crossing {
        double latitude;
        bool goesEast;
    };

    std::optional<Crossing> crossing(const Piece& piece, const Position& position, bool exact) const;
    bool isOddNorthOf(const Position& position) const;
    bool containsPole(const CoordinateSequence& ring) const;

    const GeographicShape& shape_;
    std::vector<Piece> pieces_;
    bool containsNorthPole_ = false;
};

} // namespace orvane::geometry
