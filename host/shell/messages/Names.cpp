#include "host/shell/messages/Names.h"

#include "host/adaptor/functions/FunctionRegistry.h"

#include "platform/dp/DataCatalog.h"
#include "platform/sql/lexing/SqlStrings.h"
#include <orvane/engine/ColumnNames.h>
#include <orvane/engine/FunctionNames.h>

#include <map>
#include <memory>

namespace orvane::shell {

namespace {

struct StatementFinalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

} // namespace

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
    // Tables that statements have made; those of SpatiaLite are no one's to query.
    names += firstColumn(
        "Select name From sqlite_master Where type In ('table', 'view') And sql Not Like 'Create Virtual%' "
        "And name Not In ('spatial_ref_sys', 'spatial_ref_sys_aux', 'geometry_columns', 'sqlite_sequence', "
        "'SpatialIndex', 'ElementaryGeometries', 'KNN', 'KNN2', 'data_licenses') And name Not Like "
        "'%geometry\\_columns%' Escape '\\'");
    names.removeDuplicates();
    return names;
}

QStringList Names::columns(const QString& table) const {
    QStringList names = firstColumn("Select name From pragma_table_info(?)", table);
    for (QString& name : names) {
        name = userColumnName(name);
    }
    return names;
}

QStringList Names::functions() const {
    // Those with a record have their names in the usual letter case; SQLite knows all, in lower case.
    std::map<QString, QString> byLowercase;
    for (const QString& name :
         firstColumn("Select name From pragma_function_list Where name Glob '[a-z]*'")) {
        byLowercase.emplace(name, name);
    }
    for (const adaptor::FunctionRecord& record : adaptor::allFunctionRecords()) {
        for (const char* sqlName : record.names()) {
            const QString called = QLatin1String(sqlName);
            for (const QString& name : {called, engine::dialectFunctionName(called)}) {
                byLowercase[name.toLower()] = name;
            }
        }
    }
    QStringList names;
    for (const auto& [lowercase, name] : byLowercase) {
        names += name;
    }
    return names;
}

QStringList Names::firstColumn(const char* sql, const QString& parameter) const {
    sqlite3_stmt* prepared = nullptr;
    sqlite3_prepare_v2(database_, sql, -1, &prepared, nullptr);
    const std::unique_ptr<sqlite3_stmt, StatementFinalizer> statement(prepared);
    const QByteArray utf8 = parameter.toUtf8();
    if (sqlite3_bind_parameter_count(prepared) != 0) {
        sqlite3_bind_text(prepared, 1, utf8.constData(), utf8.size(), SQLITE_STATIC);
    }
    QStringList values;
    while (sqlite3_step(prepared) == SQLITE_ROW) {
        values += QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(prepared, 0)));
    }
    return values;
}

} // namespace orvane::shell
