#include "engine/rows/KeySorter.h"

#include <QtEndian>

#include <algorithm>
#include <array>

namespace orvane::engine {

namespace {

constexpr std::size_t headSize = 8;

} // namespace

std::string_view KeySorter::key(std::uint32_t number) const {
    const std::size_t begin = starts_[number];
    const std::size_t end = number + 1 < starts_.size() ? starts_[number + 1] : bytes_.size();
    return {bytes_.data() + begin, end - begin};
}

std::vector<std::uint32_t> KeySorter::sort(const work::Cancellation& cancellation) const {
    std::vector<Item> items(starts_.size());
    for (std::uint32_t number = 0; number < items.size(); ++number) {
        items[number].number = number;
    }
    sortFrom(items, 0, cancellation);
    std::vector<std::uint32_t> numbers;
    numbers.reserve(items.size());
    for (const Item& item : items) {
        numbers.push_back(item.number);
    }
    return numbers;
}

/// Orders keys that agree in the first `depth` bytes: by the next eight, and then group by group. A group is
/// all equal once one of its keys has ended.
void KeySorter::sortFrom(Items items, std::size_t depth, const work::Cancellation& cancellation) const {
    const auto isLess = [](const Item& a, const Item& b) { return a.head < b.head; };
    for (; items.size() > 1 && depth < key(items.front().number).size(); depth += headSize) {
        cancellation.check();
        for (Item& item : items) {
            const std::string_view rest = key(item.number).substr(depth, headSize);
            std::array<char, headSize> bytes{};
            std::copy(rest.begin(), rest.end(), bytes.begin());
            item.head = qFromBigEndian<quint64>(bytes.data());
        }
        std::sort(items.begin(), items.end(), work::cancellable(cancellation, isLess));
        if (isLess(items.front(), items.back())) {
            break;
        }
    }
    for (std::size_t begin = 0; begin < items.size();) {
        std::size_t end = begin + 1;
        while (end < items.size() && items[end].head == items[begin].head) {
            ++end;
        }
        if (end - begin < items.size()) {
            sortFrom(items.subspan(begin, end - begin), depth + headSize, cancellation);
        }
        begin = end;
    }
}

} // namespace orvane::engine
