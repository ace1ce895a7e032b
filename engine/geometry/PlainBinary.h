#pragma once

#include "platform/geometry/shapes/Geometry.h"

#include <string_view>

namespace orvane::engine {

/// The geometry in well-known binary of linear kinds (not in its extended form) or in FGF, without coordinate
/// system; null for other bytes.
std::shared_ptr<const geometry::Geometry> fromPlainBinary(std::string_view bytes);

} // namespace orvane::engine
