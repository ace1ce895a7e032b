#pragma once

#include <orvane/engine/Export.h>
#include <orvane/engine/functions/ScalarFunction.h>

/// Geometries of numbers. The last argument of most, where there is one more, is the coordinate system: an
/// EPSG code or a tagged string, 0 for none; an unknown one is an error. Lengths are in units of its
/// coordinates, angles in degrees anticlockwise from x. NULL for NULL. The user data is the EngineCache.
/// Reentrant.
namespace orvane::engine {

/// x, y; x, y, z; x, y, m; x, y, z, m [, system].
ORVANE_ENGINE_EXPORT ScalarFunction makePoint, makePointZ, makePointM, makePointZM;
/// Two corners as four numbers [, system]; x, y, half a side [, system].
ORVANE_ENGINE_EXPORT ScalarFunction buildMbr, buildCircleMbr;

/// x, y, radius [, system [, step]]; x, y, two radii [, system [, step]]: a closed line (geometry::ellipse).
ORVANE_ENGINE_EXPORT ScalarFunction makeCircle, makeEllipse;
/// x, y, one or two radii, two angles [, system [, step]]: geometry::arc, geometry::sector.
ORVANE_ENGINE_EXPORT ScalarFunction makeArc, makeEllipticArc, makeCircularSector, makeEllipticSector;
/// x, y, two radii, two angles [, system [, step]]: geometry::stripe.
ORVANE_ENGINE_EXPORT ScalarFunction makeCircularStripe;

} // namespace orvane::engine
