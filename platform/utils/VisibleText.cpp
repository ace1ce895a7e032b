#include "platform/utils/VisibleText.h"

#include "platform/utils/Utf8.h"

#include <QChar>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

namespace orvane::utils {

namespace {

constexpr char32_t zeroWidthNonJoiner = 0x200C;
constexpr char32_t zeroWidthJoiner = 0x200D;
constexpr char32_t emojiVariation = 0xFE0F;
constexpr char32_t blackFlag = 0x1F3F4;
constexpr char32_t lastTag = 0xE007F;

bool isBetween(char32_t first, char32_t character, char32_t last) {
    return first <= character && character <= last;
}

/// As they are joined: symbols, emoji and what modifies these.
bool isPictograph(char32_t character) {
    return character == emojiVariation || isBetween(0x2190, character, 0x2BFF) ||
           isBetween(0x1F000, character, 0x1FAFF);
}

/// Letters of scripts whose forms depend on their neighbours, and signs that kill a vowel.
bool takesJoiners(char32_t character) {
    constexpr int virama = 9; // a canonical combining class
    switch (QChar::joiningType(character)) {
    case QChar::Joining_Dual:
    case QChar::Joining_Right:
    case QChar::Joining_Left: return true;
    default: return QChar::combiningClass(character) == virama;
    }
}

/// Whether a joiner changes how its neighbours look, as RFC 5892, appendix A, has it, or makes one emoji of
/// them.
bool joins(char32_t joiner, char32_t before, char32_t after) {
    return (takesJoiners(before) && QChar::isLetter(after)) ||
           (joiner == zeroWidthJoiner && isPictograph(before) && isPictograph(after));
}

/// Characters without a form of their own. Those that no version of Unicode may give one are told by their
/// places.
bool isFormat(char32_t character) {
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph: return true;
    case QChar::Other_NotAssigned:
        return character == 0x2065 || isBetween(0xFFF0, character, 0xFFF8) ||
               isBetween(0xE0000, character, 0xE0FFF);
    default: return false;
    }
}

/// The bytes of a flag of a region, a black flag with the letters and digits of its code as tags (UTS #51);
/// 0 when there is none.
std::size_t flagSize(std::string_view text) {
    std::size_t position = 0;
    if (utf8::nextCharacter(text, position) != blackFlag) {
        return 0;
    }
    constexpr int longestCode = 6;
    for (int length = 0; length <= longestCode && position < text.size(); ++length) {
        const char32_t tag = utf8::nextCharacter(text, position);
        if (tag == lastTag) {
            return length == 0 ? 0 : position;
        }
        if (!isBetween(0xE0030, tag, 0xE0039) && !isBetween(0xE0061, tag, 0xE007A)) {
            return 0;
        }
    }
    return 0;
}

char32_t characterBefore(std::string_view text, std::size_t position) {
    if (position == 0) {
        return 0;
    }
    const auto* const begin = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* at = utf8::previousCharacter(begin, begin + position);
    return utf8::readCharacter(at, begin + position);
}

void appendForm(std::string& shown, char32_t character) {
    constexpr char32_t pictures = 0x2400;
    if (character < 0x20) {
        utf8::append(shown, pictures + character);
    } else if (character == 0x7F) {
        utf8::append(shown, pictures + 0x21);
    } else if (character == utf8::replacement) {
        utf8::append(shown, character);
    } else {
        char digits[8];
        const auto end = std::to_chars(digits, digits + sizeof digits, std::uint32_t(character), 16).ptr;
        shown += "<U+";
        shown.append(static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, digits + 4 - end)), '0');
        for (const char* digit = digits; digit != end; ++digit) {
            shown += *digit >= 'a' ? static_cast<char>(*digit - 'a' + 'A') : *digit;
        }
        shown += '>';
    }
}

bool isVisibleAscii(char character) {
    return static_cast<unsigned char>(character - ' ') < 0x5F;
}

void makeVisible(std::string& text, bool keepsLineFeeds) {
    std::string shown;
    std::size_t copied = 0; // up to where the text is in `shown`
    for (std::size_t position = 0; position < text.size();) {
        if (isVisibleAscii(text[position]) || (keepsLineFeeds && text[position] == '\n')) {
            ++position;
            continue;
        }
        const Sign sign = signAt(text, position);
        if (!sign.isVisible) {
            shown.append(text, copied, position - copied);
            appendForm(shown, sign.character);
            copied = position + sign.size;
        }
        position += sign.size;
    }
    if (copied != 0) {
        shown.append(text, copied);
        text = std::move(shown);
    }
}

} // namespace

Sign signAt(std::string_view text, std::size_t position) {
    std::size_t end = position;
    const char32_t character = utf8::nextCharacter(text, end);
    const std::size_t size = end - position;
    if (character < 0x600) { // Latin, Greek, Cyrillic
        const bool isControl = character < 0x20 || isBetween(0x7F, character, 0x9F);
        return {size, character, !isControl && character != 0xAD};
    }
    if (character == zeroWidthJoiner || character == zeroWidthNonJoiner) {
        std::size_t behind = end;
        return {size, character,
                end < text.size() &&
                    joins(character, characterBefore(text, position), utf8::nextCharacter(text, behind))};
    }
    if (character == blackFlag) {
        return {std::max(size, flagSize(text.substr(position))), character, true};
    }
    const bool isIllFormed = character == utf8::replacement && size == 1;
    return {size, character, !isIllFormed && !isFormat(character)};
}

void makeVisible(std::string& text) {
    makeVisible(text, false);
}

void makeLinesVisible(std::string& text) {
    makeVisible(text, true);
}

std::string visibleText(std::string_view text) {
    std::string shown(text);
    makeVisible(shown);
    return shown;
}

} // namespace orvane::utils
