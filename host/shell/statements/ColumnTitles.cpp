#include "host/shell/statements/ColumnTitles.h"

#include "host/shell/messages/Names.h"

#include "platform/sql/lexing/SqlStrings.h"

#include <algorithm>
#include <optional>

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

/// The first token of the outermost query's Select list, behind the named queries of a With; none when the
/// statement is of another form.
std::optional<std::size_t> beginOfSelectList(const std::vector<sql::Token>& tokens) {
    std::size_t i = 0;
    if (tokens.front().keyword == sql::Keyword::With) {
        int depth = 0;
        while (tokens[i].kind != sql::TokenKind::End &&
               (depth != 0 || tokens[i].keyword != sql::Keyword::Select)) {
            if (tokens[i].kind == sql::TokenKind::LeftParenthesis)
                ++depth;
            else if (tokens[i].kind == sql::TokenKind::RightParenthesis)
                --depth;
            ++i;
        }
    }
    return tokens[i].keyword == sql::Keyword::Select ? std::optional(i + 1) : std::nullopt;
}

/// The expressions between Select and From of the outermost query; none when the statement is of another
/// form.
std::vector<TokenRange> selectList(const std::vector<sql::Token>& tokens) {
    const auto first = beginOfSelectList(tokens);
    if (!first)
        return {};
    std::size_t begin = *first;
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

/// For each result column the expression it comes from, an empty range where that cannot be told. Asterisks
/// stand for any number of columns: what is before the first counts from the left, what is behind the last
/// from the right.
std::vector<TokenRange> columnSources(const std::vector<sql::Token>& tokens, std::size_t count) {
    const std::vector<TokenRange> list = selectList(tokens);
    std::vector<TokenRange> sources(count, TokenRange{0, 0});
    const auto isAsterisk = [&tokens](const TokenRange& range) {
        return range.begin != range.end && tokens[range.end - 1].kind == sql::TokenKind::Asterisk;
    };
    const auto first = std::find_if(list.begin(), list.end(), isAsterisk);
    const auto last = std::find_if(list.rbegin(), list.rend(), isAsterisk);
    if (list.size() > count + 1 || (first == list.end() && list.size() != count))
        return sources;
    std::copy(list.begin(), first, sources.begin());
    std::copy(list.rbegin(), last, sources.rbegin());
    return sources;
}

} // namespace

std::vector<std::string> columnTitles(sqlite3_stmt* prepared, const sql::TokenizedText* statement,
                                      bool isExpression) {
    const auto count = static_cast<std::size_t>(sqlite3_column_count(prepared));
    if (statement && isExpression)
        return {writtenText(*statement, {0, statement->tokens.size() - 1})};
    std::vector<TokenRange> sources(count, TokenRange{0, 0});
    if (statement)
        sources = columnSources(statement->tokens, count);
    std::vector<std::string> titles;
    for (std::size_t column = 0; column < count; ++column) {
        const QString name = QString::fromUtf8(sqlite3_column_name(prepared, static_cast<int>(column)));
        const QString userName = userColumnName(name);
        titles.push_back(userName.toStdString());
        const TokenRange source = sources[column];
        if (source.begin == source.end || userName != name)
            continue;
        // A name or an alias ends the expression; any other text is SQLite's rendering of the translation.
        const QString last = sql::fromSqlString(statement->value(statement->tokens[source.end - 1]));
        if (last.compare(name, Qt::CaseInsensitive) != 0)
            titles.back() = writtenText(*statement, source);
    }
    return titles;
}

} // namespace orvane::shell
