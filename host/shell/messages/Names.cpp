#include "host/shell/messages/Names.h"

#include "host/adaptor/functions/FunctionRegistry.h"

#include "platform/dp/DataCatalog.h"
#include "platform/sql/lexing/SqlStrings.h"
#include <orvane/Engine.h>
#include <orvane/engine/ColumnNames.h>
#include <orvane/engine/FunctionNames.h>

#include <QSqlQuery>
#include <QVariant>

namespace orvane::shell {

QString userColumnName(const QString& column) {
    const std::wstring name = sql::toSqlString(column);
    if (name == engine::geometryColumnName()) {
        return QStringLiteral("obj");
    }
    if (name == engine::styleColumnName()) {
        return QStringLiteral("style");
    }
    return column;
}

QStringList Names::tables() const {
    QStringList names;
    for (const auto& object : catalog_.dataObjects()) {
        names += object->name();
    }
    return names + views();
}

QStringList Names::views() const {
    QSqlQuery query(engine_.engineDatabase());
    QStringList names;
    for (query.exec(QStringLiteral("Select name From sqlite_temp_master Where type = 'view' Order By rowid"));
         query.next();) {
        names += query.value(0).toString();
    }
    return names;
}

QStringList Names::columns(const QString& table) const {
    QSqlQuery query(engine_.engineDatabase());
    query.prepare(QStringLiteral("Select name From pragma_table_info(?)"));
    query.addBindValue(table);
    QStringList names;
    for (query.exec(); query.next();) {
        names += userColumnName(query.value(0).toString());
    }
    return names;
}

QStringList Names::functions() const {
    using Type = sql::FunctionInfo;
    auto names = engine_.functionSet(QFlags(Type::Scalar) | Type::Aggregate | Type::Window);
    for (const adaptor::FunctionRecord& record : adaptor::allFunctionRecords()) {
        for (const char* sqlName : record.names()) {
            const QString called = QLatin1String(sqlName);
            names.insert({called, engine::dialectFunctionName(called)});
        }
    }
    return {names.begin(), names.end()};
}

} // namespace orvane::shell
