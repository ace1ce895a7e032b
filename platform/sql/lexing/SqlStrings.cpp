#include "platform/sql/lexing/SqlStrings.h"

#include <QChar>

#include <algorithm>

namespace orvane::sql {

namespace {

constexpr bool isAsciiLetter(wchar_t symbol) {
    return (symbol >= L'a' && symbol <= L'z') || (symbol >= L'A' && symbol <= L'Z');
}

bool isWordSymbolBeyondAscii(wchar_t symbol) {
    switch (QChar::category(static_cast<uint>(symbol))) {
    case QChar::Other_Control:
    case QChar::Other_Surrogate:
    case QChar::Other_NotAssigned:
    case QChar::Separator_Space:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
    case QChar::Punctuation_Connector:
    case QChar::Punctuation_Dash:
    case QChar::Punctuation_Open:
    case QChar::Punctuation_Close:
    case QChar::Punctuation_InitialQuote:
    case QChar::Punctuation_FinalQuote:
    case QChar::Punctuation_Other: return false;
    default: return true;
    }
}

/// How many bytes follow the first byte of a character; -1 when it begins none.
constexpr int continuationCount(unsigned char first) {
    if (first < 0x80) {
        return 0;
    }
    if (first >= 0xC2 && first <= 0xDF) {
        return 1;
    }
    if (first >= 0xE0 && first <= 0xEF) {
        return 2;
    }
    return first >= 0xF0 && first <= 0xF4 ? 3 : -1;
}

void appendSymbol(std::string& utf8, char32_t symbol) {
    const auto continuation = [symbol](int shift) {
        return static_cast<char>(0x80 | (symbol >> shift & 0x3F));
    };
    if (symbol < 0x80) {
        utf8 += static_cast<char>(symbol);
    } else if (symbol < 0x800) {
        utf8 += {static_cast<char>(0xC0 | symbol >> 6), continuation(0)};
    } else if (symbol < 0x10000) {
        utf8 += {static_cast<char>(0xE0 | symbol >> 12), continuation(6), continuation(0)};
    } else {
        utf8 += {static_cast<char>(0xF0 | symbol >> 18), continuation(12), continuation(6), continuation(0)};
    }
}

} // namespace

std::wstring toSqlString(const QString& text) {
    return text.toStdWString();
}

QString fromSqlString(const std::wstring& text) {
    return QString::fromStdWString(text);
}

std::string toUtf8(std::wstring_view text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto symbol = static_cast<char32_t>(text[i]);
        if (sizeof(wchar_t) == 2 && QChar::isHighSurrogate(symbol) && i + 1 < text.size() &&
            QChar::isLowSurrogate(static_cast<char32_t>(text[i + 1]))) {
            symbol = QChar::surrogateToUcs4(static_cast<ushort>(symbol), static_cast<ushort>(text[++i]));
        }
        if (symbol > 0x10FFFF || QChar::isSurrogate(symbol)) {
            symbol = QChar::ReplacementCharacter;
        }
        appendSymbol(utf8, symbol);
    }
    return utf8;
}

std::wstring toLowercase(const std::wstring& text) {
    std::wstring lower = text;
    for (wchar_t& symbol : lower) {
        if (symbol < 0x80) {
            symbol = symbol >= L'A' && symbol <= L'Z' ? symbol + (L'a' - L'A') : symbol;
        } else {
            symbol = static_cast<wchar_t>(QChar::toLower(static_cast<uint>(symbol)));
        }
    }
    return lower;
}

std::size_t appendUtf8(std::wstring& wide, std::string_view text) {
    wide.reserve(wide.size() + text.size());
    std::size_t pos = 0;
    while (pos < text.size()) {
        const auto first = static_cast<unsigned char>(text[pos]);
        const int count = continuationCount(first);
        if (count < 0 || static_cast<std::size_t>(count) >= text.size() - pos) {
            break;
        }
        char32_t symbol = count == 0 ? first : first & (0x3Fu >> count);
        bool valid = true;
        for (int i = 1; i <= count; ++i) {
            const auto next = static_cast<unsigned char>(text[pos + static_cast<std::size_t>(i)]);
            valid = valid && (next & 0xC0) == 0x80;
            symbol = symbol << 6 | (next & 0x3Fu);
        }
        constexpr char32_t shortest[] = {0, 0x80, 0x800, 0x10000};
        if (!valid || symbol < shortest[count] || symbol > 0x10FFFF ||
            (symbol >= 0xD800 && symbol <= 0xDFFF)) {
            break;
        }
        if constexpr (sizeof(wchar_t) == 2) {
            if (symbol > 0xFFFF) {
                wide.push_back(static_cast<wchar_t>(QChar::highSurrogate(symbol)));
                symbol = QChar::lowSurrogate(symbol);
            }
        }
        wide.push_back(static_cast<wchar_t>(symbol));
        pos += 1 + static_cast<std::size_t>(count);
    }
    return pos;
}

bool isNameStart(wchar_t symbol) {
    return symbol < 0x80 ? isAsciiLetter(symbol) || symbol == L'_' : isWordSymbolBeyondAscii(symbol);
}

bool isNamePart(wchar_t symbol) {
    return isNameStart(symbol) || (symbol >= L'0' && symbol <= L'9') || symbol == L'$';
}

bool isPlainName(std::wstring_view text) {
    return !text.empty() && isNameStart(text.front()) && std::all_of(text.begin(), text.end(), isNamePart);
}

bool isBlank(wchar_t symbol) {
    constexpr wchar_t byteOrderMark = 0xFEFF;
    return symbol == L' ' || (symbol >= L'\t' && symbol <= L'\r') ||
           (symbol >= 0x80 && (symbol == byteOrderMark || QChar::isSpace(static_cast<uint>(symbol))));
}

} // namespace orvane::sql
