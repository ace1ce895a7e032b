#pragma once

#include "platform/Export.h"

#include <QLocale>
#include <QString>

namespace orvane::utils {

/// The number rounded to `digits` decimal places, to tens, hundreds, ... for a negative count. Halves go away
/// from zero, as written: the digits that decide are those of the shortest decimal text of the number,
/// so 1.005 to two places is 1.01 although its binary value lies below. A not-a-number and infinities stay.
ORVANE_PLATFORM_EXPORT double getRound(double value, int digits);

/// The number with the locale's digits, decimal point and thousands separators: as many fraction digits as
/// tell it from every other double, and never an exponent.
ORVANE_PLATFORM_EXPORT QString separateDouble(double value, QLocale locale);

/// The same without thousands separators.
ORVANE_PLATFORM_EXPORT QString toLocalizedString(double value, const QLocale& locale);

/// Inserts the separator between groups of three digits of the integer part of `text`. The part starts at
/// index `from` (a sign there is stepped over) and ends before `decimalPoint`, at the end of the text when
/// that is the null character or does not occur.
ORVANE_PLATFORM_EXPORT QString separateThousands(QString text, QChar decimalPoint, QChar groupSeparator,
                                                 int from);

/// A number text that the locale wrote with an exponent, in plain digits; any other text, also one with an
/// exponent that no double has, as it is. `keep`, when given, is asked with the exponent and says whether the
/// form stays.
ORVANE_PLATFORM_EXPORT QString castExponentialFormat(QString text, const QLocale& locale, bool (*keep)(int));

} // namespace orvane::utils
