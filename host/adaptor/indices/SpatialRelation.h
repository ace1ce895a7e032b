#pragma once

#include <cstdint>
#include <optional>

namespace orvane::adaptor {

/// The relations that a scan can answer from a spatial index, of its geometries to a value. Near is one to an
/// engine::NearnessBlob, and finds all that are near and some more.
enum class SpatialRelation : std::uint8_t {
    Intersects,
    Contains,
    Within,
    ContainsCentroid,
    CentroidWithin,
    Covers,
    CoveredBy,
    Equals,
    Touches,
    Crosses,
    Overlaps,
    MayMeet,
    Near
};

/// Whether the coordinate system of the first operand counts where that of the second is another.
bool countsInFirstSystem(SpatialRelation relation);

/// The relation from the second operand to the first.
SpatialRelation converseOf(SpatialRelation relation);

/// Whether the relation says only that vertices of the first operand, or its centroid, lie in the second.
bool holdsVertices(SpatialRelation relation);

/// The relation that an SQL function asks for, letter case ignored.
std::optional<SpatialRelation> spatialRelationOf(const char* functionName);

} // namespace orvane::adaptor
