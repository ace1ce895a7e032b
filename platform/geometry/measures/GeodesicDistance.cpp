#include "platform/cs/CoordSystem.h"
#include "platform/geometry/measures/GeodesicForm.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>

// The shortest geodesic between two shapes. In space a geodesic is longer than its chord by what lies between
// the circles of the smallest and of the largest radius of curvature, so that distances in space, which are
// cheap, tell what need not be measured on the ellipsoid. What is left is searched in two trees of boxes.

namespace orvane::geometry {

namespace {

class NearestSearch {
public:
    NearestSearch(const GeographicShape& shape, const PieceTree& a, const PieceTree& b)
        : ellipsoid_(shape.ellipsoid), treeA_(a), treeB_(b) {
        const double polar = shape.equatorialRadius * std::sqrt(1.0 - shape.eccentricitySquared);
        largestRadius_ = std::max({shape.equatorialRadius, polar * polar / shape.equatorialRadius,
                                   shape.equatorialRadius * shape.equatorialRadius / polar});
    }

    GeodesicNearest run() {
        search(0, 0);
        return nearest_;
    }

private:
    void search(std::size_t indexA, std::size_t indexB) {
        const PieceTree::Node& a = treeA_.node(indexA);
        const PieceTree::Node& b = treeB_.node(indexB);
        if (a.box.distance(b.box) >= reach_) {
            return;
        }
        if (a.children == 0 && b.children == 0) {
            for (std::size_t i = a.first; i < a.last; ++i) {
                for (std::size_t j = b.first; j < b.last; ++j) {
                    compare(treeA_.piece(i), treeB_.piece(j));
                }
            }
        } else if (b.children == 0 || (a.children != 0 && a.box.size() > b.box.size())) {
            const bool isFirst = treeA_.node(a.children).box.distance(b.box) <=
                                 treeA_.node(a.children + 1).box.distance(b.box);
            search(a.children + (isFirst ? 0 : 1), indexB);
            search(a.children + (isFirst ? 1 : 0), indexB);
        } else {
            const bool isFirst = treeB_.node(b.children).box.distance(a.box) <=
                                 treeB_.node(b.children + 1).box.distance(a.box);
            search(indexA, b.children + (isFirst ? 0 : 1));
            search(indexA, b.children + (isFirst ? 1 : 0));
        }
    }

    /// Two pieces that do not cross are nearest at an end of one of them.
    void compare(const Piece& a, const Piece& b) {
        const ChordsApart apart = chordsApart(a, b);
        const double around = a.sagitta + b.sagitta;
        if (apart.distance - around >= reach_) {
            return;
        }
        if (!a.isPoint() && !b.isPoint() && apart.distance <= around && cross(a, b, apart)) {
            return;
        }
        isPieceOfB_ = false;
        if (!a.isPoint() || b.isPoint()) {
            compareEnds(a, b);
        }
        isPieceOfB_ = true;
        if (!b.isPoint()) {
            compareEnds(b, a);
        }
    }

    void compareEnds(const Piece& piece, const Piece& other) {
        compare(piece, other.begin);
        if (!other.isPoint()) {
            compare(piece, other.end);
        }
    }

    void compare(const Piece& piece, const Position& position) {
        const Vector nearest = onChord(piece, nearestOn(piece, position.vector));
        if (norm(position.vector - nearest) - piece.sagitta < reach_) {
            measure(piece, position);
        }
    }

    void found(double distance, const Position& onPiece, const Position& other) {
        if (distance < nearest_.distance) {
            nearest_.distance = distance;
            place(onPiece, other);
            // A geodesic as long as the best has at least this chord, where it bends least.
            reach_ = distance < std::numbers::pi * largestRadius_
                         ? 2.0 * largestRadius_ * std::sin(distance / (2.0 * largestRadius_))
                         : std::numeric_limits<double>::infinity();
        }
    }

    void place(const Position& onPiece, const Position& other) {
        const Position& onA = isPieceOfB_ ? other : onPiece;
        const Position& onB = isPieceOfB_ ? onPiece : other;
        nearest_.onA = {onA.longitude, onA.latitude};
        nearest_.onB = {onB.longitude, onB.latitude};
    }

    double between(const Position& a, const Position& b, double* azimuthA) const {
        double distance = 0.0;
        geod_inverse(&ellipsoid_, a.latitude, a.longitude, b.latitude, b.longitude, &distance, azimuthA,
                     nullptr);
        return distance;
    }

    /// The way from a position to a piece: to an end, or to where it meets the piece at a right angle.
    void measure(const Piece& piece, const Position& position) {
        double towards = 0.0;
        const double fromBegin = between(piece.begin, position, &towards);
        found(fromBegin, piece.begin, position);
        if (piece.isPoint()) {
            return;
        }
        const double fromEnd = between(piece.end, position, nullptr);
        found(fromEnd, piece.end, position);
        geod_geodesicline line;
        geod_inverseline(&line, &ellipsoid_, piece.begin.latitude, piece.begin.longitude, piece.end.latitude,
                         piece.end.longitude, 0);
        // The cosine of the angle between the piece and the way to the position changes its sign at the foot.
        const auto cosine = [](double azimuth, double other) {
            return std::cos((azimuth - other) * std::numbers::pi / 180.0);
        };
        const double approach = cosine(towards, line.azi1);
        // Up to a quarter of the way around, the distance along the piece is a convex function.
        constexpr double quarter = 9.9e6;
        if (!(approach > 0.0) || (fromEnd < quarter && fromBegin < quarter &&
                                  fromBegin - approach * line.s13 >= nearest_.distance)) {
            return;
        }
        Position here{};
        double distance = 0.0;
        signChange(0.0, line.s13, 1e-6, [&](double along) {
            double lineAzimuth = 0.0;
            double azimuth = 0.0;
            geod_position(&line, along, &here.latitude, &here.longitude, &lineAzimuth);
            distance = between(here, position, &azimuth);
            found(distance, here, position);
            return cosine(azimuth, lineAzimuth);
        });
        // Distances around the foot are the same but for rounding; the angle tells where it is.
        constexpr double rounding = 1e-8;
        if (distance < nearest_.distance + rounding) {
            place(here, position);
        }
    }

    /// Whether two geodesics cross, which is noted, by going again and again to where they would in the
    /// plane: C. F. F. Karney, Geodesic intersections, J. Surveying Eng. 150(3) (2024).
    bool cross(const Piece& a, const Piece& b, const ChordsApart& start) {
        geod_geodesicline lineA;
        geod_geodesicline lineB;
        geod_inverseline(&lineA, &ellipsoid_, a.begin.latitude, a.begin.longitude, a.end.latitude,
                         a.end.longitude, 0);
        geod_inverseline(&lineB, &ellipsoid_, b.begin.latitude, b.begin.longitude, b.end.latitude,
                         b.end.longitude, 0);
        double alongA = start.partA * lineA.s13;
        double alongB = start.partB * lineB.s13;
        constexpr int mostSteps = 12;
        constexpr double precision = 1e-7; // metres
        double moved = INFINITY;
        for (int step = 0; step < mostSteps && moved > precision; ++step) {
            double latitudeA = 0.0, longitudeA = 0.0, azimuthA = 0.0;
            double latitudeB = 0.0, longitudeB = 0.0, azimuthB = 0.0;
            double apart = 0.0, fromA = 0.0, atB = 0.0;
            geod_position(&lineA, alongA, &latitudeA, &longitudeA, &azimuthA);
            geod_position(&lineB, alongB, &latitudeB, &longitudeB, &azimuthB);
            geod_inverse(&ellipsoid_, latitudeA, longitudeA, latitudeB, longitudeB, &apart, &fromA, &atB);
            const double angleA = (azimuthA - fromA) * std::numbers::pi / 180.0;
            const double angleB = (azimuthB - atB) * std::numbers::pi / 180.0;
            const double sine = std::sin(angleB - angleA);
            if (apart > 0.0 && std::abs(sine) < 1e-12) {
                return false; // side by side
            }
            const double stepA = apart > 0.0 ? apart * std::sin(angleB) / sine : 0.0;
            const double stepB = apart > 0.0 ? apart * std::sin(angleA) / sine : 0.0;
            alongA += stepA;
            alongB += stepB;
            moved = std::abs(stepA) + std::abs(stepB);
            if (std::abs(alongA) > 1e7 || std::abs(alongB) > 1e7) {
                return false; // nearly side by side, and far from crossing
            }
        }
        if (!(moved <= precision && alongA >= 0.0 && alongA <= lineA.s13 && alongB >= 0.0 &&
              alongB <= lineB.s13)) {
            return false;
        }
        Position here{};
        geod_position(&lineA, alongA, &here.latitude, &here.longitude, nullptr);
        found(0.0, here, here);
        return true;
    }

    const geod_geodesic& ellipsoid_;
    const PieceTree& treeA_;
    const PieceTree& treeB_;
    double largestRadius_;
    bool isPieceOfB_ = false; ///< what is measured to positions of the other
    GeodesicNearest nearest_{std::numeric_limits<double>::infinity(), {}, {}};
    double reach_ = std::numeric_limits<double>::infinity(); ///< the chord of the best
};

/// A position of b inside an area of a. Their borders do not cross, so that one position of each part is
/// enough.
const Position* partHeld(const GeodesicForm& a, const GeodesicForm& b) {
    for (const Area& area : a.areas) {
        const auto held =
            std::find_if(b.positions.begin(), b.positions.end(), [&area](const Position& position) {
                return area.front().contains(position) &&
                       std::none_of(area.begin() + 1, area.end(), [&position](const GeodesicRing& hole) {
                           return hole.contains(position);
                       });
            });
        if (held != b.positions.end()) {
            return &*held;
        }
    }
    return nullptr;
}

/// Of two points in degrees, which most distances are measured between.
std::optional<double> pointDistance(const Geometry& a, const Geometry& b) {
    const auto system = a.coordSystem();
    if (a.type() != GeometryType::Point || b.type() != GeometryType::Point || !system ||
        !system->isGeographic() || degreesPerUnit(*system) != 1.0) {
        return std::nullopt;
    }
    const auto& from = static_cast<const Point&>(a);
    const auto& to = static_cast<const Point&>(b);
    if (!(std::abs(from.y()) <= 90.0 && std::abs(to.y()) <= 90.0) || !std::isfinite(from.x()) ||
        !std::isfinite(to.x())) {
        return std::nullopt;
    }
    double distance = 0.0;
    geod_inverse(&ellipsoidOf(*system), from.y(), from.x(), to.y(), to.x(), &distance, nullptr, nullptr);
    return distance;
}

} // namespace

GeodesicNearest geodesicNearest(const Geometry& a, const Geometry& b) {
    const auto first = formOf(a);
    const auto second = formOf(b);
    GeodesicNearest nearest = NearestSearch(first->shape, first->tree, second->tree).run();
    if (nearest.distance > 0.0) {
        const Position* held = partHeld(*first, *second);
        held = held ? held : partHeld(*second, *first);
        if (held) {
            const std::array place{held->longitude, held->latitude};
            nearest = {0.0, place, place};
        }
    }
    return nearest;
}

double geodesicDistance(const Geometry& a, const Geometry& b) {
    const auto distance = pointDistance(a, b);
    return distance ? *distance : geodesicNearest(a, b).distance;
}

GeodesicNearest nearestIn(const GeographicShape& shape, const PieceTree& a, const PieceTree& b) {
    return NearestSearch(shape, a, b).run();
}

} // namespace orvane::geometry
