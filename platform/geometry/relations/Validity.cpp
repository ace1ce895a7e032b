#include "platform/geometry/relations/Validity.h"

#include "platform/geometry/relations/RelationForm.h"

#include <algorithm>
#include <mutex>

namespace orvane::geometry {

namespace {

/// Rings that are closed and long enough, which the form for GEOS has silently, are what the geometry itself
/// has. Else the first that is not.
const CoordinateSequence* improperRing(const Geometry& geometry) {
    if (geometry.type() == GeometryType::Polygon) {
        const auto& rings = static_cast<const Polygon&>(geometry).rings();
        const auto improper = std::find_if(rings.begin(), rings.end(), [](const CoordinateSequence& ring) {
            return !ring.isEmpty() && (ring.size() < 4 || !ring.isClosed());
        });
        return improper == rings.end() ? nullptr : &*improper;
    }
    if (const auto* collection = dynamic_cast<const GeometryCollection*>(&geometry)) {
        for (const GeometryPtr& part : collection->parts()) {
            if (const CoordinateSequence* improper = improperRing(*part)) {
                return improper;
            }
        }
    }
    return nullptr;
}

} // namespace

std::optional<Defect> defectOf(const Geometry& geometry, bool allowHolesAsTouchingShells) {
    if (const CoordinateSequence* ring = improperRing(geometry)) {
        return Defect{ring->isClosed() ? "Too few points in geometry component" : "Ring is not closed",
                      std::make_shared<Point>(ring->x(0), ring->y(0))};
    }
    const std::lock_guard lock(geometry.keptForm().mutex());
    const GEOSGeometry* plain = RelationForm::of(geometry).whole();
    if (!plain) {
        return Defect{"Invalid Coordinate", nullptr};
    }
    char* reason = nullptr;
    GEOSGeometry* location = nullptr;
    const char valid = GEOSisValidDetail_r(
        geosContext(), plain, allowHolesAsTouchingShells ? GEOSVALID_ALLOW_SELFTOUCHING_RING_FORMING_HOLE : 0,
        &reason, &location);
    const std::unique_ptr<char, GeosTextDeleter> text(reason);
    const GeosPtr place(location);
    if (valid == 1) {
        return std::nullopt;
    }
    if (valid != 0) {
        throwGeosError();
    }
    Defect defect{text ? text.get() : "", nullptr};
    double x = 0.0;
    double y = 0.0;
    if (place && GEOSGeomGetX_r(geosContext(), place.get(), &x) == 1 &&
        GEOSGeomGetY_r(geosContext(), place.get(), &y) == 1) {
        defect.place = std::make_shared<Point>(x, y);
    }
    return defect;
}

bool isSimple(const Geometry& geometry) {
    const std::lock_guard lock(geometry.keptForm().mutex());
    const GEOSGeometry* plain = RelationForm::of(geometry).whole();
    const char simple = plain ? GEOSisSimple_r(geosContext(), plain) : 0;
    if (simple == 2) {
        throwGeosError();
    }
    return simple == 1;
}

} // namespace orvane::geometry
