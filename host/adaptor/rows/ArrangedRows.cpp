#include "host/adaptor/rows/ArrangedRows.h"

#include <orvane/engine/LocaleOrder.h>

#include <algorithm>
#include <cstring>

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

template<typename Part>
void put(Part part, char* bytes) {
    std::memcpy(bytes, &part, sizeof part);
}

template<typename Part>
Part taken(const char* bytes) {
    Part part;
    std::memcpy(&part, bytes, sizeof part);
    return part;
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
    Value value;
    value.type = cell.type();
    value.size = 0;
    switch (cell.type()) {
    case CellType::Null: break;
    case CellType::Integer: put(cell.integer(), value.bytes.data()); break;
    case CellType::Real: put(cell.real(), value.bytes.data()); break;
    case CellType::Text:
    case CellType::Bytes:
    case CellType::Wkb:
        if (const std::string_view view = cell.view(); view.size() <= value.bytes.size()) {
            view.copy(value.bytes.data(), view.size());
            value.size = static_cast<std::uint8_t>(view.size());
        } else {
            put(bytes_.copy(view).data(), value.bytes.data());
            put(static_cast<std::uint32_t>(view.size()), value.bytes.data() + sizeof(const char*));
            value.size = Value::isElsewhere;
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
    ids_.add(row);
}

Cell ArrangedRows::cell(std::uint32_t place, int attribute) const {
    const std::uint32_t row = order_.row(place);
    const auto position = static_cast<std::size_t>(attribute);
    if (const int key = keyOf_[position]; key != none) {
        return order_.value(row, static_cast<std::size_t>(key));
    }
    const Value& value = values_[row * plain_.size() + static_cast<std::size_t>(plainOf_[position])];
    const char* const bytes = value.bytes.data();
    switch (value.type) {
    case CellType::Null: return {};
    case CellType::Integer: return Cell::ofInteger(taken<std::int64_t>(bytes));
    case CellType::Real: return Cell::ofReal(taken<double>(bytes));
    default: break;
    }
    const std::string_view view =
        value.size == Value::isElsewhere
            ? std::string_view(taken<const char*>(bytes), taken<std::uint32_t>(bytes + sizeof(const char*)))
            : std::string_view(bytes, value.size);
    return value.type == CellType::Text    ? Cell::ofText(view)
           : value.type == CellType::Bytes ? Cell::ofBytes(view)
                                           : Cell::ofWkb(view);
}

} // namespace orvane::adaptor
