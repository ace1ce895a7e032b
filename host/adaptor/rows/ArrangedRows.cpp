#include "host/adaptor/rows/ArrangedRows.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace orvane::adaptor {

using dp::Cell;
using dp::CellType;

namespace {

std::size_t spaceFor(const std::vector<int>& attributes, const std::vector<ArrangedRows::Key>& keys) {
    int last = -1;
    for (const int attribute : attributes) {
        last = std::max(last, attribute);
    }
    for (const ArrangedRows::Key& key : keys) {
        last = std::max(last, key.attribute);
    }
    return static_cast<std::size_t>(last + 1);
}

} // namespace

ArrangedRows::ArrangedRows(const std::vector<int>& attributes, std::vector<Key> keys)
    : keyOf_(spaceFor(attributes, keys), none), plainOf_(keyOf_) {
    for (const Key& key : keys) {
        keyOf_[static_cast<std::size_t>(key.attribute)] = static_cast<int>(keys_.size());
        keys_.push_back({key, ValueRanks(key.collation), {}});
    }
    for (const int attribute : attributes) {
        const auto position = static_cast<std::size_t>(attribute);
        if (keyOf_[position] == none && plainOf_[position] == none) {
            plainOf_[position] = static_cast<int>(plain_.size());
            plain_.push_back(attribute);
        }
    }
}

double ArrangedRows::expectedBytes(double rows, std::size_t attributes, std::size_t keys) {
    constexpr double guessedText = 16;
    const auto plain = static_cast<double>(attributes > keys ? attributes - keys : 0);
    const double perRow = sizeof(dp::FeatureId) + 2 * sizeof(std::uint32_t) +
                          static_cast<double>(keys) * (ValueRanks::bytesPerValue + guessedText) +
                          plain * (sizeof(Value) + guessedText);
    return rows * perRow;
}

std::size_t ArrangedRows::bytes() const {
    return ids_.size() * (sizeof(dp::FeatureId) + keys_.size() * sizeof(ValueRanks::Code)) +
           values_.size() * sizeof(Value) + bytes_.size();
}

ArrangedRows::Value ArrangedRows::kept(const Cell& cell) {
    Value value{{0}, 0, cell.type()};
    switch (cell.type()) {
    case CellType::Null: break;
    case CellType::Integer: value.integer = cell.integer(); break;
    case CellType::Real: value.real = cell.real(); break;
    case CellType::Text:
    case CellType::Bytes:
    case CellType::Wkb: {
        const std::string_view copy = bytes_.copy(cell.view());
        value.data = copy.data();
        value.size = static_cast<std::uint32_t>(copy.size());
        break;
    }
    }
    return value;
}

void ArrangedRows::add(dp::Cursor& row) {
    for (KeyColumn& column : keys_) {
        column.codes.push_back(column.ranks.add(row.cell(column.key.attribute), bytes_));
    }
    for (const int attribute : plain_) {
        values_.push_back(kept(row.cell(attribute)));
    }
    ids_.push_back(row.featureId());
}

void ArrangedRows::placeAsTheyCame() {
    order_.resize(ids_.size());
    std::iota(order_.begin(), order_.end(), std::uint32_t{0});
}

/// A stable counting sort.
void ArrangedRows::sortBy(const KeyColumn& column) {
    const ValueRanks::Rank rankEnd = column.ranks.rankEnd();
    const auto slot = [&](std::uint32_t row) {
        const ValueRanks::Rank rank = column.ranks.rank(column.codes[row]);
        return column.key.isDescending ? rankEnd - 1 - rank : rank;
    };
    starts_.assign(rankEnd + 1, 0);
    for (const std::uint32_t row : order_) {
        ++starts_[slot(row) + 1];
    }
    std::partial_sum(starts_.begin(), starts_.end(), starts_.begin());
    std::vector<std::uint32_t> next(starts_.begin(), starts_.end() - 1);
    std::vector<std::uint32_t> sorted(order_.size());
    for (const std::uint32_t row : order_) {
        sorted[next[slot(row)]++] = row;
    }
    order_ = std::move(sorted);
}

void ArrangedRows::arrangeInOrder(const work::Cancellation& cancellation) {
    placeAsTheyCame();
    for (auto column = keys_.rbegin(); column != keys_.rend(); ++column) {
        column->ranks.finishInOrder(cancellation);
        cancellation.check();
        sortBy(*column);
    }
}

std::uint32_t ArrangedRows::lastGroup() const {
    const auto end = std::lower_bound(starts_.begin(), starts_.end(), order_.size()); // where nothing starts
    return *std::prev(end);
}

std::size_t ArrangedRows::arrangeForLookups(const work::Cancellation& cancellation) {
    placeAsTheyCame();
    for (KeyColumn& column : keys_) {
        column.ranks.finishForLookups(cancellation);
    }
    const auto best =
        std::max_element(keys_.begin(), keys_.end(), [](const KeyColumn& a, const KeyColumn& b) {
            return a.ranks.rankEnd() < b.ranks.rankEnd();
        });
    lookupKey_ = static_cast<std::size_t>(best - keys_.begin());
    sortBy(*best);
    return lookupKey_;
}

ArrangedRows::Range ArrangedRows::find(const dp::ScanValue& operand) const {
    const auto rank = keys_[lookupKey_].ranks.find(operand);
    return rank ? Range{starts_[*rank], starts_[*rank + 1]} : Range{};
}

Cell ArrangedRows::cell(std::uint32_t place, int attribute) const {
    const std::uint32_t row = order_[place];
    const auto position = static_cast<std::size_t>(attribute);
    if (const int key = keyOf_[position]; key != none) {
        const KeyColumn& column = keys_[static_cast<std::size_t>(key)];
        return column.ranks.value(column.codes[row]);
    }
    const Value& value = values_[row * plain_.size() + static_cast<std::size_t>(plainOf_[position])];
    switch (value.type) {
    case CellType::Null: return {};
    case CellType::Integer: return Cell::ofInteger(value.integer);
    case CellType::Real: return Cell::ofReal(value.real);
    case CellType::Text: return Cell::ofText({value.data, value.size});
    case CellType::Bytes: return Cell::ofBytes({value.data, value.size});
    case CellType::Wkb: return Cell::ofWkb({value.data, value.size});
    }
    return {};
}

} // namespace orvane::adaptor
