#pragma once

#include "platform/geometry/shapes/Geometry.h"

#include <geos_c.h>

#include <memory>
#include <vector>

namespace orvane::geometry {

/// The GEOS context of the calling thread, silent; the text of the last failure is geosMessage().
GEOSContextHandle_t geosContext();
/// Throws std::runtime_error with the last message of GEOS on this thread.
[[noreturn]] void throwGeosError();

struct GeosGeometryDeleter {
    void operator()(GEOSGeometry* geometry) const;
};
struct GeosPreparedDeleter {
    void operator()(const GEOSPreparedGeometry* prepared) const;
};
/// Of texts that GEOS has made.
struct GeosTextDeleter {
    void operator()(char* text) const { GEOSFree_r(geosContext(), text); }
};
using GeosPtr = std::unique_ptr<GEOSGeometry, GeosGeometryDeleter>;
using GeosPreparedPtr = std::unique_ptr<const GEOSPreparedGeometry, GeosPreparedDeleter>;

/// Takes over what GEOS has made. Throws std::runtime_error for null.
GeosPtr checked(GEOSGeometry* geometry);
/// A collection of that kind of GEOS, which takes over the parts. Throws std::runtime_error.
GeosPtr collectionOf(int kind, std::vector<GeosPtr> parts);

/// Curves are made linear, open rings are closed and too short ones filled up with their last position, so
/// that every shape with finite coordinates has a form. Parts that are empty, at which some algorithms of
/// GEOS read what is not there, are left out. Null when a coordinate is not finite. Throws std::runtime_error
/// when GEOS fails.
GeosPtr toGeos(const Geometry& geometry);
/// z is kept, m is not (GEOS has none). Throws std::runtime_error.
std::shared_ptr<Geometry> fromGeos(const GEOSGeometry* geos);

} // namespace orvane::geometry
