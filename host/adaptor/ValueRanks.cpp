#include "host/adaptor/ValueRanks.h"

#include "host/adaptor/ValueOrder.h"

#include <algorithm>
#include <numeric>

namespace orvane::adaptor {

using dp::Cell;
using dp::CellType;

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

template<class Map, class Key>
std::optional<ValueRanks::Code> knownCode(const Map& codes, const Key& key) {
    const auto found = codes.find(key);
    return found == codes.end() ? std::nullopt : std::optional(found->second);
}

} // namespace

ValueRanks::ValueRanks(dp::TextCollation collation)
    : collation_(collation),
      locale_(collation == dp::TextCollation::Locale ? engine::LocaleOrder::current() : nullptr) {}

template<class Map, class Key>
ValueRanks::Code ValueRanks::codeOf(Map& codes, const Key& key, const Cell& value) {
    const auto [place, isNew] = codes.try_emplace(key, static_cast<Code>(values_.size()));
    if (isNew) {
        values_.push_back(value);
    }
    return place->second;
}

ValueRanks::Code ValueRanks::add(const Cell& value, ByteArena& texts) {
    if (isNull(value)) {
        return 0;
    }
    if (value.type() == CellType::Integer) {
        return codeOf(integers_, value.integer(), value);
    }
    if (value.type() == CellType::Real) {
        const auto whole = wholeNumber(value.real());
        return whole ? codeOf(integers_, *whole, value) : codeOf(reals_, value.real(), value);
    }
    const auto known = texts_.find(value.view());
    if (known != texts_.end()) {
        return known->second;
    }
    const std::string_view kept = texts.copy(value.view());
    return codeOf(texts_, kept, Cell::ofText(kept));
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

void ValueRanks::finish() {
    sorted_.resize(values_.size() - 1);
    std::iota(sorted_.begin(), sorted_.end(), Code{1});
    std::sort(sorted_.begin(), sorted_.end(),
              [this](Code a, Code b) { return compare(values_[a], values_[b]) < 0; });
    ranks_.assign(values_.size(), 0);
    rankEnd_ = 1;
    for (std::size_t i = 0; i < sorted_.size(); ++i) {
        const bool isSame = i > 0 && compare(values_[sorted_[i - 1]], values_[sorted_[i]]) == 0;
        ranks_[sorted_[i]] = isSame ? rankEnd_ - 1 : rankEnd_++;
    }
}

std::optional<ValueRanks::Rank> ValueRanks::findText(std::string_view text) const {
    if (const auto code = knownCode(texts_, text)) {
        return ranks_[*code];
    }
    if (collation_ == dp::TextCollation::Binary) {
        return std::nullopt;
    }
    const Cell wanted = Cell::ofText(text);
    const auto found =
        std::lower_bound(sorted_.begin(), sorted_.end(), wanted,
                         [this](Code code, const Cell& cell) { return compare(values_[code], cell) < 0; });
    return found != sorted_.end() && compare(values_[*found], wanted) == 0 ? std::optional(ranks_[*found])
                                                                           : std::nullopt;
}

std::optional<ValueRanks::Rank> ValueRanks::find(const dp::ScanValue& operand) const {
    const Cell cell = cellOf(operand);
    if (isNull(cell)) {
        return 0;
    }
    if (cell.type() == CellType::Text) {
        return findText(cell.view());
    }
    const auto whole =
        cell.type() == CellType::Integer ? std::optional(cell.integer()) : wholeNumber(cell.real());
    const auto code = whole ? knownCode(integers_, *whole) : knownCode(reals_, cell.real());
    return code ? std::optional(ranks_[*code]) : std::nullopt;
}

} // namespace orvane::adaptor
