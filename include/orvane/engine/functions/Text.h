#pragma once

#include <orvane/engine/Export.h>

#include <sqlite3.h>

/// The text functions of the dialect. Positions start at 1; positions and lengths are UTF-16 code units, a
/// character outside the basic plane counts two. NULL in gives NULL out unless stated otherwise. Reentrant.
namespace orvane::engine {

/// The text of one code unit, the low 16 bits of the code; empty for 0.
ORVANE_ENGINE_EXPORT void charUTF16(sqlite3_context* context, int count, sqlite3_value** values);
/// The first code unit; 0 for an empty text.
ORVANE_ENGINE_EXPORT void ascUTF16(sqlite3_context* context, int count, sqlite3_value** values);
/// `inStr(text, part [, start [, occurrence]])`: the position of an occurrence of a part, searched
/// case-sensitively and without overlaps; 0 when there is none or either text is NULL. Errors for a wrong
/// number of arguments, and for a start or an occurrence below 1.
ORVANE_ENGINE_EXPORT void inStrUTF16(sqlite3_context* context, int count, sqlite3_value** values);
/// Lower (upper) case by Unicode, whatever the locale.
ORVANE_ENGINE_EXPORT void loCaseUTF16(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void upCaseUTF16(sqlite3_context* context, int count, sqlite3_value** values);
/// Without the blanks, tabs and line ends at the beginning (the end). A text of nothing else stays as it is.
ORVANE_ENGINE_EXPORT void leftTrimUTF8(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void rightTrimUTF8(sqlite3_context* context, int count, sqlite3_value** values);
/// The length; 0 for NULL.
ORVANE_ENGINE_EXPORT void len(sqlite3_context* context, int count, sqlite3_value** values);
/// The first (last) n code units, NULL for n below 1.
ORVANE_ENGINE_EXPORT void left_utf16(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void right_utf16(sqlite3_context* context, int count, sqlite3_value** values);
/// `mid(text, start, n)`: n code units from a position, fewer at the end. NULL for n or a start below 1 and
/// for a start behind the end.
ORVANE_ENGINE_EXPORT void midUTF16(sqlite3_context* context, int count, sqlite3_value** values);
/// The number that the text begins with, a float; an integer for the hexadecimal forms "&H1A" and "0x1A",
/// limited to 64 bits. 0.0 for NULL, for a text that begins with no number, and for one out of range.
ORVANE_ENGINE_EXPORT void valUTF8(sqlite3_context* context, int count, sqlite3_value** values);
/// Every letter after white space, or at the beginning, in upper case; the rest stays.
ORVANE_ENGINE_EXPORT void capitalizeUTF16(sqlite3_context* context, int count, sqlite3_value** values);
/// Any value as text: integers in full, floats with six significant digits, date-times, dates and times in
/// the short format of the default locale (an ISO date is a date-time at midnight), geometries as the name of
/// their SQL type, other texts as they are, other blobs empty.
ORVANE_ENGINE_EXPORT void strUTF16(sqlite3_context* context, int count, sqlite3_value** values);
/// n blanks, none for a negative count. NULL when n does not convert or exceeds 2147483647; SQLite's "string
/// or blob too big" beyond the connection's limit, before any memory is taken.
ORVANE_ENGINE_EXPORT void space(sqlite3_context* context, int count, sqlite3_value** values);
/// `repeat(n, text)`: the first character of the text n times, a blank for an empty text or NULL. A character
/// outside the basic plane is repeated whole. Counts as for `space`.
ORVANE_ENGINE_EXPORT void repeat(sqlite3_context* context, int count, sqlite3_value** values);

/// `glob(pattern, text)`, `like(pattern, text)`, `like(pattern, text, escape)`: 1 when the whole text matches
/// without regard to case, else 0. They stand in for SQLite's functions of these names. The escape makes the
/// next character literal; of a longer text the first character counts, NULL and an empty text mean none. A
/// pattern that is constant in a statement is read once per statement.
ORVANE_ENGINE_EXPORT void caseInsensitiveGlob(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void caseInsensitiveLike(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void caseInsensitiveLikeEscape(sqlite3_context* context, int count,
                                                    sqlite3_value** values);

/// `regExp(pattern, text)`: 1 when a part of the text matches the Perl-compatible regular expression, without
/// regard to case unless the pattern says `(?-i)`, else 0. Classes such as \\w know all alphabets. A pattern
/// that is constant in a statement is compiled once. Errors for a faulty pattern, and for one that takes more
/// than a million steps on a text.
ORVANE_ENGINE_EXPORT void regExp(sqlite3_context* context, int count, sqlite3_value** values);

/// Negative, zero or positive: by code units (by the rules of the system's locale).
ORVANE_ENGINE_EXPORT void caseSensitiveCompare(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void caseSensitiveLocaleCompare(sqlite3_context* context, int count,
                                                     sqlite3_value** values);

/// Whether a value is a whole number, another number, or either, or a text of one; NULL for NULL.
ORVANE_ENGINE_EXPORT void isInteger(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void isDecimalNumber(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void isNumber(sqlite3_context* context, int count, sqlite3_value** values);

} // namespace orvane::engine
