#include "host/adaptor/rows/ArrangedRows.h"

#include <orvane/engine/LocaleOrder.h>

#include <algorithm>

namespace orvane::adaptor {

using dp::Cell;
using dp::CellType;
using engine::LocaleOrder;
using engine::RowOrder;

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

std::vector<engine::RowOrder::Key> orderKeys(const std::vector<ArrangedRows::Key>& keys) {
    std::vector<engine::RowOrder::Key> result;
    for (const ArrangedRows::Key& key : keys) {
        result.push_back({key.collation, key.isDescending});
    }
    return result;
}

std::shared_ptr<const LocaleOrder> localeOf(const std::vector<ArrangedRows::Key>& keys) {
    const bool isUsed = std::any_of(keys.begin(), keys.end(), [](const ArrangedRows::Key& key) {
        return key.collation == dp::TextCollation::Locale;
    });
    return isUsed ? LocaleOrder::current() : nullptr;
}

} // namespace

ArrangedRows::ArrangedRows(const std::vector<int>& attributes, const std::vector<Key>& keys)
    : keyOf_(spaceFor(attributes, keys), none), plainOf_(keyOf_), order_(orderKeys(keys), localeOf(keys)) {
    for (const Key& key : keys) {
        keyOf_[static_cast<std::size_t>(key.attribute)] = static_cast<int>(keys_.size());
        keys_.push_back(key.attribute);
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
    const double perRow = sizeof(std::int64_t) + 2 * sizeof(std::uint32_t) +
                          static_cast<double>(keys) * (RowOrder::bytesPerValue + guessedText) +
                          plain * (sizeof(Value) + guessedText);
    return rows * perRow;
}

std::size_t ArrangedRows::bytes() const {
    return ids_.bytes() + order_.bytes() + values_.size() * sizeof(Value) + bytes_.size();
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

void ArrangedRows::reserve(std::size_t rows) {
    order_.reserve(rows);
    values_.reserve(rows * plain_.size());
    ids_.reserve(rows);
}

void ArrangedRows::add(dp::Cursor& row) {
    for (std::size_t key = 0; key < keys_.size(); ++key) {
        order_.add(key, row.cell(keys_[key]), bytes_);
    }
    for (const int attribute : plain_) {
        values_.push_back(kept(row.cell(attribute)));
    }
    ids_.add(row.featureId());
}

/// Rows in order lie anywhere in memory: without this, every value is waited for.
void ArrangedRows::fetchAhead(std::uint32_t place, std::uint32_t end) const {
    constexpr std::uint32_t farPlaces = 16;
    constexpr std::uint32_t nearPlaces = 8;
    constexpr std::size_t valuesPerLine = 64 / sizeof(Value);
    if (end - place <= farPlaces) {
        return;
    }
    const std::size_t width = plain_.size();
    const std::uint32_t farRow = order_.row(place + farPlaces);
    order_.fetch(farRow);
    for (std::size_t i = 0; i < width; i += valuesPerLine) {
        __builtin_prefetch(values_.data() + farRow * width + i);
    }
    const Value* const near = values_.data() + order_.row(place + nearPlaces) * width;
    for (std::size_t i = 0; i < width; ++i) {
        if (near[i].type >= CellType::Text) {
            __builtin_prefetch(near[i].data);
        }
    }
}

Cell ArrangedRows::cell(std::uint32_t place, int attribute) const {
    const std::uint32_t row = order_.row(place);
    const auto position = static_cast<std::size_t>(attribute);
    if (const int key = keyOf_[position]; key != none) {
        return order_.value(row, static_cast<std::size_t>(key));
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
