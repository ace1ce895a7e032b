#include "platform/dp/ValueOrder.h"

#include <algorithm>

namespace orvane::dp {

namespace {

/// The double is a number.
int compareMixed(std::int64_t a, double b) {
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (b >= limit) {
        return -1;
    }
    if (b < -limit) {
        return 1;
    }
    const double whole = std::trunc(b);
    const auto integer = static_cast<std::int64_t>(whole);
    if (a != integer) {
        return a < integer ? -1 : 1;
    }
    return whole < b ? -1 : whole > b;
}

template<class Number>
int compareSame(Number a, Number b) {
    return a < b ? -1 : a > b;
}

} // namespace

Cell cellOf(const ScanValue& value) {
    if (const auto* integer = std::get_if<std::int64_t>(&value)) {
        return Cell::ofInteger(*integer);
    }
    if (const auto* real = std::get_if<double>(&value)) {
        return Cell::ofReal(*real);
    }
    if (const auto* text = std::get_if<std::string>(&value)) {
        return Cell::ofText(*text);
    }
    return {};
}

int compareNumbers(const Cell& a, const Cell& b) {
    if (a.type() == CellType::Integer) {
        return b.type() == CellType::Integer ? compareSame(a.integer(), b.integer())
                                             : compareMixed(a.integer(), b.real());
    }
    return b.type() == CellType::Real ? compareSame(a.real(), b.real())
                                      : -compareMixed(b.integer(), a.real());
}

int compareFolded(std::string_view a, std::string_view b) {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const int difference =
            static_cast<unsigned char>(foldAscii(a[i])) - static_cast<unsigned char>(foldAscii(b[i]));
        if (difference != 0) {
            return difference;
        }
    }
    return a.size() < b.size() ? -1 : a.size() > b.size();
}

} // namespace orvane::dp
