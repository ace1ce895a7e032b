#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Geometry.h"

#include <string_view>

namespace orvane::geometry {

// Geometries from texts. All throw std::runtime_error for what is no geometry: a sentence that names the
// place where there is one. Rings have to be closed. All are reentrant.

/// Well-known text of ISO 13249-3, and its extended form: with "SRID=4326;" before it, and with dimensions
/// that the numbers tell ("POINT(1 2 3)"). Letter case and white space do not matter. All positions have the
/// same ordinates. Networks of triangles and polyhedral surfaces become multi-polygons.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> fromWkt(std::string_view text);

/// A geometry object of RFC 7946, or the geometry of a feature. In WGS 84, but where a member "crs" names
/// another system by its EPSG code.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> fromGeoJson(std::string_view text);

/// The first geometry element of GML 2 or 3, arcs included. In the system that it names by an EPSG code, none
/// without; its long names ("urn:ogc:def:crs:EPSG::4326") stand for the order of axes of the authority.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> fromGml(std::string_view text);

/// The first geometry element of KML, in WGS 84.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> fromKml(std::string_view text);

} // namespace orvane::geometry
