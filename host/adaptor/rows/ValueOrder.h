#pragma once

#include "platform/dp/Cursor.h"
#include "platform/dp/ScanRequest.h"
#include <host/adaptor/Export.h>

#include <cmath>
#include <string_view>

namespace orvane::adaptor {

/// The operand as a cell that shows it.
ORVANE_ADAPTOR_EXPORT dp::Cell cellOf(const dp::ScanValue& value);

/// SQLite stores a real that is not a number as NULL.
inline bool isNull(const dp::Cell& cell) {
    return cell.isNull() || (cell.type() == dp::CellType::Real && std::isnan(cell.real()));
}

inline bool isNumber(const dp::Cell& cell) {
    return cell.type() == dp::CellType::Integer || cell.type() == dp::CellType::Real;
}

/// Exact three-way comparison of two numbers.
int compareNumbers(const dp::Cell& a, const dp::Cell& b);

inline char foldAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Three-way comparison under SQLite's NOCASE.
int compareFolded(std::string_view a, std::string_view b);

} // namespace orvane::adaptor
