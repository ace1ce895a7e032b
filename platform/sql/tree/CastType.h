#pragma once

#include "platform/Export.h"

#include <optional>
#include <string>

namespace orvane::sql {

/// What Cast can make of a value.
enum class CastType { Integer, Real, Numeric, Text, Blob, Date, Time, Timestamp };

/// The type that a name stands for, in any letter case and with or without numbers in parentheses:
/// `Double Precision`, `Decimal(10,2)`. None for an unknown name.
ORVANE_PLATFORM_EXPORT std::optional<CastType> findCastType(const std::wstring& name);

} // namespace orvane::sql
