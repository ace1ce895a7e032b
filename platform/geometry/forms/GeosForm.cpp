#include "platform/geometry/forms/GeosForm.h"

#include "platform/geometry/shapes/Curves.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <stdexcept>
#include <string>

namespace orvane::geometry {

namespace {

struct ThreadContext {
    ThreadContext() : handle(GEOS_init_r()) {
        GEOSContext_setErrorMessageHandler_r(
            handle, [](const char* text, void* self) { static_cast<ThreadContext*>(self)->message = text; },
            this);
    }
    ~ThreadContext() { GEOS_finish_r(handle); }

    GEOSContextHandle_t handle;
    std::string message;
};

ThreadContext& threadContext() {
    thread_local ThreadContext context;
    return context;
}

/// Only for releasing objects, which needs no state of a context: it never goes away, so that geometries may
/// be destroyed after the context of the thread.
GEOSContextHandle_t releaseContext() {
    static const GEOSContextHandle_t handle = GEOS_init_r();
    return handle;
}

/// For functions of GEOS that take over a list of geometries.
std::vector<GEOSGeometry*> released(std::vector<GeosPtr>& geometries) {
    std::vector<GEOSGeometry*> handed(geometries.size());
    std::transform(geometries.begin(), geometries.end(), handed.begin(),
                   [](GeosPtr& geometry) { return geometry.release(); });
    return handed;
}

struct SequenceDeleter {
    void operator()(GEOSCoordSequence* sequence) const { GEOSCoordSeq_destroy_r(releaseContext(), sequence); }
};
using SequencePtr = std::unique_ptr<GEOSCoordSequence, SequenceDeleter>;

/// x and y (and z) of the positions. `least` positions at the fewest when there are any; closed when asked
/// for.
SequencePtr toSequence(const CoordinateSequence& source, std::size_t least, bool closed) {
    const bool z = hasZ(source.dimensions());
    std::span<const double> values = source.values();
    std::vector<double> filled;
    const bool mustClose = closed && !source.isEmpty() && !source.isClosed();
    if (!source.isEmpty() && (mustClose || source.size() < least)) {
        filled.assign(values.begin(), values.end());
        const auto append = [&](std::size_t position) {
            filled.insert(filled.end(), source.position(position),
                          source.position(position) + source.stride());
        };
        while (filled.size() / source.stride() + (mustClose ? 1 : 0) < least) {
            append(source.size() - 1);
        }
        if (mustClose) {
            append(0);
        }
        values = filled;
    }
    const auto size = static_cast<unsigned>(values.size() / source.stride());
    SequencePtr sequence(size == 0 ? GEOSCoordSeq_create_r(geosContext(), 0, z ? 3 : 2)
                                   : GEOSCoordSeq_copyFromBuffer_r(geosContext(), values.data(), size, z,
                                                                   hasM(source.dimensions())));
    if (!sequence) {
        throwGeosError();
    }
    return sequence;
}

GeosPtr toPoint(const Point& point) {
    if (point.isEmpty()) {
        return checked(GEOSGeom_createEmptyPoint_r(geosContext()));
    }
    if (!hasZ(point.dimensions())) {
        return checked(GEOSGeom_createPointFromXY_r(geosContext(), point.x(), point.y()));
    }
    SequencePtr sequence(GEOSCoordSeq_copyFromBuffer_r(geosContext(), point.ordinates(), 1, true, false));
    return checked(GEOSGeom_createPoint_r(geosContext(), sequence.release()));
}

GeosPtr toRing(const CoordinateSequence& ring) {
    return checked(GEOSGeom_createLinearRing_r(geosContext(), toSequence(ring, 4, true).release()));
}

GeosPtr toPolygon(const Polygon& polygon) {
    if (polygon.isEmpty()) {
        return checked(GEOSGeom_createEmptyPolygon_r(geosContext()));
    }
    GeosPtr shell = toRing(polygon.rings().front());
    std::vector<GeosPtr> holes;
    for (std::size_t i = 1; i < polygon.rings().size(); ++i) {
        if (!polygon.rings()[i].isEmpty()) {
            holes.push_back(toRing(polygon.rings()[i]));
        }
    }
    std::vector<GEOSGeometry*> handed = released(holes);
    return checked(GEOSGeom_createPolygon_r(geosContext(), shell.release(), handed.data(),
                                            static_cast<unsigned>(handed.size())));
}

GeosPtr toGeosUnchecked(const Geometry& geometry) {
    switch (geometry.type()) {
    case GeometryType::Point: return toPoint(static_cast<const Point&>(geometry));
    case GeometryType::LineString:
        return checked(GEOSGeom_createLineString_r(
            geosContext(),
            toSequence(static_cast<const LineString&>(geometry).coordinates(), 2, false).release()));
    case GeometryType::Polygon: return toPolygon(static_cast<const Polygon&>(geometry));
    default: break;
    }
    std::vector<GeosPtr> parts;
    for (const GeometryPtr& part : static_cast<const GeometryCollection&>(geometry).parts()) {
        if (!part->isEmpty()) {
            parts.push_back(toGeosUnchecked(*part));
        }
    }
    int kind = GEOS_GEOMETRYCOLLECTION;
    if (geometry.type() == GeometryType::MultiPoint) {
        kind = GEOS_MULTIPOINT;
    } else if (geometry.type() == GeometryType::MultiLineString) {
        kind = GEOS_MULTILINESTRING;
    } else if (geometry.type() == GeometryType::MultiPolygon) {
        kind = GEOS_MULTIPOLYGON;
    }
    return collectionOf(kind, std::move(parts));
}

bool isFinite(const CoordinateSequence& sequence) {
    for (std::size_t i = 0; i < sequence.size(); ++i) {
        if (!std::isfinite(sequence.x(i)) || !std::isfinite(sequence.y(i))) {
            return false;
        }
    }
    return true;
}

/// Of a linear geometry.
bool isFinite(const Geometry& geometry) {
    switch (geometry.type()) {
    case GeometryType::Point: {
        const auto& point = static_cast<const Point&>(geometry);
        return point.isEmpty() || (std::isfinite(point.x()) && std::isfinite(point.y()));
    }
    case GeometryType::LineString: return isFinite(static_cast<const LineString&>(geometry).coordinates());
    case GeometryType::Polygon: {
        const auto& rings = static_cast<const Polygon&>(geometry).rings();
        return std::all_of(rings.begin(), rings.end(),
                           [](const CoordinateSequence& ring) { return isFinite(ring); });
    }
    default: {
        const auto& parts = static_cast<const GeometryCollection&>(geometry).parts();
        return std::all_of(parts.begin(), parts.end(),
                           [](const GeometryPtr& part) { return isFinite(*part); });
    }
    }
}

CoordinateSequence fromSequence(const GEOSGeometry* geos, bool z) {
    const GEOSCoordSequence* sequence = GEOSGeom_getCoordSeq_r(geosContext(), geos);
    unsigned size = 0;
    if (!sequence || !GEOSCoordSeq_getSize_r(geosContext(), sequence, &size)) {
        throwGeosError();
    }
    return CoordinateSequence(z ? Dimensions::XYZ : Dimensions::XY, size, [&](double* target) {
        if (size > 0 && !GEOSCoordSeq_copyToBuffer_r(geosContext(), sequence, target, z, false)) {
            throwGeosError();
        }
    });
}

std::shared_ptr<Geometry> fromGeosWith(const GEOSGeometry* geos, bool z) {
    const Dimensions dimensions = z ? Dimensions::XYZ : Dimensions::XY;
    const GEOSContextHandle_t context = geosContext();
    const int kind = GEOSGeomTypeId_r(context, geos);
    switch (kind) {
    case GEOS_POINT: {
        const CoordinateSequence position = fromSequence(geos, z);
        return position.isEmpty() ? std::make_shared<Point>(dimensions)
                                  : std::make_shared<Point>(dimensions, position.data());
    }
    case GEOS_LINESTRING:
    case GEOS_LINEARRING: return std::make_shared<LineString>(fromSequence(geos, z));
    case GEOS_POLYGON: {
        std::vector<CoordinateSequence> rings;
        if (GEOSisEmpty_r(context, geos) == 0) {
            rings.push_back(fromSequence(GEOSGetExteriorRing_r(context, geos), z));
            const int holes = GEOSGetNumInteriorRings_r(context, geos);
            for (int i = 0; i < holes; ++i) {
                rings.push_back(fromSequence(GEOSGetInteriorRingN_r(context, geos, i), z));
            }
        }
        return std::make_shared<Polygon>(dimensions, std::move(rings));
    }
    default: break;
    }
    std::vector<GeometryPtr> parts;
    const int count = GEOSGetNumGeometries_r(context, geos);
    for (int i = 0; i < count; ++i) {
        parts.push_back(fromGeosWith(GEOSGetGeometryN_r(context, geos, i), z));
    }
    GeometryType type = GeometryType::GeometryCollection;
    if (kind == GEOS_MULTIPOINT) {
        type = GeometryType::MultiPoint;
    } else if (kind == GEOS_MULTILINESTRING) {
        type = GeometryType::MultiLineString;
    } else if (kind == GEOS_MULTIPOLYGON) {
        type = GeometryType::MultiPolygon;
    }
    return std::make_shared<GeometryCollection>(type, dimensions, std::move(parts));
}

} // namespace

GEOSContextHandle_t geosContext() {
    return threadContext().handle;
}

void throwGeosError() {
    const std::string& message = threadContext().message;
    if (message == std::bad_alloc().what()) {
        throw std::bad_alloc();
    }
    throw std::runtime_error(message.empty() ? "the geometry operation failed" : message);
}

void GeosGeometryDeleter::operator()(GEOSGeometry* geometry) const {
    GEOSGeom_destroy_r(releaseContext(), geometry);
}

void GeosPreparedDeleter::operator()(const GEOSPreparedGeometry* prepared) const {
    GEOSPreparedGeom_destroy_r(releaseContext(), prepared);
}

GeosPtr checked(GEOSGeometry* geometry) {
    if (!geometry) {
        throwGeosError();
    }
    return GeosPtr(geometry);
}

GeosPtr collectionOf(int kind, std::vector<GeosPtr> parts) {
    std::vector<GEOSGeometry*> handed = released(parts);
    return checked(GEOSGeom_createCollection_r(geosContext(), kind, handed.data(),
                                               static_cast<unsigned>(handed.size())));
}

GeosPtr toGeos(const Geometry& geometry) {
    const GeometryPtr linear = linearized(GeometryPtr(std::shared_ptr<void>(), &geometry));
    return isFinite(*linear) ? toGeosUnchecked(*linear) : nullptr;
}

std::shared_ptr<Geometry> fromGeos(const GEOSGeometry* geos) {
    return fromGeosWith(geos, GEOSHasZ_r(geosContext(), geos) == 1);
}

} // namespace orvane::geometry
