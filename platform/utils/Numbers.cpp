#include "platform/utils/Numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace orvane::utils {

namespace {

/// The powers of ten that a double holds exactly.
constexpr std::array<double, 23> exactPowers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr double integersFrom = 9007199254740992.0; // 2^53: from here on a double has no fraction

double roundDigits(double value, int places) {
    DecimalDigits digits(value);
    digits.round(places);
    const double rounded = digits.toDouble();
    return std::isfinite(rounded) ? std::copysign(rounded, value)
                                  : value; // only upwards over the largest double
}

QString plainText(double value, QLocale locale, bool grouped) {
    QLocale::NumberOptions options = locale.numberOptions();
    options.setFlag(QLocale::OmitGroupSeparator, !grouped);
    locale.setNumberOptions(options);
    return locale.toString(value == 0.0 ? 0.0 : value, 'f', QLocale::FloatingPointShortest);
}

} // namespace

DecimalDigits::DecimalDigits(double value) {
    std::array<char, 32> buffer{};
    const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(value),
                                       std::chars_format::scientific);
    const std::string_view text(buffer.data(), static_cast<std::size_t>(written.ptr - buffer.data()));
    const std::size_t exponentAt = text.find('e');
    if (value == 0.0 || exponentAt == std::string_view::npos) {
        return;
    }
    digits = text.substr(0, 1);
    if (exponentAt > 2) {
        digits += text.substr(2, exponentAt - 2);
    }
    const std::size_t number = exponentAt + (text[exponentAt + 1] == '+' ? 2 : 1);
    std::from_chars(text.data() + number, text.data() + text.size(), point);
    ++point;
}

void DecimalDigits::keep(qint64 count) {
    if (count >= static_cast<qint64>(digits.size())) {
        return;
    }
    const bool isUp = count >= 0 && digits[static_cast<std::size_t>(count)] >= '5';
    digits.resize(static_cast<std::size_t>(std::max<qint64>(count, 0)));
    if (!isUp) {
        return;
    }
    while (!digits.empty() && digits.back() == '9') {
        digits.pop_back();
    }
    if (digits.empty()) {
        digits = '1';
        ++point;
    } else {
        ++digits.back();
    }
}

QString DecimalDigits::slice(int from, int count) const {
    QString text(count, QLatin1Char('0'));
    for (int i = std::max(0, -from); i < count && from + i < static_cast<int>(digits.size()); ++i) {
        text[i] = QLatin1Char(digits[static_cast<std::size_t>(from + i)]);
    }
    return text;
}

double DecimalDigits::toDouble() const {
    const std::string text = '0' + digits + 'e' + std::to_string(point - static_cast<int>(digits.size()));
    double value = 0.0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), value);
    return parsed.ec == std::errc::result_out_of_range && point > 0 ? std::numeric_limits<double>::infinity()
                                                                    : value;
}

double getRound(double value, int digits) {
    if (!std::isfinite(value) || value == 0.0) {
        return value;
    }
    constexpr int largestPower = static_cast<int>(exactPowers.size()) - 1;
    if (digits > largestPower || digits < -largestPower) {
        return roundDigits(value, digits);
    }
    const double power = exactPowers[static_cast<size_t>(std::abs(digits))];
    const double scaled = digits < 0 ? value / power : value * power;
    if (std::abs(scaled) >= integersFrom) {
        return digits < 0 ? roundDigits(value, digits) : value;
    }
    // Scaling errs by half a unit in the last place: only a number that close to a half needs its text.
    const double distance = std::abs(std::abs(scaled - std::trunc(scaled)) - 0.5);
    if (distance <= std::abs(scaled) * 2 * std::numeric_limits<double>::epsilon()) {
        return roundDigits(value, digits);
    }
    const double rounded = std::round(scaled);
    return digits < 0 ? rounded * power : rounded / power;
}

QString separateDouble(double value, QLocale locale) {
    return plainText(value, std::move(locale), true);
}

QString toLocalizedString(double value, const QLocale& locale) {
    return plainText(value, locale, false);
}

QString separateThousands(QString text, QChar decimalPoint, QChar groupSeparator, int from) {
    int start = std::max(from, 0);
    while (start < text.size() && !text.at(start).isDigit()) {
        ++start;
    }
    int end = decimalPoint.isNull() ? -1 : text.indexOf(decimalPoint, start);
    if (end < 0) {
        end = text.size();
    }
    for (int at = end - 3; at > start; at -= 3) {
        text.insert(at, groupSeparator);
    }
    return text;
}

} // namespace orvane::utils
