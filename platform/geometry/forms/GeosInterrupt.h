#pragma once

#include "platform/Export.h"

namespace orvane::geometry {

/// From now on, what GEOS computes on this thread fails once all work is cancelled
/// (work::Cancellation::cancelAll), up to the next call: a union of many shapes can take seconds within one
/// call of an SQL function. Operations that GEOS does not look up from run to their end. Cheap enough for
/// every statement.
ORVANE_PLATFORM_EXPORT void beginInterruptibleWork();

} // namespace orvane::geometry
