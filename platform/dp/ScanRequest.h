#pragma once

#include "platform/dp/FeatureId.h"
#include "platform/geometry/shapes/Coordinates.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace orvane::dp {

/// Comparisons of a column with a constant. The first ten have the codes of the attribute indices.
enum class Comparison : std::uint8_t {
    Equal = 1,
    Is = 2,
    Greater = 3,
    LessOrEqual = 4,
    Less = 5,
    GreaterOrEqual = 6,
    NotEqual = 7,
    IsNot = 8,
    Like = 9,
    Glob = 10,
    IsNull = 11,
    IsNotNull = 12,
    In = 13,
};

/// How texts are compared: byte by byte, ASCII letters folded (SQLite's NOCASE), or by the user's locale.
enum class TextCollation : std::uint8_t { Binary, NoCase, Locale };

/// An operand: NULL, integer, real, UTF-8 text.
using ScanValue = std::variant<std::monostate, std::int64_t, double, std::string>;

/// One condition on one attribute.
struct ScanTerm {
    int attribute = 0; ///< position in the table's schema
    Comparison comparison = Comparison::Equal;
    TextCollation collation = TextCollation::Binary;
    std::vector<ScanValue> operands; ///< one; none for the null tests; any number for In
};

/// What a scan has to deliver. Terms, window and limit are hints that let the provider leave rows out: it may
/// return rows that do not satisfy them, but never leave out one that does. Identifiers are binding: exactly
/// those rows, in any order.
struct ScanRequest {
    std::vector<int> attributes;              ///< positions that will be read; others may not be asked for
    std::vector<ScanTerm> terms;              ///< all have to hold
    std::optional<geometry::Envelope> window; ///< in the coordinates of the table
    std::optional<std::vector<FeatureId>> ids;
    std::int64_t limit =
        -1; ///< rows after which the reader stops, -1 for none; only without terms and window
};

} // namespace orvane::dp
