#include "engine/indices/RowSorter.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace orvane::engine {

namespace {

constexpr int headBytes = 8;
constexpr int headUnits = 4;
/// About what a sort key takes: two blocks, and as many bytes again as the text.
constexpr std::size_t sortKeySize = 96;

QString toText(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<int>(utf8.size()));
}

quint32 valueClass(const dp::Cell& value) {
    switch (value.type()) {
    case dp::CellType::Null: return 0;
    case dp::CellType::Integer:
    case dp::CellType::Real: return 1;
    case dp::CellType::Text: return 2;
    case dp::CellType::Bytes:
    case dp::CellType::Wkb: break;
    }
    return 3;
}

/// The bits of a double in an order that unsigned comparison keeps.
quint64 headOfNumber(double value) {
    constexpr quint64 sign = quint64(1) << 63;
    const auto bits = std::bit_cast<quint64>(value + 0.0); // no negative zero
    return (bits & sign) ? ~bits : bits | sign;
}

quint64 headOfBytes(std::string_view bytes) {
    quint64 head = 0;
    for (int i = 0; i < headBytes; ++i) {
        head = (head << 8) | (static_cast<std::size_t>(i) < bytes.size() ? static_cast<quint8>(bytes[i]) : 0);
    }
    return head;
}

/// The first codes of the case-folded text. Codes from the surrogates on are left to the full comparison.
quint64 headOfFoldedText(const QString& text) {
    constexpr quint64 firstSurrogate = 0xd800;
    quint64 head = 0;
    bool isOpen = true;
    for (int i = 0; i < headUnits; ++i) {
        quint64 unit = i < text.size() ? text.at(i).toCaseFolded().unicode() : 0;
        isOpen = isOpen && unit < firstSurrogate;
        unit = isOpen ? unit : 0xffff;
        head = (head << 16) | unit;
    }
    return head;
}

template<typename Value>
int threeWay(Value a, Value b) {
    return a < b ? -1 : (b < a ? 1 : 0);
}

int compareNumbers(const dp::Cell& a, const dp::Cell& b) {
    if (a.type() == dp::CellType::Integer && b.type() == dp::CellType::Integer) {
        return threeWay(a.integer(), b.integer());
    }
    const auto real = [](const dp::Cell& value) {
        return value.type() == dp::CellType::Integer ? static_cast<double>(value.integer()) : value.real();
    };
    return threeWay(real(a), real(b));
}

} // namespace

RowSorter::RowSorter(std::vector<bool> collated, const QCollator& collator)
    : collated_(std::move(collated)), collator_(collator),
      foldsCase_(collator.locale().language() == QLocale::C) {}

std::size_t RowSorter::size() const {
    return rows_.size() * (sizeof(Row) + sizeof(qint64)) + values_.size() * sizeof(Value) + texts_.size() +
           sortKeys_.size() * sortKeySize;
}

void RowSorter::add(qint64 row, std::span<const dp::Cell> values) {
    const auto ordinal = static_cast<quint32>(ids_.size());
    ids_.push_back(row);
    rows_.push_back({head(values.front()), valueClass(values.front()), ordinal});
    for (const dp::Cell& value : values) {
        Value& stored = values_.emplace_back();
        stored.type = value.type();
        stored.size = 0;
        stored.integer = 0;
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

quint64 RowSorter::head(const dp::Cell& value) {
    const bool isText = value.type() == dp::CellType::Text;
    if (collated_.front() && !foldsCase_) {
        sortKeys_.push_back(collator_.sortKey(isText ? toText(value.view()) : QString()));
        if (isText) {
            return 0;
        }
    }
    switch (value.type()) {
    case dp::CellType::Null: return 0;
    case dp::CellType::Integer: return headOfNumber(static_cast<double>(value.integer()));
    case dp::CellType::Real: return headOfNumber(value.real());
    case dp::CellType::Text:
        return collated_.front() ? headOfFoldedText(toText(value.view())) : headOfBytes(value.view());
    case dp::CellType::Bytes:
    case dp::CellType::Wkb: break;
    }
    return headOfBytes(value.view());
}

dp::Cell RowSorter::cell(std::size_t ordinal, std::size_t column) const {
    const Value& value = values_[ordinal * collated_.size() + column];
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

void RowSorter::sort() {
    std::sort(rows_.begin(), rows_.end(), [this](const Row& a, const Row& b) {
        if (a.valueClass != b.valueClass) {
            return a.valueClass < b.valueClass;
        }
        if (a.head != b.head) {
            return a.head < b.head;
        }
        const int order = compareValues(a.ordinal, b.ordinal);
        return order < 0 || (order == 0 && ids_[a.ordinal] < ids_[b.ordinal]);
    });
}

bool RowSorter::isSameGroup(std::size_t positionA, std::size_t positionB) const {
    const Row& a = rows_[positionA];
    const Row& b = rows_[positionB];
    return a.valueClass == b.valueClass && a.head == b.head && compareValues(a.ordinal, b.ordinal) == 0;
}

int RowSorter::compareValues(std::size_t ordinalA, std::size_t ordinalB) const {
    for (std::size_t column = 0; column < collated_.size(); ++column) {
        const dp::Cell a = cell(ordinalA, column);
        const dp::Cell b = cell(ordinalB, column);
        int order = threeWay(valueClass(a), valueClass(b));
        if (order == 0 && valueClass(a) == 1) {
            order = compareNumbers(a, b);
        } else if (order == 0 && a.type() == dp::CellType::Text) {
            order = column == 0 && !sortKeys_.empty() ? sortKeys_[ordinalA].compare(sortKeys_[ordinalB])
                                                      : compareTexts(a.view(), b.view(), column);
        } else if (order == 0 && !a.isNull()) {
            order = a.view().compare(b.view());
        }
        if (order != 0) {
            return order;
        }
    }
    return 0;
}

int RowSorter::compareTexts(std::string_view a, std::string_view b, std::size_t column) const {
    if (!collated_[column] || a == b) {
        return a.compare(b);
    }
    return collator_.compare(toText(a), toText(b));
}

void RowSorter::clear() {
    rows_.clear();
    ids_.clear();
    values_.clear();
    sortKeys_.clear();
    texts_.clear();
}

} // namespace orvane::engine
