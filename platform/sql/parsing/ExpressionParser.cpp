#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/parsing/Parser.h"
#include "platform/sql/tree/CastType.h"
#include "platform/sql/tree/Queries.h"

#include <QCoreApplication>

#include <utility>

namespace orvane::sql {

namespace {

constexpr Precedence tighter(Precedence precedence) {
    return static_cast<Precedence>(static_cast<int>(precedence) + 1);
}

/// Whether a token after a word can only begin an operand: signs may as well be operators.
bool beginsOperand(const Token& token) {
    switch (token.keyword) {
    case Keyword::Case:
    case Keyword::Cast:
    case Keyword::Exists:
    case Keyword::False:
    case Keyword::Null:
    case Keyword::True:
    case Keyword::Unknown: return true;
    default: break;
    }
    return token.kind == TokenKind::LeftParenthesis ||
           (token.kind <= TokenKind::Parameter &&
            (!isReserved(token.keyword) || isFunctionWord(token.keyword)));
}

/// The rows of a query that is nothing but Values, as a list; any other query as it is.
ast::NodePtr listOf(ast::NodePtr query) {
    const auto* values = ast::nodeAs<ast::QuerySpecification>(query);
    if (!values || !values->rows || values->hasClauses()) {
        return query;
    }
    ast::NodeList list;
    for (const ast::NodePtr& element :
         static_cast<const ast::RowValueExpressionList&>(*values->rows).elements) {
        const auto& row = static_cast<const ast::RowValueExpression&>(*element);
        list.push_back(row.values.size() == 1 ? row.values.front() : element);
    }
    return std::make_shared<ast::RowValueExpressionList>(std::move(list));
}

OperationCode symbolOperator(TokenKind kind) {
    switch (kind) {
    case TokenKind::Plus: return OperationCode::Add;
    case TokenKind::Minus: return OperationCode::Subtract;
    case TokenKind::Asterisk: return OperationCode::Multiply;
    case TokenKind::Slash: return OperationCode::Divide;
    case TokenKind::Backslash: return OperationCode::Quotient;
    case TokenKind::Percent: return OperationCode::Mod;
    case TokenKind::Caret: return OperationCode::Power;
    case TokenKind::Ampersand: return OperationCode::Join;
    case TokenKind::Equal: return OperationCode::Equal;
    case TokenKind::NotEqual: return OperationCode::NotEqual;
    case TokenKind::Less: return OperationCode::Less;
    case TokenKind::Greater: return OperationCode::Greater;
    case TokenKind::LessOrEqual: return OperationCode::LessOrEqual;
    case TokenKind::GreaterOrEqual: return OperationCode::GreaterOrEqual;
    default: return OperationCode::None;
    }
}

} // namespace

// An operator-precedence parser: operands are parsed with the loosest operator they may contain. All
// operators of two operands associate to the left, the power included (2 ^ 3 ^ 2 is 64).
ast::NodePtr Parser::parseExpression(Precedence loosest) {
    const Level level(*this);
    const std::size_t first = pos_;
    ast::NodePtr left = placed(first, parsePrefix());
    for (;;) {
        const OperationCode code = infixOperator();
        if (code == OperationCode::None || precedenceOf(code) < loosest) {
            return left;
        }
        left = placed(first, parseInfix(code, std::move(left)));
        grow();
    }
}

ast::NodeList Parser::parseExpressions() {
    ast::NodeList list;
    do {
        list.push_back(parseExpression());
    } while (accept(TokenKind::Comma));
    return list;
}

ast::NodePtr Parser::parsePrefix() {
    const auto unary = [this](OperationCode code, Precedence operand) -> ast::NodePtr {
        advance();
        return std::make_shared<ast::Operation>(code, parseExpression(operand));
    };
    if (at(Keyword::Not)) {
        return unary(OperationCode::Not, Precedence::Not);
    }
    if (at(TokenKind::Minus)) {
        return unary(OperationCode::Negate, Precedence::Sign);
    }
    if (at(TokenKind::Plus)) {
        return unary(OperationCode::UnaryPlus, Precedence::Sign);
    }
    return parsePrimary();
}

OperationCode Parser::infixOperator() const {
    return peek().kind == TokenKind::Word ? infixKeyword() : symbolOperator(peek().kind);
}

OperationCode Parser::infixKeyword() const {
    switch (peek().keyword) {
    case Keyword::Or: return OperationCode::Or;
    case Keyword::Xor: return OperationCode::Xor;
    case Keyword::And: return OperationCode::And;
    case Keyword::Mod: return OperationCode::Mod;
    case Keyword::Collate: return OperationCode::Collate;
    case Keyword::Is: return OperationCode::Is;
    case Keyword::In: return OperationCode::In;
    case Keyword::Between: return OperationCode::Between;
    case Keyword::ILike: // letter case makes no difference to Like
    case Keyword::Like: return OperationCode::Like;
    case Keyword::RegExp: return OperationCode::RegExp;
    case Keyword::Glob: return OperationCode::Glob;
    case Keyword::Intersects: return OperationCode::Intersects;
    case Keyword::Within: return OperationCode::Within;
    case Keyword::Partly:
        return atAhead(1, Keyword::Within) ? OperationCode::PartlyWithin : OperationCode::None;
    case Keyword::Entirely:
        return atAhead(1, Keyword::Within) ? OperationCode::EntirelyWithin : OperationCode::None;
    case Keyword::Contains:
        // `a Contains part` may also mean a column of that name; then no operand follows.
        if ((atAhead(1, Keyword::Part) || atAhead(1, Keyword::Entire)) && beginsOperand(peek(2))) {
            return atAhead(1, Keyword::Part) ? OperationCode::ContainsPart : OperationCode::ContainsEntire;
        }
        return OperationCode::Contains;
    case Keyword::Not:
        switch (peek(1).keyword) {
        case Keyword::In: return OperationCode::NotIn;
        case Keyword::Between: return OperationCode::NotBetween;
        case Keyword::ILike:
        case Keyword::Like: return OperationCode::NotLike;
        case Keyword::RegExp: return OperationCode::NotRegExp;
        case Keyword::Glob: return OperationCode::NotGlob;
        default: return OperationCode::None;
        }
    default: return OperationCode::None;
    }
}

void Parser::skipOperator(OperationCode code) {
    switch (code) {
    case OperationCode::NotIn:
    case OperationCode::NotBetween:
    case OperationCode::NotLike:
    case OperationCode::NotGlob:
    case OperationCode::NotRegExp:
    case OperationCode::ContainsPart:
    case OperationCode::ContainsEntire:
    case OperationCode::PartlyWithin:
    case OperationCode::EntirelyWithin: advance(); break;
    default: break;
    }
    advance();
}

ast::NodePtr Parser::parseInfix(OperationCode code, ast::NodePtr left) {
    skipOperator(code);
    const Precedence operand = tighter(precedenceOf(code));
    switch (code) {
    case OperationCode::Collate: return std::make_shared<ast::Operation>(code, std::move(left), expectName());
    case OperationCode::Is: return parseIs(std::move(left));
    case OperationCode::In:
    case OperationCode::NotIn: {
        ast::NodePtr list = parseInOperand();
        checkRows(left, list);
        return std::make_shared<ast::Operation>(code, std::move(left), std::move(list));
    }
    case OperationCode::Between:
    case OperationCode::NotBetween: {
        auto low = parseExpression(operand);
        expect(Keyword::And);
        auto high = parseExpression(operand);
        return std::make_shared<ast::Operation>(
            code, std::move(left), std::make_shared<ast::Range>(std::move(low), std::move(high)));
    }
    case OperationCode::Like:
    case OperationCode::NotLike:
    case OperationCode::Glob:
    case OperationCode::NotGlob: {
        auto pattern = parseExpression(operand);
        auto escape = accept(Keyword::Escape) ? parseExpression(operand) : nullptr;
        return std::make_shared<ast::Operation>(code, std::move(left), std::move(pattern), std::move(escape));
    }
    default: return std::make_shared<ast::Operation>(code, std::move(left), parseExpression(operand));
    }
}

// After "Is".
ast::NodePtr Parser::parseIs(ast::NodePtr left) {
    const bool negated = accept(Keyword::Not);
    if (accept(Keyword::Null)) {
        return std::make_shared<ast::Operation>(negated ? OperationCode::IsNotNull : OperationCode::IsNull,
                                                std::move(left));
    }
    OperationCode code = negated ? OperationCode::IsNot : OperationCode::Is;
    if (at(Keyword::Distinct)) {
        advance();
        expect(Keyword::From);
        code = negated ? OperationCode::Is : OperationCode::IsDistinctFrom;
    }
    return std::make_shared<ast::Operation>(code, std::move(left),
                                            parseExpression(tighter(Precedence::Comparison)));
}

// After "In": a list, a query, or the name of a table with one column.
ast::NodePtr Parser::parseInOperand() {
    const std::size_t first = pos_;
    if (atName()) {
        return parseExplicitTable();
    }
    expect(TokenKind::LeftParenthesis);
    ast::NodePtr operand;
    if (startsQuery()) {
        operand = listOf(parseQuery());
    } else if (at(TokenKind::RightParenthesis)) {
        operand = std::make_shared<ast::RowValueExpressionList>(ast::NodeList());
    } else {
        ast::NodeList list = parseExpressions();
        operand = list.size() == 1 && ast::isQuery(list.front())
                      ? list.front()
                      : std::make_shared<ast::RowValueExpressionList>(std::move(list));
    }
    expect(TokenKind::RightParenthesis);
    return placed(first, std::move(operand));
}

/// Each element of a list has to be as large as what is looked for in it.
void Parser::checkRows(const ast::NodePtr& value, const ast::NodePtr& operand) const {
    const std::size_t size = ast::rowSize(value);
    const auto* list = ast::nodeAs<ast::RowValueExpressionList>(operand);
    for (const ast::NodePtr& element : list&& size != 0 ? list->elements : ast::NodeList()) {
        const std::size_t elementSize = ast::rowSize(element);
        if (elementSize == 0 || elementSize == size) {
            continue;
        }
        const Token place{TokenKind::Number, Keyword::None, element->place.offset, element->place.length};
        failAt(
            place,
            size == 1
                ? QCoreApplication::translate("orvane::sql", "здесь нужно одно значение")
                : QCoreApplication::translate("orvane::sql", "здесь нужно значений в скобках: %0").arg(size));
    }
}

ast::NodePtr Parser::parsePrimary() {
    switch (peek().kind) {
    case TokenKind::Number: return std::make_shared<ast::Number>(takeValue());
    case TokenKind::Text: return std::make_shared<ast::String>(takeValue());
    case TokenKind::Hexadecimal:
        return std::make_shared<ast::String>(takeValue(), ast::String::Content::Hexadecimal);
    case TokenKind::Parameter: return std::make_shared<ast::ContextuallyTypedValueSpecification>(takeValue());
    case TokenKind::LeftParenthesis: return parseParenthesized();
    case TokenKind::QuotedName: return parseNamePrimary();
    case TokenKind::Word: return parseWordPrimary();
    default: failExpecting(Noun::Expression);
    }
}

ast::NodePtr Parser::parseWordPrimary() {
    const Keyword keyword = peek().keyword;
    const auto truth = [this](TernaryLogic::Value value) -> ast::NodePtr {
        advance();
        return std::make_shared<ast::TernaryLogicNode>(value);
    };
    switch (keyword) {
    case Keyword::None: return parseNamePrimary();
    case Keyword::Null: advance(); return std::make_shared<ast::ContextuallyTypedValueSpecification>();
    case Keyword::True: return truth(TernaryLogic::True);
    case Keyword::False: return truth(TernaryLogic::False);
    case Keyword::Unknown: return truth(TernaryLogic::Unknown);
    case Keyword::Case: return parseCase();
    case Keyword::Cast: return parseCast();
    case Keyword::Exists: return parseExists();
    case Keyword::Date:
    case Keyword::Time:
    case Keyword::Timestamp:
        if (atAhead(1, TokenKind::Text)) {
            advance();
            return std::make_shared<ast::String>(takeValue());
        }
        break;
    default: break;
    }
    if (!isReserved(keyword)) {
        return parseNamePrimary();
    }
    if (isFunctionWord(keyword) && atAhead(1, TokenKind::LeftParenthesis)) {
        return parseFunction(takeValue());
    }
    failExpecting(Noun::Expression);
}

// A column, a function, or a word that stands for a function.
ast::NodePtr Parser::parseNamePrimary() {
    const bool bare = at(TokenKind::Word);
    std::wstring name = takeValue();
    if (at(TokenKind::LeftParenthesis)) {
        return parseFunction(std::move(name));
    }
    if (at(TokenKind::Dot)) {
        const std::size_t afterDot = peek().offset + 1;
        advance();
        // A word right after the dot is a name, whichever it is; after a blank it may as well begin the next
        // clause.
        if (!atName() && !(at(TokenKind::Word) && peek().offset == afterDot)) {
            failExpecting(Noun::Name);
        }
        return std::make_shared<ast::ColumnReference>(std::move(name), takeValue());
    }
    if (bare && isBareFunction(name)) {
        return std::make_shared<ast::Function>(std::move(name), ast::NodeList(), ast::Function::Bare);
    }
    return std::make_shared<ast::ColumnReference>(std::wstring(), std::move(name));
}

// `(query)`, `(expression)` or `(a, b)`.
ast::NodePtr Parser::parseParenthesized() {
    advance();
    ast::NodePtr inner;
    if (startsQuery()) {
        inner = parseQuery();
    } else {
        ast::NodeList values = parseExpressions();
        if (values.size() > 1) {
            inner = std::make_shared<ast::RowValueExpression>(std::move(values));
        } else {
            inner = std::move(values.front());
        }
    }
    expect(TokenKind::RightParenthesis);
    return inner;
}

ast::NodePtr Parser::parseExists() {
    advance();
    expect(TokenKind::LeftParenthesis);
    ast::NodePtr query = parseQuery();
    expect(TokenKind::RightParenthesis);
    return std::make_shared<ast::Operation>(OperationCode::Exists, std::move(query));
}

ast::NodePtr Parser::parseCase() {
    advance();
    ast::NodePtr operand = at(Keyword::When) ? nullptr : parseExpression();
    ast::NodeList branches;
    expect(Keyword::When);
    do {
        ast::NodePtr when = parseExpression();
        expect(Keyword::Then);
        branches.push_back(
            std::make_shared<ast::RowValueExpression>(ast::NodeList{std::move(when), parseExpression()}));
    } while (accept(Keyword::When));
    if (accept(Keyword::Else)) {
        branches.push_back(std::make_shared<ast::RowValueExpression>(ast::NodeList{parseExpression()}));
    }
    expect(Keyword::End);
    return std::make_shared<ast::Operation>(
        OperationCode::Case, std::move(operand),
        std::make_shared<ast::RowValueExpressionList>(std::move(branches)));
}

ast::NodePtr Parser::parseCast() {
    advance();
    expect(TokenKind::LeftParenthesis);
    ast::NodePtr value = parseExpression();
    expect(Keyword::As);
    std::wstring type = parseTypeName();
    expect(TokenKind::RightParenthesis);
    return std::make_shared<ast::Operation>(OperationCode::Cast, std::move(value), std::move(type));
}

/// `Integer`, `Double Precision`, `Decimal(10, 2)`: the words as written, one blank between them.
std::wstring Parser::parseTypeName() {
    const Token& first = peek();
    if (!at(TokenKind::Word) || !atName()) {
        failExpecting(Noun::Name);
    }
    std::wstring type = takeValue();
    while (at(TokenKind::Word) && atName()) {
        type += L' ' + takeValue();
    }
    if (!findCastType(type)) {
        failAt(first, QCoreApplication::translate("orvane::sql",
                                                  "неизвестный тип «%0»; Cast знает Integer, Real, Numeric, "
                                                  "Text, Blob, Date, Time и Timestamp")
                          .arg(fromSqlString(type)));
    }
    if (accept(TokenKind::LeftParenthesis)) { // SQLite takes one number or two
        type += L'(' + expectNumber();
        type += accept(TokenKind::Comma) ? L',' + expectNumber() : std::wstring();
        type += L')';
        expect(TokenKind::RightParenthesis);
    }
    return type;
}

std::wstring Parser::expectNumber() {
    if (!at(TokenKind::Number)) {
        failExpecting(Noun::Expression);
    }
    return takeValue();
}

} // namespace orvane::sql
