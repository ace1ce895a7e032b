#pragma once

#include "host/providers/datasets/LayerSchema.h"
#include "platform/geometry/shapes/Geometry.h"

#include <QVariant>

namespace orvane::files {

/// Sets one field or the geometry of an OGR feature; an invalid or null value is NULL. Throws dp::EditError
/// when the value does not fit the type of the attribute. Geometries are brought into the coordinate system
/// of the attribute when both have one.
void writeValue(OGRFeatureH feature, const LayerColumn& column, const dp::AttributeDefinition& attribute,
                const QVariant& value);

/// The geometry in a value, in the coordinate system of the attribute when both have one. Throws
/// dp::EditError.
std::shared_ptr<const geometry::Geometry> geometryFor(const dp::AttributeDefinition& attribute,
                                                      const QVariant& value);

/// The dp::EditError of a value that does not fit an attribute.
[[noreturn]] void raiseUnfit(const dp::AttributeDefinition& attribute, const QVariant& value);

} // namespace orvane::files
