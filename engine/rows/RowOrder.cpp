#include <orvane/engine/rows/RowOrder.h>

#include <algorithm>
#include <iterator>
#include <numeric>

namespace orvane::engine {

RowOrder::RowOrder(const std::vector<Key>& keys, const std::shared_ptr<const LocaleOrder>& locale) {
    keys_.reserve(keys.size());
    for (const Key& key : keys) {
        keys_.push_back({key.isDescending, ValueRanks(key.collation, locale), {}});
    }
}

std::size_t RowOrder::bytes() const {
    std::size_t bytes = 0;
    for (const Column& column : keys_) {
        bytes += column.ranks.bytes() + column.codes.size() * sizeof(ValueRanks::Code);
    }
    return bytes;
}

/// A stable counting sort.
void RowOrder::sortBy(const Column& column) {
    const ValueRanks::Rank rankEnd = column.ranks.rankEnd();
    const auto slot = [&](std::uint32_t row) {
        const ValueRanks::Rank rank = column.ranks.rank(column.codes[row]);
        return column.isDescending ? rankEnd - 1 - rank : rank;
    };
    starts_.assign(rankEnd + 1, 0);
    bool isSorted = true;
    ValueRanks::Rank last = 0;
    for (const std::uint32_t row : order_) {
        const ValueRanks::Rank rank = slot(row);
        isSorted = isSorted && last <= rank;
        last = rank;
        ++starts_[rank + 1];
    }
    std::partial_sum(starts_.begin(), starts_.end(), starts_.begin());
    if (isSorted) {
        return;
    }
    std::vector<std::uint32_t> next(starts_.begin(), starts_.end() - 1);
    decltype(order_) sorted(order_.size());
    for (const std::uint32_t row : order_) {
        sorted[next[slot(row)]++] = row;
    }
    order_ = std::move(sorted);
}

void RowOrder::arrangeInOrder(const work::Cancellation& cancellation, std::span<const std::int64_t> ids) {
    order_.resize(rowCount());
    std::iota(order_.begin(), order_.end(), std::uint32_t{0});
    if (!std::is_sorted(ids.begin(), ids.end())) {
        std::sort(order_.begin(), order_.end(),
                  work::cancellable(cancellation,
                                    [ids](std::uint32_t a, std::uint32_t b) { return ids[a] < ids[b]; }));
    }
    for (auto column = keys_.rbegin(); column != keys_.rend(); ++column) {
        column->ranks.finishInOrder(cancellation);
        cancellation.check();
        sortBy(*column);
    }
}

std::uint32_t RowOrder::lastGroup() const {
    const auto end = std::lower_bound(starts_.begin(), starts_.end(), order_.size()); // where nothing starts
    return *std::prev(end);
}

std::size_t RowOrder::firstDifference(std::uint32_t placeA, std::uint32_t placeB) const {
    const std::uint32_t rowA = order_[placeA];
    const std::uint32_t rowB = order_[placeB];
    const auto differs = [rowA, rowB](const Column& column) {
        return column.ranks.rank(column.codes[rowA]) != column.ranks.rank(column.codes[rowB]);
    };
    return static_cast<std::size_t>(std::find_if(keys_.begin(), keys_.end(), differs) - keys_.begin());
}

std::size_t RowOrder::arrangeForLookups(const work::Cancellation& cancellation) {
    order_.resize(rowCount());
    std::iota(order_.begin(), order_.end(), std::uint32_t{0});
    for (Column& column : keys_) {
        column.ranks.finishForLookups(cancellation);
    }
    const auto best = std::max_element(keys_.begin(), keys_.end(), [](const Column& a, const Column& b) {
        return a.ranks.rankEnd() < b.ranks.rankEnd();
    });
    lookupKey_ = static_cast<std::size_t>(best - keys_.begin());
    sortBy(*best);
    return lookupKey_;
}

RowOrder::Range RowOrder::find(const dp::Cell& operand) const {
    const auto rank = keys_[lookupKey_].ranks.find(operand);
    return rank ? Range{starts_[*rank], starts_[*rank + 1]} : Range{};
}

} // namespace orvane::engine
