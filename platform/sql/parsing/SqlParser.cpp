#include "platform/sql/parsing/SqlParser.h"

#include "platform/sql/parsing/Parser.h"

#include <utility>

namespace orvane::sql {

bool isStandardBareFunction(const std::wstring& lowercaseName) {
    return lowercaseName == L"rownum" || lowercaseName == L"current_date" ||
           lowercaseName == L"current_time" || lowercaseName == L"current_timestamp";
}

bool SqlParser::parse(const std::string& text) {
    result_ = {};
    errors_.clear();
    const TokenizedText tokens = tokenize(text);
    if (tokens.error) {
        errors_.push_back(std::make_shared<SqlSyntaxError>(*tokens.error));
        return false;
    }
    try {
        Parser::Result parsed = Parser(tokens, context_).parseAll();
        result_ = ParseResult(std::move(parsed.node), parsed.isExpression);
        return true;
    } catch (const SqlSyntaxError& error) {
        errors_.push_back(std::make_shared<SqlSyntaxError>(error));
        return false;
    }
}

} // namespace orvane::sql
