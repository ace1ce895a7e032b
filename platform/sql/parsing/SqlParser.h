#pragma once

#include "platform/Export.h"
#include "platform/sql/lexing/SqlError.h"
#include "platform/sql/parsing/ParseContext.h"
#include "platform/sql/tree/Node.h"

#include <memory>
#include <string>
#include <vector>

namespace orvane::sql {

/// A parsed statement. Copies share the tree.
class ParseResult {
public:
    ParseResult() = default;
    ParseResult(std::shared_ptr<ast::Node> node, bool isExpression, std::wstring source)
        : node_(std::move(node)), isExpression_(isExpression), source_(std::move(source)) {}

    /// The root of the tree; null before anything was parsed.
    const std::shared_ptr<ast::Node>& node() const { return node_; }
    /// Whether the text was a value expression rather than a statement.
    bool isExpression() const { return isExpression_; }
    /// The text, which the places of the nodes refer to.
    const std::wstring& source() const { return source_; }
    /// What the user wrote at a place.
    std::wstring text(ast::SourceRange place) const { return source_.substr(place.offset, place.length); }

private:
    std::shared_ptr<ast::Node> node_;
    bool isExpression_ = false;
    std::wstring source_;
};

/// Turns a statement or a lone expression of the dialect into its tree. Any number of texts one after
/// another; one thread at a time.
class ORVANE_PLATFORM_EXPORT SqlParser {
public:
    /// The context, not owned, may be null.
    explicit SqlParser(const ParseContext* /*context*/) {}

    /// Parses UTF-8 text holding one statement, a final ";" allowed. False when it has a fault: then errors()
    /// tells where, and result() is empty. Throws nothing for the text's sake, however broken, long or deep
    /// it is.
    bool parse(const std::string& text);

    const ParseResult& result() const { return result_; }
    const std::vector<std::shared_ptr<SqlSyntaxError>>& errors() const { return errors_; }
    /// What the text has where a table may stand: TablePrimary, DerivedTable and ExplicitTable, in its order.
    /// Where the text has a fault, those before it: a statement may be asked about while it is being written.
    const ast::NodeList& tables() const { return tables_; }

private:
    ParseResult result_;
    std::vector<std::shared_ptr<SqlSyntaxError>> errors_;
    ast::NodeList tables_;
};

} // namespace orvane::sql
