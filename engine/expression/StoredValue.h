#pragma once

#include "platform/dp/Cursor.h"

#include <QVariant>

#include <cstdint>
#include <optional>
#include <string>

namespace orvane::engine {

/// How SQLite converts what is stored in a column (https://www.sqlite.org/datatype3.html).
enum class Affinity : std::uint8_t { Blob, Text, Numeric, Integer, Real };

/// The affinity of a declared type, by the rules of section 3.1 there.
Affinity affinityOf(const char* declaredType);
/// The type that has the affinity.
const char* typeOf(Affinity affinity);

/// Whether values of a type are ones that the engine knows: numbers, dates and times.
bool isStandardType(int metaType);
/// What stands in the database for a value of such a type: a number, or a text for dates and times. Nothing
/// for other types.
std::optional<QVariant> standardValue(const QVariant& value);

/// The value as a column would give it back that it was stored in. Texts are put into `memory`, which they
/// need as long as the cell is used; bytes stay in the value.
dp::Cell storedValue(const QVariant& value, Affinity affinity, std::string& memory);

} // namespace orvane::engine
