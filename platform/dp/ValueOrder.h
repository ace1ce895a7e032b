#pragma once

#include "platform/Export.h"
#include "platform/dp/Cursor.h"
#include "platform/dp/ScanRequest.h"

#include <cmath>
#include <string>
#include <string_view>

namespace orvane::dp {

/// The operand as a cell that shows it.
ORVANE_PLATFORM_EXPORT Cell cellOf(const ScanValue& value);

/// SQLite stores a real that is not a number as NULL.
inline bool isNull(const Cell& cell) {
    return cell.isNull() || (cell.type() == CellType::Real && std::isnan(cell.real()));
}

inline bool isNumber(const Cell& cell) {
    return cell.type() == CellType::Integer || cell.type() == CellType::Real;
}

/// Exact three-way comparison of two numbers, neither of them a not-a-number.
ORVANE_PLATFORM_EXPORT int compareNumbers(const Cell& a, const Cell& b);

inline char foldAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// How texts compare under the collation Locale. May be used by several threads at once.
class ORVANE_PLATFORM_EXPORT TextComparison {
public:
    TextComparison() = default;
    virtual ~TextComparison();
    TextComparison(const TextComparison&) = delete;
    TextComparison& operator=(const TextComparison&) = delete;

    /// Negative, zero or positive.
    virtual int compare(std::string_view a, std::string_view b) const = 0;
    /// Stores a key that two texts have in common when they are equal; false for a text that has none, which
    /// only comparing tells equal.
    virtual bool plainKey(std::string_view text, std::string& key) const = 0;
};

/// Three-way comparison of two texts. `locale` may be null unless the collation is Locale.
ORVANE_PLATFORM_EXPORT int compareTexts(std::string_view a, std::string_view b, TextCollation collation,
                                        const TextComparison* locale);

} // namespace orvane::dp
