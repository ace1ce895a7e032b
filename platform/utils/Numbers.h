#pragma once

#include "platform/Export.h"

#include <QLocale>
#include <QString>

#include <cstdint>
#include <optional>
#include <string>

namespace orvane::utils {

/// The number without its fraction; nothing beyond 64 bits, and for what is no number.
inline std::optional<std::int64_t> wholePart(double number) {
    constexpr double end = 0x1p63;
    return number >= -end && number < end ? std::optional(static_cast<std::int64_t>(number)) : std::nullopt;
}

/// The shortest decimal text that stands for a finite number, without its sign: 0.d1d2... times ten to the
/// power of `point`.
struct ORVANE_PLATFORM_EXPORT DecimalDigits {
    explicit DecimalDigits(double value);

    /// Rounds to the first `count` digits, halves up.
    void keep(qint64 count);
    /// Rounds to decimal places, to tens, hundreds, ... for a negative count.
    void round(int places) { keep(qint64{point} + places); }
    /// `count` digits from one on; zeros in front of the first and behind the last.
    QString slice(int from, int count) const;
    /// Infinity beyond the largest double.
    double toDouble() const;

    std::string digits; ///< none for zero
    int point = 0;      ///< digits in front of the decimal point
};

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

} // namespace orvane::utils
