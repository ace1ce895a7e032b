#include "platform/sql/lexing/Lexer.h"

#include "platform/sql/lexing/SqlStrings.h"

#include <QCoreApplication>

#include <algorithm>
#include <utility>

namespace orvane::sql {

namespace {

bool isDigit(wchar_t symbol) {
    return symbol >= L'0' && symbol <= L'9';
}

bool isHexDigit(wchar_t symbol) {
    return isDigit(symbol) || (symbol >= L'a' && symbol <= L'f') || (symbol >= L'A' && symbol <= L'F');
}

class Lexer {
public:
    explicit Lexer(TokenizedText& result) : result_(result), source_(result.source) {}

    void run() {
        result_.tokens.reserve(source_.size() / 4 + 2);
        while (!result_.error && skipBlanks()) {
            const std::size_t start = pos_;
            const TokenKind kind = next();
            if (!result_.error) {
                add(kind, start);
            }
        }
        result_.tokens.push_back({TokenKind::End, Keyword::None, source_.size(), 0});
    }

    void fail(const QString& message, std::size_t offset, std::size_t length) {
        const TextPosition place = result_.position(offset);
        const QString text = QCoreApplication::translate("orvane::sql", "строка %0, столбец %1: %2")
                                 .arg(QString::number(place.line), QString::number(place.column), message);
        result_.error.emplace(toSqlString(text),
                              ErrorPlace{place.line, place.column, source_.substr(offset, length), {}});
    }

private:
    wchar_t at(std::size_t offset) const { return offset < source_.size() ? source_[offset] : L'\0'; }
    wchar_t peek(std::size_t ahead = 0) const { return at(pos_ + ahead); }

    void add(TokenKind kind, std::size_t start) {
        Token token{kind, Keyword::None, start, pos_ - start};
        if (kind == TokenKind::Word) {
            token.keyword = findKeyword(result_.text(token));
        }
        result_.tokens.push_back(token);
    }

    /// Goes to the next token; false at the end of the text or on an unfinished comment.
    bool skipBlanks() {
        while (pos_ < source_.size()) {
            if (isBlank(peek())) {
                ++pos_;
            } else if (peek() == L'-' && peek(1) == L'-') {
                pos_ = std::min(source_.find(L'\n', pos_), source_.size());
            } else if (peek() == L'/' && peek(1) == L'*') {
                const std::size_t end = source_.find(L"*/", pos_ + 2);
                if (end == std::wstring::npos) {
                    fail(QCoreApplication::translate("orvane::sql", "примечание «/*» не закрыто"), pos_, 2);
                    return false;
                }
                pos_ = end + 2;
            } else {
                return true;
            }
        }
        return false;
    }

    TokenKind next() {
        const wchar_t symbol = peek();
        if ((symbol == L'x' || symbol == L'X') && peek(1) == L'\'') {
            return hexadecimalText();
        }
        if (isNameStart(symbol)) {
            skipName();
            return TokenKind::Word;
        }
        if (isDigit(symbol) || (symbol == L'.' && isDigit(peek(1)))) {
            return number();
        }
        switch (symbol) {
        case L'\'':
            return quoted(L'\'', TokenKind::Text,
                          QCoreApplication::translate("orvane::sql", "текст не закрыт апострофом"));
        case L'"':
            return quoted(L'"', TokenKind::QuotedName,
                          QCoreApplication::translate("orvane::sql", "имя не закрыто кавычкой"));
        case L'[':
            return quoted(L']', TokenKind::QuotedName,
                          QCoreApplication::translate("orvane::sql", "имя не закрыто скобкой «]»"));
        case L'?': return numberedParameter();
        case L':':
            if (isNameStart(peek(1))) {
                ++pos_;
                skipName();
                return TokenKind::Parameter;
            }
            break;
        default: break;
        }
        return operatorSymbol();
    }

    TokenKind operatorSymbol() {
        struct Symbol {
            wchar_t first;
            wchar_t second;
            TokenKind kind;
        };
        static constexpr Symbol symbols[] = {{L'<', L'>', TokenKind::NotEqual},
                                             {L'<', L'=', TokenKind::LessOrEqual},
                                             {L'>', L'=', TokenKind::GreaterOrEqual},
                                             {L'!', L'=', TokenKind::NotEqual},
                                             {L'=', L'=', TokenKind::Equal},
                                             {L'|', L'|', TokenKind::Ampersand},
                                             {L'(', 0, TokenKind::LeftParenthesis},
                                             {L')', 0, TokenKind::RightParenthesis},
                                             {L',', 0, TokenKind::Comma},
                                             {L'.', 0, TokenKind::Dot},
                                             {L';', 0, TokenKind::Semicolon},
                                             {L'+', 0, TokenKind::Plus},
                                             {L'-', 0, TokenKind::Minus},
                                             {L'*', 0, TokenKind::Asterisk},
                                             {L'/', 0, TokenKind::Slash},
                                             {L'\\', 0, TokenKind::Backslash},
                                             {L'%', 0, TokenKind::Percent},
                                             {L'^', 0, TokenKind::Caret},
                                             {L'&', 0, TokenKind::Ampersand},
                                             {L'=', 0, TokenKind::Equal},
                                             {L'<', 0, TokenKind::Less},
                                             {L'>', 0, TokenKind::Greater}};
        for (const Symbol& symbol : symbols) {
            if (symbol.first == peek() && (symbol.second == 0 || symbol.second == peek(1))) {
                pos_ += symbol.second == 0 ? 1 : 2;
                return symbol.kind;
            }
        }
        failOnSymbol();
        return TokenKind::End;
    }

    void failOnSymbol() {
        const wchar_t symbol = peek();
        if (symbol < L' ' || symbol == 0x7F) {
            const QString code =
                QString::number(static_cast<uint>(symbol), 16).rightJustified(4, QLatin1Char('0'));
            return fail(
                QCoreApplication::translate("orvane::sql", "непечатный знак U+%0").arg(code.toUpper()), pos_,
                1);
        }
        const QString shown = fromSqlString(std::wstring(1, symbol));
        constexpr std::wstring_view typographicQuotes = L"«»„“”‘’‚‹›`´";
        if (typographicQuotes.find(symbol) != std::wstring_view::npos) {
            return fail(
                QCoreApplication::translate(
                    "orvane::sql", "знак «%0» не годится: тексты пишутся в апострофах ', имена в кавычках \"")
                    .arg(shown),
                pos_, 1);
        }
        fail(QCoreApplication::translate("orvane::sql", "неожиданный знак «%0»").arg(shown), pos_, 1);
    }

    TokenKind quoted(wchar_t close, TokenKind kind, const QString& unfinished) {
        const std::size_t start = pos_;
        for (++pos_; pos_ < source_.size(); ++pos_) {
            if (peek() == L'\0') {
                fail(QCoreApplication::translate("orvane::sql", "непечатный знак U+%0")
                         .arg(QStringLiteral("0000")),
                     pos_, 1);
                return kind;
            }
            if (peek() != close) {
                continue;
            }
            if (peek(1) != close || close == L']') {
                ++pos_;
                if (kind == TokenKind::QuotedName && pos_ - start == 2) {
                    fail(QCoreApplication::translate("orvane::sql", "пустое имя"), start, 2);
                }
                return kind;
            }
            ++pos_;
        }
        fail(unfinished, start, 1);
        return kind;
    }

    TokenKind numberedParameter() {
        const std::size_t start = pos_++;
        skipDigits();
        const std::wstring digits = source_.substr(start + 1, pos_ - start - 1);
        if (!digits.empty() && digits.find_first_not_of(L'0') == std::wstring::npos) {
            fail(QCoreApplication::translate("orvane::sql", "параметры нумеруются с 1"), start, pos_ - start);
        }
        return TokenKind::Parameter;
    }

    TokenKind hexadecimalText() {
        const std::size_t start = pos_;
        pos_ += 2;
        while (isHexDigit(peek())) {
            ++pos_;
        }
        if (peek() != L'\'' || (pos_ - start) % 2 != 0) {
            fail(QCoreApplication::translate(
                     "orvane::sql", "после X в апострофах ожидается чётное число шестнадцатеричных цифр"),
                 start, pos_ - start);
        }
        ++pos_;
        return TokenKind::Hexadecimal;
    }

    TokenKind number() {
        const std::size_t start = pos_;
        constexpr std::size_t longestHexadecimal = 2 + 16; // "0x" and 64 bits
        bool tooLong = false;
        if (peek() == L'0' && (peek(1) == L'x' || peek(1) == L'X') && isHexDigit(peek(2))) {
            pos_ += 2;
            while (isHexDigit(peek())) {
                ++pos_;
            }
            tooLong = pos_ - start > longestHexadecimal;
        } else {
            skipDigits();
            if (peek() == L'.') {
                ++pos_;
                skipDigits();
            }
            const std::size_t sign = peek(1) == L'+' || peek(1) == L'-' ? 1 : 0;
            if ((peek() == L'e' || peek() == L'E') && isDigit(peek(1 + sign))) {
                pos_ += 1 + sign;
                skipDigits();
            }
        }
        if (isNamePart(peek())) {
            skipName();
            fail(QCoreApplication::translate("orvane::sql", "неверное число «%0»")
                     .arg(fromSqlString(source_.substr(start, pos_ - start))),
                 start, pos_ - start);
        } else if (tooLong) {
            fail(QCoreApplication::translate("orvane::sql", "шестнадцатеричное число «%0» длиннее 64 бит")
                     .arg(fromSqlString(source_.substr(start, pos_ - start))),
                 start, pos_ - start);
        }
        return TokenKind::Number;
    }

    void skipDigits() {
        while (isDigit(peek())) {
            ++pos_;
        }
    }

    void skipName() {
        while (pos_ < source_.size() && isNamePart(peek())) {
            ++pos_;
        }
    }

    TokenizedText& result_;
    const std::wstring& source_;
    std::size_t pos_ = 0;
};

} // namespace

std::wstring TokenizedText::value(const Token& token) const {
    const std::wstring_view written = text(token);
    switch (token.kind) {
    case TokenKind::Text:
    case TokenKind::QuotedName: break;
    case TokenKind::Hexadecimal: return std::wstring(written.substr(2, written.size() - 3));
    default: return std::wstring(written);
    }
    const std::wstring_view inner = written.substr(1, written.size() - 2);
    const wchar_t close = written.back();
    std::wstring result;
    result.reserve(inner.size());
    for (std::size_t i = 0; i < inner.size(); ++i) {
        result.push_back(inner[i]);
        if (inner[i] == close && close != L']') {
            ++i; // the lexer has seen that it is doubled
        }
    }
    return result;
}

TextPosition positionIn(std::wstring_view source, std::size_t offset) {
    const auto end = source.begin() + static_cast<std::ptrdiff_t>(std::min(offset, source.size()));
    const auto line = std::count(source.begin(), end, L'\n');
    const auto lineStart = std::find(std::make_reverse_iterator(end), source.rend(), L'\n').base();
    return {static_cast<int>(line) + 1, static_cast<int>(end - lineStart) + 1};
}

TokenizedText tokenize(std::string_view utf8) {
    TokenizedText result;
    const std::size_t read = appendUtf8(result.source, utf8);
    Lexer lexer(result);
    lexer.run();
    if (read < utf8.size() && !result.error) {
        lexer.fail(QCoreApplication::translate("orvane::sql", "байты текста не образуют знака UTF-8"),
                   result.source.size(), 0);
    }
    return result;
}

} // namespace orvane::sql
