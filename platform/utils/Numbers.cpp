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
constexpr int largestExponent = 324;                // of the smallest double, 4.9e-324
constexpr double integersFrom = 9007199254740992.0; // 2^53: from here on a double has no fraction

/// Rounds the shortest decimal text of a finite number.
double roundText(double value, int digits) {
    std::array<char, 32> buffer{};
    const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(value),
                                       std::chars_format::scientific);
    const std::string text(buffer.data(), written.ptr);
    const size_t exponentAt = text.find('e');
    std::string significant = text.substr(0, 1);
    if (exponentAt > 2) {
        significant += text.substr(2, exponentAt - 2);
    }
    const int exponent = std::stoi(text.substr(exponentAt + 1));

    // The count of significant digits in front of the place where the text is cut; the first one has
    // `exponent`.
    const long long kept = static_cast<long long>(exponent) + 1 + digits;
    if (kept >= static_cast<long long>(significant.size())) {
        return value;
    }
    if (kept < 0) {
        return std::copysign(0.0, value);
    }
    const bool up = significant[static_cast<size_t>(kept)] >= '5';
    std::string rounded = '0' + significant.substr(0, static_cast<size_t>(kept));
    if (up) {
        size_t last = rounded.size() - 1;
        while (rounded[last] == '9') {
            rounded[last--] = '0';
        }
        ++rounded[last];
    }
    rounded += 'e' + std::to_string(-digits);
    double result = 0.0;
    const auto parsed = std::from_chars(rounded.data(), rounded.data() + rounded.size(), result);
    if (parsed.ec == std::errc::result_out_of_range) {
        return value; // only upwards over the largest double
    }
    return std::copysign(result, value);
}

QString plainText(double value, QLocale locale, bool grouped) {
    QLocale::NumberOptions options = locale.numberOptions();
    options.setFlag(QLocale::OmitGroupSeparator, !grouped);
    locale.setNumberOptions(options);
    return locale.toString(value == 0.0 ? 0.0 : value, 'f', QLocale::FloatingPointShortest);
}

} // namespace

double getRound(double value, int digits) {
    if (!std::isfinite(value) || value == 0.0) {
        return value;
    }
    constexpr int largestPower = static_cast<int>(exactPowers.size()) - 1;
    if (digits > largestPower || digits < -largestPower) {
        return roundText(value, digits);
    }
    const double power = exactPowers[static_cast<size_t>(std::abs(digits))];
    const double scaled = digits < 0 ? value / power : value * power;
    if (std::abs(scaled) >= integersFrom) {
        return digits < 0 ? roundText(value, digits) : value;
    }
    // Scaling errs by half a unit in the last place: only a number that close to a half needs its text.
    const double distance = std::abs(std::abs(scaled - std::trunc(scaled)) - 0.5);
    if (distance <= std::abs(scaled) * 2 * std::numeric_limits<double>::epsilon()) {
        return roundText(value, digits);
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

QString castExponentialFormat(QString text, const QLocale& locale, bool (*keep)(int)) {
    const int exponentAt = text.indexOf(locale.exponential(), 0, Qt::CaseInsensitive);
    if (exponentAt <= 0) {
        return text;
    }
    bool ok = false;
    QString exponentText = text.mid(exponentAt + 1);
    if (exponentText.startsWith(locale.positiveSign())) {
        exponentText.remove(0, 1);
    }
    const int exponent = locale.toInt(exponentText, &ok);
    // A larger exponent is no number's, and would stand for as many zeros.
    if (!ok || std::abs(qint64{exponent}) > largestExponent || (keep != nullptr && keep(exponent))) {
        return text;
    }
    QString digits = text.left(exponentAt);
    int first = 0;
    while (first < digits.size() && !digits.at(first).isDigit()) {
        ++first;
    }
    int point = digits.indexOf(locale.decimalPoint(), first);
    if (point < 0) {
        point = digits.size();
    } else {
        digits.remove(point, 1);
    }
    point += exponent;
    if (point <= first) {
        digits.insert(first, QString(first - point + 1, locale.zeroDigit()));
        point = first + 1;
    }
    if (point > digits.size()) {
        digits.append(QString(point - digits.size(), locale.zeroDigit()));
    } else if (point < digits.size()) {
        digits.insert(point, locale.decimalPoint());
    }
    return digits;
}

} // namespace orvane::utils
