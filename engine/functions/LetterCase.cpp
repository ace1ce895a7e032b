#include "engine/functions/LetterCase.h"

#include <QChar>

#include <algorithm>
#include <vector>

namespace orvane::engine {

namespace {

/// Capital letters of Unicode 14, which the regular expressions know and Qt 5's tables do not.
bool isNewCapital(char32_t character) {
    switch (character) {
    case 0x2C2F:
    case 0xA7C0:
    case 0xA7D0:
    case 0xA7D6:
    case 0xA7D8: return true;
    case 0x1057B:
    case 0x1058B:
    case 0x10593: return false;
    default: return character >= 0x10570 && character <= 0x10595; // Vithkuqi
    }
}

char32_t smallOfNewCapital(char32_t character) {
    if (character == 0x2C2F) {
        return 0x2C5F;
    }
    return character < 0x10000 ? character + 1 : character + 0x27;
}

/// In the order of the folded forms.
std::vector<CaseVariant> findVariants() {
    constexpr char32_t casedEnd = 0x1F000; // no letter beyond has a case
    std::vector<CaseVariant> variants;
    for (char32_t character = 0; character < casedEnd; ++character) {
        if (const char32_t folded = foldCase(character); folded != character) {
            variants.push_back({folded, character});
        }
    }
    std::stable_sort(variants.begin(), variants.end(),
                     [](const CaseVariant& a, const CaseVariant& b) { return a.folded < b.folded; });
    return variants;
}

} // namespace

char32_t foldBeyondAscii(char32_t character) {
    const char32_t folded = QChar::toCaseFolded(character);
    return folded == character && isNewCapital(character) ? smallOfNewCapital(character) : folded;
}

std::span<const CaseVariant> caseVariants(char32_t folded) {
    static const std::vector<CaseVariant> variants = findVariants();
    const auto [first, last] =
        std::equal_range(variants.begin(), variants.end(), CaseVariant{folded, 0},
                         [](const CaseVariant& a, const CaseVariant& b) { return a.folded < b.folded; });
    return {first, last};
}

} // namespace orvane::engine
