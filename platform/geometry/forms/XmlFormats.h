#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Geometry.h"

#include <string>

namespace orvane::geometry {

/// Appends a geometry element of GML, version 2 or 3, with as many digits as appendNumber makes of `digits`.
/// x before y, whatever the system, whose name is the short one ("EPSG:4326"), which says so. Version 3 has
/// curves, for version 2 they are approximated; m is left out. The prefix is gml.
ORVANE_PLATFORM_EXPORT void appendGml(const Geometry& geometry, int version, int digits, std::string& out);

/// Appends a geometry element of KML 2.2, in the coordinates as they are. Curves are approximated, m is left
/// out.
ORVANE_PLATFORM_EXPORT void appendKml(const Geometry& geometry, int digits, std::string& out);

} // namespace orvane::geometry
