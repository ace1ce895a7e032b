#include "engine/rows/KeySorter.h"

#include <QtEndian>

#include <algorithm>
#include <array>

namespace orvane::engine {

namespace {

constexpr std::size_t headSize = 8;
/// Keys that agree in so many bytes are compared as a whole from there on.
constexpr std::size_t headedSize = 8 * headSize;

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
    if (items.size() < 2) {
        return;
    }
    cancellation.check();
    if (depth >= headedSize || depth >= key(items.front().number).size()) {
        sortRest(items, depth, cancellation);
        return;
    }
    for (Item& item : items) {
        const std::string_view rest = key(item.number).substr(depth, headSize);
        std::array<char, headSize> bytes{};
        std::copy(rest.begin(), rest.end(), bytes.begin());
        item.head = qFromBigEndian<quint64>(bytes.data());
    }
    std::sort(items.begin(), items.end(),
              work::cancellable(cancellation, [](const Item& a, const Item& b) { return a.head < b.head; }));
    for (std::size_t begin = 0; begin < items.size();) {
        std::size_t end = begin + 1;
        while (end < items.size() && items[end].head == items[begin].head) {
            ++end;
        }
        sortFrom(items.subspan(begin, end - begin), depth + headSize, cancellation);
        begin = end;
    }
}

void KeySorter::sortRest(Items items, std::size_t depth, const work::Cancellation& cancellation) const {
    std::sort(items.begin(), items.end(),
              work::cancellable(cancellation, [this, depth](const Item& a, const Item& b) {
                  const std::string_view keyA = key(a.number);
                  const std::string_view keyB = key(b.number);
                  const int order = depth < keyA.size() && depth < keyB.size()
                                        ? keyA.substr(depth).compare(keyB.substr(depth))
                                        : 0;
                  return order < 0 || (order == 0 && a.number < b.number);
              }));
}

} // namespace orvane::engine
