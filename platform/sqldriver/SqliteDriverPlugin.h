#pragma once

#include <QPluginLoader>
#include <QSqlDriverPlugin>

namespace orvane {

/// The Qt SQL driver "QTSQLITE": Qt's own SQLite driver under a name of ours (SqliteDriver), so that a host
/// in which another driver took the name "QSQLITE" still gets the one that works on the SQLite library the
/// engine is linked to. The driver's handle() is the sqlite3*.
class SqliteDriverPlugin : public QSqlDriverPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QSqlDriverFactoryInterface_iid FILE "qtsqlite.json")
public:
    /// A driver, owned by the caller; null for another name, or when Qt's driver plug-in is not installed.
    QSqlDriver* create(const QString& name) override;

private:
    QPluginLoader loader_;
};

} // namespace orvane
