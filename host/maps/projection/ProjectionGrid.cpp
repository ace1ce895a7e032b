#include "host/maps/projection/ProjectionGrid.h"

#include "host/maps/projection/LayerProjection.h"

#include <algorithm>
#include <cmath>

namespace orvane::maps {

namespace {

/// Cells on a side. The error goes with the third power: a world map of 20,000 pixels is interpolated, too.
constexpr int side = 48;

/// Positions that are projected exactly before there are cells, so that small maps have none.
constexpr std::size_t few = 4096;

/// Positions for which it pays to make the nodes of a cell, which takes 25.
constexpr int leastAsked = 64;

/// Pixels by which the checked places may be off. They are where a cubic error is almost greatest; half of
/// the tenth of a pixel that is promised is left for what lies between them.
constexpr double mostError = 0.05;

void projectExactly(const PlaneProjection& projection, const View& view, double* ordinates,
                    std::size_t count) {
    projection.fromDegrees(ordinates, count);
    const double scale = 1 / view.unitsPerPixel();
    const QPointF origin = view.toPlane({0, 0});
    for (std::size_t i = 0; i < 2 * count; i += 2) {
        ordinates[i] = (ordinates[i] - origin.x()) * scale;
        ordinates[i + 1] = (origin.y() - ordinates[i + 1]) * scale;
    }
}

/// The weights of what is known at -1, 0 and 1.
std::array<double, 3> weightsAt(double t) {
    return {0.5 * t * (t - 1), 1 - t * t, 0.5 * t * (t + 1)};
}

/// Within a cell that goes from -1 to 1 both ways.
void interpolateAt(const std::array<double, 18>& nodes, double u, double v, double* result) {
    const auto across = weightsAt(u);
    const auto along = weightsAt(v);
    double x = 0;
    double y = 0;
    for (std::size_t row = 0; row < 3; ++row) {
        const double* node = &nodes[6 * row];
        x += along[row] * (across[0] * node[0] + across[1] * node[2] + across[2] * node[4]);
        y += along[row] * (across[0] * node[1] + across[1] * node[3] + across[2] * node[5]);
    }
    result[0] = x;
    result[1] = y;
}

} // namespace

ProjectionGrid::ProjectionGrid(const geometry::Envelope& window)
    : window_(window), width_((window.maxX - window.minX) / side),
      height_((window.maxY - window.minY) / side) {}

void ProjectionGrid::toPixels(const PlaneProjection& projection, const View& view, double* ordinates,
                              std::size_t count) {
    // Between geographic systems there is little to project, and often nothing.
    if (seen_ < few || projection.isMapGeographic()) {
        seen_ += count;
        projectExactly(projection, view, ordinates, count);
        return;
    }
    cells_.resize(std::size_t{side} * side);
    for (std::size_t i = 0; i < 2 * count; i += 2) {
        if (!interpolate(projection, view, ordinates + i)) {
            projectExactly(projection, view, ordinates + i, 1);
        }
    }
}

bool ProjectionGrid::interpolate(const PlaneProjection& projection, const View& view, double* position) {
    const double x = (position[0] - window_.minX) / width_;
    const double y = (position[1] - window_.minY) / height_;
    if (!(x >= 0 && x <= side && y >= 0 && y <= side)) { // or not a number, in a window without a size
        return false;
    }
    const int column = std::min(static_cast<int>(x), side - 1);
    const int row = std::min(static_cast<int>(y), side - 1);
    Cell& cell = cells_[static_cast<std::size_t>(row * side + column)];
    if (cell.asked < leastAsked && ++cell.asked == leastAsked) {
        make(projection, view, column, row, cell);
    }
    if (!cell.isExact) {
        interpolateAt(cell.nodes, 2 * (x - column) - 1, 2 * (y - row) - 1, position);
    }
    return !cell.isExact;
}

/// Five by five positions: every other one is a node, the others, halfway between nodes, check them. A cut
/// in the cell shows in them, and so does a position without an image.
void ProjectionGrid::make(const PlaneProjection& projection, const View& view, int column, int row,
                          Cell& cell) const {
    constexpr std::size_t count = 5;
    std::array<double, 2 * count * count> positions{};
    const auto at = [&positions](std::size_t i, std::size_t j) { return &positions[2 * (count * j + i)]; };
    for (std::size_t j = 0; j < count; ++j) {
        for (std::size_t i = 0; i < count; ++i) {
            at(i, j)[0] = window_.minX + width_ * (column + 0.25 * static_cast<double>(i));
            at(i, j)[1] = window_.minY + height_ * (row + 0.25 * static_cast<double>(j));
        }
    }
    projectExactly(projection, view, positions.data(), count * count);
    for (std::size_t node = 0; node < 9; ++node) {
        std::copy_n(at(2 * (node % 3), 2 * (node / 3)), 2, &cell.nodes[2 * node]);
    }
    cell.isExact = false;
    for (std::size_t j = 0; j < count; ++j) {
        for (std::size_t i = 0; i < count; ++i) {
            double found[2];
            interpolateAt(cell.nodes, 0.5 * static_cast<double>(i) - 1, 0.5 * static_cast<double>(j) - 1,
                          found);
            const double error = std::hypot(found[0] - at(i, j)[0], found[1] - at(i, j)[1]);
            cell.isExact = cell.isExact || !(error < mostError);
        }
    }
}

} // namespace orvane::maps
