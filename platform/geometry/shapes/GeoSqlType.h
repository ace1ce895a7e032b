#pragma once

#include "platform/Export.h"

#include <QString>

namespace orvane::geometry {
class Geometry;
}

namespace orvane::sql {

/// The SQL name of the geometry's type: "Point", "MultiPolygon", "CompoundCurve", "Ellipse", ... The same for
/// all dimensions.
ORVANE_PLATFORM_EXPORT QString geoSqlType(const geometry::Geometry& geometry);

} // namespace orvane::sql
