#pragma once

#include "platform/Export.h"
#include "platform/dp/AttributeDefinition.h"
#include "platform/dp/Cursor.h"

#include <QVariant>

namespace orvane::dp {

/// The value of a cell as a variant of the attribute's type: QDate, QTime and QDateTime from their texts,
/// geometries in the coordinate system of the attribute. NULL is an invalid variant. A value that the type
/// cannot hold without loss (a date that is none, an integer beyond 32 bits) keeps the type it was read with;
/// broken geometry bytes give NULL.
ORVANE_PLATFORM_EXPORT QVariant toVariant(const Cell& cell, const AttributeDefinition& attribute);

} // namespace orvane::dp
