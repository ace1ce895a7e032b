#include "host/shell/output/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>

namespace orvane::shell {

void appendInteger(std::string& text, std::int64_t value) {
    std::array<char, 24> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    text.append(digits.data(), end);
}

void appendReal(std::string& text, double value) {
    if (!std::isfinite(value)) {
        text += std::isnan(value) ? "NaN" : value < 0 ? "-Infinity" : "Infinity";
        return;
    }
    const double magnitude = std::fabs(value);
    if (magnitude == 0) {
        text += '0'; // also for the negative zero, which equals it
        return;
    }
    const bool plain = magnitude >= 1e-5 && magnitude < 1e16;
    std::array<char, 40> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                   plain ? std::chars_format::fixed : std::chars_format::scientific)
                         .ptr;
    text.append(digits.data(), end);
}

void appendHex(std::string& text, std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    text.reserve(text.size() + 2 * bytes.size());
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += digits[value >> 4];
        text += digits[value & 15];
    }
}

} // namespace orvane::shell
