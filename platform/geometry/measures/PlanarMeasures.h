#pragma once

#include "platform/geometry/shapes/Geometry.h"

namespace orvane::geometry {

// Measures in units of the coordinates.

double planarLength(const Geometry& geometry);
double planarPerimeter(const Geometry& geometry);
double planarArea(const Geometry& geometry);

} // namespace orvane::geometry
