#pragma once

#include "host/maps/Export.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/shapes/Coordinates.h"

#include <memory>

namespace orvane::maps {

class GroundExtent;

/// What a projection can show of the globe: where the globe is cut open, and how far from there its positions
/// make sense. In degrees.
struct MapPlane {
    double centralMeridian = 0;
    double halfWidth = 180; ///< longitudes on either side of it
    double south = -90;
    double north = 90;
    bool isWorld = false; ///< the whole globe has an outline of its own in the plane
};

/// What is known of a projection that users name; the whole globe around Greenwich for any other.
ORVANE_MAPS_EXPORT MapPlane planeOf(const cs::CoordSystem& system);

/// A projection in which shapes within an extent look right: of equal areas for the world and for continents,
/// conic for countries of middle latitudes, transverse Mercator for small and for tall areas, azimuthal
/// around the poles. On WGS 84, in metres. Longitude and latitude themselves for an empty extent.
ORVANE_MAPS_EXPORT std::shared_ptr<cs::CoordSystem> suitableSystem(const GroundExtent& extent);

} // namespace orvane::maps
