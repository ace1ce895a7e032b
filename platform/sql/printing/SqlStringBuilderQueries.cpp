#include "platform/sql/printing/SqlStringBuilder.h"

#include <utility>

namespace orvane::sql {

namespace {

/// Whether a join in a From list with commas needs parentheses: SQLite reads commas as joins from left to
/// right, so a later source would not be joined on its own.
bool readsSourcesBefore(const ast::NodePtr& source) {
    const auto* join = ast::nodeAs<ast::JoinNode>(source);
    if (!join) {
        return false;
    }
    const bool byNames = join->natural || ast::nodeAs<ast::NamedColumnsJoin>(join->matching);
    return byNames || join->join == ast::JoinKind::Right || join->join == ast::JoinKind::Full ||
           readsSourcesBefore(join->left);
}

} // namespace

void SqlStringBuilder::appendAlias(std::wstring& text, const std::wstring& alias) const {
    if (!alias.empty()) {
        text += inTarget_ ? L" As " : L" ";
        appendName(text, alias);
    }
}

void SqlStringBuilder::visit(const ast::TablePrimary& node) {
    std::wstring text;
    appendName(text, node.name);
    if (node.isCall) {
        text.push_back(L'(');
        appendList(text, node.arguments);
        text.push_back(L')');
    }
    appendAlias(text, node.alias);
    if (!node.columnName.empty()) {
        text.push_back(L'(');
        appendName(text, node.columnName);
        text.push_back(L')');
    }
    push(std::move(text));
}

void SqlStringBuilder::visit(const ast::DerivedTable& node) {
    std::wstring text = L'(' + render(node.query) + L')';
    appendAlias(text, node.alias);
    if (!node.columns.empty()) {
        text.push_back(L'(');
        appendNames(text, node.columns);
        text.push_back(L')');
    }
    push(std::move(text));
}

void SqlStringBuilder::visit(const ast::ExplicitTable& node) {
    std::wstring text = renderWith(node) + L"Table ";
    appendName(text, node.name);
    appendResultClauses(text, node);
    push(std::move(text));
}

void SqlStringBuilder::visit(const ast::FromSource& node) {
    std::wstring text;
    for (const ast::NodePtr& source : node.sources) {
        text += text.empty() ? L"" : L", ";
        const bool enclosed = source != node.sources.front() && readsSourcesBefore(source);
        text += enclosed ? L'(' + render(source) + L')' : render(source);
    }
    push(std::move(text));
}

void SqlStringBuilder::visit(const ast::JoinCondition& node) {
    push(L"On " + renderCondition(node.condition));
}

void SqlStringBuilder::visit(const ast::NamedColumnsJoin& node) {
    std::wstring text = L"Using (";
    appendNames(text, node.columns);
    text.push_back(L')');
    push(std::move(text));
}

void SqlStringBuilder::visit(const ast::JoinNode& node) {
    constexpr const wchar_t* kinds[] = {L"Join ", L"Left Join ", L"Right Join ", L"Full Join "};
    std::wstring text = render(node.left);
    text += node.natural ? L" Natural " : L" ";
    text += kinds[static_cast<int>(node.join)];
    const bool rightIsJoin = node.right && node.right->kind == ast::NodeKind::JoinNode;
    text += rightIsJoin ? L'(' + render(node.right) + L')' : render(node.right);
    if (node.matching) {
        text += L' ' + render(node.matching);
    }
    push(std::move(text));
}

void SqlStringBuilder::visit(const ast::DerivedColumn& node) {
    std::wstring text = renderValue(node.expression);
    if (!node.alias.empty()) {
        text += L" As ";
        appendName(text, node.alias);
    }
    push(std::move(text));
}

void SqlStringBuilder::visit(const ast::IntoClause& node) {
    std::wstring text = L"Into ";
    if (node.target == ast::IntoClause::Target::File) {
        text += render(std::make_shared<ast::String>(node.name));
    } else {
        appendName(text, node.name);
    }
    push(std::move(text));
}

void SqlStringBuilder::visit(const ast::SortSpecification& node) {
    using Sort = ast::SortSpecification;
    std::wstring text = renderKey(node.key);
    if (node.direction != Sort::Direction::Unstated) {
        text += node.direction == Sort::Direction::Ascending ? L" Asc" : L" Desc";
    }
    if (node.nulls != Sort::Nulls::Unstated) {
        text += node.nulls == Sort::Nulls::First ? L" Nulls First" : L" Nulls Last";
    }
    push(std::move(text));
}

void SqlStringBuilder::appendWhere(std::wstring& text, const ast::NodePtr& condition) {
    if (condition) {
        text += L" Where (" + renderCondition(condition) + L')';
    }
    onWhere(text);
}

std::wstring SqlStringBuilder::renderCondition(const ast::NodePtr& condition) {
    return renderValue(condition);
}

void SqlStringBuilder::appendResultClauses(std::wstring& text, const ast::QueryExpression& query) {
    if (!query.orderBy.empty()) {
        text += L" Order By ";
        appendList(text, query.orderBy);
    }
    onOrderBy(text);
    appendLimit(text, query);
}

/// In the order of the text, which numbers the parameters.
void SqlStringBuilder::appendLimit(std::wstring& text, const ast::QueryExpression& query) {
    if (query.offsetFirst && query.limit && query.offset) {
        text += L" Limit " + renderValue(query.offset);
        text += L", " + renderValue(query.limit);
        return;
    }
    if (query.limit) {
        text += L" Limit " + renderValue(query.limit);
    }
    if (query.offset) {
        text += L" Offset " + renderValue(query.offset);
    }
}

std::wstring SqlStringBuilder::renderKey(const ast::NodePtr& key) {
    return renderValue(key);
}

void SqlStringBuilder::appendKeys(std::wstring& text, const wchar_t* words, const ast::NodeList& keys) {
    for (const ast::NodePtr& key : keys) {
        text += std::exchange(words, L", ");
        text += renderKey(key);
    }
}

std::wstring SqlStringBuilder::renderWith(const ast::QueryExpression& query) {
    std::wstring text;
    for (const ast::CommonTable& table : query.with) {
        text += !text.empty() ? L", " : query.recursive ? L"With Recursive " : L"With ";
        appendName(text, table.name);
        if (!table.columns.empty()) {
            text.push_back(L'(');
            appendNames(text, table.columns);
            text.push_back(L')');
        }
        text += L" As (" + render(table.query) + L')';
    }
    return text.empty() ? text : text + L' ';
}

/// From is rendered before the columns, which may refer to what it introduces.
void SqlStringBuilder::visit(const ast::QuerySpecification& node) {
    if (node.rows) {
        std::wstring text = renderWith(node) + L"Values " + render(node.rows);
        appendResultClauses(text, node);
        return push(std::move(text));
    }
    std::wstring select = renderWith(node) + L"Select";
    std::wstring quantifier;
    if (node.quantifier != ast::SetQuantifier::Unstated) {
        quantifier = node.quantifier == ast::SetQuantifier::All ? L" All" : L" Distinct";
    }
    std::wstring rest;
    if (node.from) {
        rest = L" From " + render(node.from);
    }
    std::wstring columns = L" ";
    appendList(columns, node.columns);
    if (node.into) {
        const std::wstring into = render(node.into);
        columns += into.empty() ? into : L' ' + into;
    }
    onInto(columns);

    if (node.from) {
        onFrom(rest);
    }
    if (node.from || node.where) {
        appendWhere(rest, node.where);
    }
    appendKeys(rest, L" Group By ", node.groupBy);
    if (node.having) {
        rest += L" Having " + renderValue(node.having);
    }
    onGroupBy(rest);
    appendResultClauses(rest, node);
    push(constructSelect(std::move(select), std::move(quantifier), std::move(columns), std::move(rest)));
}

std::wstring SqlStringBuilder::constructSelect(std::wstring select, std::wstring quantifier,
                                               std::wstring columns, std::wstring rest) {
    std::wstring text = std::move(select);
    text.reserve(text.size() + quantifier.size() + columns.size() + rest.size());
    text += quantifier;
    text += columns;
    text += rest;
    return text;
}

/// Intersect binds tighter than the others; all group from the left.
bool SqlStringBuilder::needsEnclosing(const ast::NodePtr& query, const ast::QueryOperation& parent) const {
    const auto* operation = ast::nodeAs<ast::QueryOperation>(query);
    const auto bindsTighter = [](const ast::QueryOperation& node) {
        return node.operation == ast::SetOperator::Intersect;
    };
    return operation && (query == parent.right ? bindsTighter(parent) || !bindsTighter(*operation)
                                               : bindsTighter(parent) && !bindsTighter(*operation));
}

std::wstring SqlStringBuilder::renderEnclosed(const ast::NodePtr& query) {
    return L'(' + render(query) + L')';
}

std::wstring SqlStringBuilder::renderSetOperand(const ast::NodePtr& query,
                                                const ast::QueryOperation& parent) {
    const bool hasClauses =
        ast::isQuery(query) && static_cast<const ast::QueryExpression&>(*query).hasClauses();
    return hasClauses || !parent.right || needsEnclosing(query, parent) ? renderEnclosed(query)
                                                                        : render(query);
}

void SqlStringBuilder::visit(const ast::QueryOperation& node) {
    constexpr const wchar_t* operators[] = {L" Union ", L" Union All ", L" Intersect ", L" Except "};
    std::wstring text = renderWith(node);
    text += renderSetOperand(node.left, node);
    if (node.right) {
        text += operators[static_cast<int>(node.operation)];
        text += renderSetOperand(node.right, node);
    }
    appendResultClauses(text, node);
    push(std::move(text));
}

std::wstring SqlStringBuilder::renderTarget(const ast::NodePtr& table) {
    inTarget_ = true;
    std::wstring text = render(table);
    inTarget_ = false;
    return text;
}

void SqlStringBuilder::visit(const ast::DeleteStatement& node) {
    std::wstring text = L"Delete From " + renderTarget(node.table);
    onFrom(text);
    appendWhere(text, node.where);
    push(std::move(text));
}

void SqlStringBuilder::visit(const ast::InsertStatement& node) {
    std::wstring text = L"Insert Into " + renderTarget(node.table);
    if (!node.columns.empty()) {
        text += L" (";
        appendNames(text, node.columns);
        text.push_back(L')');
    }
    if (!node.source) {
        text += L" Default Values";
    } else {
        text += ast::isQuery(node.source) ? L" " : L" Values ";
        text += render(node.source);
    }
    push(std::move(text));
}

void SqlStringBuilder::visit(const ast::SetClause& node) {
    std::wstring text;
    appendNames(text, {node.target});
    text += L" = ";
    text += renderValue(node.value);
    push(std::move(text));
}

/// From is rendered before the assignments, which may refer to what it introduces.
void SqlStringBuilder::visit(const ast::UpdateStatement& node) {
    std::wstring text = L"Update " + renderTarget(node.table);
    const std::wstring from = node.from ? L" From " + render(node.from) : std::wstring();
    text += L" Set ";
    appendList(text, node.assignments);
    text += from;
    onFrom(text);
    appendWhere(text, node.where);
    push(std::move(text));
}

void SqlStringBuilder::visit(const ast::SessionStatement& node) {
    constexpr const wchar_t* words[] = {
        L"Begin Transaction", L"Commit Transaction", L"Rollback Transaction",   L"Savepoint ",
        L"Rollback To ",      L"Release ",           L"Create Temporary View ", L"Drop View "};
    std::wstring text = words[static_cast<int>(node.action)];
    text += node.ifExists ? L"If Exists " : L"";
    if (!node.name.empty()) {
        appendName(text, node.name);
    }
    if (!node.columns.empty()) {
        text.push_back(L'(');
        appendNames(text, node.columns);
        text.push_back(L')');
    }
    text += node.query ? L" As " + render(node.query) : std::wstring();
    push(std::move(text));
}

std::wstring& SqlStringBuilder::onFrom(std::wstring& text) {
    return text;
}
std::wstring& SqlStringBuilder::onWhere(std::wstring& text) {
    return text;
}
std::wstring& SqlStringBuilder::onInto(std::wstring& text) {
    return text;
}
std::wstring& SqlStringBuilder::onGroupBy(std::wstring& text) {
    return text;
}
std::wstring& SqlStringBuilder::onOrderBy(std::wstring& text) {
    return text;
}

} // namespace orvane::sql
