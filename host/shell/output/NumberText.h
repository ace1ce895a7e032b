#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace orvane::shell {

void appendInteger(std::string& text, std::int64_t value);

/// The shortest digits that read back as the same number, the same in every output format. Magnitudes from
/// 1e-5 up to 1e16 are written without exponent and whole numbers without fraction ("2138551", "0.1"), others
/// as "1.5e+300". Infinities come out as "Infinity" and "-Infinity".
void appendReal(std::string& text, double value);

/// Two upper-case hexadecimal digits for each byte.
void appendHex(std::string& text, std::string_view bytes);

} // namespace orvane::shell
