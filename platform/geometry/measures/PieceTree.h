#pragma once

#include "platform/geometry/measures/GeodesicPieces.h"
#include "platform/geometry/shapes/Shapes.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

namespace orvane::geometry {

struct Box {
    Vector least{INFINITY, INFINITY, INFINITY};
    Vector most{-INFINITY, -INFINITY, -INFINITY};

    void add(const Vector& position, double around) {
        for (std::size_t i = 0; i < 3; ++i) {
            least[i] = std::min(least[i], position[i] - around);
            most[i] = std::max(most[i], position[i] + around);
        }
    }
    double size() const { return norm(most - least); }
    double distance(const Box& other) const {
        double sum = 0.0;
        for (std::size_t i = 0; i < 3; ++i) {
            const double gap = std::max({0.0, least[i] - other.most[i], other.least[i] - most[i]});
            sum += gap * gap;
        }
        return std::sqrt(sum);
    }
};

/// Pieces by their place: halves of halves.
class PieceTree {
public:
    struct Node {
        Box box;
        std::size_t first, last;  ///< pieces [first, last)
        std::size_t children = 0; ///< the first of two; 0 for none
    };

    explicit PieceTree(std::vector<Piece> pieces);

    const Node& node(std::size_t index) const { return nodes_[index]; }
    const Piece& piece(std::size_t index) const { return pieces_[index]; }

private:
    void build(std::size_t index, std::size_t first, std::size_t last);

    std::vector<Piece> pieces_;
    std::vector<Node> nodes_;
};

/// How far along a chord, 0 to 1, it is nearest to a position.
double nearestOn(const Piece& piece, const Vector& position);
Vector onChord(const Piece& piece, double part);

/// Where two chords are nearest to each other, and how far apart they are there.
struct ChordsApart {
    double partA, partB, distance;
};

ChordsApart chordsApart(const Piece& a, const Piece& b);

/// Calls `use` with every sequence of positions in a linear geometry: points, lines, rings.
template<typename Use>
void forEachSequence(const Geometry& geometry, const Use& use) {
    switch (geometry.type()) {
    case GeometryType::Point:
        if (!geometry.isEmpty()) {
            const auto& point = static_cast<const Point&>(geometry);
            use(CoordinateSequence(point.dimensions(),
                                   std::span(point.ordinates(), strideOf(point.dimensions()))));
        }
        break;
    case GeometryType::LineString: use(static_cast<const LineString&>(geometry).coordinates()); break;
    case GeometryType::Polygon:
        for (const CoordinateSequence& ring : static_cast<const Polygon&>(geometry).rings()) {
            use(ring);
        }
        break;
    default:
        for (const GeometryPtr& part : static_cast<const GeometryCollection&>(geometry).parts()) {
            forEachSequence(*part, use);
        }
    }
}

} // namespace orvane::geometry
