#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Geometry.h"

#include <string>

namespace orvane::geometry {

/// Appends well-known text with the shortest numbers that read back as the same doubles: "POINT(2.35 48.85)",
/// "LINESTRING Z(1 2 3,4 5 6)", "POLYGON EMPTY". Curves stay curves where the text has them.
ORVANE_PLATFORM_EXPORT void appendWkt(const Geometry& geometry, std::string& out);

/// Appends a geometry object of RFC 7946. m is left out, curves are approximated, coordinates are in the
/// geometry's own system; positions that are not finite become null.
ORVANE_PLATFORM_EXPORT void appendGeoJson(const Geometry& geometry, std::string& out);

} // namespace orvane::geometry
