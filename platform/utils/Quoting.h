#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace orvane::utils {

/// The text between quotes, with the quotes inside doubled.
template<class Character>
std::basic_string<Character> quoted(std::basic_string_view<Character> text, Character quote) {
    std::basic_string<Character> result;
    result.reserve(text.size() + 2);
    result.push_back(quote);
    for (const Character character : text) {
        result.append(character == quote ? 2 : 1, character);
    }
    result.push_back(quote);
    return result;
}

inline QString quoted(QString text, QChar quote) {
    text.replace(quote, QString(2, quote));
    return quote + text + quote;
}

/// The name of a table or column as SQL, whatever characters it has.
inline std::string sqlIdentifier(std::string_view name) {
    return quoted(name, '"');
}
inline QString sqlIdentifier(const QString& name) {
    return quoted(name, QLatin1Char('"'));
}

/// The text as an SQL literal.
inline std::string sqlText(std::string_view text) {
    return quoted(text, '\'');
}
inline QString sqlText(const QString& text) {
    return quoted(text, QLatin1Char('\''));
}

} // namespace orvane::utils
