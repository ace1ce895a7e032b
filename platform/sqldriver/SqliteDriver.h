#pragma once

#include <QSqlDriver>
#include <QVariant>

#include <memory>

namespace orvane {

/// Qt's own SQLite driver, with the names of tables and columns as SQLite reads them: to Qt's a dot ends the
/// name of a schema, and a name with brackets, or in quotes, is quoted already. Every name is a table's or
/// column's own here, without a schema.
class SqliteDriver : public QSqlDriver {
    Q_OBJECT
public:
    explicit SqliteDriver(std::unique_ptr<QSqlDriver> driver);
    ~SqliteDriver() override;

    QString escapeIdentifier(const QString& name, IdentifierType type) const override;
    QSqlRecord record(const QString& tableName) const override;
    QSqlIndex primaryIndex(const QString& tableName) const override;

    bool hasFeature(DriverFeature feature) const override;
    bool isOpen() const override { return driver_->isOpen(); }
    bool open(const QString& database, const QString& user, const QString& password, const QString& host,
              int port, const QString& options) override;
    void close() override { driver_->close(); }
    QSqlResult* createResult() const override { return driver_->createResult(); }
    bool beginTransaction() override { return noted(driver_->beginTransaction()); }
    bool commitTransaction() override { return noted(driver_->commitTransaction()); }
    bool rollbackTransaction() override { return noted(driver_->rollbackTransaction()); }
    QStringList tables(QSql::TableType type) const override { return driver_->tables(type); }
    QVariant handle() const override { return driver_->handle(); }

private:
    QStringList columnNames(const QString& tableName, const QString& condition) const;
    /// Takes the other driver's last error over.
    bool noted(bool isDone);

    std::unique_ptr<QSqlDriver> driver_;
};

} // namespace orvane
