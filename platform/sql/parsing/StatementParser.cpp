#include "platform/sql/parsing/Parser.h"

#include <utility>

namespace orvane::sql {

/// Null when the text begins no statement and so has to be a lone expression.
ast::NodePtr Parser::parseStatement() {
    if (startsQuery()) {
        intoAllowed_ = true;
        return parseQuery();
    }
    const bool wordFollows = atAhead(1, TokenKind::Word) || atAhead(1, TokenKind::QuotedName);
    if (wordFollows && at(Keyword::Insert)) {
        return parseInsert();
    }
    if (wordFollows && at(Keyword::Update)) {
        return parseUpdate();
    }
    if (wordFollows && at(Keyword::Delete)) {
        return parseDelete();
    }
    return nullptr;
}

ast::NodePtr Parser::parseInsert() {
    advance();
    expect(Keyword::Into);
    auto statement = std::make_shared<ast::InsertStatement>();
    std::wstring name = expectName();
    statement->table = std::make_shared<ast::TablePrimary>(
        std::move(name), accept(Keyword::As) ? expectName() : std::wstring());
    if (at(TokenKind::LeftParenthesis) && !startsQuery()) {
        statement->columns = parseColumnNames();
    }
    statement->source = parseInsertSource();
    return statement;
}

ast::NodePtr Parser::parseInsertSource() {
    if (accept(Keyword::Default)) {
        expect(Keyword::Values);
        return nullptr;
    }
    if (!accept(Keyword::Values)) {
        if (!startsQuery()) {
            failExpecting(Noun::Query);
        }
        return parseQuery();
    }
    ast::NodeList rows;
    do {
        expect(TokenKind::LeftParenthesis);
        rows.push_back(std::make_shared<ast::RowValueExpression>(parseExpressions()));
        expect(TokenKind::RightParenthesis);
    } while (accept(TokenKind::Comma));
    return std::make_shared<ast::RowValueExpressionList>(std::move(rows));
}

ast::NodePtr Parser::parseUpdate() {
    advance();
    auto statement = std::make_shared<ast::UpdateStatement>();
    statement->table = parseTargetTable();
    expect(Keyword::Set);
    do {
        statement->assignments.push_back(parseSetClause());
    } while (accept(TokenKind::Comma));
    if (accept(Keyword::From)) {
        statement->from = parseFrom();
    }
    statement->where = parseOptionalWhere();
    return statement;
}

ast::NodePtr Parser::parseDelete() {
    advance();
    expect(Keyword::From);
    auto statement = std::make_shared<ast::DeleteStatement>();
    statement->table = parseTargetTable();
    statement->where = parseOptionalWhere();
    return statement;
}

ast::NodePtr Parser::parseTargetTable() {
    std::wstring name = expectName();
    return std::make_shared<ast::TablePrimary>(std::move(name), parseAlias());
}

ast::NodePtr Parser::parseSetClause() {
    ast::NodePtr target;
    if (at(TokenKind::LeftParenthesis)) {
        target = std::make_shared<ast::RowValueExpression>(parseColumnNames());
    } else {
        target = std::make_shared<ast::ColumnReference>(std::wstring(), expectName());
    }
    expect(TokenKind::Equal);
    return std::make_shared<ast::SetClause>(std::move(target), parseExpression());
}

ast::NodePtr Parser::parseOptionalWhere() {
    return accept(Keyword::Where) ? parseExpression() : nullptr;
}

} // namespace orvane::sql
