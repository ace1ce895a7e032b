#include "platform/decimal/QDecNumber.h"

#include <array>
#include <cfenv>
#include <charconv>
#include <cmath>
#include <string>

#include <bid_conf.h>
#include <bid_functions.h>

/// Between the words of the class and the library's type.
struct QDecNumber::Access {
    static BID_UINT128 bits(const QDecNumber& number) {
        BID_UINT128 result;
        result.w[0] = number.words_[0];
        result.w[1] = number.words_[1];
        return result;
    }
    static QDecNumber number(BID_UINT128 bits) {
        QDecNumber result;
        result.words_[0] = bits.w[0];
        result.words_[1] = bits.w[1];
        return result;
    }
    using Operation = BID_UINT128 (*)(BID_UINT128, BID_UINT128, _IDEC_round, _IDEC_flags*);
    static QDecNumber apply(Operation operation, const QDecNumber& a, const QDecNumber& b) {
        _IDEC_flags flags = 0;
        return number(operation(bits(a), bits(b), BID_ROUNDING_TO_NEAREST, &flags));
    }
    static QDecNumber parse(std::string text) {
        _IDEC_flags flags = 0;
        return number(bid128_from_string(text.data(), BID_ROUNDING_TO_NEAREST, &flags));
    }
};

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Digits with at most one point, then perhaps an exponent.
bool isNumber(const char* at) {
    const auto digits = [&at] {
        const char* start = at;
        while (isDigit(*at)) {
            ++at;
        }
        return at - start;
    };
    auto count = digits();
    if (*at == '.') {
        ++at;
        count += digits();
    }
    if (count == 0) {
        return false;
    }
    if (*at == 'e' || *at == 'E') {
        ++at;
        at += *at == '+' || *at == '-' ? 1 : 0;
        if (digits() == 0) {
            return false;
        }
    }
    return *at == '\0';
}

[[maybe_unused]] const bool registered = [] {
    qRegisterMetaType<QDecNumber>("QDecNumber");
    QMetaType::registerComparators<QDecNumber>();
    QMetaType::registerConverter<QDecNumber, QString>(decNumberToString);
    QMetaType::registerConverter<QDecNumber, double>(&QDecNumber::toDouble);
    QMetaType::registerConverter<QDecNumber, qint64>(
        [](const QDecNumber& number) { return number.toInt64(); });
    return true;
}();

} // namespace

QDecNumber::QDecNumber() : QDecNumber(qint64{0}) {}

QDecNumber::QDecNumber(qint64 value) {
    const BID_UINT128 bits = bid128_from_int64(value);
    words_[0] = bits.w[0];
    words_[1] = bits.w[1];
}

QDecNumber::QDecNumber(double value) {
    std::array<char, 40> buffer{};
    *std::to_chars(buffer.data(), buffer.data() + buffer.size() - 1, value).ptr = '\0';
    *this = Access::parse(buffer.data());
}

QDecNumber QDecNumber::fromString(const QString& text, bool* ok) {
    const QByteArray bytes = text.trimmed().toUtf8();
    const bool hasSign = bytes.startsWith('-') || bytes.startsWith('+');
    const QByteArray name = bytes.mid(hasSign ? 1 : 0).toLower();
    const bool valid = isNumber(name.constData()) || name == "inf" || name == "infinity" || name == "nan";
    if (ok != nullptr) {
        *ok = valid;
    }
    return Access::parse(valid ? bytes.toStdString() : "NaN");
}

bool QDecNumber::isNaN() const {
    return bid128_isNaN(Access::bits(*this)) != 0;
}

double QDecNumber::toDouble() const {
    _IDEC_flags flags = 0;
    return bid128_to_binary64(Access::bits(*this), BID_ROUNDING_TO_NEAREST, &flags);
}

qint64 QDecNumber::toInt64(bool* ok) const {
    _IDEC_flags flags = 0;
    const qint64 result = bid128_to_int64_int(Access::bits(*this), &flags);
    const bool fits = (flags & BID_INVALID_EXCEPTION) == 0;
    if (ok != nullptr) {
        *ok = fits;
    }
    return fits ? result : 0;
}

int QDecNumber::compare(const QDecNumber& other) const {
    if (isNaN() || other.isNaN()) {
        return int(isNaN()) - int(other.isNaN());
    }
    _IDEC_flags flags = 0;
    const BID_UINT128 a = Access::bits(*this);
    const BID_UINT128 b = Access::bits(other);
    return bid128_quiet_less(a, b, &flags) != 0 ? -1 : bid128_quiet_greater(a, b, &flags);
}

int QDecNumber::compare(long double other) const {
    if (isNaN() || std::isnan(other)) {
        return int(isNaN()) - int(std::isnan(other));
    }
    // The largest binary number that is not above the decimal: when it equals `other` but had to be rounded,
    // the decimal lies above.
    _IDEC_flags flags = 0;
    const long double lower = bid128_to_binary80(Access::bits(*this), BID_ROUNDING_DOWN, &flags);
    if (lower != other) {
        return lower < other ? -1 : 1;
    }
    return (flags & BID_INEXACT_EXCEPTION) != 0 ? 1 : 0;
}

QDecNumber QDecNumber::operator-() const {
    return Access::number(bid128_negate(Access::bits(*this)));
}

QDecNumber operator+(const QDecNumber& a, const QDecNumber& b) {
    return QDecNumber::Access::apply(bid128_add, a, b);
}

QDecNumber operator-(const QDecNumber& a, const QDecNumber& b) {
    return QDecNumber::Access::apply(bid128_sub, a, b);
}

QDecNumber operator*(const QDecNumber& a, const QDecNumber& b) {
    return QDecNumber::Access::apply(bid128_mul, a, b);
}

QDecNumber operator/(const QDecNumber& a, const QDecNumber& b) {
    return QDecNumber::Access::apply(bid128_div, a, b);
}

QString decNumberToString(const QDecNumber& number) {
    std::array<char, 64> buffer{};
    _IDEC_flags flags = 0;
    bid128_to_string(buffer.data(), QDecNumber::Access::bits(number), &flags);

    // The library writes sign, coefficient and exponent: "+1234E-2", or a sign and "Inf", "NaN", "SNaN".
    const QString text = QString::fromLatin1(buffer.data());
    const QString sign = text.startsWith(QLatin1Char('-')) ? QStringLiteral("-") : QString();
    const int exponentAt = text.indexOf(QLatin1Char('E'));
    if (exponentAt < 0) {
        return sign +
               (text.endsWith(QLatin1String("Inf")) ? QStringLiteral("Infinity") : QStringLiteral("NaN"));
    }
    QString digits = text.mid(1, exponentAt - 1);
    const int exponent = text.mid(exponentAt + 1).toInt();
    const int adjusted = exponent + digits.size() - 1;
    if (exponent <= 0 && adjusted >= -6) {
        const int point = digits.size() + exponent;
        if (point <= 0) {
            digits.prepend(QString(1 - point, QLatin1Char('0')));
        }
        if (exponent < 0) {
            digits.insert(digits.size() + exponent, QLatin1Char('.'));
        }
        return sign + digits;
    }
    if (digits.size() > 1) {
        digits.insert(1, QLatin1Char('.'));
    }
    return sign + digits + QLatin1Char('E') + QLatin1String(adjusted < 0 ? "-" : "+") +
           QString::number(std::abs(adjusted));
}
