#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Geometry.h"

#include <memory>

namespace orvane::geometry {

// The direction in which lines and rings run. Curves, z, m and the system are kept.

/// Every line, curve and ring in the other direction; parts keep their order.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> reversed(const Geometry& geometry);
/// Shells in one direction, holes in the other.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> oriented(const Geometry& geometry, bool clockwise);
/// Whether all shells run in that direction and all holes in the other; true of what has no areas.
ORVANE_PLATFORM_EXPORT bool isOriented(const Geometry& geometry, bool clockwise);

/// The geometry with rings that end where they begin; curves are made linear.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> withClosedRings(const GeometryPtr& geometry);
/// The same without repeated positions, lines of one position and rings of less than three; may be empty.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> sanitized(const GeometryPtr& geometry);

} // namespace orvane::geometry
