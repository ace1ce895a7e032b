#pragma once

#include "platform/dp/AttributeDefinition.h"
#include <orvane/engine/Export.h>

#include <QDateTime>
#include <QString>
#include <QVariant>

#include <sqlite3.h>

#include <string>

namespace orvane::engine {

/// How SQL values become values of Qt and the standard library, and back. All are reentrant; none reports an
/// error to SQLite. A text counts up to its first zero character everywhere.

/// The pattern of times: "hh:mm:ss.zzz".
ORVANE_ENGINE_EXPORT extern const QString timeFormat;
/// The pattern of date-times: the ISO date, one blank, the time.
ORVANE_ENGINE_EXPORT extern const QString dateTimeFormat;

/// The text in UTF-8; empty for NULL.
ORVANE_ENGINE_EXPORT std::string toString(sqlite3_value* value);
/// "yyyy-MM-dd"; empty for an invalid date, as below.
ORVANE_ENGINE_EXPORT QString toString(const QDate& date);
ORVANE_ENGINE_EXPORT QString toString(const QTime& time);
/// Wall clock as the object holds it, without a time zone.
ORVANE_ENGINE_EXPORT QString toString(const QDateTime& dateTime);
/// The text in UTF-16 up to its first zero, each byte that is no UTF-8 as U+FFFD; null for NULL.
ORVANE_ENGINE_EXPORT QString toQString(sqlite3_value* value);
/// The same.
ORVANE_ENGINE_EXPORT QString toQStringUTF8(sqlite3_value* value);

/// A number, or the number that a text begins with after white space: decimal, hexadecimal, infinity or
/// not-a-number, with a point as the decimal mark whatever the C locale. NULL, blobs, other texts and numbers
/// out of range give 0 and a false `ok`, which may be null.
ORVANE_ENGINE_EXPORT double toDouble(sqlite3_value* value, bool* ok);
/// The same for decimal integers. A float is truncated towards zero.
ORVANE_ENGINE_EXPORT qint64 toInt64(sqlite3_value* value, bool* ok);

/// From the text of an ISO date-time, an ISO time, or "hh:mm:ss.zzz"; invalid when it is none of them.
ORVANE_ENGINE_EXPORT QTime toTime(sqlite3_value* value);
/// From the text of an ISO date-time or date; invalid when it is neither.
ORVANE_ENGINE_EXPORT QDate toDate(sqlite3_value* value);
/// From the text of an ISO date-time, or an ISO date as its midnight; invalid when it is neither.
ORVANE_ENGINE_EXPORT QDateTime toDateTime(sqlite3_value* value);

/// The text in quotes, with the quotes inside doubled. `quote` is a Latin-1 character.
ORVANE_ENGINE_EXPORT QString escapeString(QString text, char quote);

/// Whether the column holds geometries (styles); false for null.
ORVANE_ENGINE_EXPORT bool isGeometry(const dp::AttributeDefinitionPointer& definition);
ORVANE_ENGINE_EXPORT bool isStyle(const dp::AttributeDefinitionPointer& definition);

/// The first key of the order of variants: one number for all plain integers, the meta-type of any other
/// value, the largest int for an invalid variant.
ORVANE_ENGINE_EXPORT int variantType(const QVariant& value);
/// True when `a` comes before `b`: by variantType, then by utils::compare. A strict weak order.
ORVANE_ENGINE_EXPORT bool variantCompare(const QVariant& a, const QVariant& b);

} // namespace orvane::engine
