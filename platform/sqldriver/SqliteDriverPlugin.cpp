#include "platform/sqldriver/SqliteDriverPlugin.h"

#include "platform/sqldriver/SqliteDriver.h"

#include <QCoreApplication>
#include <QLibraryInfo>

namespace orvane {

QSqlDriver* SqliteDriverPlugin::create(const QString& name) {
    if (name != QLatin1String("QTSQLITE")) {
        return nullptr;
    }
    QStringList directories = QCoreApplication::libraryPaths();
    directories.append(QLibraryInfo::location(QLibraryInfo::PluginsPath));
    for (const QString& directory : qAsConst(directories)) {
        if (!loader_.isLoaded()) {
            loader_.setFileName(directory + QLatin1String("/sqldrivers/libqsqlite"));
        }
        if (auto* plugin = qobject_cast<QSqlDriverPlugin*>(loader_.instance())) {
            std::unique_ptr<QSqlDriver> driver(plugin->create(QStringLiteral("QSQLITE")));
            return driver ? new SqliteDriver(std::move(driver)) : nullptr;
        }
    }
    return nullptr;
}

} // namespace orvane
