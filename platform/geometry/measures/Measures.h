#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Geometry.h"

#include <QString>

namespace orvane::geometry {

// Measures in named units (see Units.h). Lengths are of lines only, perimeters and areas of areas only, holes
// subtracted; other parts count 0. An empty geometry measures 0.
//
// Spherical measures follow the ellipsoid of the geometry's coordinate system: edges are geodesics between
// the positions (of a projected system its longitudes and latitudes), curves are approximated. Formulas: C.
// F. F. Karney, Algorithms for geodesics, J. Geodesy 87 (2013), as PROJ has them. Empty units are metres and
// square metres.
//
// Cartesian measures are in the plane of the coordinates; arcs and ellipses are measured exactly. Empty units
// are those of the plane. Named units are converted by the unit of the system; coordinates without a system
// count as metres. In a geographic system only degrees have a meaning.
//
// The unprefixed measures are spherical for geographic systems and cartesian for others, in metres and square
// metres when the units are empty.
//
// All throw std::runtime_error: for unknown units, for units without a meaning in the system, for spherical
// measures of a geometry without a coordinate system, and when a position has no longitude and latitude.

ORVANE_PLATFORM_EXPORT double length(const Geometry& geometry, const QString& units);
ORVANE_PLATFORM_EXPORT double sphericalLength(const Geometry& geometry, const QString& units);
ORVANE_PLATFORM_EXPORT double cartesianLength(const Geometry& geometry, const QString& units);

ORVANE_PLATFORM_EXPORT double perimeter(const Geometry& geometry, const QString& units);
ORVANE_PLATFORM_EXPORT double sphericalPerimeter(const Geometry& geometry, const QString& units);
ORVANE_PLATFORM_EXPORT double cartesianPerimeter(const Geometry& geometry, const QString& units);

ORVANE_PLATFORM_EXPORT double area(const Geometry& geometry, const QString& units);
ORVANE_PLATFORM_EXPORT double sphericalArea(const Geometry& geometry, const QString& units);
ORVANE_PLATFORM_EXPORT double cartesianArea(const Geometry& geometry, const QString& units);

/// The shortest way between two geometries, 0 when they intersect. b is brought to the system of a where they
/// differ. Throws std::runtime_error also when one of them is empty.
ORVANE_PLATFORM_EXPORT double sphericalObjectDistance(const Geometry& a, const Geometry& b,
                                                      const QString& units);
ORVANE_PLATFORM_EXPORT double cartesianObjectDistance(const Geometry& a, const Geometry& b,
                                                      const QString& units);

/// Spherical where the system of a is geographic (of b, where a has none), else in its plane.
ORVANE_PLATFORM_EXPORT double distance(const Geometry& a, const Geometry& b, const QString& units);

/// A length in named units, metres when they are empty, as the system has it: in metres where it is
/// geographic, else in units of its plane; without a system these count as metres. Throws std::runtime_error
/// for units that are unknown or without a meaning in the system.
ORVANE_PLATFORM_EXPORT double ownLength(double length, const cs::CoordSystem* system, const QString& units);
/// The other way round.
ORVANE_PLATFORM_EXPORT double namedLength(double ownLength, const cs::CoordSystem* system,
                                          const QString& units);

} // namespace orvane::geometry
