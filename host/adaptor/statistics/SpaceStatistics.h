#pragma once

#include "platform/geometry/shapes/Coordinates.h"

#include <cstdint>
#include <span>
#include <vector>

namespace orvane::cs {
class CoordSystem;
}

namespace orvane::adaptor {

/// Where the geometries of a table lie and how large they are, from a sample of their envelopes: a histogram
/// whose cells hold about as many envelopes each, so that it is fine where they are dense. Within a cell they
/// count as spread evenly, and of one size. Immutable.
class SpaceStatistics {
public:
    /// Which pairs of envelopes count.
    enum class Match : std::uint8_t {
        Meet,         ///< they share a position
        FirstWithin,  ///< the first lies in the second
        SecondWithin, ///< the second lies in the first
        CentreWithin, ///< the centre of the first lies in the second
        WithinCentre, ///< the centre of the second lies in the first
    };

    /// Coordinates beyond are no places, and cannot be reckoned with.
    static constexpr double largest = 1e100;

    /// `rows` is the number of envelopes of the whole table that have a position. The sample, of coordinates
    /// up to the largest, is put into another order.
    SpaceStatistics(std::span<geometry::Envelope> sample, double rows);

    /// Geometries of the table that have a position.
    double rows() const { return rows_; }
    /// Whether the envelopes of the sample are all of no size.
    bool arePositions() const;
    /// How many of the envelopes match one, which is the second of each pair.
    double countMatching(const geometry::Envelope& window, Match match) const;
    /// How many pairs match, one of each table.
    static double countPairs(const SpaceStatistics& first, const SpaceStatistics& second, Match match);

    /// The same in another system, as far as its cells have an image there.
    SpaceStatistics inSystem(const cs::CoordSystem& target, const cs::CoordSystem& own) const;

private:
    /// Envelopes whose centres lie in an extent.
    struct Cell {
        geometry::Envelope centres;
        double rows = 0;
        double width = 0; ///< the mean, as the height
        double height = 0;
    };

    SpaceStatistics() = default;
    void divide(std::span<geometry::Envelope> sample, double rowsPerEnvelope);
    static double countPairs(const Cell& first, const Cell& second, Match match);

    std::vector<Cell> cells_;
    std::size_t cellSize_ = 1; ///< envelopes of the sample in one
    double rows_ = 0;
};

} // namespace orvane::adaptor
