#pragma once

#include "platform/sql/lexing/Lexer.h"
#include "platform/sql/tree/NodeVisitor.h"

#include <QString>

#include <bitset>
#include <utility>

namespace orvane::sql {

/// The grammar, one function per rule, over the tokens of one statement. A rule that fails throws
/// SqlSyntaxError; SqlParser catches it. The rules are in StatementParser.cpp, QueryParser.cpp,
/// ExpressionParser.cpp and FunctionParser.cpp; what they share is in Parser.cpp.
class Parser {
public:
    explicit Parser(const TokenizedText& text) : text_(text) {}

    struct Result {
        ast::NodePtr node;
        bool isExpression = false;
    };
    /// The whole text as one statement or expression.
    Result parseAll();
    /// What was read where a table may stand, up to a fault if there was one.
    ast::NodeList takeTables() { return std::move(tables_); }

private:
    /// Parentheses, subqueries and calls may nest so deep; deeper would endanger the stack of the thread.
    static constexpr int nestingLimit = 400;
    /// Levels of the finished tree, chains such as `a And b And …` included. SQLite refuses deeper
    /// expressions.
    static constexpr int heightLimit = 1000;
    /// Queries put together by set operators in one statement. They stand to the left in the tree, one below
    /// the other.
    static constexpr int operandLimit = 2500;

    /// Counts one level of nesting for as long as a rule runs, and the height of what it builds.
    class Level {
    public:
        explicit Level(Parser& parser);
        ~Level();
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        Parser& parser_;
        int outerHeight_;
    };
    /// Tells that one more node was put on top of what the present level has built.
    void grow();

    // Statements
    ast::NodePtr parseStatement();
    ast::NodePtr parseSessionStatement();
    ast::NodePtr parseTransaction();
    ast::NodePtr parseView();
    bool atWord(std::size_t ahead, std::wstring_view lowercase) const;
    bool acceptWord(std::wstring_view lowercase);
    void expectWord(std::wstring_view lowercase);
    ast::NodePtr parseInsert();
    ast::NodePtr parseInsertSource();
    ast::NodePtr parseUpdate();
    ast::NodePtr parseDelete();
    ast::NodePtr parseTargetTable();
    ast::NodePtr parseSetClause();
    ast::NodePtr parseOptionalWhere();

    // Queries
    bool startsQuery() const;
    bool startsParenthesizedQuery() const;
    ast::NodePtr parseQuery();
    ast::NodePtr parseWithQuery();
    ast::CommonTable parseCommonTable();
    ast::NodePtr parseQueryBody();
    ast::NodePtr parseIntersections();
    ast::NodePtr parseOperand(std::size_t first, ast::SetOperator code, ast::NodePtr left,
                              ast::NodePtr (Parser::*parseRight)());
    ast::NodePtr parseQueryTerm();
    ast::NodePtr parseSelect();
    ast::NodePtr parseValues();
    ast::NodePtr parseRows();
    ast::NodePtr parseResultClauses(std::size_t first, ast::NodePtr query);
    void parseLimit(ast::QueryExpression& query);
    ast::NodePtr parseDerivedColumn();
    ast::NodePtr parseFrom();
    ast::NodePtr parseJoinedTable();
    struct JoinWords {
        ast::JoinKind kind = ast::JoinKind::Inner;
        bool natural = false;
        bool cross = false;
    };
    std::optional<JoinWords> parseJoinWords();
    ast::NodePtr parseTablePrimary();
    ast::NodePtr parseDerivedTable();
    ast::NodeList parseOrderBy();
    ast::NodePtr parseSortSpecification();
    ast::NodeList parseColumnNames();

    // Expressions
    ast::NodePtr parseExpression(Precedence loosest = Precedence::Or);
    ast::NodeList parseExpressions();
    ast::NodePtr parsePrefix();
    ast::NodePtr parsePrimary();
    ast::NodePtr parseWordPrimary();
    ast::NodePtr parseNamePrimary();
    ast::NodePtr parseParenthesized();
    ast::NodePtr parseExists();
    ast::NodePtr parseCase();
    ast::NodePtr parseCast();
    std::wstring parseTypeName();
    std::wstring expectNumber();
    ast::NodePtr parseFunction(std::wstring name);
    std::shared_ptr<const ast::Window> parseWindow();
    ast::Window::Frame parseFrame(ast::Window::Unit unit);
    ast::Window::Bound parseBound(Keyword unbounded);
    ast::NodePtr parseInOperand();
    void checkRows(const ast::NodePtr& value, const ast::NodePtr& operand) const;
    OperationCode infixOperator() const;
    OperationCode infixKeyword() const;
    ast::NodePtr parseInfix(OperationCode code, ast::NodePtr left);
    ast::NodePtr parseIs(ast::NodePtr left);
    void skipOperator(OperationCode code);

    // Tokens
    const Token& peek(std::size_t ahead = 0) const;
    bool at(TokenKind kind) const { return peek().kind == kind; }
    bool at(Keyword keyword) const { return peek().keyword == keyword; }
    bool atAhead(std::size_t ahead, TokenKind kind) const { return peek(ahead).kind == kind; }
    bool atAhead(std::size_t ahead, Keyword keyword) const { return peek(ahead).keyword == keyword; }
    bool atName() const;
    void advance();
    /// Takes the token when it is there, and remembers it as one that could be when it is not.
    bool accept(Keyword keyword);
    bool accept(TokenKind kind);
    void expect(Keyword keyword);
    void expect(TokenKind kind);
    std::wstring takeValue();
    std::wstring expectName();
    /// The stretch of text from the token `first` to the last one taken.
    ast::SourceRange since(std::size_t first) const;
    /// The node, which begins with the token `first`; one that has its place already keeps it.
    template<class NodePointer>
    NodePointer placed(std::size_t first, NodePointer node) const {
        if (node && node->place.length == 0) {
            node->place = since(first);
        }
        return node;
    }
    /// A name where a table stands.
    std::shared_ptr<ast::TablePrimary> parseTableName();
    std::shared_ptr<ast::ExplicitTable> parseExplicitTable();
    /// A name after As, or standing alone where `implicit` allows it; empty when there is none.
    std::wstring parseAlias();

    // Errors
    enum class Noun { Expression, Name, EndOfText, Query };
    /// What was looked for at one token, for the message in case nothing fits.
    struct Expectations {
        std::bitset<keywordCount> keywords;
        std::bitset<static_cast<std::size_t>(TokenKind::End) + 1> symbols;
        std::bitset<4> nouns;

        std::vector<std::wstring> texts() const;
    };
    [[noreturn]] void fail() const;
    bool looksLikeName() const;
    [[noreturn]] void failExpecting(Noun noun);
    [[noreturn]] void failAt(const Token& token, const QString& message,
                             std::vector<std::wstring> expected = {}) const;
    [[noreturn]] void failSuggesting(const Token& token, Keyword meant) const;
    Keyword nearestKeyword(const Token& token, const std::bitset<keywordCount>& candidates) const;

    const TokenizedText& text_;
    std::size_t pos_ = 0;
    int nesting_ = 0;
    int height_ = 0;
    int operands_ = 0;
    bool intoAllowed_ = false;  ///< only the first Select of a query statement may have an Into
    bool inExpression_ = false; ///< the text is read as a lone expression
    Expectations expected_;
    ast::NodeList tables_;
    /// The last word taken as an alias without As: it may be a misspelt keyword.
    std::size_t aliasPos_ = static_cast<std::size_t>(-1);
};

} // namespace orvane::sql
