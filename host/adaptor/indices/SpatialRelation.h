#pragma once

#include <cstdint>
#include <optional>

namespace orvane::adaptor {

/// The relations f(column, value) that a scan can answer from a spatial index. Near is one to an
/// engine::NearnessBlob, and finds all that are near and some more.
enum class SpatialRelation : std::uint8_t {
    Intersects,
    Contains,
    Within,
    ContainsCentroid,
    CentroidWithin,
    Near
};

constexpr int spatialRelationCount = 6;

/// The SQL function that asks for a relation.
const char* functionName(SpatialRelation relation);
/// The relation that an SQL function asks for, letter case ignored.
std::optional<SpatialRelation> spatialRelationOf(const char* functionName);

} // namespace orvane::adaptor
