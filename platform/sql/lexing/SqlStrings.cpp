#include "platform/sql/lexing/SqlStrings.h"

#include "platform/utils/Utf8.h"

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

} // namespace

std::wstring toSqlString(const QString& text) {
    return text.toStdWString();
}

QString fromSqlString(const std::wstring& text) {
    return QString::fromStdWString(text);
}

std::string toUtf8(std::wstring_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto symbol = static_cast<char32_t>(text[i]);
        if (sizeof(wchar_t) == 2 && QChar::isHighSurrogate(symbol) && i + 1 < text.size() &&
            QChar::isLowSurrogate(static_cast<char32_t>(text[i + 1]))) {
            symbol = QChar::surrogateToUcs4(static_cast<ushort>(symbol), static_cast<ushort>(text[++i]));
        }
        utf8::append(bytes, symbol);
    }
    return bytes;
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
    const auto* const begin = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* const end = begin + text.size();
    const unsigned char* at = begin;
    while (at != end && utf8::characterLength(at, end) != 0) {
        char32_t symbol = utf8::readCharacter(at, end);
        if constexpr (sizeof(wchar_t) == 2) {
            if (symbol > 0xFFFF) {
                wide.push_back(static_cast<wchar_t>(QChar::highSurrogate(symbol)));
                symbol = QChar::lowSurrogate(symbol);
            }
        }
        wide.push_back(static_cast<wchar_t>(symbol));
    }
    return static_cast<std::size_t>(at - begin);
}

bool isNameStart(wchar_t symbol) {
    return symbol < 0x80 ? isAsciiLetter(symbol) || symbol == L'_'
                         : isWordSymbolBeyondAscii(symbol) && !isBlank(symbol);
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
