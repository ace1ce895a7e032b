#pragma once

#include "DateTokens.h"

#include <QString>

namespace orvane::engine {

/// The tolerant parser behind stringToDate. `clock` gives the local time that "now", "today" and missing
/// fields stand for, and is read at most once. Returns date, time or date-time text, or an empty text for an
/// impossible one. Takes time in proportion to the text.
QString parseDateText(const QString& text, CallTime::Clock clock);

} // namespace orvane::engine
