#pragma once

#include "platform/geometry/forms/GeosForm.h"
#include "platform/geometry/making/BufferOptions.h"
#include "platform/geometry/measures/Geodesics.h"

namespace orvane::geometry {

/// The buffer on the ellipsoid, areas in degrees from -180 to 180. Metres. Throws as buffer() does.
GeosPtr geodesicBuffer(const GeographicShape& shape, double distance, const BufferOptions& options);

/// GEOS's buffer of what lies in a plane.
GeosPtr planarBuffer(const GEOSGeometry* geometry, double distance, const BufferOptions& options);

} // namespace orvane::geometry
