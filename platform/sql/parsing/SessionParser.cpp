#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/parsing/Parser.h"

#include <QCoreApplication>

#include <utility>

// Transactions and named queries. Their words are no keywords: two of them together tell these statements
// from an expression.

namespace orvane::sql {

using Action = ast::SessionStatement::Action;

bool Parser::atWord(std::size_t ahead, std::wstring_view lowercase) const {
    return atAhead(ahead, TokenKind::Word) && toLowercase(text_.value(peek(ahead))) == lowercase;
}

bool Parser::acceptWord(std::wstring_view lowercase) {
    const bool isThere = atWord(0, lowercase);
    if (isThere) {
        advance();
    }
    return isThere;
}

void Parser::expectWord(std::wstring_view lowercase) {
    if (!acceptWord(lowercase)) {
        failAt(peek(), QCoreApplication::translate("orvane::sql", "здесь нужно слово «%0»")
                           .arg(fromSqlString(std::wstring(lowercase))));
    }
}

/// Null for a text that is none.
ast::NodePtr Parser::parseSessionStatement() {
    if (!at(TokenKind::Word) || !(atAhead(1, TokenKind::Word) || atAhead(1, TokenKind::QuotedName))) {
        return nullptr;
    }
    const std::size_t first = pos_;
    ast::NodePtr view = parseView();
    return placed(first, view ? std::move(view) : parseTransaction());
}

ast::NodePtr Parser::parseTransaction() {
    const auto make = [](Action action) { return std::make_shared<ast::SessionStatement>(action); };
    const bool isWhole = atWord(1, L"transaction") || atWord(1, L"work");
    if ((isWhole && atWord(0, L"begin")) || (atWord(0, L"start") && atWord(1, L"transaction"))) {
        advance();
        advance();
        return make(Action::Begin);
    }
    if (isWhole && atWord(0, L"commit")) {
        advance();
        advance();
        return make(Action::Commit);
    }
    std::shared_ptr<ast::SessionStatement> statement;
    if (atWord(0, L"rollback") && (isWhole || atWord(1, L"to"))) {
        advance();
        if (isWhole) {
            advance();
        }
        if (!acceptWord(L"to")) {
            return make(Action::Rollback);
        }
        acceptWord(L"savepoint");
        statement = make(Action::RollbackTo);
    } else if (atWord(0, L"savepoint")) {
        advance();
        statement = make(Action::SetSavepoint);
    } else if (atWord(0, L"release")) {
        advance();
        acceptWord(L"savepoint");
        statement = make(Action::Release);
    } else {
        return nullptr;
    }
    statement->name = expectName();
    return statement;
}

/// `Create Temporary View name (columns) As query`, or `Drop View [If Exists] name`.
ast::NodePtr Parser::parseView() {
    if (atWord(0, L"drop") && atWord(1, L"view")) {
        advance();
        advance();
        const auto statement = std::make_shared<ast::SessionStatement>(Action::DropView);
        if (atWord(0, L"if") && atAhead(1, Keyword::Exists)) {
            advance();
            advance();
            statement->ifExists = true;
        }
        statement->name = expectName();
        return statement;
    }
    const bool isTemporary = atWord(1, L"temporary") || atWord(1, L"temp");
    if (!atWord(0, L"create") || !(isTemporary || atWord(1, L"view"))) {
        return nullptr;
    }
    advance();
    if (!isTemporary) {
        failAt(peek(), QCoreApplication::translate(
                           "orvane::sql", "именованный запрос живёт только до конца сеанса: пишите Create "
                                          "Temporary View"));
    }
    advance();
    expectWord(L"view");
    const auto statement = std::make_shared<ast::SessionStatement>(Action::CreateView);
    statement->name = expectName();
    if (at(TokenKind::LeftParenthesis)) {
        statement->columns = parseColumnNames();
    }
    expect(Keyword::As);
    if (!startsQuery()) {
        failExpecting(Noun::Query);
    }
    statement->query = parseQuery();
    return statement;
}

} // namespace orvane::sql
