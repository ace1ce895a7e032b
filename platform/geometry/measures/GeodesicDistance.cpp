#include "platform/geometry/measures/Geodesics.h"

#include "platform/geometry/shapes/Shapes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

// The shortest geodesic between two shapes. Edges are compared on a sphere first, on which they are unit
// vectors and cheap; what could be nearest is then measured on the ellipsoid. Mapping geographic latitudes to
// the sphere changes the length of any path by a factor between 1 - e^2 and 1 / sqrt(1 - e^2) of the
// equatorial radius, the extremes of the radii of curvature, so that a distance on the sphere bounds the one
// on the ellipsoid from both sides.

namespace orvane::geometry {

namespace {

using Vector = std::array<double, 3>;

Vector operator+(const Vector& a, const Vector& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
double dot(const Vector& a, const Vector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
Vector cross(const Vector& a, const Vector& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
double norm(const Vector& a) {
    return std::sqrt(dot(a, a));
}
double angle(const Vector& a, const Vector& b) {
    return std::atan2(norm(cross(a, b)), dot(a, b));
}

struct Position {
    double longitude, latitude;
    Vector vector;
};

/// An edge, or a point as an edge of no length.
struct Edge {
    Position begin, end;
    double angle;
};

/// Neighbouring edges within a circle on the sphere.
struct Block {
    std::size_t first, last; ///< edges [first, last)
    Vector centre;
    double radius;
};

Position positionAt(const double* ordinates) {
    const double longitude = ordinates[0] * std::numbers::pi / 180.0;
    const double latitude = ordinates[1] * std::numbers::pi / 180.0;
    return {ordinates[0],
            ordinates[1],
            {std::cos(latitude) * std::cos(longitude), std::cos(latitude) * std::sin(longitude),
             std::sin(latitude)}};
}

/// The angle between a position and the arc of an edge.
double angleTo(const Edge& edge, const Vector& position) {
    const Vector normal = cross(edge.begin.vector, edge.end.vector);
    const double length = norm(normal);
    const double toEnds = std::min(angle(edge.begin.vector, position), angle(edge.end.vector, position));
    if (length < 1e-15) {
        return toEnds;
    }
    const bool besideEdge = dot(cross(normal, edge.begin.vector), position) > 0.0 &&
                            dot(cross(edge.end.vector, normal), position) > 0.0;
    const double height = std::asin(std::clamp(std::abs(dot(normal, position)) / length, 0.0, 1.0));
    return besideEdge ? std::min(height, toEnds) : toEnds;
}

/// The edges of a shape in blocks.
class Edges {
public:
    explicit Edges(const Geometry& geometry) {
        add(geometry);
        constexpr std::size_t blockSize = 32;
        for (std::size_t first = 0; first < edges_.size(); first += blockSize) {
            addBlock(first, std::min(first + blockSize, edges_.size()));
        }
    }

    const std::vector<Block>& blocks() const { return blocks_; }
    const Edge& operator[](std::size_t index) const { return edges_[index]; }

private:
    void add(const Geometry& geometry) {
        switch (geometry.type()) {
        case GeometryType::Point:
            if (!geometry.isEmpty()) {
                const Position position = positionAt(static_cast<const Point&>(geometry).ordinates());
                edges_.push_back({position, position, 0.0});
            }
            break;
        case GeometryType::LineString: add(static_cast<const LineString&>(geometry).coordinates()); break;
        case GeometryType::Polygon:
            for (const CoordinateSequence& ring : static_cast<const Polygon&>(geometry).rings()) {
                add(ring);
            }
            break;
        default:
            for (const GeometryPtr& part : static_cast<const GeometryCollection&>(geometry).parts()) {
                add(*part);
            }
        }
    }

    void add(const CoordinateSequence& sequence) {
        for (std::size_t i = 0; i < sequence.size(); ++i) {
            const Position position = positionAt(sequence.position(i));
            if (i > 0) {
                edges_.back().end = position;
                edges_.back().angle = angle(edges_.back().begin.vector, position.vector);
            }
            if (i + 1 < sequence.size() || sequence.size() == 1) {
                edges_.push_back({position, position, 0.0});
            }
        }
    }

    void addBlock(std::size_t first, std::size_t last) {
        Vector sum{};
        for (std::size_t i = first; i < last; ++i) {
            sum = sum + edges_[i].begin.vector + edges_[i].end.vector;
        }
        const double length = norm(sum);
        Block block{first, last, edges_[first].begin.vector, 0.0};
        if (length > 1e-9) {
            block.centre = {sum[0] / length, sum[1] / length, sum[2] / length};
        }
        for (std::size_t i = first; i < last; ++i) {
            // No position of an arc is further from its nearer end than half its length.
            const double toEnds = std::max(angle(block.centre, edges_[i].begin.vector),
                                           angle(block.centre, edges_[i].end.vector));
            block.radius = std::max(block.radius, toEnds + edges_[i].angle / 2.0);
        }
        blocks_.push_back(block);
    }

    std::vector<Edge> edges_;
    std::vector<Block> blocks_;
};

class NearestSearch {
public:
    NearestSearch(const GeographicShape& a, const GeographicShape& b)
        : ellipsoid_(a.ellipsoid), edgesA_(*a.geometry), edgesB_(*b.geometry),
          lowerFactor_(a.equatorialRadius * (1.0 - a.eccentricitySquared)),
          // A long geodesic runs beside the arc on the sphere, by less than this part of its length.
          bend_(a.equatorialRadius * a.eccentricitySquared) {}

    double run() {
        struct Pair {
            double bound;
            std::size_t a, b;
        };
        std::vector<Pair> pairs;
        pairs.reserve(edgesA_.blocks().size() * edgesB_.blocks().size());
        for (std::size_t i = 0; i < edgesA_.blocks().size(); ++i) {
            for (std::size_t j = 0; j < edgesB_.blocks().size(); ++j) {
                const Block& a = edgesA_.blocks()[i];
                const Block& b = edgesB_.blocks()[j];
                const double apart = angle(a.centre, b.centre) - a.radius - b.radius;
                pairs.push_back({lowerFactor_ * apart - bend_ * (a.radius + b.radius), i, j});
            }
        }
        std::sort(pairs.begin(), pairs.end(), [](const Pair& a, const Pair& b) { return a.bound < b.bound; });
        for (const Pair& pair : pairs) {
            if (pair.bound >= best_) {
                break;
            }
            compare(edgesA_.blocks()[pair.a], edgesB_.blocks()[pair.b]);
        }
        return best_;
    }

private:
    /// Two edges that do not cross are nearest at an end of one of them.
    void compare(const Block& blockA, const Block& blockB) {
        for (std::size_t i = blockA.first; i < blockA.last; ++i) {
            for (std::size_t j = blockB.first; j < blockB.last; ++j) {
                const Edge& a = edgesA_[i];
                const Edge& b = edgesB_[j];
                compare(a, b.begin);
                compare(a, b.end);
                compare(b, a.begin);
                compare(b, a.end);
            }
        }
    }

    void compare(const Edge& edge, const Position& position) {
        if (lowerFactor_ * angleTo(edge, position.vector) - bend_ * edge.angle < best_) {
            best_ = std::min(best_, distance(edge, position));
        }
    }

    /// The way from a position to an edge: where it meets the edge at a right angle, or at an end.
    double distance(const Edge& edge, const Position& position) const {
        double fromBegin = 0.0;
        double fromEnd = 0.0;
        geod_inverse(&ellipsoid_, edge.begin.latitude, edge.begin.longitude, position.latitude,
                     position.longitude, &fromBegin, nullptr, nullptr);
        if (edge.angle == 0.0) {
            return fromBegin;
        }
        geod_inverse(&ellipsoid_, edge.end.latitude, edge.end.longitude, position.latitude,
                     position.longitude, &fromEnd, nullptr, nullptr);
        geod_geodesicline line;
        geod_inverseline(&line, &ellipsoid_, edge.begin.latitude, edge.begin.longitude, edge.end.latitude,
                         edge.end.longitude, 0);
        double nearest = std::min(fromBegin, fromEnd);
        // The cosine of the angle between the edge and the way to the position changes its sign at the foot.
        const auto cosineAt = [&](double along) {
            double latitude = 0.0;
            double longitude = 0.0;
            double lineAzimuth = 0.0;
            double distanceHere = 0.0;
            double azimuth = 0.0;
            geod_position(&line, along, &latitude, &longitude, &lineAzimuth);
            geod_inverse(&ellipsoid_, latitude, longitude, position.latitude, position.longitude,
                         &distanceHere, &azimuth, nullptr);
            nearest = std::min(nearest, distanceHere);
            return std::cos((azimuth - lineAzimuth) * std::numbers::pi / 180.0);
        };
        double low = 0.0;
        double high = line.s13;
        double cosineLow = cosineAt(low);
        double cosineHigh = cosineAt(high);
        if (!(cosineLow > 0.0 && cosineHigh < 0.0)) {
            return nearest;
        }
        constexpr int mostSteps = 60;
        constexpr double precision =
            1e-6; // metres along the edge: squared and halved it is nothing across it
        for (int step = 0; step < mostSteps && high - low > precision; ++step) {
            // False position, halved now and then so that it cannot creep.
            const double along = step % 3 == 2 ? (low + high) / 2.0
                                               : low + (high - low) * cosineLow / (cosineLow - cosineHigh);
            const double cosine = cosineAt(along);
            if (std::abs(cosine) < 1e-13) {
                break;
            }
            (cosine > 0.0 ? low : high) = along;
            (cosine > 0.0 ? cosineLow : cosineHigh) = cosine;
        }
        return nearest;
    }

    geod_geodesic ellipsoid_;
    Edges edgesA_;
    Edges edgesB_;
    double lowerFactor_;
    double bend_;
    double best_ = std::numeric_limits<double>::infinity();
};

} // namespace

double geodesicDistance(const GeographicShape& a, const GeographicShape& b) {
    return NearestSearch(a, b).run();
}

} // namespace orvane::geometry
