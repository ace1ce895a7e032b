#pragma once

#include "platform/Export.h"

#include <QMetaType>
#include <QString>

/// A decimal floating-point number of 34 digits (IEEE 754 decimal128). Keeps the digits as they were
/// written: 1.10 equals 1.1, but stays "1.10". A value; registered as the meta-type "QDecNumber" with its
/// comparison and conversions to text and numbers. Arithmetic rounds halves to even; it gives infinities and
/// not-a-numbers, never exceptions.
class ORVANE_PLATFORM_EXPORT QDecNumber {
public:
    /// Zero.
    QDecNumber();
    explicit QDecNumber(qint64 value);
    /// The decimal with the shortest text that reads back as the same double: 0.1 becomes 0.1.
    explicit QDecNumber(double value);

    /// Reads digits with an optional sign, point and exponent, "Infinity", "Inf" or "NaN" in any letter case;
    /// white space around is ignored. Digits after the 34th are rounded. Any other text gives a not-a-number
    /// and a false `ok`, which may be null.
    static QDecNumber fromString(const QString& text, bool* ok = nullptr);

    bool isNaN() const;
    /// The nearest double.
    double toDouble() const;
    /// Truncated towards zero. 0 and a false `ok`, which may be null, when that does not fit.
    qint64 toInt64(bool* ok = nullptr) const;

    /// Three-way comparison by value; a not-a-number equals itself and follows every other number.
    int compare(const QDecNumber& other) const;
    /// The same against a binary number, exactly: neither side is rounded.
    int compare(long double other) const;

    QDecNumber operator-() const;
    ORVANE_PLATFORM_EXPORT friend QDecNumber operator+(const QDecNumber& a, const QDecNumber& b);
    ORVANE_PLATFORM_EXPORT friend QDecNumber operator-(const QDecNumber& a, const QDecNumber& b);
    ORVANE_PLATFORM_EXPORT friend QDecNumber operator*(const QDecNumber& a, const QDecNumber& b);
    ORVANE_PLATFORM_EXPORT friend QDecNumber operator/(const QDecNumber& a, const QDecNumber& b);

    friend bool operator==(const QDecNumber& a, const QDecNumber& b) { return a.compare(b) == 0; }
    friend bool operator!=(const QDecNumber& a, const QDecNumber& b) { return a.compare(b) != 0; }
    friend bool operator<(const QDecNumber& a, const QDecNumber& b) { return a.compare(b) < 0; }
    friend bool operator>(const QDecNumber& a, const QDecNumber& b) { return a.compare(b) > 0; }
    friend bool operator<=(const QDecNumber& a, const QDecNumber& b) { return a.compare(b) <= 0; }
    friend bool operator>=(const QDecNumber& a, const QDecNumber& b) { return a.compare(b) >= 0; }

    ORVANE_PLATFORM_EXPORT friend QString decNumberToString(const QDecNumber& number);

private:
    struct Access;

    alignas(16) quint64 words_[2];
};

/// The number in scientific string form ("to-scientific-string" of General Decimal Arithmetic): all digits of
/// the coefficient, plain while the exponent is not positive and the first digit is at most six places behind
/// the point, with "E+n" or "E-n" otherwise. "12.30", "1E+3", "1E-7", "-0", "Infinity", "NaN".
ORVANE_PLATFORM_EXPORT QString decNumberToString(const QDecNumber& number);

Q_DECLARE_METATYPE(QDecNumber)
