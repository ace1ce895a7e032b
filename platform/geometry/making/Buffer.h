#pragma once

#include "platform/Export.h"
#include "platform/geometry/making/BufferOptions.h"
#include "platform/geometry/shapes/Geometry.h"

#include <QString>

namespace orvane::geometry {

/// All positions within a distance of a geometry; of a negative distance those inside of areas that are
/// farther than it from their borders. In the plane by GEOS, on the ellipsoid of geographic systems along
/// geodesics: there the result lies in longitudes from -180 to 180, in parts where it crosses the 180th
/// meridian, and holds the poles that are near enough. Empty units are metres; without a system the units of
/// the coordinates count as metres. Curves are approximated, z and m left out. A polygon or multi-polygon in
/// the system of the geometry, empty where nothing is that near.
///
/// Throws work::Cancelled, and std::runtime_error for units without a meaning in the system, a side asked for
/// of other geometries than lines, distances beyond a quarter of the way around the ellipsoid, results that
/// would be too large, and coordinates that are not finite.
ORVANE_PLATFORM_EXPORT GeometryPtr buffer(const Geometry& geometry, double distance, const QString& units,
                                          const BufferOptions& options = BufferOptions());

} // namespace orvane::geometry
