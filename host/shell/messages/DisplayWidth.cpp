#include "host/shell/messages/DisplayWidth.h"

#include "platform/utils/Utf8.h"

#include <QChar>

#include <algorithm>
#include <array>
#include <utility>

namespace orvane::shell {

namespace {

struct CharacterRange {
    char32_t first;
    char32_t last;
};

/// Characters of the classes W and F in EastAsianWidth.txt of Unicode 14, unassigned ones in between
/// included.
constexpr std::array wideRanges = std::to_array<CharacterRange>(
    {{0x1100, 0x115F},   {0x231A, 0x231B},   {0x2329, 0x232A},   {0x23E9, 0x23EC},   {0x23F0, 0x23F0},
     {0x23F3, 0x23F3},   {0x25FD, 0x25FE},   {0x2614, 0x2615},   {0x2648, 0x2653},   {0x267F, 0x267F},
     {0x2693, 0x2693},   {0x26A1, 0x26A1},   {0x26AA, 0x26AB},   {0x26BD, 0x26BE},   {0x26C4, 0x26C5},
     {0x26CE, 0x26CE},   {0x26D4, 0x26D4},   {0x26EA, 0x26EA},   {0x26F2, 0x26F3},   {0x26F5, 0x26F5},
     {0x26FA, 0x26FA},   {0x26FD, 0x26FD},   {0x2705, 0x2705},   {0x270A, 0x270B},   {0x2728, 0x2728},
     {0x274C, 0x274C},   {0x274E, 0x274E},   {0x2753, 0x2755},   {0x2757, 0x2757},   {0x2795, 0x2797},
     {0x27B0, 0x27B0},   {0x27BF, 0x27BF},   {0x2B1B, 0x2B1C},   {0x2B50, 0x2B50},   {0x2B55, 0x2B55},
     {0x2E80, 0x303E},   {0x3041, 0x3247},   {0x3250, 0x4DBF},   {0x4E00, 0xA4C6},   {0xA960, 0xA97C},
     {0xAC00, 0xD7A3},   {0xF900, 0xFAD9},   {0xFE10, 0xFE19},   {0xFE30, 0xFE6B},   {0xFF01, 0xFF60},
     {0xFFE0, 0xFFE6},   {0x16FE0, 0x1B2FB}, {0x1F004, 0x1F004}, {0x1F0CF, 0x1F0CF}, {0x1F18E, 0x1F18E},
     {0x1F191, 0x1F19A}, {0x1F200, 0x1F320}, {0x1F32D, 0x1F335}, {0x1F337, 0x1F37C}, {0x1F37E, 0x1F393},
     {0x1F3A0, 0x1F3CA}, {0x1F3CF, 0x1F3D3}, {0x1F3E0, 0x1F3F0}, {0x1F3F4, 0x1F3F4}, {0x1F3F8, 0x1F43E},
     {0x1F440, 0x1F440}, {0x1F442, 0x1F4FC}, {0x1F4FF, 0x1F53D}, {0x1F54B, 0x1F54E}, {0x1F550, 0x1F567},
     {0x1F57A, 0x1F57A}, {0x1F595, 0x1F596}, {0x1F5A4, 0x1F5A4}, {0x1F5FB, 0x1F64F}, {0x1F680, 0x1F6C5},
     {0x1F6CC, 0x1F6CC}, {0x1F6D0, 0x1F6D2}, {0x1F6D5, 0x1F6DF}, {0x1F6EB, 0x1F6EC}, {0x1F6F4, 0x1F6FC},
     {0x1F7E0, 0x1F7F0}, {0x1F90C, 0x1F93A}, {0x1F93C, 0x1F945}, {0x1F947, 0x1F9FF}, {0x1FA70, 0x1FAF6},
     {0x20000, 0x3FFFD}});

constexpr char32_t zeroWidthNonJoiner = 0x200C;
constexpr char32_t zeroWidthJoiner = 0x200D;

bool isWide(char32_t character) {
    const auto range = std::lower_bound(wideRanges.begin(), wideRanges.end(), character,
                                        [](const CharacterRange& r, char32_t c) { return r.last < c; });
    return range != wideRanges.end() && character >= range->first;
}

bool isSkinTone(char32_t character) {
    return character >= 0x1F3FB && character <= 0x1F3FF;
}

/// Walks over the characters of a text and adds up their columns.
class WidthCounter {
public:
    /// Columns that the character adds to those before it.
    int add(char32_t character) {
        const char32_t before = std::exchange(previous_, character);
        if (before == zeroWidthJoiner || (isSkinTone(character) && isWide(before))) {
            return 0;
        }
        return characterWidth(character);
    }

private:
    char32_t previous_ = 0;
};

} // namespace

int characterWidth(char32_t character) {
    const bool isCyrillicMark = character >= 0x483 && character <= 0x489;
    if (character < 0x300 || (character >= 0x370 && character < 0x591 && !isCyrillicMark)) {
        return 1; // Latin, Greek, Cyrillic, Armenian
    }
    switch (QChar::category(character)) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_Enclosing:
    case QChar::Other_Format: return 0;
    default: break;
    }
    // The vowels and final consonants of a Hangul syllable are drawn into the column of the first.
    if (character >= 0x1160 && character <= 0x11FF) {
        return 0;
    }
    return isWide(character) ? 2 : 1;
}

int displayWidth(std::string_view text) {
    WidthCounter counter;
    int width = 0;
    for (std::size_t position = 0; position < text.size();) {
        width += counter.add(utf8::nextCharacter(text, position));
    }
    return width;
}

std::size_t prefixOfWidth(std::string_view text, int columns) {
    WidthCounter counter;
    int width = 0;
    std::size_t end = 0; // without a joiner that has nothing more to join
    for (std::size_t position = 0; position < text.size();) {
        const char32_t character = utf8::nextCharacter(text, position);
        width += counter.add(character);
        if (width > columns) {
            return end;
        }
        if (character != zeroWidthJoiner && character != zeroWidthNonJoiner) {
            end = position;
        }
    }
    return text.size();
}

} // namespace orvane::shell
