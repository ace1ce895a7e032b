#pragma once

#include "platform/Export.h"

#include <QDateTime>

namespace orvane::utils {

/// What the clock on the wall shows in a date-time text of ISO 8601, with its offset where it has one. A text
/// without an offset stands for no instant: it is held in UTC, in which every time of every day exists, and
/// not in the zone of the machine, whose summer time skips some. A date alone is its midnight. Invalid for
/// any other text.
ORVANE_PLATFORM_EXPORT QDateTime dateTimeOfText(const QString& text);

} // namespace orvane::utils
