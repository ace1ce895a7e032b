#include "platform/geometry/measures/GeodesicForm.h"

#include "platform/cs/CoordSystem.h"

#include <utility>

namespace orvane::geometry {

namespace {

std::vector<Position> onePositionOfEach(const GeographicShape& shape) {
    std::vector<Position> positions;
    forEachSequence(*shape.geometry, [&](const CoordinateSequence& sequence) {
        if (!sequence.isEmpty()) {
            positions.push_back(positionAt(shape, sequence.x(0), sequence.y(0)));
        }
    });
    return positions;
}

void appendAreas(const GeographicShape& shape, const Geometry& geometry, std::vector<Area>& areas) {
    if (const auto* collection = dynamic_cast<const GeometryCollection*>(&geometry)) {
        for (const GeometryPtr& part : collection->parts()) {
            appendAreas(shape, *part, areas);
        }
    } else if (geometry.type() == GeometryType::Polygon && !geometry.isEmpty()) {
        Area& area = areas.emplace_back();
        for (const CoordinateSequence& ring : static_cast<const Polygon&>(geometry).rings()) {
            if (!ring.isEmpty()) {
                area.emplace_back(shape, ring);
            }
        }
    }
}

/// The form of the copy of a shape that was measured last: copies may have other systems.
struct KeptGeodesicForm {
    std::shared_ptr<const GeodesicForm> form;
    std::shared_ptr<cs::CoordSystem> system;
};

} // namespace

PieceTree treeOf(const GeographicShape& shape) {
    std::vector<Piece> pieces;
    forEachSequence(*shape.geometry,
                    [&](const CoordinateSequence& sequence) { appendPieces(shape, sequence, pieces); });
    return PieceTree(std::move(pieces));
}

GeodesicForm::GeodesicForm(const Geometry& geometry)
    : shape(onEllipsoid(geometry)), tree(treeOf(shape)), positions(onePositionOfEach(shape)) {
    appendAreas(shape, *shape.geometry, areas);
}

std::shared_ptr<const GeodesicForm> formOf(const Geometry& geometry) {
    if (geometry.type() == GeometryType::Point) {
        return std::make_shared<const GeodesicForm>(geometry);
    }
    KeptForm& shared = geometry.keptForm();
    const std::lock_guard lock(shared.mutex());
    auto& kept = shared.get<KeptGeodesicForm>();
    if (const auto system = geometry.coordSystem(); !kept.form || kept.system != system) {
        kept = {std::make_shared<const GeodesicForm>(geometry), system};
    }
    return kept.form;
}

} // namespace orvane::geometry
