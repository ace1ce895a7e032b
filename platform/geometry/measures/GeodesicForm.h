#pragma once

#include "platform/geometry/measures/PieceTree.h"

#include <memory>
#include <vector>

namespace orvane::geometry {

PieceTree treeOf(const GeographicShape& shape);

/// The border of an area, then those of its holes.
using Area = std::vector<GeodesicRing>;

/// What is measured from, made once for a geometry. Stays where it is: the areas refer to the shape.
struct GeodesicForm {
    explicit GeodesicForm(const Geometry& geometry);
    GeodesicForm(const GeodesicForm&) = delete;
    GeodesicForm& operator=(const GeodesicForm&) = delete;

    GeographicShape shape;
    PieceTree tree;
    std::vector<Position> positions; ///< one of each part
    std::vector<Area> areas;
};

/// Kept with the geometry. Throws as onEllipsoid does.
std::shared_ptr<const GeodesicForm> formOf(const Geometry& geometry);

/// Of the geodesics in two trees; what areas hold does not count.
GeodesicNearest nearestIn(const GeographicShape& shape, const PieceTree& a, const PieceTree& b);

} // namespace orvane::geometry
