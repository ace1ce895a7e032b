#include "platform/sql/parsing/SqlParser.h"

#include "platform/sql/parsing/Parser.h"

#include <utility>

namespace orvane::sql {

bool SqlParser::parse(const std::string& text) {
    result_ = {};
    errors_.clear();
    TokenizedText tokens = tokenize(text);
    Parser parser(tokens);
    try {
        Parser::Result parsed = parser.parseAll();
        if (!tokens.error) {
            result_ = ParseResult(std::move(parsed.node), parsed.isExpression, std::move(tokens.source));
        }
    } catch (const SqlSyntaxError& error) {
        errors_.push_back(std::make_shared<SqlSyntaxError>(error));
    }
    tables_ = parser.takeTables();
    if (tokens.error) { // it comes before any other: the tokens end there
        errors_.assign(1, std::make_shared<SqlSyntaxError>(*tokens.error));
    }
    return errors_.empty();
}

} // namespace orvane::sql
