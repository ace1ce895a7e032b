#pragma once

#include "platform/geometry/editing/AffineMap.h"
#include "platform/geometry/shapes/Geometry.h"

#include <functional>
#include <optional>

namespace orvane::geometry {

// Geometries made of others by other positions, ordinates or parts. The coordinate system is kept. Ellipses
// and rounded rectangles are brought to the standard kinds. All are reentrant.

/// Changes the ordinates of a position in place.
using PositionChange = std::function<void(double* position, Dimensions dimensions)>;

/// With each position changed, kinds and parts as they are: the change has to leave arcs arcs.
ORVANE_PLATFORM_EXPORT GeometryPtr withPositions(const GeometryPtr& geometry, const PositionChange& change);
/// The same for any change: curves are approximated before.
ORVANE_PLATFORM_EXPORT GeometryPtr withLinearPositions(const GeometryPtr& geometry,
                                                       const PositionChange& change);
/// Curves stay curves where the map takes circles of the plane to circles.
ORVANE_PLATFORM_EXPORT GeometryPtr moved(const GeometryPtr& geometry, const AffineMap& map);
/// With those ordinates: missing ones are filled with `z` and `m`, others are dropped.
ORVANE_PLATFORM_EXPORT GeometryPtr withDimensions(const GeometryPtr& geometry, Dimensions dimensions,
                                                  double z = 0.0, double m = 0.0);
/// Longitudes from -180 to 180 and latitudes from -90 to 90: what lies beyond a pole is on the other side.
ORVANE_PLATFORM_EXPORT GeometryPtr withNormalLongitudes(const GeometryPtr& geometry);

/// A geometry of another kind with the same parts; null where the parts do not make one: a single kind takes
/// one part of its kind, a multi kind one or more, and a collection any. Curves are parts of
/// GeometryCollection, MultiCurve and MultiSurface, and of single kinds of their own.
ORVANE_PLATFORM_EXPORT GeometryPtr castTo(const GeometryPtr& geometry, GeometryType type);
/// The collection of the geometry's kind with its parts; a collection as it is.
ORVANE_PLATFORM_EXPORT GeometryPtr castToMulti(const GeometryPtr& geometry);
/// The only part; null of a geometry with several.
ORVANE_PLATFORM_EXPORT GeometryPtr castToSingle(const GeometryPtr& geometry);

} // namespace orvane::geometry
