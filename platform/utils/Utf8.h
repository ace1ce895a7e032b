#pragma once

#include <QString>

#include <cstdint>
#include <string>
#include <string_view>

/// The one reading of UTF-8. Bytes that begin no well-formed character (Unicode, table 3-7: no overlong form,
/// no surrogate, nothing above U+10FFFF) stand for U+FFFD, each for one, as in Qt. Where `end` is null the
/// text ends at its first zero byte; no byte behind the end is looked at.
namespace orvane::utf8 {

constexpr char32_t replacement = 0xFFFD;

inline bool isContinuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

/// Bytes of the character at `at`, which is not the end; 0 where they are not well formed.
inline int characterLength(const unsigned char* at, const unsigned char* end = nullptr) {
    const unsigned lead = *at;
    if (lead < 0x80) {
        return 1;
    }
    if (lead < 0xC2 || lead > 0xF4) {
        return 0;
    }
    const int length = lead < 0xE0 ? 2 : (lead < 0xF0 ? 3 : 4);
    for (int i = 1; i < length; ++i) {
        if (at + i == end || !isContinuation(at[i])) {
            return 0;
        }
    }
    const unsigned second = at[1];
    const bool isOverlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool isNoCharacter = (lead == 0xED && second >= 0xA0) || (lead == 0xF4 && second >= 0x90);
    return isOverlong || isNoCharacter ? 0 : length;
}

/// The character at `at`, which is not the end and moves behind it.
inline char32_t readCharacter(const unsigned char*& at, const unsigned char* end = nullptr) {
    const int length = characterLength(at, end);
    const unsigned lead = *at++;
    if (length < 2) {
        return length == 1 ? lead : replacement;
    }
    char32_t character = lead & (0x7FU >> length);
    for (int i = 1; i < length; ++i) {
        character = character << 6 | (*at++ & 0x3FU);
    }
    return character;
}

/// The start of the character that ends at `at`, in a text that begins before it.
inline const unsigned char* previousCharacter(const unsigned char* begin, const unsigned char* at) {
    const unsigned char* lead = at - 1;
    while (lead != begin && at - lead < 4 && isContinuation(*lead)) {
        --lead;
    }
    return characterLength(lead, at) == at - lead ? lead : at - 1;
}

/// The character at a position before the end, which moves behind it.
inline char32_t nextCharacter(std::string_view text, std::size_t& position) {
    const auto* const begin = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* at = begin + position;
    const char32_t character = readCharacter(at, begin + text.size());
    position = static_cast<std::size_t>(at - begin);
    return character;
}

/// The first byte of a text that is not well formed; its size where all are.
inline std::size_t findIllFormed(std::string_view text) {
    const auto* const begin = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* const end = begin + text.size();
    const unsigned char* at = begin;
    while (at != end) {
        const int length = characterLength(at, end);
        if (length == 0) {
            break;
        }
        at += length;
    }
    return static_cast<std::size_t>(at - begin);
}

constexpr int longestCharacter = 4;

/// Writes a character and returns its end; U+FFFD for a code that is none.
inline char* writeCharacter(char32_t character, char* out) {
    if (character < 0x80) {
        *out++ = static_cast<char>(character);
        return out;
    }
    if (character > 0x10FFFF || QChar::isSurrogate(character)) {
        character = replacement;
    }
    if (character < 0x800) {
        *out++ = static_cast<char>(0xC0 | character >> 6);
    } else {
        if (character < 0x10000) {
            *out++ = static_cast<char>(0xE0 | character >> 12);
        } else {
            *out++ = static_cast<char>(0xF0 | character >> 18);
            *out++ = static_cast<char>(0x80 | (character >> 12 & 0x3F));
        }
        *out++ = static_cast<char>(0x80 | (character >> 6 & 0x3F));
    }
    *out++ = static_cast<char>(0x80 | (character & 0x3F));
    return out;
}

inline void append(std::string& text, char32_t character) {
    char bytes[longestCharacter];
    text.append(bytes, writeCharacter(character, bytes));
}

/// The place `units` UTF-16 code units behind `at`, or the end of a shorter text. Null where the bytes are
/// not well formed or the place lies within a character.
inline const unsigned char* skipUnits(const unsigned char* at, std::int64_t units) {
    while (units > 0 && *at != 0) {
        const int length = characterLength(at);
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
        const int length = characterLength(at);
        if (length == 0) {
            return -1;
        }
        at += length;
        units += length == 4 ? 2 : 1;
    }
    return units;
}

constexpr int mostBytesOfUnit = 3;

/// Writes a text in UTF-8, up to mostBytesOfUnit bytes for each code unit, and returns their number. A
/// surrogate without its other half becomes U+FFFD.
inline std::size_t encode(QStringView text, char* out) {
    char* at = out;
    for (qsizetype i = 0; i < text.size(); ++i) {
        char32_t character = text[i].unicode();
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            character = QChar::surrogateToUcs4(text[i], text[i + 1]);
            ++i;
        }
        at = writeCharacter(character, at);
    }
    return static_cast<std::size_t>(at - out);
}

/// The text in UTF-16. A leading U+FEFF stays, where QString::fromUtf8 takes it for a mark.
inline QString decode(std::string_view text) {
    const QString decoded = QString::fromUtf8(text.data(), static_cast<int>(text.size()));
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    return text.substr(0, byteOrderMark.size()) == byteOrderMark ? QChar(0xFEFF) + decoded : decoded;
}

} // namespace orvane::utf8
