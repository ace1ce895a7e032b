#pragma once

#include "host/shell/messages/Names.h"
#include "host/shell/messages/Problem.h"
#include "host/shell/messages/StatementNames.h"

#include "platform/sql/lexing/Lexer.h"

#include <string>
#include <vector>

namespace orvane::shell {

/// Puts what SQLite says about a translated statement into the user's terms: the user's names, the user's
/// language, the place in the user's text, and the nearest known name for one that is unknown.
class SqliteErrors {
public:
    /// `statement` is the user's text and `tables` those it names (sql::SqlParser::tables()), `sqliteText`
    /// what SQLite was given for it, `errorOffset` where in that SQLite sees the fault (sqlite3_error_offset,
    /// in bytes, -1 for unknown).
    SqliteErrors(const sql::TokenizedText& statement, const sql::ast::NodeList& tables,
                 std::string sqliteText, int errorOffset, const Names& names);

    Problem explain(const QString& message) const;

private:
    enum class Role { Table, Column, Function };

    Problem missingTable(const QString& name) const;
    Problem missingColumn(const QString& name) const;
    /// "table has no column named column", the columns being those that a statement writes to.
    Problem missingTargetColumn(const QString& tableAndColumn) const;
    Problem missingFunction(const QString& name) const;
    Problem wrongArguments(const QString& name) const;
    Problem misusedRowNumber(const QString& name) const;
    Problem ambiguousColumn(const QString& name) const;
    Problem tooDeep() const;

    /// Where the user wrote a name, given as SQLite knows it ("a.b" for a column of a table).
    std::optional<TextPlace> placeOf(const QString& name, Role role) const;
    std::optional<TextPlace> placeOfPath(const QStringList& path, Role role) const;
    /// Where the user wrote a name before a dot.
    std::optional<TextPlace> placeOfQualifier(const QString& name) const;
    /// The first such keyword of the user's.
    std::optional<TextPlace> placeOfKeyword(sql::Keyword keyword) const;
    /// The word of the user's that SQLite points at.
    std::optional<TextPlace> placeOfOffset() const;
    std::optional<TextPlace> placeOfNamedFunction(const QString& message) const;
    /// The word of the user's that a word of the SQLite text stands for, where their order tells.
    std::optional<TextPlace> placeOfTranslated(std::size_t token) const;
    bool isQuoted(const TextPlace& place) const;
    TextPlace placeOfTokens(std::size_t first, std::size_t last) const;
    /// The tokens at which a name begins.
    std::vector<std::size_t> occurrences(const sql::TokenizedText& text, const QStringList& path,
                                         Role role) const;
    const sql::TokenizedText& statement_;
    sql::TokenizedText sqliteText_;
    std::size_t errorOffset_; ///< in characters of sqliteText_, npos for unknown
    const Names& names_;
    StatementNames used_;
};

} // namespace orvane::shell
