#include "host/desk/session/ColumnTitles.h"

#include <orvane/engine/ColumnNames.h>
#include <platform/sql/lexing/SqlStrings.h>
#include <platform/sql/tree/Expressions.h>
#include <platform/sql/tree/Queries.h>

#include <sqlite3.h>

#include <algorithm>

namespace orvane::desk {

namespace {

using namespace sql;

bool isAsterisk(const ast::NodePtr& node) {
    const auto* column = ast::nodeAs<ast::DerivedColumn>(node);
    return column && ast::nodeAs<ast::QualifiedAsterisk>(column->expression);
}

/// Empty where SQLite's name is the title.
QString writtenTitle(const ast::NodePtr& node, const ParseResult& statement) {
    const auto* column = ast::nodeAs<ast::DerivedColumn>(node);
    if (!column || ast::nodeAs<ast::ColumnReference>(column->expression)) {
        return column ? fromSqlString(column->alias) : QString();
    }
    return column->alias.empty() ? fromSqlString(statement.text(column->place)).simplified()
                                 : fromSqlString(column->alias);
}

QString sqliteTitle(sqlite3_stmt* prepared, int column) {
    const QString name = QString::fromUtf8(sqlite3_column_name(prepared, column));
    if (name == fromSqlString(engine::geometryColumnName())) {
        return QStringLiteral("obj");
    }
    return name == fromSqlString(engine::styleColumnName()) ? QStringLiteral("style") : name;
}

} // namespace

QStringList columnTitles(sqlite3_stmt* prepared, const ParseResult& statement) {
    QStringList titles;
    const int count = sqlite3_column_count(prepared);
    for (int column = 0; column < count; ++column) {
        titles += sqliteTitle(prepared, column);
    }
    if (statement.isExpression()) {
        return {fromSqlString(statement.text(statement.node()->place)).simplified()};
    }
    const auto* select = ast::firstSelect(statement.node().get());
    const bool hasAsterisk =
        select && std::any_of(select->columns.begin(), select->columns.end(), isAsterisk);
    const int written = select ? static_cast<int>(select->columns.size()) : 0;
    if (hasAsterisk ? written > count + 1 : written != count) {
        return titles;
    }
    // An asterisk stands for any number of columns: what is before the first counts from the left, what is
    // behind the last from the right.
    const auto setTitle = [&](const ast::NodePtr& node, int column) {
        if (const QString title = writtenTitle(node, statement); !title.isEmpty()) {
            titles[column] = title;
        }
    };
    int left = 0;
    for (; left < count && !isAsterisk(select->columns[static_cast<std::size_t>(left)]); ++left) {
        setTitle(select->columns[static_cast<std::size_t>(left)], left);
    }
    int right = count - 1;
    for (auto node = select->columns.rbegin(); right >= left && !isAsterisk(*node); ++node, --right) {
        setTitle(*node, right);
    }
    return titles;
}

} // namespace orvane::desk
