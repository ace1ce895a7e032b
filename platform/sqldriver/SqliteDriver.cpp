#include "platform/sqldriver/SqliteDriver.h"

#include "platform/utils/Quoting.h"

#include <QSqlError>
#include <QSqlField>
#include <QSqlIndex>
#include <QSqlQuery>

namespace orvane {

SqliteDriver::SqliteDriver(std::unique_ptr<QSqlDriver> driver) : driver_(std::move(driver)) {}

SqliteDriver::~SqliteDriver() = default;

QString SqliteDriver::escapeIdentifier(const QString& name, IdentifierType) const {
    return utils::sqlIdentifier(name);
}

QSqlRecord SqliteDriver::record(const QString& tableName) const {
    QSqlQuery query(createResult());
    query.exec(QStringLiteral("Select * From %0 Limit 0").arg(utils::sqlIdentifier(tableName)));
    QSqlRecord record;
    const QStringList names = columnNames(tableName, QStringLiteral("1"));
    for (int i = 0; i < names.size(); ++i) {
        QSqlField field = query.record().field(i); // without the quotes of its name
        field.setName(names[i]);
        record.append(field);
    }
    return record;
}

QStringList SqliteDriver::columnNames(const QString& tableName, const QString& condition) const {
    QSqlQuery query(createResult());
    query.prepare(QStringLiteral("Select name From pragma_table_info(?) Where %0").arg(condition));
    query.addBindValue(tableName);
    QStringList names;
    for (query.exec(); query.next();) {
        names << query.value(0).toString();
    }
    return names;
}

QSqlIndex SqliteDriver::primaryIndex(const QString& tableName) const {
    QSqlIndex index(tableName);
    const QSqlRecord columns = record(tableName);
    for (const QString& name : columnNames(tableName, QStringLiteral("pk > 0 Order By pk"))) {
        index.append(columns.field(name));
    }
    return index;
}

bool SqliteDriver::hasFeature(DriverFeature feature) const {
    return feature != EventNotifications && driver_->hasFeature(feature);
}

bool SqliteDriver::open(const QString& database, const QString& user, const QString& password,
                        const QString& host, int port, const QString& options) {
    return noted(driver_->open(database, user, password, host, port, options));
}

bool SqliteDriver::noted(bool isDone) {
    setLastError(driver_->lastError());
    return isDone;
}

} // namespace orvane
