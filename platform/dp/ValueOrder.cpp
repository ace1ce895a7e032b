#include "platform/dp/ValueOrder.h"

#include "platform/utils/Numbers.h"

#include <algorithm>

namespace orvane::dp {

namespace {

template<class Number>
int compareSame(Number a, Number b) {
    return a < b ? -1 : a > b;
}

int compareMixed(std::int64_t a, double b) {
    const auto whole = utils::wholePart(b);
    if (!whole) {
        return b > 0 ? -1 : 1;
    }
    return a != *whole ? compareSame(a, *whole) : compareSame(static_cast<double>(*whole), b);
}

/// SQLite's NOCASE.
int compareFolded(std::string_view a, std::string_view b) {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const auto left = static_cast<unsigned char>(foldAscii(a[i]));
        const auto right = static_cast<unsigned char>(foldAscii(b[i]));
        if (left != right) {
            return left < right ? -1 : 1;
        }
    }
    return compareSame(a.size(), b.size());
}

} // namespace

TextComparison::~TextComparison() = default;

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

int compareTexts(std::string_view a, std::string_view b, TextCollation collation,
                 const TextComparison* locale) {
    switch (collation) {
    case TextCollation::Binary: return a.compare(b);
    case TextCollation::NoCase: return compareFolded(a, b);
    case TextCollation::Locale: return locale->compare(a, b);
    }
    return 0;
}

} // namespace orvane::dp
