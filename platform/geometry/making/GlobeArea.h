#pragma once

#include "platform/geometry/forms/GeosForm.h"

#include <vector>

namespace orvane::geometry {

/// Longitude and latitude, degrees.
struct GlobePosition {
    double longitude, latitude;
};

/// A ring of positions so dense that the shorter way around leads from each to the next; closed by itself.
using GlobeRing = std::vector<GlobePosition>;

/// What lies to the left of a ring, as areas of the map from -180 to 180 degrees: cut along the 180th
/// meridian, and along a border of the map where it holds a pole. Throws std::runtime_error when GEOS fails.
GeosPtr globeAreaLeftOf(const GlobeRing& ring);
/// The same of what the ring encloses, whichever way it runs: of a ring between the poles the smaller part.
GeosPtr globeAreaWithin(const GlobeRing& ring);

/// Areas of the map, cut along meridians where a ring bounds more than half of the Earth: by itself it would
/// bound the other, smaller part. Throws std::runtime_error when GEOS fails.
GeosPtr lessThanHalves(GeosPtr areas);

/// The areas among parts of any kind, united. Throws std::runtime_error when GEOS fails.
GeosPtr unitedAreas(std::vector<GeosPtr> areas);

} // namespace orvane::geometry
