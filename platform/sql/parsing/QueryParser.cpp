#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/parsing/Parser.h"

#include <QCoreApplication>

#include <utility>

namespace orvane::sql {

namespace {

/// Every query is one that can be ordered and limited.
ast::QueryExpression& expressionOf(const ast::NodePtr& query) {
    return static_cast<ast::QueryExpression&>(*query);
}

/// The query in parentheses, ready to take further clauses.
ast::NodePtr enclosed(ast::NodePtr query) {
    return std::make_shared<ast::QueryOperation>(ast::SetOperator::Union, std::move(query), nullptr);
}

/// Whether the word after a query goes on with it.
bool continuesQuery(Keyword keyword) {
    switch (keyword) {
    case Keyword::Union:
    case Keyword::Intersect:
    case Keyword::Except:
    case Keyword::Order:
    case Keyword::Limit:
    case Keyword::Offset:
    case Keyword::Fetch: return true;
    default: return false;
    }
}

} // namespace

/// Whether a query begins here, be it in parentheses.
bool Parser::startsQuery() const {
    const auto nameFollows = [this] {
        return atAhead(1, TokenKind::QuotedName) ||
               (atAhead(1, TokenKind::Word) && !isReserved(peek(1).keyword));
    };
    return at(Keyword::Select) || (at(Keyword::Values) && atAhead(1, TokenKind::LeftParenthesis)) ||
           ((at(Keyword::With) || at(Keyword::Table)) && nameFollows()) ||
           (at(TokenKind::LeftParenthesis) && startsParenthesizedQuery());
}

/// Tells `(Select 1) Union …` from `(Select 1) + 2`: by what follows the closing parenthesis.
bool Parser::startsParenthesizedQuery() const {
    std::size_t depth = 0;
    while (depth <= nestingLimit && atAhead(depth, TokenKind::LeftParenthesis)) {
        ++depth;
    }
    const bool isValues = atAhead(depth, Keyword::Values) && atAhead(depth + 1, TokenKind::LeftParenthesis);
    if (!atAhead(depth, Keyword::Select) && !atAhead(depth, Keyword::With) &&
        !atAhead(depth, Keyword::Table) && !isValues) {
        return false;
    }
    std::size_t open = depth;
    for (std::size_t i = pos_ + depth; i + 1 < text_.tokens.size(); ++i) {
        const TokenKind kind = text_.tokens[i].kind;
        open += kind == TokenKind::LeftParenthesis ? 1 : 0;
        open -= kind == TokenKind::RightParenthesis ? 1 : 0;
        if (kind != TokenKind::RightParenthesis || open >= depth) {
            continue;
        }
        depth = open;
        const Token& next = text_.tokens[i + 1];
        const bool ends = next.kind == TokenKind::RightParenthesis || next.kind == TokenKind::End ||
                          next.kind == TokenKind::Semicolon;
        if (depth == 0 || !(ends || continuesQuery(next.keyword))) {
            return ends || continuesQuery(next.keyword);
        }
    }
    return true; // a parenthesis is missing: let the query's own rules tell
}

ast::NodePtr Parser::parseQuery() {
    const Level level(*this);
    return at(Keyword::With) ? parseWithQuery() : parseQueryBody();
}

ast::NodePtr Parser::parseWithQuery() {
    const std::size_t first = pos_;
    advance();
    const bool recursive = at(Keyword::Recursive) && !atAhead(1, Keyword::As);
    if (recursive) {
        advance();
    }
    std::vector<ast::CommonTable> tables;
    do {
        tables.push_back(parseCommonTable());
    } while (accept(TokenKind::Comma));

    ast::NodePtr query = parseQueryBody();
    if (!expressionOf(query).with.empty()) {
        query = enclosed(std::move(query));
    }
    expressionOf(query).with = std::move(tables);
    expressionOf(query).recursive = recursive;
    query->place = since(first);
    return query;
}

ast::CommonTable Parser::parseCommonTable() {
    ast::CommonTable table;
    const std::size_t first = pos_;
    table.name = expectName();
    table.place = since(first);
    if (at(TokenKind::LeftParenthesis)) {
        table.columns = parseColumnNames();
    }
    expect(Keyword::As);
    expect(TokenKind::LeftParenthesis);
    table.query = parseQuery();
    expect(TokenKind::RightParenthesis);
    return table;
}

ast::NodePtr Parser::parseQueryBody() {
    const std::size_t first = pos_;
    ast::NodePtr query = parseIntersections();
    for (;;) {
        ast::SetOperator code = ast::SetOperator::Except;
        if (accept(Keyword::Union)) {
            code = accept(Keyword::All) ? ast::SetOperator::UnionAll : ast::SetOperator::Union;
            if (code == ast::SetOperator::Union) {
                accept(Keyword::Distinct);
            }
        } else if (!accept(Keyword::Except)) {
            return parseResultClauses(first, std::move(query));
        }
        intoAllowed_ = intoAllowed_ && nesting_ > 1; // the second part of the outermost query begins
        query = parseOperand(first, code, std::move(query), &Parser::parseIntersections);
    }
}

/// Intersect binds tighter than Union and Except.
ast::NodePtr Parser::parseIntersections() {
    const std::size_t first = pos_;
    ast::NodePtr query = parseQueryTerm();
    while (accept(Keyword::Intersect)) {
        query = parseOperand(first, ast::SetOperator::Intersect, std::move(query), &Parser::parseQueryTerm);
    }
    return query;
}

// After a set operator.
ast::NodePtr Parser::parseOperand(std::size_t first, ast::SetOperator code, ast::NodePtr left,
                                  ast::NodePtr (Parser::*parseRight)()) {
    if (++operands_ > operandLimit) {
        failAt(peek(), QCoreApplication::translate("orvane::sql", "больше %0 запросов, сложенных в один")
                           .arg(operandLimit));
    }
    ast::NodePtr right = (this->*parseRight)();
    return placed(first, std::make_shared<ast::QueryOperation>(code, std::move(left), std::move(right)));
}

ast::NodePtr Parser::parseQueryTerm() {
    if (accept(TokenKind::LeftParenthesis)) {
        ast::NodePtr query = parseQuery();
        expect(TokenKind::RightParenthesis);
        return query;
    }
    if (at(Keyword::Table)) {
        advance();
        return parseExplicitTable();
    }
    const std::size_t first = pos_;
    if (at(Keyword::Values) && atAhead(1, TokenKind::LeftParenthesis)) {
        advance();
        return placed(first, parseValues());
    }
    expect(Keyword::Select);
    return placed(first, parseSelect());
}

// After "Values".
ast::NodePtr Parser::parseValues() {
    auto query = std::make_shared<ast::QuerySpecification>();
    query->rows = parseRows();
    const auto& rows = static_cast<const ast::RowValueExpressionList&>(*query->rows).elements;
    for (const ast::NodePtr& value : static_cast<const ast::RowValueExpression&>(*rows.front()).values) {
        query->columns.push_back(std::make_shared<ast::DerivedColumn>(
            value, L"column" + std::to_wstring(query->columns.size() + 1)));
    }
    for (const ast::NodePtr& row : rows) {
        if (ast::rowSize(row) != query->columns.size()) {
            failAt({TokenKind::Number, Keyword::None, row->place.offset, row->place.length},
                   QCoreApplication::translate("orvane::sql", "здесь нужно значений в скобках: %0")
                       .arg(query->columns.size()));
        }
    }
    return query;
}

/// `(…), (…)`.
ast::NodePtr Parser::parseRows() {
    ast::NodeList rows;
    do {
        const std::size_t first = pos_;
        expect(TokenKind::LeftParenthesis);
        const auto row = std::make_shared<ast::RowValueExpression>(parseExpressions());
        expect(TokenKind::RightParenthesis);
        rows.push_back(placed(first, row));
    } while (accept(TokenKind::Comma));
    return std::make_shared<ast::RowValueExpressionList>(std::move(rows));
}

// After "Select".
ast::NodePtr Parser::parseSelect() {
    auto query = std::make_shared<ast::QuerySpecification>();
    if (accept(Keyword::Distinct)) {
        query->quantifier = ast::SetQuantifier::Distinct;
    } else if (accept(Keyword::All)) {
        query->quantifier = ast::SetQuantifier::All;
    }
    do {
        query->columns.push_back(parseDerivedColumn());
    } while (accept(TokenKind::Comma));
    if (at(Keyword::Into)) {
        if (!intoAllowed_ || nesting_ > 1) {
            failAt(peek(),
                   QCoreApplication::translate("orvane::sql", "Into годится только в самом внешнем запросе"));
        }
        advance();
        using Target = ast::IntoClause::Target;
        const std::size_t first = pos_;
        query->into =
            placed(first, at(TokenKind::Text) ? std::make_shared<ast::IntoClause>(takeValue(), Target::File)
                                              : std::make_shared<ast::IntoClause>(expectName()));
    }
    if (accept(Keyword::From)) {
        query->from = parseFrom();
    }
    if (accept(Keyword::Where)) {
        query->where = parseExpression();
    }
    if (accept(Keyword::Group)) {
        expect(Keyword::By);
        query->groupBy = parseExpressions();
    }
    if (accept(Keyword::Having)) {
        query->having = parseExpression();
    }
    return query;
}

ast::NodePtr Parser::parseDerivedColumn() {
    const std::size_t first = pos_;
    ast::NodePtr expression;
    if (accept(TokenKind::Asterisk)) {
        expression = std::make_shared<ast::QualifiedAsterisk>();
    } else if (atName() && atAhead(1, TokenKind::Dot) && atAhead(2, TokenKind::Asterisk)) {
        expression = std::make_shared<ast::QualifiedAsterisk>(takeValue());
        advance();
        advance();
    } else {
        const auto column = placed(first, std::make_shared<ast::DerivedColumn>(parseExpression()));
        column->alias = parseAlias();
        return column;
    }
    return placed(first, std::make_shared<ast::DerivedColumn>(placed(first, std::move(expression))));
}

// After "From".
ast::NodePtr Parser::parseFrom() {
    ast::NodeList sources;
    do {
        sources.push_back(parseJoinedTable());
    } while (accept(TokenKind::Comma));
    return std::make_shared<ast::FromSource>(std::move(sources));
}

ast::NodePtr Parser::parseJoinedTable() {
    const Level level(*this);
    ast::NodePtr left = parseTablePrimary();
    while (const std::optional<JoinWords> words = parseJoinWords()) {
        ast::NodePtr right = parseTablePrimary();
        ast::NodePtr matching;
        if (words->cross) {
            // Not "Cross Join", by which SQLite forbids itself to choose the order of the tables.
            matching = std::make_shared<ast::JoinCondition>(
                std::make_shared<ast::TernaryLogicNode>(TernaryLogic::True));
        } else if (accept(Keyword::Using)) {
            matching = std::make_shared<ast::NamedColumnsJoin>(parseColumnNames());
        } else if (!words->natural) {
            expect(Keyword::On);
            matching = std::make_shared<ast::JoinCondition>(parseExpression());
        }
        left = std::make_shared<ast::JoinNode>(words->kind, words->natural, std::move(left), std::move(right),
                                               std::move(matching));
        grow();
    }
    return left;
}

/// The words up to and with Join; nothing when no join follows.
std::optional<Parser::JoinWords> Parser::parseJoinWords() {
    JoinWords words;
    words.natural = accept(Keyword::Natural);
    words.cross = !words.natural && accept(Keyword::Cross);
    bool stated = words.natural || words.cross;
    if (!words.cross) {
        constexpr std::pair<Keyword, ast::JoinKind> outerKinds[] = {{Keyword::Left, ast::JoinKind::Left},
                                                                    {Keyword::Right, ast::JoinKind::Right},
                                                                    {Keyword::Full, ast::JoinKind::Full}};
        for (const auto& [keyword, kind] : outerKinds) {
            if (words.kind == ast::JoinKind::Inner && accept(keyword)) {
                words.kind = kind;
                accept(Keyword::Outer);
            }
        }
        stated = words.kind != ast::JoinKind::Inner || accept(Keyword::Inner) || stated;
    }
    if (stated) {
        expect(Keyword::Join);
        return words;
    }
    return accept(Keyword::Join) ? std::optional(words) : std::nullopt;
}

ast::NodePtr Parser::parseTablePrimary() {
    if (at(TokenKind::LeftParenthesis)) {
        advance();
        if (startsQuery()) {
            return parseDerivedTable();
        }
        ast::NodePtr joined = parseJoinedTable();
        expect(TokenKind::RightParenthesis);
        return joined;
    }
    const auto table = parseTableName();
    if (at(TokenKind::LeftParenthesis)) {
        if (toLowercase(table->name) !=
            L"generate_series") { // SQLite would take arguments for any table's hidden columns
            failAt(peek(), QCoreApplication::translate("orvane::sql",
                                                       "таблица «%0» пишется без скобок: она не функция")
                               .arg(fromSqlString(table->name)));
        }
        advance();
        table->isCall = true;
        table->arguments = at(TokenKind::RightParenthesis) ? ast::NodeList() : parseExpressions();
        expect(TokenKind::RightParenthesis);
    }
    table->alias = parseAlias();
    if (table->isCall && !table->alias.empty() && at(TokenKind::LeftParenthesis)) {
        advance();
        table->columnName = expectName();
        expect(TokenKind::RightParenthesis);
    }
    return table;
}

// After "(".
ast::NodePtr Parser::parseDerivedTable() {
    ast::NodePtr query = parseQuery();
    expect(TokenKind::RightParenthesis);
    const auto table = std::make_shared<ast::DerivedTable>(std::move(query), parseAlias());
    if (!table->alias.empty() && at(TokenKind::LeftParenthesis)) {
        table->columns = parseColumnNames();
    }
    tables_.push_back(table);
    return table;
}

ast::NodePtr Parser::parseResultClauses(std::size_t first, ast::NodePtr query) {
    if (at(Keyword::Order) || at(Keyword::Limit) || at(Keyword::Offset) || at(Keyword::Fetch)) {
        const ast::QueryExpression& inner = expressionOf(query);
        if (!inner.orderBy.empty() || inner.limit || inner.offset) {
            query = enclosed(std::move(query));
        }
        expressionOf(query).orderBy = parseOrderBy();
        parseLimit(expressionOf(query));
    } else {
        for (const Keyword absent : {Keyword::Order, Keyword::Limit, Keyword::Offset}) {
            accept(absent); // for the message, should nothing else fit
        }
        return query;
    }
    query->place = since(first);
    return query;
}

/// `Limit n [Offset m]`, `Limit m, n`, or the standard's `[Offset m Rows] [Fetch First n Rows Only]`.
void Parser::parseLimit(ast::QueryExpression& query) {
    const auto acceptRows = [this] { return accept(Keyword::Rows) || accept(Keyword::Row); };
    if (accept(Keyword::Limit)) {
        query.limit = parseExpression();
        if (accept(TokenKind::Comma)) {
            query.offset = std::exchange(query.limit, parseExpression());
            query.offsetFirst = true;
        }
    }
    if (!query.offset && accept(Keyword::Offset)) {
        query.offset = parseExpression();
        acceptRows();
    }
    if (!query.limit && accept(Keyword::Fetch)) {
        if (!accept(Keyword::First)) {
            expect(Keyword::Next);
        }
        query.limit = parseExpression();
        query.offsetFirst = query.offset != nullptr;
        acceptRows();
        expect(Keyword::Only);
    }
}

ast::NodeList Parser::parseOrderBy() {
    ast::NodeList terms;
    if (accept(Keyword::Order)) {
        expect(Keyword::By);
        do {
            terms.push_back(parseSortSpecification());
        } while (accept(TokenKind::Comma));
    }
    return terms;
}

ast::NodePtr Parser::parseSortSpecification() {
    using Sort = ast::SortSpecification;
    const std::size_t first = pos_;
    auto term = placed(first, std::make_shared<Sort>(parseExpression()));
    if (accept(Keyword::Asc)) {
        term->direction = Sort::Direction::Ascending;
    } else if (accept(Keyword::Desc)) {
        term->direction = Sort::Direction::Descending;
    }
    if (accept(Keyword::Nulls)) {
        if (accept(Keyword::First)) {
            term->nulls = Sort::Nulls::First;
        } else {
            expect(Keyword::Last);
            term->nulls = Sort::Nulls::Last;
        }
    }
    return term;
}

/// `(a, b)`.
ast::NodeList Parser::parseColumnNames() {
    ast::NodeList columns;
    expect(TokenKind::LeftParenthesis);
    do {
        const std::size_t first = pos_;
        columns.push_back(
            placed(first, std::make_shared<ast::ColumnReference>(std::wstring(), expectName())));
    } while (accept(TokenKind::Comma));
    expect(TokenKind::RightParenthesis);
    return columns;
}

} // namespace orvane::sql
