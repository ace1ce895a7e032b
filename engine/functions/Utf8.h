#pragma once

#include <QStringView>

#include <cstdint>
#include <string>
#include <string_view>

/// UTF-8 texts as SQLite hands them out, ending at their first zero byte. The text functions count in UTF-16
/// code units but work on UTF-8 where that gives the same: for well-formed text, nearly always. Reading never
/// passes the zero.
namespace orvane::engine::utf8 {

inline bool isContinuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

/// Bytes of the character at `at`; 0 unless SQLite converts exactly these bytes to the same character in
/// UTF-16. A continuation byte behind the character would be read as part of it, so that is not well formed
/// either, nor are surrogates, U+FFFE and U+FFFF, which SQLite replaces.
inline int wellFormedLength(const unsigned char* at) {
    const unsigned char lead = *at;
    if (lead < 0x80) {
        return 1;
    }
    if (lead < 0xC2 || lead > 0xF4 || !isContinuation(at[1])) {
        return 0;
    }
    if (lead < 0xE0) {
        return isContinuation(at[2]) ? 0 : 2;
    }
    if (!isContinuation(at[2])) {
        return 0;
    }
    if (lead < 0xF0) {
        const bool replaced = (lead == 0xE0 && at[1] < 0xA0) || (lead == 0xED && at[1] >= 0xA0) ||
                              (lead == 0xEF && at[1] == 0xBF && at[2] >= 0xBE);
        return replaced || isContinuation(at[3]) ? 0 : 3;
    }
    const bool outside = (lead == 0xF0 && at[1] < 0x90) || (lead == 0xF4 && at[1] >= 0x90);
    return outside || !isContinuation(at[3]) || isContinuation(at[4]) ? 0 : 4;
}

/// The place `units` UTF-16 code units behind `at`, or the end of a shorter text. Null where the bytes are
/// not well formed or the place lies within a character.
inline const unsigned char* skipUnits(const unsigned char* at, std::int64_t units) {
    while (units > 0 && *at != 0) {
        const int length = wellFormedLength(at);
        if (length == 0 || (length == 4 && units == 1)) {
            return nullptr;
        }
        at += length;
        units -= length == 4 ? 2 : 1;
    }
    return at;
}

/// UTF-16 code units between two places, `end` null for the end of the text; -1 where the bytes are not well
/// formed.
inline std::int64_t countUnits(const unsigned char* at, const unsigned char* end = nullptr) {
    std::int64_t units = 0;
    while (at != end && *at != 0) {
        const int length = wellFormedLength(at);
        if (length == 0) {
            return -1;
        }
        at += length;
        units += length == 4 ? 2 : 1;
    }
    return units;
}

/// The character at `at`, which moves behind it, read as SQLite reads it: a lead byte takes every
/// continuation byte that follows, anything that is no character becomes U+FFFD.
inline std::uint32_t readCharacter(const unsigned char*& at) {
    std::uint32_t character = *at++;
    if (character < 0xC0) {
        return character;
    }
    character &= character < 0xE0   ? 0x1FU
                 : character < 0xF0 ? 0x0FU
                 : character < 0xF8 ? 0x07U
                 : character < 0xFC ? 0x03U
                 : character < 0xFE ? 0x01U
                                    : 0U;
    while (isContinuation(*at)) {
        character = (character << 6) + (*at++ & 0x3FU);
    }
    const bool isCharacter =
        character >= 0x80 && (character & 0xFFFFF800U) != 0xD800 && (character & 0xFFFFFFFEU) != 0xFFFE;
    return isCharacter ? character : 0xFFFD;
}

/// The text in UTF-8, written into `memory`, which only grows. A surrogate without its other half becomes
/// U+FFFD, as in SQLite.
inline std::string_view encode(QStringView text, std::string& memory) {
    constexpr std::size_t mostBytesOfUnit = 3;
    const std::size_t size = static_cast<std::size_t>(text.size()) * mostBytesOfUnit;
    if (memory.size() < size) {
        memory.resize(size);
    }
    char* at = memory.data();
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i].unicode();
        if (unit < 0x80) {
            *at++ = static_cast<char>(unit);
            continue;
        }
        std::uint32_t character = unit;
        if (QChar::isSurrogate(unit)) {
            const bool isPair =
                QChar::isHighSurrogate(unit) && i + 1 < text.size() && text[i + 1].isLowSurrogate();
            character = isPair ? QChar::surrogateToUcs4(unit, text[++i].unicode()) : 0xFFFD;
        }
        if (character < 0x800) {
            *at++ = static_cast<char>(0xC0 | character >> 6);
        } else {
            if (character < 0x10000) {
                *at++ = static_cast<char>(0xE0 | character >> 12);
            } else {
                *at++ = static_cast<char>(0xF0 | character >> 18);
                *at++ = static_cast<char>(0x80 | (character >> 12 & 0x3F));
            }
            *at++ = static_cast<char>(0x80 | (character >> 6 & 0x3F));
        }
        *at++ = static_cast<char>(0x80 | (character & 0x3F));
    }
    return {memory.data(), static_cast<std::size_t>(at - memory.data())};
}

} // namespace orvane::engine::utf8
