#pragma once

#include <QString>
#include <QStringList>

#include <sqlite3.h>

namespace orvane::dp {
class DataCatalog;
}

namespace orvane::shell {

/// What the user calls a column of the engine database: "obj" and "style" for the two fixed columns.
QString userColumnName(const QString& column);

/// The names that statements can use now, as the user writes them. For messages and completion: each question
/// is a query. Neither database nor catalogue is owned; both are used from the thread of the engine.
class Names {
public:
    Names(sqlite3* database, const dp::DataCatalog& catalog) : database_(database), catalog_(catalog) {}

    QStringList tables() const;
    /// Of a table or view, in their order; empty for one that does not exist.
    QStringList columns(const QString& table) const;
    QStringList functions() const;

private:
    QStringList firstColumn(const char* sql, const QString& parameter = QString()) const;

    sqlite3* database_;
    const dp::DataCatalog& catalog_;
};

} // namespace orvane::shell
