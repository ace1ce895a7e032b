#pragma once

#include <cstdint>
#include <optional>

namespace orvane::adaptor {

/// The relations f(column, value) that a scan can answer from a spatial index. Near is one to an
/// engine::NearnessBlob, and finds all that are near and some more. IntersectedBy is Intersects in the
/// value's coordinate system.
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

/// Whether the coordinate system of the column counts where that of the value is another.
bool countsInColumnsSystem(SpatialRelation relation);

/// The relation that an SQL function asks for, letter case ignored.
std::optional<SpatialRelation> spatialRelationOf(const char* functionName);

} // namespace orvane::adaptor
