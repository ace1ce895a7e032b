#include <orvane/engine/functions/Text.h>

#include "Barrier.h"
#include "TextArguments.h"
#include "platform/utils/Utf8.h"
#include <orvane/engine/functions/Converters.h>

#include <QVarLengthArray>

#include <algorithm>
#include <cstring>

namespace orvane::engine {

namespace {

using utf8::characterLength;

/// Case mapping of what most texts are made of, ASCII and the Cyrillic alphabet (U+0400 to U+045F), where it
/// is plain arithmetic and keeps the length in UTF-8. Qt's mapping agrees on them; everything else is left to
/// Qt.
struct UpperCase {
    static unsigned ascii(unsigned letter) { return letter >= 'a' && letter <= 'z' ? letter - 0x20 : letter; }
    static unsigned cyrillic(unsigned letter) {
        return letter >= 0x450 ? letter - 0x50 : (letter >= 0x430 ? letter - 0x20 : letter);
    }
    static QString whole(const QString& text) { return text.toUpper(); }
};

struct LowerCase {
    static unsigned ascii(unsigned letter) { return letter >= 'A' && letter <= 'Z' ? letter + 0x20 : letter; }
    static unsigned cyrillic(unsigned letter) {
        return letter < 0x410 ? letter + 0x50 : (letter < 0x430 ? letter + 0x20 : letter);
    }
    static QString whole(const QString& text) { return text.toLower(); }
};

/// Bytes of a sign without case: U+0080 to U+00BF but the micro sign, U+2000 to U+2125 (dashes, quotes,
/// currencies, letter-like signs); 0 for any other character.
int caselessLength(const unsigned char* at) {
    if (at[0] == 0xC2) {
        return at[1] != 0xB5 && characterLength(at) == 2 ? 2 : 0;
    }
    const bool isSign = at[0] == 0xE2 && (at[1] < 0x84 || (at[1] == 0x84 && at[2] < 0xA6));
    return isSign && characterLength(at) == 3 ? 3 : 0;
}

bool isCyrillic(const unsigned char* at) {
    return (at[0] == 0xD0 || (at[0] == 0xD1 && at[1] < 0xA0)) && characterLength(at) == 2;
}

/// Writes the mapped bytes; false at the first character that is left to Qt.
template<typename Case>
bool mapCommonLetters(const unsigned char* at, unsigned char* out) {
    while (*at != 0) {
        if (*at < 0x80) {
            *out++ = static_cast<unsigned char>(Case::ascii(*at++));
        } else if (isCyrillic(at)) {
            const unsigned mapped = Case::cyrillic((at[0] & 0x1FU) << 6 | (at[1] & 0x3FU));
            *out++ = static_cast<unsigned char>(0xC0 | mapped >> 6);
            *out++ = static_cast<unsigned char>(0x80 | (mapped & 0x3F));
            at += 2;
        } else if (const int length = caselessLength(at); length != 0) {
            out = std::copy_n(at, length, out);
            at += length;
        } else {
            return false;
        }
    }
    return true;
}

template<typename Case>
void changeCase(sqlite3_context* context, sqlite3_value* value) {
    const unsigned char* text = utf8View(value);
    if (text == nullptr) {
        return;
    }
    const auto size = static_cast<int>(std::strlen(reinterpret_cast<const char*>(text)));
    QVarLengthArray<unsigned char, 1024> mapped(size);
    if (mapCommonLetters<Case>(text, mapped.data())) {
        resultUtf8(context, mapped.constData(), mapped.constData() + size);
    } else {
        resultText(context, Case::whole(toQString(value)));
    }
}

} // namespace

void loCaseUTF16(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] { changeCase<LowerCase>(context, values[0]); });
}

void upCaseUTF16(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] { changeCase<UpperCase>(context, values[0]); });
}

} // namespace orvane::engine
