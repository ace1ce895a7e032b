#pragma once

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>

namespace orvane::files {

/// A number as SQL reads it, exactly.
inline std::string sqlNumber(std::int64_t value) {
    // The least integer has no literal of its own: 9223372036854775808 would be read as a real.
    return value == std::numeric_limits<std::int64_t>::min() ? "(-9223372036854775807 - 1)"
                                                             : std::to_string(value);
}

inline std::string sqlNumber(double value) {
    if (std::isinf(value)) {
        return value > 0 ? "9e999" : "-9e999";
    }
    char text[40];
    std::snprintf(text, sizeof text, "%.17e", value);
    return text;
}

} // namespace orvane::files
