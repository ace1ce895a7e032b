#pragma once

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/GeometryFactory.h"

#include <geos_c.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace orvane::tests {

/// A linear geometry from text, read by GEOS and handed over as well-known binary.
inline std::shared_ptr<geometry::Geometry> fromWkt(const std::string& text, int epsg = 0) {
    const GEOSContextHandle_t context = GEOS_init_r();
    GEOSGeometry* geos = GEOSGeomFromWKT_r(context, text.c_str());
    if (!geos) {
        throw std::runtime_error("no geometry: " + text);
    }
    GEOSWKBWriter* writer = GEOSWKBWriter_create_r(context);
    GEOSWKBWriter_setOutputDimension_r(context, writer, 3);
    GEOSWKBWriter_setFlavor_r(context, writer, GEOS_WKB_ISO);
    std::size_t size = 0;
    unsigned char* bytes = GEOSWKBWriter_write_r(context, writer, geos, &size);
    const auto system =
        epsg == 0 ? nullptr : cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(epsg);
    auto geometry = geometry::GeometryFactory::fromWkb(
        std::string_view(reinterpret_cast<const char*>(bytes), size), system);
    GEOSFree_r(context, bytes);
    GEOSWKBWriter_destroy_r(context, writer);
    GEOSGeom_destroy_r(context, geos);
    GEOS_finish_r(context);
    return geometry;
}

} // namespace orvane::tests
