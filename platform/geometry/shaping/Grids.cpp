#include "platform/geometry/shaping/Grids.h"

#include "platform/geometry/overlay/GeosOperation.h"
#include "platform/geometry/overlay/Parts.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace orvane::geometry {

namespace {

/// Of a lattice: steps along x and y, so that a corner that several cells have is one.
struct Node {
    std::int64_t column, row;
    auto operator<=>(const Node&) const = default;
};
using Ring = std::vector<Node>;

class Lattice {
public:
    Lattice(CellShape shape, double size, double originX, double originY)
        : shape_(shape), originX_(originX), originY_(originY),
          stepX_(shape == CellShape::Square ? size : size / 2),
          stepY_(shape == CellShape::Square ? size : size * std::sqrt(3.0) / 2) {}

    double x(const Node& node) const { return originX_ + stepX_ * static_cast<double>(node.column); }
    double y(const Node& node) const { return originY_ + stepY_ * static_cast<double>(node.row); }

    /// Calls `visit` with the ring of every cell that may meet the box.
    template<typename Visit>
    void forEachCell(const Envelope& box, const Visit& visit) const {
        const double left = std::floor((box.minX - originX_) / stepX_);
        const double right = std::ceil((box.maxX - originX_) / stepX_);
        const double bottom = std::floor((box.minY - originY_) / stepY_);
        const double top = std::ceil((box.maxY - originY_) / stepY_);
        constexpr double mostSteps = 9e15; // which numbers of steps still have
        const double perCell = shape_ == CellShape::Hexagon ? 6.0 : 1.0;
        if (!((right - left + 1) * (top - bottom + 1) / perCell <= static_cast<double>(mostParts)) ||
            std::max({std::abs(left), std::abs(right), std::abs(bottom), std::abs(top)}) > mostSteps) {
            throwTooManyParts();
        }
        const Node first{static_cast<std::int64_t>(left), static_cast<std::int64_t>(bottom)};
        const Node last{static_cast<std::int64_t>(right), static_cast<std::int64_t>(top)};
        for (std::int64_t row = first.row - 1; row <= last.row + 1; ++row) {
            for (std::int64_t column = first.column - 2; column <= last.column + 2; ++column) {
                if (const Ring ring = cellAt({column, row}); !ring.empty()) {
                    visit(ring);
                }
            }
        }
    }

private:
    /// The cell that has its left lower corner, or its centre, in a node; none where no cell has.
    Ring cellAt(const Node& at) const {
        const auto [column, row] = at;
        const bool isOdd = ((column + row) & 1) != 0;
        switch (shape_) {
        case CellShape::Square: return {at, {column + 1, row}, {column + 1, row + 1}, {column, row + 1}, at};
        case CellShape::Triangle: // with the tip above, or below
            return isOdd
                       ? Ring{{column, row + 1}, {column + 1, row}, {column + 2, row + 1}, {column, row + 1}}
                       : Ring{at, {column + 2, row}, {column + 1, row + 1}, at};
        case CellShape::Hexagon: break;
        }
        if (column % 3 != 0 || isOdd) {
            return {};
        }
        return {{column - 2, row},     {column - 1, row - 1}, {column + 1, row - 1}, {column + 2, row},
                {column + 1, row + 1}, {column - 1, row + 1}, {column - 2, row}};
    }

    CellShape shape_;
    double originX_, originY_, stepX_, stepY_;
};

CoordinateSequence positionsOf(const Lattice& lattice, const Ring& nodes) {
    return CoordinateSequence(Dimensions::XY, nodes.size(), [&](double* target) {
        for (const Node& node : nodes) {
            *target++ = lattice.x(node);
            *target++ = lattice.y(node);
        }
    });
}

template<typename Element>
void sortUnique(std::vector<Element>& elements) {
    std::sort(elements.begin(), elements.end());
    elements.erase(std::unique(elements.begin(), elements.end()), elements.end());
}

std::shared_ptr<Geometry> edgesOf(const Lattice& lattice, const std::vector<Ring>& cells) {
    std::vector<std::pair<Node, Node>> edges;
    for (const Ring& cell : cells) {
        for (std::size_t i = 1; i < cell.size(); ++i) {
            edges.push_back(std::minmax(cell[i - 1], cell[i]));
        }
    }
    sortUnique(edges);
    std::vector<GeometryPtr> lines;
    for (const auto& [begin, end] : edges) {
        lines.push_back(std::make_shared<LineString>(positionsOf(lattice, {begin, end})));
    }
    return multiOf(1, Dimensions::XY, std::move(lines));
}

std::shared_ptr<Geometry> cornersOf(const Lattice& lattice, const std::vector<Ring>& cells) {
    std::vector<Node> nodes;
    for (const Ring& cell : cells) {
        nodes.insert(nodes.end(), cell.begin(), cell.end());
    }
    sortUnique(nodes);
    std::vector<GeometryPtr> points;
    for (const Node& node : nodes) {
        points.push_back(std::make_shared<Point>(lattice.x(node), lattice.y(node)));
    }
    return multiOf(0, Dimensions::XY, std::move(points));
}

std::shared_ptr<Geometry> areasOf(const Lattice& lattice, const std::vector<Ring>& cells) {
    std::vector<GeometryPtr> areas;
    for (const Ring& cell : cells) {
        areas.push_back(std::make_shared<Polygon>(Dimensions::XY, std::vector{positionsOf(lattice, cell)}));
    }
    return multiOf(2, Dimensions::XY, std::move(areas));
}

/// Whether an area has more than borders in common with a cell. Most cells lie all inside or outside, which
/// is told much faster.
bool sharesArea(const GEOSPreparedGeometry* area, const GEOSGeometry* cell) {
    const GEOSContextHandle_t context = geosContext();
    return GEOSPreparedCovers_r(context, area, cell) == 1 ||
           (GEOSPreparedIntersects_r(context, area, cell) == 1 &&
            GEOSPreparedTouches_r(context, area, cell) == 0);
}

/// The cells that share something with a form, of an area more than its border.
std::vector<Ring> cellsOver(const GEOSGeometry* form, const Lattice& lattice, const Envelope& box,
                            bool isArea) {
    const work::Cancellation cancellation;
    const GEOSContextHandle_t context = geosContext();
    const GeosPreparedPtr prepared(GEOSPrepare_r(context, form));
    if (!prepared) {
        throwGeosError();
    }
    std::vector<Ring> cells;
    lattice.forEachCell(box, [&](const Ring& ring) {
        cancellation.check();
        const Polygon cell(Dimensions::XY, {positionsOf(lattice, ring)});
        if (!cell.envelope().intersects(box)) {
            return;
        }
        const GeosPtr area = finiteForm(cell);
        if (isArea ? sharesArea(prepared.get(), area.get())
                   : GEOSPreparedIntersects_r(context, prepared.get(), area.get()) == 1) {
            cells.push_back(ring);
        }
    });
    return cells;
}

} // namespace

std::shared_ptr<Geometry> gridOver(const Geometry& geometry, CellShape shape, double size, CellPart part,
                                   double originX, double originY) {
    GeosPtr form = finiteForm(geometry);
    const Lattice lattice(shape, size, originX, originY);
    std::vector<Ring> cells;
    if (GEOSisEmpty_r(geosContext(), form.get()) == 0) {
        const bool isArea = partsOf(form.get(), 0).empty() && partsOf(form.get(), 1).empty();
        if (isArea) { // which have to be valid to tell what only touches
            form = united([&] {
                std::vector<GeosPtr> valid;
                valid.push_back(checked(GEOSMakeValid_r(geosContext(), form.get())));
                return valid;
            }());
        }
        cells = cellsOver(form.get(), lattice, geometry.envelope(), isArea);
    }
    std::shared_ptr<Geometry> grid = part == CellPart::Areas   ? areasOf(lattice, cells)
                                     : part == CellPart::Edges ? edgesOf(lattice, cells)
                                                               : cornersOf(lattice, cells);
    grid->setCoordSystem(geometry.coordSystem());
    return grid;
}

} // namespace orvane::geometry
