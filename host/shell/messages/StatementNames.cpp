#include "host/shell/messages/StatementNames.h"

#include "platform/sql/lexing/SqlStrings.h"

#include <algorithm>

namespace orvane::shell {

namespace {

bool isSame(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

StatementNames::StatementNames(sql::ast::NodeList tables, const Names& names) : known_(names.tables()) {
    using namespace sql;
    for (const ast::NodePtr& node : tables) {
        if (const auto* table = ast::nodeAs<ast::TablePrimary>(node)) {
            sources_.emplace_back(fromSqlString(table->name), fromSqlString(table->alias));
        } else if (const auto* whole = ast::nodeAs<ast::ExplicitTable>(node)) {
            sources_.emplace_back(fromSqlString(whole->name), QString());
        } else if (const auto* derived = ast::nodeAs<ast::DerivedTable>(node)) {
            sources_.emplace_back(QString(), fromSqlString(derived->alias));
        }
    }
}

QStringList StatementNames::tables() const {
    QStringList used;
    for (const auto& [name, alias] : sources_) {
        if (known_.contains(name, Qt::CaseInsensitive) && !used.contains(name, Qt::CaseInsensitive)) {
            used += name;
        }
    }
    return used;
}

QString StatementNames::tableBehind(const QString& name) const {
    for (const auto& [table, alias] : sources_) {
        if (isSame(alias.isEmpty() ? table : alias, name) && known_.contains(table, Qt::CaseInsensitive)) {
            return table;
        }
    }
    return {};
}

QString StatementNames::aliasOf(const QString& table) const {
    for (const auto& [name, alias] : sources_) {
        if (!alias.isEmpty() && isSame(name, table)) {
            return alias;
        }
    }
    return {};
}

int StatementNames::countOf(const QString& name) const {
    return static_cast<int>(std::count_if(sources_.begin(), sources_.end(), [&name](const auto& source) {
        return isSame(source.second.isEmpty() ? source.first : source.second, name);
    }));
}

} // namespace orvane::shell
