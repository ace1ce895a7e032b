#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Coordinates.h"

#include <optional>
#include <string>
#include <string_view>

namespace orvane::geometry {

// Cells of longitudes and latitudes, degrees from -180 to 180 and from -90 to 90.

/// The cell of five minutes of the Global Area Reference System, 7 characters: NGA, Global Area Reference
/// System.
ORVANE_PLATFORM_EXPORT std::string garsCode(double longitude, double latitude);
/// Of a code of 5, 6 or 7 characters: 30, 15 or 5 minutes wide; none for another text.
ORVANE_PLATFORM_EXPORT std::optional<Envelope> garsCell(std::string_view code);

/// The geohash of so many characters at the most that its cell holds the envelope.
ORVANE_PLATFORM_EXPORT std::string geoHash(const Envelope& envelope, int most);

} // namespace orvane::geometry
