#include "platform/dp/SqliteDatabaseAccess.h"

#include "platform/core/SqliteException.h"
#include "platform/dp/TemporaryFiles.h"

#include <QFileInfo>

#include <sqlite3.h>

namespace orvane::dp {

namespace {

/// In KiB, as SQLite wants it for a negative cache size.
constexpr int temporaryCacheSize = 32 * 1024;

} // namespace

void SqliteDatabaseAccess::Closer::operator()(sqlite3* database) const {
    sqlite3_close_v2(database);
}

SqliteDatabaseAccess::SqliteDatabaseAccess(const QString& path) {
    const std::string vfs = vfsWithTemporaryFilesIn(QFileInfo(path).absolutePath());
    sqlite3* database = nullptr;
    const int code = sqlite3_open_v2(path.toUtf8().constData(), &database,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, vfs.c_str());
    database_.reset(database);
    if (code != SQLITE_OK) {
        throw err::SqliteException(
            database, path + QLatin1String(": ") +
                          QString::fromUtf8(database ? sqlite3_errmsg(database) : sqlite3_errstr(code)));
    }
    exec(QStringLiteral("Pragma temp_store = File"));
    exec(QStringLiteral("Pragma temp.cache_size = -%1").arg(temporaryCacheSize));
}

SqliteDatabaseAccess::~SqliteDatabaseAccess() = default;

SqliteDatabaseAccess::UnitOfWork SqliteDatabaseAccess::open(const QString& operation) {
    operations_.append(operation);
    try {
        exec(QStringLiteral("Savepoint work%1").arg(operations_.size()));
    } catch (...) {
        operations_.removeLast();
        throw;
    }
    return UnitOfWork(*this);
}

void SqliteDatabaseAccess::exec(const QString& sql) {
    query(sql).run();
}

SqliteStatement SqliteDatabaseAccess::query(const QString& sql, SqliteStatement::Use use) {
    return {database_.get(), sql, operation(), use};
}

void SqliteDatabaseAccess::UnitOfWork::close() {
    if (!isOpen_) {
        return;
    }
    access_.exec(QStringLiteral("Release work%1").arg(access_.operations_.size()));
    access_.operations_.removeLast();
    isOpen_ = false;
}

SqliteDatabaseAccess::UnitOfWork::~UnitOfWork() {
    if (!isOpen_) {
        return;
    }
    // SQLite may have rolled back everything already (a full disk); then there is nothing left to undo.
    const QByteArray name = "work" + QByteArray::number(access_.operations_.size());
    sqlite3_exec(access_.handle(), ("Rollback To " + name + "; Release " + name).constData(), nullptr,
                 nullptr, nullptr);
    access_.operations_.removeLast();
}

} // namespace orvane::dp
