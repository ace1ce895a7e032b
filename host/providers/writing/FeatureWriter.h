#pragma once

#include "host/providers/datasets/LayerSchema.h"

#include <QVariant>

namespace orvane::files {

/// Sets one field or the geometry of an OGR feature; an invalid or null value is NULL. Throws dp::EditError
/// when the value does not fit the type of the attribute. Geometries are brought into the coordinate system
/// of the attribute when both have one.
void writeValue(OGRFeatureH feature, const LayerColumn& column, const dp::AttributeDefinition& attribute,
                const QVariant& value);

} // namespace orvane::files
