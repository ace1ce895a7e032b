#pragma once

#include "platform/geometry/shapes/Geometry.h"

#include <sqlite3.h>

#include <memory>

namespace orvane::engine {

using GeometryPtr = std::shared_ptr<const geometry::Geometry>;

/// The geometry with a coordinate system in place of its own, fitted to it; nothing is reprojected.
GeometryPtr withCoordSystem(const GeometryPtr& geometry, const std::shared_ptr<cs::CoordSystem>& coordSystem);

struct GeometryPair {
    GeometryPtr first;
    GeometryPtr second;
};

/// Two geometry arguments, null where one is none. When exactly one carries a coordinate system the other
/// gets it.
GeometryPair geometryPair(sqlite3_context* context, sqlite3_value* first, sqlite3_value* second);

} // namespace orvane::engine
