#include "host/postgres/reading/ServerValue.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace orvane::postgres {

namespace {

/// The bytes of a number in the order of the network.
template<class Number>
Number numberIn(const char* bytes) {
    Number number = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i) {
        number = static_cast<Number>(number << 8 | static_cast<unsigned char>(bytes[i]));
    }
    return number;
}

template<class Integer>
dp::Cell integer(std::string_view bytes) {
    using Unsigned = std::make_unsigned_t<Integer>;
    return bytes.size() == sizeof(Integer)
               ? dp::Cell::ofInteger(static_cast<Integer>(numberIn<Unsigned>(bytes.data())))
               : dp::Cell();
}

/// At least so many digits of a number that is not negative.
void appendDigits(std::int64_t number, std::size_t width, std::string& text) {
    char digits[20];
    const auto written = std::to_chars(digits, digits + sizeof digits, number);
    const auto count = static_cast<std::size_t>(written.ptr - digits);
    text.append(width > count ? width - count : 0, '0');
    text.append(digits, count);
}

/// A number that is not a number is NULL, as everywhere in SQLite.
dp::Cell real(double value) {
    return std::isnan(value) ? dp::Cell() : dp::Cell::ofReal(value);
}

/// The server's decimal numbers: digits of base 10,000 behind a header.
class Numeric {
public:
    explicit Numeric(std::string_view bytes) : bytes_(bytes) {
        constexpr std::size_t headerSize = 8;
        if (bytes.size() < headerSize || bytes.size() != headerSize + 2 * part(0)) {
            sign_ = notANumber;
            return;
        }
        digits_ = part(0);
        weight_ = static_cast<std::int16_t>(part(1));
        sign_ = part(2);
    }

    dp::Cell toReal(std::string& memory) const {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        switch (sign_) {
        case positive:
        case negative: break;
        case plusInfinity: return dp::Cell::ofReal(infinity);
        case minusInfinity: return dp::Cell::ofReal(-infinity);
        default: return {};
        }
        constexpr int exactDigits = 3; // of base 10,000: below 2^53, by a power of ten that is exact
        double value = 0;
        if (digits_ <= exactDigits && std::abs(exponent()) <= 20) {
            std::int64_t whole = 0;
            for (std::size_t i = 0; i < digits_; ++i) {
                whole = whole * base + digit(i);
            }
            value = exponent() < 0 ? static_cast<double>(whole) / powerOfTen(-exponent())
                                   : static_cast<double>(whole) * powerOfTen(exponent());
        } else {
            value = parsed(memory);
        }
        return dp::Cell::ofReal(sign_ == negative ? -value : value);
    }

    dp::Cell toInteger() const {
        constexpr int mostWeight = 4; // 18 digits
        if ((sign_ != positive && sign_ != negative) || weight_ > mostWeight) {
            return {};
        }
        std::int64_t value = 0;
        for (int i = 0; i <= weight_; ++i) {
            value = value * base +
                    (static_cast<std::size_t>(i) < digits_ ? digit(static_cast<std::size_t>(i)) : 0);
        }
        return dp::Cell::ofInteger(sign_ == negative ? -value : value);
    }

private:
    static constexpr unsigned positive = 0, negative = 0x4000, notANumber = 0xC000, plusInfinity = 0xD000,
                              minusInfinity = 0xF000;
    static constexpr int base = 10'000;

    std::uint16_t part(std::size_t i) const { return numberIn<std::uint16_t>(bytes_.data() + 2 * i); }
    int digit(std::size_t i) const { return part(4 + i); }
    /// Power of ten of the last digit.
    int exponent() const { return 4 * (weight_ - static_cast<int>(digits_) + 1); }
    static double powerOfTen(int exponent) {
        double power = 1;
        for (int i = 0; i < exponent; ++i) {
            power *= 10; // exact up to 10^22
        }
        return power;
    }

    double parsed(std::string& memory) const {
        memory.clear();
        for (std::size_t i = 0; i < digits_; ++i) {
            appendDigits(digit(i), 4, memory);
        }
        memory += 'e' + std::to_string(exponent());
        double value = 0;
        const auto read = std::from_chars(memory.data(), memory.data() + memory.size(), value);
        if (read.ec == std::errc::result_out_of_range) {
            return weight_ > 0 ? std::numeric_limits<double>::infinity() : 0;
        }
        return value;
    }

    std::string_view bytes_;
    std::size_t digits_ = 0;
    int weight_ = 0; ///< power of the base of the first digit
    unsigned sign_ = notANumber;
};

constexpr std::int64_t microsecondsPerDay = 86'400'000'000;

void appendDate(std::int64_t daysSince2000, std::string& text) {
    // Days from the first of March of a year that 400 divides: leap days end their years.
    const std::int64_t days = daysSince2000 + 730'425;
    const std::int64_t era = (days >= 0 ? days : days - 146'096) / 146'097;
    const std::int64_t dayOfEra = days - era * 146'097;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36'524 - dayOfEra / 146'096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t month = (5 * dayOfYear + 2) / 153;
    const std::int64_t day = dayOfYear - (153 * month + 2) / 5 + 1;
    const std::int64_t year = yearOfEra + era * 400 + (month >= 10 ? 1 : 0);
    appendDigits(year > 0 ? year : 1 - year, 4, text);
    text += '-';
    appendDigits(month < 10 ? month + 3 : month - 9, 2, text);
    text += '-';
    appendDigits(day, 2, text);
}

bool isBeforeChrist(std::int64_t daysSince2000) {
    return daysSince2000 < -730'119; // 0001-01-01
}

/// With milliseconds, or microseconds where there are any.
void appendTime(std::int64_t microseconds, std::string& text) {
    const std::int64_t seconds = microseconds / 1'000'000;
    const std::int64_t rest = microseconds % 1'000'000;
    appendDigits(seconds / 3600, 2, text);
    text += ':';
    appendDigits(seconds / 60 % 60, 2, text);
    text += ':';
    appendDigits(seconds % 60, 2, text);
    text += '.';
    const bool isFine = rest % 1000 != 0;
    appendDigits(isFine ? rest : rest / 1000, isFine ? 6 : 3, text);
}

template<class Integer>
bool isInfinite(Integer value, std::string& memory) {
    if (value == std::numeric_limits<Integer>::max()) {
        memory = "infinity";
    } else if (value == std::numeric_limits<Integer>::min()) {
        memory = "-infinity";
    } else {
        return false;
    }
    return true;
}

dp::Cell date(std::string_view bytes, std::string& memory) {
    if (bytes.size() != sizeof(std::int32_t)) {
        return {};
    }
    const auto days = static_cast<std::int32_t>(numberIn<std::uint32_t>(bytes.data()));
    if (!isInfinite(days, memory)) {
        memory.clear();
        appendDate(days, memory);
        memory += isBeforeChrist(days) ? " BC" : "";
    }
    return dp::Cell::ofText(memory);
}

dp::Cell moment(std::string_view bytes, std::string& memory) {
    if (bytes.size() != sizeof(std::int64_t)) {
        return {};
    }
    const auto value = static_cast<std::int64_t>(numberIn<std::uint64_t>(bytes.data()));
    if (!isInfinite(value, memory)) {
        std::int64_t days = value / microsecondsPerDay;
        std::int64_t time = value % microsecondsPerDay;
        if (time < 0) {
            --days;
            time += microsecondsPerDay;
        }
        memory.clear();
        appendDate(days, memory);
        memory += ' ';
        appendTime(time, memory);
        memory += isBeforeChrist(days) ? " BC" : "";
    }
    return dp::Cell::ofText(memory);
}

dp::Cell time(std::string_view bytes, std::string& memory) {
    if (bytes.size() != sizeof(std::int64_t)) {
        return {};
    }
    memory.clear();
    appendTime(static_cast<std::int64_t>(numberIn<std::uint64_t>(bytes.data())), memory);
    return dp::Cell::ofText(memory);
}

dp::Cell uuid(std::string_view bytes, std::string& memory) {
    constexpr std::size_t size = 16;
    if (bytes.size() != size) {
        return {};
    }
    constexpr char digits[] = "0123456789abcdef";
    memory.clear();
    for (std::size_t i = 0; i < size; ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            memory += '-';
        }
        const auto byte = static_cast<unsigned char>(bytes[i]);
        memory += digits[byte >> 4];
        memory += digits[byte & 15];
    }
    return dp::Cell::ofText(memory);
}

dp::Cell padded(std::string_view bytes) {
    const std::size_t last = bytes.find_last_not_of(' ');
    return dp::Cell::ofText(bytes.substr(0, last == std::string_view::npos ? 0 : last + 1));
}

} // namespace

dp::Cell cellOfServerValue(ValueKind kind, std::string_view bytes, std::string& memory) {
    switch (kind) {
    case ValueKind::Boolean: return bytes.size() == 1 ? dp::Cell::ofInteger(bytes[0] != 0) : dp::Cell();
    case ValueKind::Integer2: return integer<std::int16_t>(bytes);
    case ValueKind::Integer4: return integer<std::int32_t>(bytes);
    case ValueKind::Integer8: return integer<std::int64_t>(bytes);
    case ValueKind::Unsigned4: return integer<std::uint32_t>(bytes);
    case ValueKind::Real4:
        return bytes.size() == sizeof(float)
                   ? real(std::bit_cast<float>(numberIn<std::uint32_t>(bytes.data())))
                   : dp::Cell();
    case ValueKind::Real8:
        return bytes.size() == sizeof(double)
                   ? real(std::bit_cast<double>(numberIn<std::uint64_t>(bytes.data())))
                   : dp::Cell();
    case ValueKind::Numeric: return Numeric(bytes).toReal(memory);
    case ValueKind::WholeNumeric: return Numeric(bytes).toInteger();
    case ValueKind::Date: return date(bytes, memory);
    case ValueKind::Time: return time(bytes, memory);
    case ValueKind::Moment:
    case ValueKind::LocalMoment: return moment(bytes, memory);
    case ValueKind::PaddedText: return padded(bytes);
    case ValueKind::Uuid: return uuid(bytes, memory);
    case ValueKind::Json: return bytes.empty() ? dp::Cell() : dp::Cell::ofText(bytes.substr(1)); // version
    case ValueKind::Text:
    case ValueKind::Shown:
    case ValueKind::List: return dp::Cell::ofText(bytes);
    case ValueKind::Bytes: return dp::Cell::ofBytes(bytes);
    case ValueKind::Geometry:
    case ValueKind::Geography: return dp::Cell::ofWkb(bytes);
    }
    return {};
}

std::int64_t placeOfRow(std::string_view bytes) {
    constexpr std::size_t size = 6;
    return bytes.size() == size ? static_cast<std::int64_t>(numberIn<std::uint32_t>(bytes.data())) << 16 |
                                      numberIn<std::uint16_t>(bytes.data() + 4)
                                : -1;
}

} // namespace orvane::postgres
