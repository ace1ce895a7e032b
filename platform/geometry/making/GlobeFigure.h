#pragma once

#include "platform/geometry/measures/GeodesicPieces.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace orvane::geometry {

/// Positions of a point, a line or a ring. The last of a ring is its first.
struct Track {
    std::vector<Position> positions;
    bool isRing = false;

    bool isPoint() const { return positions.size() == 1; }
};

/// What is buffered: points, lines, and areas of rings, the shell first.
struct Figure {
    std::vector<Track> tracks;
    std::vector<std::vector<Track>> areas;
};

/// Of a linear geometry, edges cut into parts no longer than `longest` metres. Throws std::runtime_error for
/// more than two million positions.
Figure figureOf(const GeographicShape& shape, double longest);

/// Where the map was cut along the 180th meridian: what both of its sides have there is no border.
class Seam {
public:
    void add(const Track& ring) {
        for (std::size_t i = 1; i < ring.positions.size(); ++i) {
            if (const double side = sideOf(ring, i); side != 0.0) {
                auto& spans = side > 0.0 ? east_ : west_;
                spans.push_back(std::minmax(ring.positions[i - 1].latitude, ring.positions[i].latitude));
            }
        }
    }
    bool isEmpty() const { return east_.empty() || west_.empty(); }

    bool holds(const Track& ring, std::size_t edge) const {
        const double side = sideOf(ring, edge);
        const auto& others = side > 0.0 ? west_ : east_;
        const double middle = (ring.positions[edge - 1].latitude + ring.positions[edge].latitude) / 2.0;
        return side != 0.0 && std::any_of(others.begin(), others.end(), [middle](const auto& span) {
                   return span.first <= middle && middle <= span.second;
               });
    }

private:
    using Span = std::pair<double, double>;

    /// 1 or -1 where the edge to a position lies on the meridian, else 0.
    static double sideOf(const Track& ring, std::size_t edge) {
        constexpr double rounding = 1e-9;
        const Position& begin = ring.positions[edge - 1];
        const Position& end = ring.positions[edge];
        const double from = std::abs(begin.latitude) == 90.0 ? end.longitude : begin.longitude;
        const double to = std::abs(end.latitude) == 90.0 ? from : end.longitude;
        return std::abs(from - to) < rounding && std::abs(std::abs(from) - 180.0) < rounding
                   ? std::copysign(1.0, from)
                   : 0.0;
    }

    std::vector<Span> east_, west_;
};

} // namespace orvane::geometry
