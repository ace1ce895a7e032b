#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Geometry.h"

#include <QByteArray>

#include <optional>
#include <string>
#include <string_view>

namespace orvane::geometry {

// Forms that save space by keeping rounded numbers, as differences from the ones before.

struct TwkbStyle {
    int digits = 0;  ///< of x and y behind the point, from -8 to 7
    int zDigits = 0; ///< from 0 to 7
    int mDigits = 0;
    bool size = false;
    bool envelope = false;
};

/// Tiny well-known binary. Curves are approximated. Throws std::runtime_error for numbers that do not fit.
ORVANE_PLATFORM_EXPORT QByteArray toTwkb(const Geometry& geometry, const TwkbStyle& style);
/// Identifiers and envelopes are left out. Throws std::runtime_error for broken bytes.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Geometry> fromTwkb(std::string_view bytes);

/// x and y of positions as the polyline algorithm packs them into a text, y first, with as many digits behind
/// the point. Throws std::runtime_error for numbers that do not fit.
ORVANE_PLATFORM_EXPORT std::string encodedPolyline(const CoordinateSequence& positions, int digits);
/// Throws std::runtime_error for what is no such text.
ORVANE_PLATFORM_EXPORT CoordinateSequence fromEncodedPolyline(std::string_view text, int digits);

/// The geohash (base 32) of a longitude and a latitude in degrees.
ORVANE_PLATFORM_EXPORT std::string geoHash(double longitude, double latitude, int length);
/// The longest that the position determines: 20 characters.
inline constexpr int longestGeoHash = 20;
/// The geohash of all positions of an envelope; empty where they have none in common.
ORVANE_PLATFORM_EXPORT std::string commonGeoHash(const Envelope& envelope);

/// The cell of the Global Area Reference System, five minutes wide: "363HS37"; empty beyond the globe.
ORVANE_PLATFORM_EXPORT std::string garsCell(double longitude, double latitude);
/// The cell of 30, 15 or 5 minutes that a code stands for; none for what is no code.
ORVANE_PLATFORM_EXPORT std::optional<Envelope> garsEnvelope(std::string_view code);

} // namespace orvane::geometry
