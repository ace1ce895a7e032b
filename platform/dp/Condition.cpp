#include "platform/dp/Condition.h"

#include "platform/utils/Numbers.h"

#include <limits>
#include <optional>

namespace orvane::dp {

namespace {

template<class Number>
constexpr Range<Number> everything{std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max()};
template<>
constexpr Range<double> everything<double>{-std::numeric_limits<double>::infinity(),
                                           std::numeric_limits<double>::infinity()};

std::optional<std::int64_t> before(std::int64_t value) {
    return value == everything<std::int64_t>.low ? std::nullopt : std::optional(value - 1);
}
std::optional<std::int64_t> after(std::int64_t value) {
    return value == everything<std::int64_t>.high ? std::nullopt : std::optional(value + 1);
}
std::optional<double> before(double value) {
    return value == everything<double>.low ? std::nullopt
                                           : std::optional(std::nextafter(value, everything<double>.low));
}
std::optional<double> after(double value) {
    return value == everything<double>.high ? std::nullopt
                                            : std::optional(std::nextafter(value, everything<double>.high));
}

/// Where a number stands among those of one type: the greatest that is not above it and the least that is not
/// below it, which are the same when it is one of them.
template<class Number>
struct Place {
    std::optional<Number> floor;
    std::optional<Number> ceiling;

    bool isExact() const { return floor && ceiling && *floor == *ceiling; }
};

Place<std::int64_t> placeAmongIntegers(const Cell& number) {
    if (number.type() == CellType::Integer) {
        return {number.integer(), number.integer()};
    }
    const double real = number.real();
    if (const auto whole = utils::wholePart(real)) {
        const auto back =
            static_cast<double>(*whole); // a number with a fraction is far from the last integers
        return {*whole - (real < back), *whole + (real > back)};
    }
    using Place = Place<std::int64_t>;
    return real > 0 ? Place{everything<std::int64_t>.high, std::nullopt}
                    : Place{std::nullopt, everything<std::int64_t>.low};
}

/// An integer beyond 2^53 may lie between two reals.
Place<double> placeAmongReals(const Cell& number) {
    if (number.type() == CellType::Real) {
        return {number.real(), number.real()};
    }
    const auto nearest = static_cast<double>(number.integer());
    if (std::abs(nearest) < 0x1p53) {
        return {nearest, nearest};
    }
    const int order = compareNumbers(number, Cell::ofReal(nearest));
    return {order < 0 ? before(nearest) : nearest, order > 0 ? after(nearest) : nearest};
}

/// Adds the numbers of one type for which the comparison with the number at that place is true.
template<class Number>
void addRanges(std::vector<Range<Number>>& ranges, Comparison comparison, const Place<Number>& place) {
    const auto addBelow = [&](bool included) {
        const auto high = place.isExact() && !included ? before(*place.floor) : place.floor;
        if (high) {
            ranges.push_back({everything<Number>.low, *high});
        }
    };
    const auto addAbove = [&](bool included) {
        const auto low = place.isExact() && !included ? after(*place.ceiling) : place.ceiling;
        if (low) {
            ranges.push_back({*low, everything<Number>.high});
        }
    };
    switch (comparison) {
    case Comparison::Less: addBelow(false); break;
    case Comparison::LessOrEqual: addBelow(true); break;
    case Comparison::Greater: addAbove(false); break;
    case Comparison::GreaterOrEqual: addAbove(true); break;
    case Comparison::NotEqual:
    case Comparison::IsNot:
        addBelow(false);
        addAbove(false);
        break;
    default:
        if (place.isExact()) {
            ranges.push_back({*place.floor, *place.floor});
        }
    }
}

/// Sorts ranges and joins those that overlap.
template<class Number>
void normalize(std::vector<Range<Number>>& ranges) {
    if (ranges.size() < 2) {
        return;
    }
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

Condition::TextTest textTestOf(Comparison comparison) {
    using TextTest = Condition::TextTest;
    switch (comparison) {
    case Comparison::Less: return TextTest::Less;
    case Comparison::LessOrEqual: return TextTest::LessOrEqual;
    case Comparison::Greater: return TextTest::Greater;
    case Comparison::GreaterOrEqual: return TextTest::GreaterOrEqual;
    case Comparison::NotEqual:
    case Comparison::IsNot: return TextTest::NotListed;
    default: return TextTest::Listed;
    }
}

bool isWithNull(const ScanTerm& term) {
    return isNull(cellOf(term.operands.front()));
}

} // namespace

void Condition::acceptNothing() {
    integers_.clear();
    reals_.clear();
    textTest_ = TextTest::None;
    acceptsOthers_ = false;
}

void Condition::acceptEveryValue() {
    integers_.assign(1, everything<std::int64_t>);
    reals_.assign(1, everything<double>);
    textTest_ = TextTest::All;
    acceptsOthers_ = true;
}

void Condition::assign(const ScanTerm& term, const std::shared_ptr<const TextComparison>& locale) {
    acceptNothing();
    collation_ = term.collation;
    if (collation_ == TextCollation::Locale && locale_ != locale) {
        locale_ = locale;
    }
    const Comparison comparison = term.comparison;
    const bool isNegated = comparison == Comparison::IsNot || comparison == Comparison::IsNotNull;
    const bool isPattern = comparison == Comparison::Like || comparison == Comparison::Glob;
    isNullTest_ = comparison == Comparison::IsNull || comparison == Comparison::IsNotNull ||
                  ((comparison == Comparison::Is || comparison == Comparison::IsNot) && isWithNull(term));
    acceptsNull_ = isNullTest_ != isNegated;
    if (isNullTest_ ? isNegated : isPattern && !isWithNull(term)) {
        acceptEveryValue();
    } else if (!isNullTest_) {
        compareWith(term);
    }
}

void Condition::compareWith(const ScanTerm& term) {
    bool hasNumber = false;
    std::size_t texts = 0;
    for (const ScanValue& operand : term.operands) {
        const Cell value = cellOf(operand);
        if (isNull(value)) {
            continue; // equal to nothing
        }
        if (isNumber(value)) {
            addRanges(integers_, term.comparison, placeAmongIntegers(value));
            addRanges(reals_, term.comparison, placeAmongReals(value));
            hasNumber = true;
        } else if (texts++ < texts_.size()) {
            texts_[texts - 1].assign(value.view());
        } else {
            texts_.emplace_back(value.view());
        }
    }
    texts_.resize(texts);
    if (texts > 0) {
        acceptEveryValue(); // numbers, if only SQLite converts them
        textTest_ = hasNumber || (collation_ == TextCollation::Locale && !locale_)
                        ? TextTest::All
                        : textTestOf(term.comparison);
    } else if (hasNumber) {
        normalize(integers_);
        normalize(reals_);
        textTest_ = TextTest::All;
        acceptsOthers_ = true;
    }
    if (texts > 1 && textTest_ == TextTest::Listed) {
        arrangeList();
    }
}

void Condition::arrangeList() {
    std::sort(texts_.begin(), texts_.end(),
              [this](const std::string& a, const std::string& b) { return compare(a, b) < 0; });
    keys_.clear();
    haveAllKeys_ = collation_ == TextCollation::Locale;
    for (std::size_t i = 0; collation_ == TextCollation::Locale && i < texts_.size(); ++i) {
        const bool hasKey = locale_->plainKey(texts_[i], key_);
        haveAllKeys_ = haveAllKeys_ && hasKey;
        if (hasKey) {
            keys_.insert(key_);
        }
    }
}

bool Condition::isListed(std::string_view text) const {
    if (texts_.size() == 1) {
        return compare(text, texts_.front()) == 0;
    }
    if (collation_ == TextCollation::Binary) {
        return std::binary_search(texts_.begin(), texts_.end(), text);
    }
    if (!keys_.empty() && locale_->plainKey(text, key_)) {
        if (keys_.count(key_) != 0) {
            return true;
        }
        if (haveAllKeys_) {
            return false;
        }
    }
    return std::binary_search(texts_.begin(), texts_.end(), text,
                              [this](std::string_view a, std::string_view b) { return compare(a, b) < 0; });
}

bool Condition::accepts(std::string_view text) const {
    switch (textTest_) {
    case TextTest::None: return false;
    case TextTest::All: return true;
    case TextTest::Listed: return isListed(text);
    case TextTest::NotListed: return !isListed(text);
    case TextTest::Less: return compare(text, texts_.front()) < 0;
    case TextTest::LessOrEqual: return compare(text, texts_.front()) <= 0;
    case TextTest::Greater: return compare(text, texts_.front()) > 0;
    case TextTest::GreaterOrEqual: return compare(text, texts_.front()) >= 0;
    }
    return true;
}

} // namespace orvane::dp
