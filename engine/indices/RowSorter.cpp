#include "engine/indices/RowSorter.h"

#include <QtEndian>

#include <algorithm>
#include <bit>
#include <cstring>

namespace orvane::engine {

namespace {

constexpr std::size_t headSize = 8;
/// Keys that agree in so many bytes are compared as a whole from there on.
constexpr std::size_t headedSize = 8 * headSize;

/// The first byte of a value in a key.
enum KeyClass : char { NullKey = 1, NumberKey = 2, TextKey = 3, BytesKey = 4 };

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

void appendNumber(const dp::Cell& value, std::string& bytes) {
    const bool isInteger = value.type() == dp::CellType::Integer;
    appendReal(isInteger ? static_cast<double>(value.integer()) : value.real(), bytes);
    appendBigEndian(remainder(isInteger ? value.integer() : 0), bytes);
}

/// The bytes with an end mark of one zero. The two lowest bytes are written as two, so that the mark is
/// lower.
void appendBytes(std::string_view value, std::string& bytes) {
    for (const char byte : value) {
        if (byte == 0 || byte == 1) {
            bytes += '\1';
            bytes += static_cast<char>(byte + 1);
        } else {
            bytes += byte;
        }
    }
    bytes += '\0';
}

} // namespace

RowSorter::RowSorter(std::vector<bool> collated, const QCollator& collator) : collated_(std::move(collated)) {
    if (std::find(collated_.begin(), collated_.end(), true) != collated_.end()) {
        textOrder_ = std::make_unique<TextOrder>(collator);
    }
}

std::size_t RowSorter::size() const {
    return rows_.size() * (sizeof(Row) + sizeof(Stored)) + values_.size() * sizeof(Value) + keys_.size() +
           texts_.size();
}

void RowSorter::add(qint64 row, std::span<const dp::Cell> values) {
    rows_.push_back({0, static_cast<quint32>(stored_.size())});
    stored_.push_back({row, keys_.size()});
    for (std::size_t column = 0; column < values.size(); ++column) {
        const dp::Cell& value = values[column];
        appendKey(value, collated_[column]);
        Value& stored = values_.emplace_back(Value{value.type(), 0, {0}});
        if (value.type() == dp::CellType::Integer) {
            stored.integer = value.integer();
        } else if (value.type() == dp::CellType::Real) {
            stored.real = value.real();
        } else if (!value.isNull()) {
            stored.offset = texts_.size();
            stored.size = static_cast<quint32>(value.view().size());
            texts_ += value.view();
        }
    }
}

void RowSorter::appendKey(const dp::Cell& value, bool isCollated) {
    switch (value.type()) {
    case dp::CellType::Null: keys_ += NullKey; return;
    case dp::CellType::Integer:
    case dp::CellType::Real:
        keys_ += NumberKey;
        appendNumber(value, keys_);
        return;
    case dp::CellType::Text:
        keys_ += TextKey;
        if (isCollated) {
            textOrder_->append(value.view(), keys_);
            keys_.append(2, '\0');
        } else {
            appendBytes(value.view(), keys_);
        }
        return;
    case dp::CellType::Bytes:
    case dp::CellType::Wkb:
        keys_ += BytesKey;
        appendBytes(value.view(), keys_);
        return;
    }
}

dp::Cell RowSorter::value(std::size_t position, std::size_t column) const {
    const Value& value = values_[rows_[position].ordinal * collated_.size() + column];
    switch (value.type) {
    case dp::CellType::Null: return {};
    case dp::CellType::Integer: return dp::Cell::ofInteger(value.integer);
    case dp::CellType::Real: return dp::Cell::ofReal(value.real);
    case dp::CellType::Text: return dp::Cell::ofText({texts_.data() + value.offset, value.size});
    case dp::CellType::Bytes:
    case dp::CellType::Wkb: break;
    }
    return dp::Cell::ofBytes({texts_.data() + value.offset, value.size});
}

std::string_view RowSorter::key(std::size_t ordinal) const {
    const std::size_t begin = stored_[ordinal].key;
    const std::size_t end = ordinal + 1 < stored_.size() ? stored_[ordinal + 1].key : keys_.size();
    return {keys_.data() + begin, end - begin};
}

void RowSorter::sort(const work::Cancellation& cancellation) {
    sortFrom(rows_, 0, cancellation);
}

/// Orders rows whose keys agree in the first `depth` bytes: by the next eight, which are brought to the rows
/// so that sorting stays off the keys, and then group by group. No key is the beginning of another one, so a
/// group is all equal once one of its keys has ended.
void RowSorter::sortFrom(RowSpan rows, std::size_t depth, const work::Cancellation& cancellation) {
    if (rows.size() < 2) {
        return;
    }
    cancellation.check();
    if (depth >= headedSize || depth >= key(rows.front().ordinal).size()) {
        sortRest(rows, depth, cancellation);
        return;
    }
    for (Row& row : rows) {
        const std::string_view rest = key(row.ordinal).substr(depth, headSize);
        std::array<char, headSize> bytes{};
        std::copy(rest.begin(), rest.end(), bytes.begin());
        row.head = qFromBigEndian<quint64>(bytes.data());
    }
    std::sort(rows.begin(), rows.end(),
              work::cancellable(cancellation, [](const Row& a, const Row& b) { return a.head < b.head; }));
    for (std::size_t begin = 0; begin < rows.size();) {
        std::size_t end = begin + 1;
        while (end < rows.size() && rows[end].head == rows[begin].head) {
            ++end;
        }
        sortFrom(rows.subspan(begin, end - begin), depth + headSize, cancellation);
        begin = end;
    }
}

void RowSorter::sortRest(RowSpan rows, std::size_t depth, const work::Cancellation& cancellation) {
    std::sort(rows.begin(), rows.end(),
              work::cancellable(cancellation, [this, depth](const Row& a, const Row& b) {
                  const std::string_view keyA = key(a.ordinal);
                  const std::string_view keyB = key(b.ordinal);
                  const int order = depth < keyA.size() && depth < keyB.size()
                                        ? keyA.substr(depth).compare(keyB.substr(depth))
                                        : 0;
                  return order < 0 || (order == 0 && stored_[a.ordinal].id < stored_[b.ordinal].id);
              }));
}

void RowSorter::clear() {
    rows_.clear();
    stored_.clear();
    values_.clear();
    keys_.clear();
    texts_.clear();
}

} // namespace orvane::engine
