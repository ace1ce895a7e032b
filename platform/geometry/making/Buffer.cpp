#include "platform/geometry/making/Buffer.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeosForm.h"
#include "platform/geometry/making/GeodesicBuffer.h"
#include "platform/geometry/measures/Geodesics.h"
#include "platform/geometry/measures/Measures.h"
#include "platform/geometry/shapes/Failure.h"
#include "platform/geometry/shapes/Shapes.h"
#include "platform/work/Cancellation.h"

namespace orvane::geometry {

namespace {

bool hasOnlyLines(const GEOSGeometry* geometry) {
    const int kind = GEOSGeomTypeId_r(geosContext(), geometry);
    if (kind != GEOS_GEOMETRYCOLLECTION) {
        return kind == GEOS_LINESTRING || kind == GEOS_MULTILINESTRING || kind == GEOS_LINEARRING;
    }
    const int count = GEOSGetNumGeometries_r(geosContext(), geometry);
    for (int i = 0; i < count; ++i) {
        if (!hasOnlyLines(GEOSGetGeometryN_r(geosContext(), geometry, i))) {
            return false;
        }
    }
    return true;
}

/// So that the result fits into memory, whatever is asked for.
void checkSize(const Geometry& geometry, const BufferOptions& options) {
    constexpr std::uint64_t most = 100'000'000;
    if (geometry.weight() > most / static_cast<std::uint64_t>(options.quadrantSegments)) {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "Результат был бы слишком велик."));
    }
}

GeometryPtr inSystem(std::shared_ptr<Geometry> geometry, const std::shared_ptr<cs::CoordSystem>& system) {
    if (system && system->isGeographic()) {
        return fromDegrees(std::move(geometry), system);
    }
    geometry->setCoordSystem(system);
    return geometry;
}

} // namespace

GeometryPtr buffer(const Geometry& geometry, double distance, const QString& units,
                   const BufferOptions& options) {
    const auto system = geometry.coordSystem();
    const double reach = ownLength(distance, system.get(), units);
    checkSize(geometry, options);
    const GeosPtr plain = toGeos(geometry);
    if (!plain) {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "Координата геометрии не конечное число."));
    }
    if (options.side != BufferOptions::Side::Both && !hasOnlyLines(plain.get())) {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "Одна сторона (side) есть только у линий."));
    }
    const work::Cancellation cancellation;
    try {
        if (geometry.isEmpty()) {
            return inSystem(fromGeos(checked(GEOSGeom_createEmptyPolygon_r(geosContext())).get()), system);
        }
        const GeosPtr area = system && system->isGeographic()
                                 ? geodesicBuffer(onEllipsoid(geometry), reach, options)
                                 : planarBuffer(plain.get(), reach, options);
        return inSystem(fromGeos(area.get()), system);
    } catch (const std::runtime_error&) {
        cancellation.check(); // what GEOS says of a computation that was cancelled is no message for a user
        throw;
    }
}

} // namespace orvane::geometry
