#pragma once

#include "host/maps/Export.h"
#include "host/maps/shapes/FlatShape.h"

#include <bitset>

namespace orvane::maps {

/// Where on the globe shapes lie: latitudes from south to north, and the longitudes around the widest gap,
/// which may go over the antimeridian. To whole degrees of longitude.
class ORVANE_MAPS_EXPORT GroundExtent {
public:
    /// Adds a shape in longitude and latitude, in degrees. What lies beyond the poles is left out.
    void add(const FlatShape& shape);
    /// A rectangle; longitudes beyond 180 degrees go on behind the antimeridian.
    void add(double west, double south, double east, double north);

    bool isEmpty() const { return occupied_.none(); }
    double south() const { return south_; }
    double north() const { return north_; }
    /// From -180 on.
    double west() const;
    /// Eastwards from there, up to 360.
    double width() const;

private:
    struct Gap {
        int begin; ///< degrees east of -180
        int width;
    };
    Gap widestGap() const;

    std::bitset<360> occupied_; ///< by degrees of longitude from -180 on
    double south_ = 90;
    double north_ = -90;
};

} // namespace orvane::maps
