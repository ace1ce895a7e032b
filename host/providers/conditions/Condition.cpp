#include "host/providers/conditions/Condition.h"

#include <algorithm>
#include <cmath>

namespace orvane::files {

namespace {

using dp::Comparison;

constexpr auto MIN_INTEGER = std::numeric_limits<std::int64_t>::min();
constexpr auto MAX_INTEGER = std::numeric_limits<std::int64_t>::max();
constexpr auto INFINITE = std::numeric_limits<double>::infinity();
constexpr double TWO_TO_63 = 9223372036854775808.0;

/// The integers on one side of a number: `floor` is the greatest one not above it, `ceil` the least one not
/// below it. Beyond 64 bits there is none: `isBelowAll`, `isAboveAll`.
struct IntegerPlace {
    std::int64_t floor = 0;
    std::int64_t ceil = 0;
    bool isBelowAll = false;
    bool isAboveAll = false;
};

IntegerPlace placeOf(const dp::ScanValue& operand) {
    if (const auto* integer = std::get_if<std::int64_t>(&operand))
        return {*integer, *integer};
    const double real = std::get<double>(operand);
    if (real >= TWO_TO_63)
        return {.isAboveAll = true};
    if (real < -TWO_TO_63)
        return {.isBelowAll = true};
    return {static_cast<std::int64_t>(std::floor(real)), static_cast<std::int64_t>(std::ceil(real))};
}

/// Bounds of the reals that may equal an operand: an integer beyond 2^53 lies between two of them.
Range<double> realsAround(const dp::ScanValue& operand) {
    if (const auto* real = std::get_if<double>(&operand))
        return {*real, *real};
    const auto integer = std::get<std::int64_t>(operand);
    const auto nearest = static_cast<double>(integer);
    if (std::abs(nearest) < 0x1p53)
        return {nearest, nearest};
    return {std::nextafter(nearest, -INFINITE), std::nextafter(nearest, INFINITE)};
}

void addIntegers(std::vector<Range<std::int64_t>>& ranges, Comparison comparison,
                 const dp::ScanValue& operand) {
    const auto place = placeOf(operand);
    const bool isOutside = place.isAboveAll || place.isBelowAll;
    auto addBelow = [&](bool included) {
        if (place.isAboveAll) {
            ranges.push_back({});
        } else if (!isOutside) {
            const bool isExact = place.floor == place.ceil;
            if (!isExact || included)
                ranges.push_back({MIN_INTEGER, place.floor});
            else if (place.floor != MIN_INTEGER)
                ranges.push_back({MIN_INTEGER, place.floor - 1});
        }
    };
    auto addAbove = [&](bool included) {
        if (place.isBelowAll) {
            ranges.push_back({});
        } else if (!isOutside) {
            const bool isExact = place.floor == place.ceil;
            if (!isExact || included)
                ranges.push_back({place.ceil, MAX_INTEGER});
            else if (place.ceil != MAX_INTEGER)
                ranges.push_back({place.ceil + 1, MAX_INTEGER});
        }
    };
    switch (comparison) {
    case Comparison::Less: addBelow(false); return;
    case Comparison::LessOrEqual: addBelow(true); return;
    case Comparison::Greater: addAbove(false); return;
    case Comparison::GreaterOrEqual: addAbove(true); return;
    case Comparison::NotEqual:
    case Comparison::IsNot:
        if (isOutside || place.floor != place.ceil) {
            ranges.push_back({});
        } else {
            addBelow(false);
            addAbove(false);
        }
        return;
    default:
        if (!isOutside && place.floor == place.ceil)
            ranges.push_back({place.floor, place.floor});
    }
}

void addReals(std::vector<Range<double>>& ranges, Comparison comparison, const dp::ScanValue& operand) {
    const auto around = realsAround(operand);
    const bool isExact = around.low == around.high;
    // Strictly below an exact bound; up to and with an inexact one, as the values beside it are not known.
    const Range<double> below{-INFINITE, isExact ? std::nextafter(around.low, -INFINITE) : around.high};
    const Range<double> above{isExact ? std::nextafter(around.high, INFINITE) : around.low, INFINITE};
    switch (comparison) {
    case Comparison::Less:
        if (around.high != -INFINITE)
            ranges.push_back(below);
        return;
    case Comparison::LessOrEqual: ranges.push_back({-INFINITE, around.high}); return;
    case Comparison::Greater:
        if (around.low != INFINITE)
            ranges.push_back(above);
        return;
    case Comparison::GreaterOrEqual: ranges.push_back({around.low, INFINITE}); return;
    case Comparison::NotEqual:
    case Comparison::IsNot:
        if (!isExact) {
            ranges.push_back({-INFINITE, INFINITE});
            return;
        }
        if (around.high != -INFINITE)
            ranges.push_back(below);
        if (around.low != INFINITE)
            ranges.push_back(above);
        return;
    default: ranges.push_back(around);
    }
}

/// Sorts ranges and joins those that overlap.
template<class Number>
void normalize(std::vector<Range<Number>>& ranges) {
    std::sort(ranges.begin(), ranges.end(), [](const auto& a, const auto& b) { return a.low < b.low; });
    std::size_t kept = 0;
    for (const auto& range : ranges) {
        if (kept > 0 && range.low <= ranges[kept - 1].high) {
            ranges[kept - 1].high = std::max(ranges[kept - 1].high, range.high);
        } else {
            ranges[kept++] = range;
        }
    }
    ranges.resize(kept);
}

bool isNumber(const dp::ScanValue& value) {
    return std::holds_alternative<std::int64_t>(value) || std::holds_alternative<double>(value);
}

std::optional<Condition> conditionOnTexts(const dp::ScanTerm& term, Condition condition) {
    condition.textsAreExcluded =
        term.comparison == Comparison::NotEqual || term.comparison == Comparison::IsNot;
    const bool isEquality = condition.textsAreExcluded || term.comparison == Comparison::Equal ||
                            term.comparison == Comparison::Is || term.comparison == Comparison::In;
    if (!isEquality || term.collation != dp::TextCollation::Binary)
        return std::nullopt;
    for (const auto& operand : term.operands) {
        if (const auto* text = std::get_if<std::string>(&operand))
            condition.texts.push_back(*text);
        else if (isNumber(operand))
            return std::nullopt;
    }
    std::sort(condition.texts.begin(), condition.texts.end());
    return condition;
}

} // namespace

std::optional<Condition> conditionOf(const dp::ScanTerm& term, ValueClass valueClass) {
    Condition condition;
    const bool isWithNull =
        term.operands.size() == 1 && std::holds_alternative<std::monostate>(term.operands[0]);
    if (term.comparison == Comparison::IsNull || (term.comparison == Comparison::Is && isWithNull)) {
        condition.acceptsNull = true;
        return condition;
    }
    if (term.comparison == Comparison::IsNotNull || (term.comparison == Comparison::IsNot && isWithNull)) {
        condition.acceptsAnyValue = true;
        return condition;
    }
    if (valueClass == ValueClass::Other || term.comparison == Comparison::Like ||
        term.comparison == Comparison::Glob)
        return std::nullopt;
    if (isWithNull && term.comparison != Comparison::In)
        return condition; // a comparison with NULL is true for no row

    condition.acceptsNull = term.comparison == Comparison::IsNot;
    if (valueClass == ValueClass::Text)
        return conditionOnTexts(term, std::move(condition));
    for (const auto& operand : term.operands) {
        if (std::holds_alternative<std::monostate>(operand))
            continue;
        const auto* real = std::get_if<double>(&operand);
        if (!isNumber(operand) || (real && std::isnan(*real)))
            return std::nullopt;
        if (valueClass == ValueClass::Integer)
            addIntegers(condition.integers, term.comparison, operand);
        else
            addReals(condition.reals, term.comparison, operand);
    }
    normalize(condition.integers);
    normalize(condition.reals);
    return condition;
}

} // namespace orvane::files
