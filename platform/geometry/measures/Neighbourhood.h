#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Geometry.h"

#include <QString>

#include <optional>
#include <vector>

namespace orvane::geometry {

/// How the distance of two geometries is measured: as Measures.h has it.
enum class DistanceKind : std::uint8_t { General, Spherical, Cartesian };

/// What is asked of the distance between a geometry, the centre, and others.
struct Nearness {
    DistanceKind kind = DistanceKind::General;
    double distance = 0.0; ///< at most
    QString units;
    bool centreIsFirst = false; ///< the others are the second operand of the measure
};

/// What has to be known of all the others.
struct OthersInPlace {
    std::shared_ptr<cs::CoordSystem> coordSystem;
    bool arePositions = false;
    double bulge = 0.0; ///< the largest geodesicBulge of them
};

/// Envelopes in the plane of the others of which each other meets one that has something within the distance.
/// None where that cannot be said beforehand: any of them may be near, or fail to be measured.
ORVANE_PLATFORM_EXPORT std::optional<std::vector<Envelope>>
neighbourhood(const Geometry& centre, const Nearness& nearness, const OthersInPlace& others);

/// An envelope that holds the image of every position in one, in another system, with some room to spare.
/// None where that cannot be said beforehand: near the poles and the 180th meridian, and where a position has
/// no image.
ORVANE_PLATFORM_EXPORT std::optional<Envelope>
envelopeIn(const cs::CoordSystem& target, const Envelope& envelope, const cs::CoordSystem& own);

/// By how many degrees the geodesics between the positions of a geometry in degrees can leave its envelope
/// towards a pole. Infinite where they go round the other side of the Earth.
ORVANE_PLATFORM_EXPORT double geodesicBulge(const Geometry& geometry);
/// Whether geodesicBulge of a geometry with that envelope may be more; costs less than to know it.
ORVANE_PLATFORM_EXPORT bool mayBulgeBeyond(double bulge, const Envelope& envelope);

} // namespace orvane::geometry
