#pragma once

#include <span>

namespace orvane::engine {

/// A character that differs from its folded form.
struct CaseVariant {
    char32_t folded;
    char32_t character;
};

/// As foldCase, of a character that is not ASCII.
char32_t foldBeyondAscii(char32_t character);

/// The form of a character in which letters differ in more than case: Unicode's simple folding, one character
/// for one, up to version 14.
inline char32_t foldCase(char32_t character) {
    const bool isAscii = character < 0x80;
    const bool isCapital = character >= 'A' && character <= 'Z';
    return isAscii ? character + (isCapital ? 0x20 : 0) : foldBeyondAscii(character);
}

/// The other characters with a folded form.
std::span<const CaseVariant> caseVariants(char32_t folded);

} // namespace orvane::engine
