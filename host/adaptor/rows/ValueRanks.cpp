#include "host/adaptor/rows/ValueRanks.h"

#include "platform/dp/ValueOrder.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <numeric>

namespace orvane::adaptor {

using dp::Cell;
using dp::cellOf;
using dp::CellType;
using dp::compareFolded;

namespace {

/// The integer that a real is equal to, if there is one.
std::optional<std::int64_t> wholeNumber(double real) {
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (real < -limit || real >= limit) {
        return std::nullopt;
    }
    const auto integer = static_cast<std::int64_t>(real);
    return static_cast<double>(integer) == real ? std::optional(integer) : std::nullopt;
}

/// The form in which numbers are the same exactly when they are equal.
Cell normalForm(const Cell& value) {
    const auto whole = value.type() == CellType::Real ? wholeNumber(value.real()) : std::nullopt;
    return whole ? Cell::ofInteger(*whole) : value;
}

/// Both in normal form.
bool isSame(const Cell& a, const Cell& b) {
    if (a.type() != b.type()) {
        return false;
    }
    switch (a.type()) {
    case CellType::Integer: return a.integer() == b.integer();
    case CellType::Real: return a.real() == b.real();
    default: return a.view() == b.view();
    }
}

/// Of a value in normal form; all bits of the result depend on all of the value.
std::size_t hashOf(const Cell& value) {
    if (!isNumber(value)) {
        return std::hash<std::string_view>()(value.view());
    }
    const auto bits = value.type() == CellType::Integer ? static_cast<std::uint64_t>(value.integer())
                                                        : std::bit_cast<std::uint64_t>(value.real());
    const std::uint64_t mixed = (bits ^ (bits >> 32)) * 0x9e3779b97f4a7c15U; // 2^64 / golden ratio
    return mixed ^ (mixed >> 32);
}

} // namespace

ValueRanks::ValueRanks(dp::TextCollation collation)
    : collation_(collation),
      locale_(collation == dp::TextCollation::Locale ? engine::LocaleOrder::current() : nullptr) {}

std::size_t ValueRanks::slotOf(const Cell& value) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = hashOf(value) & mask;
    while (slots_[slot] != 0 && !isSame(normalForm(values_[slots_[slot]]), value)) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

void ValueRanks::growSlots() {
    constexpr std::size_t fewestSlots = 64;
    slots_.assign(std::max(fewestSlots, slots_.size() * 2), 0);
    for (Code code = 1; code < values_.size(); ++code) {
        slots_[slotOf(normalForm(values_[code]))] = code;
    }
}

ValueRanks::Code ValueRanks::add(const Cell& value, ByteArena& texts) {
    if (isNull(value)) {
        return 0;
    }
    if (values_.size() * 2 > slots_.size()) {
        growSlots();
    }
    Code& code = slots_[slotOf(normalForm(value))];
    if (code == 0) {
        code = static_cast<Code>(values_.size());
        values_.push_back(isNumber(value) ? value : Cell::ofText(texts.copy(value.view())));
        hasTexts_ = hasTexts_ || !isNumber(value);
    }
    return code;
}

int ValueRanks::compareTexts(std::string_view a, std::string_view b) const {
    switch (collation_) {
    case dp::TextCollation::Binary: return a.compare(b);
    case dp::TextCollation::NoCase: return compareFolded(a, b);
    case dp::TextCollation::Locale: return locale_->compare(a, b);
    }
    return 0;
}

int ValueRanks::compare(const Cell& a, const Cell& b) const {
    if (isNumber(a) != isNumber(b)) {
        return isNumber(a) ? -1 : 1;
    }
    return isNumber(a) ? compareNumbers(a, b) : compareTexts(a.view(), b.view());
}

void ValueRanks::finishForLookups(const work::Cancellation& cancellation) {
    if (hasTexts_ && collation_ != dp::TextCollation::Binary) {
        finishInOrder(cancellation);
    } else {
        rankEnd_ = static_cast<Rank>(values_.size());
    }
}

void ValueRanks::finishInOrder(const work::Cancellation& cancellation) {
    sorted_.resize(values_.size() - 1);
    std::iota(sorted_.begin(), sorted_.end(), Code{1});
    std::sort(sorted_.begin(), sorted_.end(), work::cancellable(cancellation, [this](Code a, Code b) {
                  return compare(values_[a], values_[b]) < 0;
              }));
    cancellation.check();
    ranks_.assign(values_.size(), 0);
    rankEnd_ = 1;
    for (std::size_t i = 0; i < sorted_.size(); ++i) {
        const bool isSame = i > 0 && compare(values_[sorted_[i - 1]], values_[sorted_[i]]) == 0;
        ranks_[sorted_[i]] = isSame ? rankEnd_ - 1 : rankEnd_++;
    }
}

std::optional<ValueRanks::Rank> ValueRanks::find(const dp::ScanValue& operand) const {
    const Cell wanted = normalForm(cellOf(operand));
    if (isNull(wanted)) {
        return 0;
    }
    if (const Code code = slots_.empty() ? 0 : slots_[slotOf(wanted)]; code != 0) {
        return rank(code);
    }
    const auto found =
        std::lower_bound(sorted_.begin(), sorted_.end(), wanted,
                         [this](Code code, const Cell& cell) { return compare(values_[code], cell) < 0; });
    return found != sorted_.end() && compare(values_[*found], wanted) == 0 ? std::optional(rank(*found))
                                                                           : std::nullopt;
}

} // namespace orvane::adaptor
