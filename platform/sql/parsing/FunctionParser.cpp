#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/parsing/Parser.h"

#include <QCoreApplication>

#include <utility>

namespace orvane::sql {

// At the "(" after the name.
ast::NodePtr Parser::parseFunction(std::wstring name) {
    advance();
    auto function = std::make_shared<ast::Function>(std::move(name));
    if (at(TokenKind::Asterisk)) {
        advance();
        function->arguments.push_back(std::make_shared<ast::QualifiedAsterisk>());
    } else if (at(TokenKind::Word) && atAhead(1, Keyword::From) &&
               toLowercase(function->name) == L"extract") {
        function->form = ast::Function::Extraction;
        const std::size_t first = pos_;
        function->arguments.push_back(placed(first, std::make_shared<ast::String>(takeValue())));
        expect(Keyword::From);
        function->arguments.push_back(parseExpression());
    } else if (!at(TokenKind::RightParenthesis)) {
        function->distinct = accept(Keyword::Distinct);
        if (!function->distinct) {
            accept(Keyword::All);
        }
        function->arguments = parseExpressions();
    }
    if (at(Keyword::Order) && !function->arguments.empty()) {
        const std::wstring lowercase = toLowercase(function->name);
        if (lowercase != L"string_agg" && lowercase != L"group_concat") {
            failAt(peek(), QCoreApplication::translate(
                               "orvane::sql", "порядок строк внутри функции знают только String_Agg и "
                                              "Group_Concat"));
        }
        function->orderBy = parseOrderBy();
    }
    expect(TokenKind::RightParenthesis);
    if (at(Keyword::Filter) && atAhead(1, TokenKind::LeftParenthesis)) {
        advance();
        advance();
        expect(Keyword::Where);
        function->filter = parseExpression();
        expect(TokenKind::RightParenthesis);
    }
    if (at(Keyword::Over) && atAhead(1, TokenKind::LeftParenthesis)) {
        advance();
        function->over = parseWindow();
    }
    return function;
}

std::shared_ptr<const ast::Window> Parser::parseWindow() {
    auto window = std::make_shared<ast::Window>();
    expect(TokenKind::LeftParenthesis);
    if (accept(Keyword::Partition)) {
        expect(Keyword::By);
        window->partitionBy = parseExpressions();
    }
    window->orderBy = parseOrderBy();
    if (accept(Keyword::Rows)) {
        window->frame = parseFrame(ast::Window::Unit::Rows);
    } else if (accept(Keyword::Range)) {
        window->frame = parseFrame(ast::Window::Unit::Range);
    } else if (accept(Keyword::Groups)) {
        window->frame = parseFrame(ast::Window::Unit::Groups);
    }
    expect(TokenKind::RightParenthesis);
    return window;
}

// After Rows, Range or Groups.
ast::Window::Frame Parser::parseFrame(ast::Window::Unit unit) {
    ast::Window::Frame frame;
    frame.unit = unit;
    if (accept(Keyword::Between)) {
        frame.start = parseBound(Keyword::Preceding);
        expect(Keyword::And);
        frame.end = parseBound(Keyword::Following);
    } else {
        frame.start = parseBound(Keyword::Preceding);
    }
    if (accept(Keyword::Exclude)) {
        using Exclusion = ast::Window::Exclusion;
        if (accept(Keyword::No)) {
            expect(Keyword::Others);
        } else if (accept(Keyword::Current)) {
            expect(Keyword::Row);
            frame.exclusion = Exclusion::CurrentRow;
        } else if (accept(Keyword::Group)) {
            frame.exclusion = Exclusion::Group;
        } else {
            expect(Keyword::Ties);
            frame.exclusion = Exclusion::Ties;
        }
    }
    return frame;
}

/// A frame cannot begin after everything or end before it: `unbounded` is the direction that Unbounded may
/// have.
ast::Window::Bound Parser::parseBound(Keyword unbounded) {
    using BoundKind = ast::Window::BoundKind;
    ast::Window::Bound bound;
    if (accept(Keyword::Current)) {
        expect(Keyword::Row);
    } else if (accept(Keyword::Unbounded)) {
        expect(unbounded);
        bound.kind =
            unbounded == Keyword::Preceding ? BoundKind::UnboundedPreceding : BoundKind::UnboundedFollowing;
    } else {
        bound.offset = parseExpression(Precedence::Join);
        if (accept(Keyword::Preceding)) {
            bound.kind = BoundKind::Preceding;
        } else {
            expect(Keyword::Following);
            bound.kind = BoundKind::Following;
        }
    }
    return bound;
}

} // namespace orvane::sql
