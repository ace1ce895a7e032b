#pragma once

#include "platform/geometry/making/GlobeArea.h"
#include "platform/geometry/measures/GeodesicPieces.h"

#include <span>

namespace orvane::geometry {

/// The azimuthal equidistant plane about a position, metres east and north of it: distances from it, and
/// directions there, are those on the ellipsoid.
class LocalPlane {
public:
    LocalPlane(const GeographicShape& shape, GlobePosition middle) : shape_(&shape), middle_(middle) {}

    /// A point where it is one position.
    GeosPtr line(std::span<const Position> positions) const;
    /// Positions whose last is the first.
    GeosPtr ring(std::span<const Position> positions) const;
    /// Of rings, the shell first, made valid.
    static GeosPtr area(std::vector<GeosPtr> rings);

    /// Areas of this plane in degrees of the map, edges cut into parts no longer than `longest`.
    GeosPtr onMap(const GEOSGeometry* areas, double longest) const;

private:
    struct Planar {
        double x, y;
    };
    GEOSCoordSequence* sequence(std::span<const Position> positions, std::size_t least) const;
    GlobePosition positionOf(Planar place) const;
    void appendTo(GlobeRing& ring, Planar begin, const GlobePosition& atBegin, Planar end,
                  const GlobePosition& atEnd, double longest, int depth) const;
    GlobeRing ringOf(const GEOSGeometry* ring, double longest) const;
    void gather(const GEOSGeometry* areas, double longest, std::vector<GeosPtr>& parts) const;

    const GeographicShape* shape_;
    GlobePosition middle_;
};

} // namespace orvane::geometry
