#include "host/shell/statements/ColumnTitles.h"

#include "host/shell/messages/Names.h"

#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/tree/Expressions.h"
#include "platform/sql/tree/Queries.h"

#include <algorithm>

namespace orvane::shell {

namespace {

using namespace sql;

/// The result columns that a query names. In a compound query the first names them, and an asterisk after
/// which there is nothing but a query stands for the columns of that one.
ast::NodeList resultColumns(const ast::NodePtr& query) {
    const ast::QuerySpecification* select = ast::firstSelect(query.get());
    if (!select) {
        return {};
    }
    const auto* only =
        select->columns.size() == 1 ? ast::nodeAs<ast::DerivedColumn>(select->columns.front()) : nullptr;
    const auto* derived = ast::nodeAs<ast::DerivedTable>(ast::onlySource(*select));
    if (only && derived && derived->columns.empty() &&
        ast::nodeAs<ast::QualifiedAsterisk>(only->expression)) {
        return resultColumns(derived->query);
    }
    return select->columns;
}

/// For each result column of the statement the node that it comes from, null where that cannot be told.
/// Asterisks stand for any number of columns: what is before the first counts from the left, what is behind
/// the last from the right.
std::vector<const ast::DerivedColumn*> columnSources(const ast::NodePtr& query, std::size_t count) {
    const ast::NodeList list = resultColumns(query);
    const auto isAsterisk = [](const ast::NodePtr& node) {
        const auto* column = ast::nodeAs<ast::DerivedColumn>(node);
        return column && ast::nodeAs<ast::QualifiedAsterisk>(column->expression);
    };
    std::vector<const ast::DerivedColumn*> sources(count);
    const auto first = std::find_if(list.begin(), list.end(), isAsterisk);
    const auto last = std::find_if(list.rbegin(), list.rend(), isAsterisk);
    if (list.size() > count + 1 || (first == list.end() && list.size() != count)) {
        return sources;
    }
    const auto column = [](const ast::NodePtr& node) { return ast::nodeAs<ast::DerivedColumn>(node); };
    std::transform(list.begin(), first, sources.begin(), column);
    std::transform(list.rbegin(), last, sources.rbegin(), column);
    return sources;
}

/// With single blanks in place of line breaks.
QString writtenText(const ParseResult& statement, ast::SourceRange place) {
    return fromSqlString(statement.text(place)).simplified();
}

QString titleOf(const ast::DerivedColumn& column, const QString& sqliteName, const ParseResult& statement) {
    if (!column.alias.empty()) {
        return fromSqlString(column.alias);
    }
    if (const auto* reference = ast::nodeAs<ast::ColumnReference>(column.expression)) {
        // The table's own spelling, where SQLite knows it.
        const QString name = fromSqlString(reference->name);
        return name.compare(sqliteName, Qt::CaseInsensitive) == 0 ? sqliteName : name;
    }
    return writtenText(statement, column.place);
}

} // namespace

std::vector<std::string> columnTitles(sqlite3_stmt* prepared, const ParseResult& statement) {
    const auto count = static_cast<std::size_t>(sqlite3_column_count(prepared));
    if (statement.isExpression()) {
        return {writtenText(statement, statement.node()->place).toStdString()};
    }
    const std::vector<const ast::DerivedColumn*> sources = columnSources(statement.node(), count);
    std::vector<std::string> titles;
    for (std::size_t column = 0; column < count; ++column) {
        const QString name = QString::fromUtf8(sqlite3_column_name(prepared, static_cast<int>(column)));
        titles.push_back((sources[column] ? titleOf(*sources[column], name, statement) : userColumnName(name))
                             .toStdString());
    }
    return titles;
}

} // namespace orvane::shell
