#pragma once

#include "platform/geometry/shapes/Coordinates.h"

#include <array>
#include <cstddef>
#include <vector>

namespace orvane::maps {

class PlaneProjection;
class View;

/// Projects many positions by interpolation between few: within a cell of the grid a position is worked out
/// from nine that were projected exactly, biquadratically, so that neighbouring cells agree along their edge.
/// Off by less than a tenth of a pixel. The first few thousand positions, and those in cells where
/// interpolation would not do, are projected exactly.
class ProjectionGrid {
public:
    /// Over a rectangle in degrees; positions beyond it are projected exactly.
    explicit ProjectionGrid(const geometry::Envelope& window = {0, 0, 0, 0});

    /// Degrees to pixels, in place, x and y in turn; a position without an image becomes infinite or not a
    /// number. All calls name the same projection, which is not direct, and the same view.
    void toPixels(const PlaneProjection& projection, const View& view, double* ordinates, std::size_t count);

private:
    struct Cell {
        std::array<double, 18> nodes; ///< in pixels, of the corners, the middles of the edges, the middle
        int asked = 0;                ///< positions that came, until the nodes are made
        bool isExact = true;          ///< without nodes
    };

    bool interpolate(const PlaneProjection& projection, const View& view, double* position);
    void make(const PlaneProjection& projection, const View& view, int column, int row, Cell& cell) const;

    geometry::Envelope window_;
    double width_, height_; ///< of a cell
    std::size_t seen_ = 0;
    std::vector<Cell> cells_;
};

} // namespace orvane::maps
