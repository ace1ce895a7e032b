#include "host/shell/ColumnTitles.h"

#include "host/shell/Names.h"

#include "platform/sql/SqlStrings.h"

namespace orvane::shell {

namespace {

/// The tokens of one expression, the end excluded.
struct TokenRange {
    std::size_t begin;
    std::size_t end;
};

bool endsSelectList(const sql::Token& token) {
    switch (token.keyword) {
    case sql::Keyword::From:
    case sql::Keyword::Into:
    case sql::Keyword::Where:
    case sql::Keyword::Group:
    case sql::Keyword::Order:
    case sql::Keyword::Limit:
    case sql::Keyword::Union:
    case sql::Keyword::Intersect:
    case sql::Keyword::Except: return true;
    default: return token.kind == sql::TokenKind::End || token.kind == sql::TokenKind::Semicolon;
    }
}

/// The expressions between Select and From of the outermost query; none when the statement is of another
/// form.
std::vector<TokenRange> selectList(const std::vector<sql::Token>& tokens) {
    if (tokens.front().keyword != sql::Keyword::Select)
        return {};
    std::size_t begin = 1;
    if (tokens[begin].keyword == sql::Keyword::Distinct || tokens[begin].keyword == sql::Keyword::All)
        ++begin;
    std::vector<TokenRange> list;
    int depth = 0;
    for (std::size_t i = begin;; ++i) {
        if (tokens[i].kind == sql::TokenKind::End || (depth == 0 && endsSelectList(tokens[i]))) {
            list.push_back({begin, i});
            return list;
        }
        if (tokens[i].kind == sql::TokenKind::LeftParenthesis)
            ++depth;
        else if (tokens[i].kind == sql::TokenKind::RightParenthesis)
            --depth;
        else if (tokens[i].kind == sql::TokenKind::Comma && depth == 0) {
            list.push_back({begin, i});
            begin = i + 1;
        }
    }
}

/// What the user wrote, with single blanks in place of line breaks.
std::string writtenText(const sql::TokenizedText& statement, TokenRange range) {
    const sql::Token& first = statement.tokens[range.begin];
    const sql::Token& last = statement.tokens[range.end - 1];
    const QString text =
        sql::fromSqlString(statement.source.substr(first.offset, last.offset + last.length - first.offset));
    return text.simplified().toStdString();
}

} // namespace

std::vector<std::string> columnTitles(sqlite3_stmt* prepared, const sql::TokenizedText* statement) {
    const int count = sqlite3_column_count(prepared);
    const auto list = statement ? selectList(statement->tokens) : std::vector<TokenRange>();
    const bool matches = list.size() == static_cast<std::size_t>(count);
    std::vector<std::string> titles;
    for (int column = 0; column < count; ++column) {
        const QString name = QString::fromUtf8(sqlite3_column_name(prepared, column));
        const QString userName = userColumnName(name);
        titles.push_back(userName.toStdString());
        if (!matches || userName != name)
            continue;
        // A name or an alias ends the expression; any other text is SQLite's rendering of the translation.
        const TokenRange range = list[static_cast<std::size_t>(column)];
        if (range.begin == range.end || statement->tokens[range.end - 1].kind == sql::TokenKind::Asterisk)
            continue;
        const QString last = sql::fromSqlString(statement->value(statement->tokens[range.end - 1]));
        if (last.compare(name, Qt::CaseInsensitive) != 0)
            titles.back() = writtenText(*statement, range);
    }
    return titles;
}

} // namespace orvane::shell
