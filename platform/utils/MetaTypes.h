#pragma once

#include "platform/Export.h"

#include <QString>

namespace orvane {

/// True for the meta-types of signed and unsigned integers of every width, `char` included. Neither bool nor
/// QChar nor an enumeration is one.
ORVANE_PLATFORM_EXPORT bool isPlainInt(int metaType);

/// The name under which a column of values of a meta-type is declared in SQLite. The affinity that SQLite
/// derives from it keeps the values as they are: dates and times are texts in the database, so "Date Text"
/// and its like are of text affinity, where plain "Date" would be numeric. A length, precision or collation
/// may follow the names "Varchar" and "Numeric" directly. Types that are no plain value (geometries, lists,
/// unknown ids) give "Blob".
ORVANE_PLATFORM_EXPORT QString sqlName(int metaType);

} // namespace orvane
