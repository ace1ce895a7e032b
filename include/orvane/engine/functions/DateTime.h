#pragma once

#include <orvane/engine/Export.h>

#include <sqlite3.h>

/// The date and time functions of the dialect. Dates and times are texts in the formats of Converters.h;
/// local means the time zone of the process. None raises an SQL error unless stated otherwise. Reentrant.
namespace orvane::engine {

/// The current local date, time, or both. The clock is read once in a statement.
ORVANE_ENGINE_EXPORT void curDate(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void curTime(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void curDateTime(sqlite3_context* context, int count, sqlite3_value** values);

/// The same in UTC, to the second: what SQLite's keywords Current_Date, Current_Time and Current_Timestamp
/// call.
ORVANE_ENGINE_EXPORT void currentDate(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void currentTime(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void currentTimestamp(sqlite3_context* context, int count, sqlite3_value** values);

/// Reads a date, a time or both out of free text: fields in any order, Russian and English names of months
/// and days of the week, compact dates of eight digits, "today" and "now". What a date lacks comes from
/// today, so an empty text and NULL give today's date. An impossible date or time gives the empty text.
ORVANE_ENGINE_EXPORT void stringToDate(sqlite3_context* context, int count, sqlite3_value** values);
/// A date by the range of the number: 10000101 to 99991231 is yyyymmdd. Other integers are seconds of Unix
/// time below 2^34, Windows FILETIME ticks (100 ns since 1601) beyond and for negative ones; other floats are
/// OLE Automation days (since 1899-12-30). NULL when the argument does not convert; the empty text for an
/// impossible date.
ORVANE_ENGINE_EXPORT void numberToDate(sqlite3_context* context, int count, sqlite3_value** values);

/// A part of a date or date-time text; NULL when it is neither.
ORVANE_ENGINE_EXPORT void day(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void month(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void year(sqlite3_context* context, int count, sqlite3_value** values);
/// 0 for Sunday to 6 for Saturday.
ORVANE_ENGINE_EXPORT void weekday(sqlite3_context* context, int count, sqlite3_value** values);
/// A part of a time or date-time text; NULL when it is neither. The second is a float with its milliseconds.
ORVANE_ENGINE_EXPORT void hour(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void minute(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void second(sqlite3_context* context, int count, sqlite3_value** values);
/// The date (time) of a date-time text; NULL when it is none.
ORVANE_ENGINE_EXPORT void getDate(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void getTime(sqlite3_context* context, int count, sqlite3_value** values);

/// `extract(part, value)`: the number of a part of a date or time text: year, quarter, month, week and
/// isoyear (ISO 8601), day, doy, dow (0 for Sunday), isodow (7 for Sunday), hour, minute, second. NULL where
/// the value has no such part; an error for an unknown one.
ORVANE_ENGINE_EXPORT void extract(sqlite3_context* context, int count, sqlite3_value** values);
/// `dateTrunc(part, value)`: the beginning of the year, quarter, month, week (a Monday), day, hour, minute or
/// second in which a date or time lies, in the form of the value. NULL for what is none, and for a part of
/// the date of a time; an error for an unknown part.
ORVANE_ENGINE_EXPORT void dateTrunc(sqlite3_context* context, int count, sqlite3_value** values);

} // namespace orvane::engine
