#pragma once

#include "platform/dp/ScanRequest.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace orvane::files {

/// Numbers from `low` to `high`, both included.
template<class Number>
struct Range {
    Number low = std::numeric_limits<Number>::lowest();
    Number high = std::numeric_limits<Number>::max();
};

/// What a term demands of the values of a column, in a form that a loop tests quickly: a value passes when it
/// is in one of the ranges, which ascend and do not overlap, or equals one of the texts.
struct Condition {
    std::vector<Range<std::int64_t>> integers;
    std::vector<Range<double>> reals;
    std::vector<std::string> texts; ///< sorted
    bool textsAreExcluded = false;  ///< texts other than these pass
    bool acceptsNull = false;
    bool acceptsAnyValue = false; ///< a test for not NULL
};

/// The kind of values that a column delivers, whatever their width.
enum class ValueClass : std::uint8_t { Integer, Real, Text, Other };

/// The condition of a term, empty when it cannot be tested on plain values: LIKE and GLOB, a text compared by
/// another rule than byte by byte or for order, an operand of another class than the column.
/// The condition never fails a value for which the term is true.
std::optional<Condition> conditionOf(const dp::ScanTerm& term, ValueClass valueClass);

} // namespace orvane::files
