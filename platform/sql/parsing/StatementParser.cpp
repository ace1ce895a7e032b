#include "platform/sql/parsing/Parser.h"
#include "platform/sql/tree/Queries.h"

#include <QCoreApplication>

#include <utility>

namespace orvane::sql {

/// Null when the text begins no statement and so has to be a lone expression.
ast::NodePtr Parser::parseStatement() {
    if (startsQuery()) {
        intoAllowed_ = true;
        return parseQuery();
    }
    if (ast::NodePtr statement = parseSessionStatement()) {
        return statement;
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
    const auto table = parseTableName();
    table->alias = accept(Keyword::As) ? expectName() : std::wstring();
    statement->table = table;
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
    if (at(Keyword::Values) && !atAhead(1, TokenKind::LeftParenthesis)) {
        advance();
        expect(TokenKind::LeftParenthesis);
    }
    if (!startsQuery()) {
        accept(Keyword::Values); // for the message
        failExpecting(Noun::Query);
    }
    ast::NodePtr query = parseQuery();
    const auto* values = ast::nodeAs<ast::QuerySpecification>(query);
    return values && values->rows && !values->hasClauses() ? values->rows : query;
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
    const auto table = parseTableName();
    table->alias = parseAlias();
    return table;
}

ast::NodePtr Parser::parseSetClause() {
    const std::size_t first = pos_;
    ast::NodePtr target;
    if (at(TokenKind::LeftParenthesis)) {
        target = std::make_shared<ast::RowValueExpression>(parseColumnNames());
    } else {
        target = std::make_shared<ast::ColumnReference>(std::wstring(), expectName());
    }
    target = placed(first, std::move(target));
    const Token& sign = peek();
    expect(TokenKind::Equal);
    if (sign.length > 1) {
        failAt(sign,
               QCoreApplication::translate("orvane::sql",
                                           "здесь пишется «=»: значение задаётся, а не сравнивается"),
               {L"="});
    }
    return placed(first, std::make_shared<ast::SetClause>(std::move(target), parseExpression()));
}

ast::NodePtr Parser::parseOptionalWhere() {
    return accept(Keyword::Where) ? parseExpression() : nullptr;
}

} // namespace orvane::sql
