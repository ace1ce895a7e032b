#pragma once

#include "platform/geometry/shapes/Shapes.h"

#include <optional>
#include <string>

namespace orvane::geometry {

/// What is wrong with a geometry.
struct Defect {
    std::string reason;           ///< in the words of GEOS
    std::shared_ptr<Point> place; ///< null where none can be named
};

/// None for a valid geometry (ISO 19125-1); curves are approximated. `allowHolesAsTouchingShells`: shells
/// that touch themselves in a position and so enclose holes are taken as valid. Reentrant.
ORVANE_PLATFORM_EXPORT std::optional<Defect> defectOf(const Geometry& geometry,
                                                      bool allowHolesAsTouchingShells = false);
/// Whether no part meets itself but in the ends of a closed line. False for coordinates that are not finite.
ORVANE_PLATFORM_EXPORT bool isSimple(const Geometry& geometry);

} // namespace orvane::geometry
