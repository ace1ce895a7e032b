#pragma once

#include "platform/Export.h"
#include "platform/sql/lexing/Keywords.h"
#include "platform/sql/lexing/SqlError.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::sql {

enum class TokenKind : unsigned char {
    Word,       ///< bare name or keyword
    QuotedName, ///< "name" or [name]
    Number,
    Text,        ///< 'text'
    Hexadecimal, ///< X'0A1B'
    Parameter,   ///< ?, ?3, :name
    LeftParenthesis,
    RightParenthesis,
    Comma,
    Dot,
    Semicolon,
    Plus,
    Minus,
    Asterisk,
    Slash,
    Backslash,
    Percent,
    Caret,
    Ampersand, ///< & or ||
    Equal,     ///< = or ==
    NotEqual,  ///< <> or !=
    Less,
    Greater,
    LessOrEqual,
    GreaterOrEqual,
    End
};

/// A word or symbol of a statement: a stretch of the source text.
struct Token {
    TokenKind kind = TokenKind::End;
    Keyword keyword = Keyword::None; ///< of a Word
    std::size_t offset = 0;          ///< in the wide source text
    std::size_t length = 0;
};

struct TextPosition {
    int line = 1;   ///< from 1
    int column = 1; ///< from 1, in characters
};

/// Where a character of a statement stands, given its offset in the wide source text.
ORVANE_PLATFORM_EXPORT TextPosition positionIn(std::wstring_view source, std::size_t offset);

/// A statement cut into tokens, comments and blanks left out. The last token is always End.
struct ORVANE_PLATFORM_EXPORT TokenizedText {
    std::wstring source;
    std::vector<Token> tokens;
    /// The fault at which cutting stopped; the tokens before it are there.
    std::optional<SqlSyntaxError> error;

    /// The token as written.
    std::wstring_view text(const Token& token) const {
        return std::wstring_view(source).substr(token.offset, token.length);
    }
    /// What the token means: a quoted name or text without quotes, doubled ones made single.
    std::wstring value(const Token& token) const;
    TextPosition position(std::size_t offset) const { return positionIn(source, offset); }
};

/// Cuts UTF-8 text into tokens. Never throws for the text's sake.
ORVANE_PLATFORM_EXPORT TokenizedText tokenize(std::string_view utf8);

} // namespace orvane::sql
