#pragma once

#include "platform/Export.h"

#include <QVariant>

namespace orvane::utils {

/// Three-way comparison of two variants: negative when `a` comes first, 0 when neither does. A strict weak
/// order over every mix of types:
///
/// - numbers (bool, integers, floats, QDecNumber) by their exact value, whatever their types; a not-a-number
/// follows
///   every other number;
/// - texts and characters by their UTF-16 code units, case-sensitively; byte arrays by their bytes;
/// - dates, times and date-times each among themselves, date-times by the instant;
/// - lists element by element, a list before those that it begins;
/// - other types by their registered comparison, else by their text.
///
/// Values of different groups come in the order of the groups above. Invalid and null variants are equal to
/// each other and follow everything else. Reentrant.
ORVANE_PLATFORM_EXPORT int compare(const QVariant& a, const QVariant& b);

} // namespace orvane::utils
