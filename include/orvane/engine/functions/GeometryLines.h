#pragma once

#include <orvane/engine/Export.h>
#include <orvane/engine/functions/ScalarFunction.h>

/// Ways along lines, several lines counting as one behind the other (geometry::LinePath): along geodesics
/// where the system is geographic, else in the plane. The user data is the EngineCache. NULL for NULL and for
/// what is empty; what is no line is an error. Reentrant.
namespace orvane::engine {

/// line, share of its length from 0 to 1.
ORVANE_ENGINE_EXPORT ScalarFunction lineInterpolatePoint;
/// line, distance [, units].
ORVANE_ENGINE_EXPORT ScalarFunction lineInterpolateEquidistantPoints;
/// line, point.
ORVANE_ENGINE_EXPORT ScalarFunction lineLocatePoint;
/// line, share, share.
ORVANE_ENGINE_EXPORT ScalarFunction lineSubstring;

/// line, m; line, m, m; line, point; line, m. Errors without m.
ORVANE_ENGINE_EXPORT ScalarFunction locateAlong, locateBetween, interpolateM, trajectoryInterpolatePoint;
/// geometry: 1 or 0.
ORVANE_ENGINE_EXPORT ScalarFunction isValidTrajectory;

/// line [, 0 to count edges without length] [, units].
ORVANE_ENGINE_EXPORT ScalarFunction minSegmentLength, maxSegmentLength, avgSegmentLength;
/// line [, number of places between the ends].
ORVANE_ENGINE_EXPORT ScalarFunction curvosityIndex;
/// line, in units of z.
ORVANE_ENGINE_EXPORT ScalarFunction uphillHeight, downhillHeight, upDownHeight;
/// geometry.
ORVANE_ENGINE_EXPORT ScalarFunction circularity;

} // namespace orvane::engine
