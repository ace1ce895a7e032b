#include <orvane/engine/rows/ValueRanks.h>

#include "engine/rows/KeySorter.h"
#include "engine/rows/TextOrder.h"
#include "platform/utils/Numbers.h"

#include <QtEndian>

#include <boost/sort/spreadsort/integer_sort.hpp>

#include <algorithm>
#include <bit>
#include <functional>
#include <iterator>
#include <numeric>

namespace orvane::engine {

using dp::Cell;
using dp::CellType;

namespace {

/// From so many texts on that only the collator can compare, it pays to bring them about in order first.
constexpr std::size_t manyTexts = 2000;

/// The form in which numbers are the same exactly when they are equal.
Cell normalForm(const Cell& value) {
    const auto whole = value.type() == CellType::Real ? utils::wholePart(value.real()) : std::nullopt;
    return whole && static_cast<double>(*whole) == value.real() ? Cell::ofInteger(*whole) : value;
}

/// Both in normal form.
bool isIdentical(const Cell& a, const Cell& b) {
    if (a.type() != b.type()) {
        return false;
    }
    switch (a.type()) {
    case CellType::Integer: return a.integer() == b.integer();
    case CellType::Real: return a.real() == b.real();
    default: return a.view() == b.view();
    }
}

/// All bits of the result depend on all of the number's.
std::size_t hashOf(std::uint64_t bits) {
    const std::uint64_t mixed = (bits ^ (bits >> 32)) * 0x9e3779b97f4a7c15U; // 2^64 / golden ratio
    return mixed ^ (mixed >> 32);
}

/// Of a value in normal form.
std::size_t hashOf(const Cell& value) {
    if (!isNumber(value)) {
        return std::hash<std::string_view>()(value.view());
    }
    return hashOf(value.type() == CellType::Integer ? static_cast<std::uint64_t>(value.integer())
                                                    : std::bit_cast<std::uint64_t>(value.real()));
}

/// The order of kinds of values; the first byte of a key.
char kindOf(const Cell& value) {
    return isNumber(value) ? '\1' : value.type() == CellType::Text ? '\2' : '\3';
}

template<typename Integer>
void appendBigEndian(Integer value, std::string& bytes) {
    const Integer swapped = qToBigEndian(value);
    bytes.append(reinterpret_cast<const char*>(&swapped), sizeof swapped);
}

/// The bits of the double, mapped so that unsigned comparison keeps the order.
void appendReal(double value, std::string& bytes) {
    constexpr quint64 sign = quint64(1) << 63;
    const auto bits = std::bit_cast<quint64>(value + 0.0); // no negative zero
    appendBigEndian((bits & sign) ? ~bits : bits | sign, bytes);
}

/// What the double nearest to an integer lacks: at most 512 in either direction.
quint16 remainder(std::int64_t value) {
    constexpr int middle = 0x8000;
    const long double nearest = static_cast<double>(value);
    return static_cast<quint16>(middle + static_cast<int>(static_cast<long double>(value) - nearest));
}

void appendNumber(const Cell& value, std::string& bytes) {
    const bool isInteger = value.type() == CellType::Integer;
    appendReal(isInteger ? static_cast<double>(value.integer()) : value.real(), bytes);
    appendBigEndian(remainder(isInteger ? value.integer() : 0), bytes);
}

/// The bytes with an end mark of one zero. The two lowest bytes are written as two, so that the mark is
/// lower.
template<class Fold>
void appendBytes(std::string_view value, std::string& bytes, Fold fold) {
    for (const char byte : value) {
        if (byte == 0 || byte == 1) {
            bytes += '\1';
            bytes += static_cast<char>(byte + 1);
        } else {
            bytes += fold(byte);
        }
    }
    bytes += '\0';
}

void checkNowAndThen(std::size_t done, const work::Cancellation& cancellation) {
    constexpr std::size_t doneBetweenChecks = 4096;
    if (done % doneBetweenChecks == 0) {
        cancellation.check();
    }
}

/// The codes in the order of their keys.
std::vector<ValueRanks::Code> inOrder(const KeySorter& keys, const std::vector<ValueRanks::Code>& codes,
                                      const work::Cancellation& cancellation) {
    std::vector<ValueRanks::Code> sorted = keys.sort(cancellation);
    std::transform(sorted.begin(), sorted.end(), sorted.begin(),
                   [&codes](std::uint32_t place) { return codes[place]; });
    return sorted;
}

/// Merges what is in order already, so that a sequence that is nearly in order costs little more than one
/// comparison for each element.
template<class Iterator, class Order>
void mergeRuns(Iterator begin, Iterator end, const Order& isLess, const work::Cancellation& cancellation) {
    std::vector<Iterator> bounds{begin};
    for (Iterator at = std::next(begin); at != end; ++at) {
        if (isLess(*at, *std::prev(at))) {
            bounds.push_back(at);
        }
        checkNowAndThen(static_cast<std::size_t>(at - begin), cancellation);
    }
    bounds.push_back(end);
    while (bounds.size() > 2) {
        std::vector<Iterator> merged{begin};
        for (std::size_t i = 2; i < bounds.size(); i += 2) {
            cancellation.check();
            const Iterator middle = bounds[i - 1];
            const Iterator from = std::upper_bound(bounds[i - 2], middle, *middle, isLess);
            const Iterator to = std::lower_bound(middle, bounds[i], *std::prev(middle), isLess);
            std::inplace_merge(from, middle, to, isLess);
            merged.push_back(bounds[i]);
        }
        if (merged.back() != end) {
            merged.push_back(end);
        }
        bounds = std::move(merged);
    }
}

} // namespace

std::size_t ValueRanks::slotOf(const Cell& value) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = hashOf(value) & mask;
    while (slots_[slot] != 0 && !isIdentical(normalForm(values_[slots_[slot]]), value)) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

void ValueRanks::growSlots() {
    constexpr std::size_t fewestSlots = 64;
    slots_.assign(std::max(fewestSlots, std::bit_ceil(values_.size() * 2 + 1)), 0);
    for (Code code = 1; code < values_.size(); ++code) {
        slots_[slotOf(normalForm(values_[code]))] = code;
    }
}

ValueRanks::Code ValueRanks::addHashed(const Cell& value, ByteArena& texts) {
    if (isNull(value)) {
        return 0;
    }
    if (areIntegers_) {
        hashIntegers();
    }
    if (values_.size() * 2 > slots_.size()) {
        growSlots();
    }
    Code& code = slots_[slotOf(normalForm(value))];
    if (code == 0) {
        code = static_cast<Code>(values_.size());
        const bool isText = value.type() == CellType::Text;
        values_.push_back(isNumber(value) ? value
                          : isText        ? Cell::ofText(texts.copy(value.view()))
                                          : Cell::ofBytes(texts.copy(value.view())));
        hasTexts_ = hasTexts_ || isText;
    }
    return code;
}

void ValueRanks::hashIntegers() {
    areIntegers_ = false;
    hasTwins_ = !integers_.empty();
    std::transform(integers_.begin(), integers_.end(), std::back_inserter(values_), Cell::ofInteger);
    integers_ = {};
    growSlots();
}

/// One of them is a text.
bool ValueRanks::isLess(const Cell& a, const Cell& b) const {
    return kindOf(a) == kindOf(b) ? compareTexts(a.view(), b.view()) < 0 : kindOf(a) < kindOf(b);
}

/// Whether the values of different codes are equal under the collation.
bool ValueRanks::isSame(const Cell& a, const Cell& b) const {
    if (isNumber(a) && isNumber(b)) {
        return hasTwins_ && isIdentical(normalForm(a), normalForm(b));
    }
    return a.type() == CellType::Text && b.type() == CellType::Text &&
           collation_ != dp::TextCollation::Binary && compareTexts(a.view(), b.view()) == 0;
}

/// Appends bytes that are ordered as the values are, and the beginning of no other ones; false for a text
/// that only the collator can order.
bool ValueRanks::appendKey(const Cell& value, std::string& key) const {
    key += kindOf(value);
    if (isNumber(value)) {
        appendNumber(value, key);
    } else if (value.type() != CellType::Text || collation_ == dp::TextCollation::Binary) {
        appendBytes(value.view(), key, [](char byte) { return byte; });
    } else if (collation_ == dp::TextCollation::NoCase) {
        appendBytes(value.view(), key, dp::foldAscii);
    } else {
        const bool isPlain = locale_->appendPlainKey(value.view(), key);
        key += '\0';
        return isPlain;
    }
    return true;
}

/// All codes but that of NULL in the order of their values: those with a key by the key, the others by
/// comparing.
std::vector<ValueRanks::Code> ValueRanks::sorted(const work::Cancellation& cancellation) const {
    KeySorter keys;
    std::vector<Code> keyed;
    std::vector<Code> others;
    for (Code code = 1; code < values_.size(); ++code) {
        if (appendKey(values_[code], keys.next())) {
            keyed.push_back(code);
        } else {
            keys.drop();
            others.push_back(code);
        }
        checkNowAndThen(code, cancellation);
    }
    keyed = inOrder(keys, keyed, cancellation);
    if (others.empty()) {
        return keyed;
    }
    others = sortedByComparing(std::move(others), cancellation);
    std::vector<Code> all(keyed.size() + others.size());
    std::merge(
        keyed.begin(), keyed.end(), others.begin(), others.end(), all.begin(),
        work::cancellable(cancellation, [this](Code a, Code b) { return isLess(values_[a], values_[b]); }));
    return all;
}

std::vector<ValueRanks::Code> ValueRanks::sortedByComparing(std::vector<Code> texts,
                                                            const work::Cancellation& cancellation) const {
    const auto isLess = [this](Code a, Code b) {
        return compareTexts(values_[a].view(), values_[b].view()) < 0;
    };
    if (texts.size() < manyTexts) {
        std::sort(texts.begin(), texts.end(), isLess);
        return texts;
    }
    const TextOrder order(locale_->collator());
    KeySorter keys;
    for (const Code text : texts) {
        std::string& key = keys.next();
        order.append(values_[text].view(), key);
        key.append(2, '\0');
        checkNowAndThen(text, cancellation);
    }
    texts = inOrder(keys, texts, cancellation);
    mergeRuns(texts.begin(), texts.end(), isLess, cancellation);
    return texts;
}

void ValueRanks::finishForLookups(const work::Cancellation& cancellation) {
    if (areIntegers_) {
        hashRanks(cancellation);
    } else if (hasTwins_ || (hasTexts_ && collation_ != dp::TextCollation::Binary)) {
        finishInOrder(cancellation);
    } else {
        rankEnd_ = static_cast<Rank>(values_.size());
    }
}

std::size_t ValueRanks::slotOfInteger(std::int64_t value) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = hashOf(static_cast<std::uint64_t>(value)) & mask;
    while (slots_[slot] != 0 && integers_[slots_[slot] - 1] != value) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

void ValueRanks::hashRanks(const work::Cancellation& cancellation) {
    constexpr std::size_t fewestSlots = 64;
    slots_.assign(std::max(fewestSlots, std::bit_ceil(integers_.size() * 3 / 2 + 1)), 0);
    Rank last = 0; // the values of the ranks so far stand in front
    for (Code code = 1; code <= integers_.size(); ++code) {
        const std::int64_t value = integers_[code - 1];
        Code& rank = slots_[slotOfInteger(value)];
        if (rank == 0) {
            rank = ++last;
            integers_[last - 1] = value;
        }
        if (rank != code && ranks_.empty()) {
            ranks_.resize(integers_.size() + 1);
            std::iota(ranks_.begin(), ranks_.begin() + code, Rank{0});
        }
        if (!ranks_.empty()) {
            ranks_[code] = rank;
        }
        checkNowAndThen(code, cancellation);
    }
    integers_.resize(last);
    rankEnd_ = last + 1;
}

void ValueRanks::rankIntegers(const work::Cancellation& cancellation) {
    const std::size_t count = integers_.size();
    rankEnd_ = static_cast<Rank>(count + 1);
    if (std::adjacent_find(integers_.begin(), integers_.end(), std::greater_equal()) == integers_.end()) {
        return; // each code is its rank, as with numbers of rows
    }
    struct Item {
        std::int64_t value;
        Code code;
    };
    std::vector<Item> items;
    items.reserve(count);
    for (const std::int64_t value : integers_) {
        items.push_back({value, static_cast<Code>(items.size() + 1)});
    }
    boost::sort::spreadsort::integer_sort(
        items.begin(), items.end(), [](const Item& item, unsigned bits) { return item.value >> bits; },
        work::cancellable(cancellation, [](const Item& a, const Item& b) { return a.value < b.value; }));
    integers_.clear();
    ranks_.resize(count + 1);
    for (const Item& item : items) {
        if (integers_.empty() || integers_.back() != item.value) {
            integers_.push_back(item.value);
        }
        ranks_[item.code] = static_cast<Rank>(integers_.size());
    }
    rankEnd_ = static_cast<Rank>(integers_.size() + 1);
}

void ValueRanks::finishInOrder(const work::Cancellation& cancellation) {
    if (areIntegers_) {
        rankIntegers(cancellation);
        return;
    }
    sorted_ = sorted(cancellation);
    ranks_.assign(values_.size(), 0);
    rankEnd_ = 1;
    for (std::size_t i = 0; i < sorted_.size(); ++i) {
        const bool isEqual = i > 0 && isSame(values_[sorted_[i - 1]], values_[sorted_[i]]);
        ranks_[sorted_[i]] = isEqual ? rankEnd_ - 1 : rankEnd_++;
        checkNowAndThen(i, cancellation);
    }
}

std::optional<ValueRanks::Rank> ValueRanks::find(const Cell& operand) const {
    const Cell wanted = normalForm(operand);
    if (isNull(wanted)) {
        return 0;
    }
    if (areIntegers_) {
        if (wanted.type() == CellType::Integer && !slots_.empty()) {
            const Rank rank = slots_[slotOfInteger(wanted.integer())];
            return rank != 0 ? std::optional(rank) : std::nullopt;
        }
        const auto found = wanted.type() == CellType::Integer
                               ? std::lower_bound(integers_.begin(), integers_.end(), wanted.integer())
                               : integers_.end();
        return found != integers_.end() && *found == wanted.integer()
                   ? std::optional(static_cast<Rank>(found - integers_.begin() + 1))
                   : std::nullopt;
    }
    if (const Code code = slots_.empty() ? 0 : slots_[slotOf(wanted)]; code != 0) {
        return rank(code);
    }
    if (wanted.type() != CellType::Text) {
        return std::nullopt;
    }
    const auto found =
        std::lower_bound(sorted_.begin(), sorted_.end(), wanted,
                         [this](Code code, const Cell& cell) { return isLess(values_[code], cell); });
    return found != sorted_.end() && isSame(values_[*found], wanted) ? std::optional(rank(*found))
                                                                     : std::nullopt;
}

} // namespace orvane::engine
