#pragma once

#include <orvane/engine/Export.h>

#include <sqlite3.h>

/// Numbers, dates and times as texts for display, and back. All read the process's default locale
/// (QLocale()), formatDate the system's. None raises an SQL error. Reentrant as long as nobody changes the
/// default locale.
namespace orvane::engine {

/// The number with the locale's decimal point and thousands separators. A text is read as the locale writes
/// numbers; the result is empty where there is no number.
ORVANE_ENGINE_EXPORT void formatNumber(sqlite3_context* context, int count, sqlite3_value** values);
/// The number that a text in the default locale stands for, with a point and without separators. A text that
/// is no number stays as it is; NULL gives the empty text.
ORVANE_ENGINE_EXPORT void deformat(sqlite3_context* context, int count, sqlite3_value** values);
/// A date in the system locale's short format; NULL for no valid date.
ORVANE_ENGINE_EXPORT void formatDate(sqlite3_context* context, int count, sqlite3_value** values);
/// `formatTime(time, pattern)`: H hour of 24, h hour modulo 12, m minute, s second, doubled for two digits;
/// f, ff, fff tenths to thousandths; t, tt the first character or the whole of the locale's AM or PM.
/// Everything else stands for itself. An empty pattern is "HH:mm:ss.fff". NULL for no valid time.
ORVANE_ENGINE_EXPORT void formatTime(sqlite3_context* context, int count, sqlite3_value** values);
/// `formatNumberByPattern(value, pattern)`: the picture patterns of NumberPattern.h. NULL for a value that
/// does not convert and for a pattern that is unusable.
ORVANE_ENGINE_EXPORT void formatNumberByPattern(sqlite3_context* context, int count, sqlite3_value** values);

} // namespace orvane::engine
