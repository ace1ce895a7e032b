#pragma once

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeometryFactory.h"

#include <geos_c.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace orvane::tests {

struct FinishGeos {
    void operator()(GEOSContextHandle_t context) const { GEOS_finish_r(context); }
};
using GeosContext = std::unique_ptr<std::remove_pointer_t<GEOSContextHandle_t>, FinishGeos>;

struct DestroyGeos {
    GEOSContextHandle_t context;
    void operator()(GEOSGeometry* geometry) const { GEOSGeom_destroy_r(context, geometry); }
};
using GeosGeometry = std::unique_ptr<GEOSGeometry, DestroyGeos>;

inline GeosGeometry geosFromWkt(const GeosContext& context, const std::string& text) {
    GeosGeometry geometry(GEOSGeomFromWKT_r(context.get(), text.c_str()), {context.get()});
    if (!geometry) {
        throw std::runtime_error("no geometry: " + text);
    }
    return geometry;
}

/// A linear geometry from text, read by GEOS and handed over as well-known binary.
inline std::shared_ptr<geometry::Geometry> fromWkt(const std::string& text, int epsg = 0) {
    const GeosContext context(GEOS_init_r());
    const GeosGeometry geos = geosFromWkt(context, text);
    GEOSWKBWriter* writer = GEOSWKBWriter_create_r(context.get());
    GEOSWKBWriter_setOutputDimension_r(context.get(), writer, 3);
    GEOSWKBWriter_setFlavor_r(context.get(), writer, GEOS_WKB_ISO);
    std::size_t size = 0;
    unsigned char* bytes = GEOSWKBWriter_write_r(context.get(), writer, geos.get(), &size);
    const std::string wkb(reinterpret_cast<const char*>(bytes), size);
    GEOSFree_r(context.get(), bytes);
    GEOSWKBWriter_destroy_r(context.get(), writer);
    return geometry::GeometryFactory::fromWkb(
        wkb, epsg == 0 ? nullptr : cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(epsg));
}

} // namespace orvane::tests
