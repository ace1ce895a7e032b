#include "engine/indices/StorageFile.h"

#include "platform/core/TypedSettings.h"
#include "platform/di/ServiceLocator.h"
#include "platform/dp/SqliteDatabaseAccess.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QUuid>
#include <QtEndian>

#include <sqlite3.h>

#include <memory>
#include <mutex>

namespace orvane::engine {

namespace {

/// "OrvI": tells our storage files from other SQLite databases.
constexpr quint32 applicationId = 0x4f727649;

// SQLite file format, "The Database Header": the magic text, and the application id in big-endian.
constexpr char headerMagic[] = "SQLite format 3";
constexpr int applicationIdOffset = 68;
constexpr int headerSize = 100;

QString storageDirectory() {
    QString directory;
    if (const auto settings = serviceLocator().find<TypedSettings>()) {
        directory = settings->value(DefaultSettingsList::IndexDirectory).toString();
    }
    if (directory.isEmpty() || !QDir(directory).exists()) {
        directory = QDir::tempPath();
    }
    return QDir(directory).exists() ? directory : QString();
}

bool isStorageName(const QString& name) {
    const QUuid uuid(name);
    return !uuid.isNull() && uuid.toString() == name;
}

bool hasStorageHeader(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray header = file.read(headerSize);
    return header.size() == headerSize && header.startsWith(headerMagic) &&
           qFromBigEndian<quint32>(header.constData() + applicationIdOffset) == applicationId;
}

void removeUnlessHeld(const QString& path) {
    sqlite3* opened = nullptr;
    const int code = sqlite3_open_v2(path.toUtf8().constData(), &opened, SQLITE_OPEN_READWRITE, nullptr);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> database(opened, &sqlite3_close);
    if (code == SQLITE_OK &&
        sqlite3_exec(opened, "Begin Exclusive", nullptr, nullptr, nullptr) == SQLITE_OK) {
        QFile::remove(path);
    }
}

void removeAbandonedStoragesOnce(const QString& directory) {
    static std::mutex mutex;
    static QSet<QString> visited;
    const std::lock_guard lock(mutex);
    const QString path = QDir(directory).canonicalPath();
    if (!path.isEmpty() && !visited.contains(path)) {
        visited.insert(path);
        removeAbandonedStorages(path);
    }
}

} // namespace

QString newStoragePath() {
    const QString directory = storageDirectory();
    removeAbandonedStoragesOnce(directory);
    QString path;
    do {
        path = directory + QDir::separator() + QUuid::createUuid().toString();
    } while (QFile::exists(path));
    return path;
}

void claimStorage(dp::SqliteDatabaseAccess& database) {
    // Exclusive locking keeps the lock that writing the header takes. The file itself holds no rows, so there
    // is nothing in it that a journal or a flush to the disk could save.
    for (const char* pragma :
         {"locking_mode = Exclusive", "main.journal_mode = Off", "main.synchronous = Off"}) {
        database.exec(QLatin1String("Pragma ") + QLatin1String(pragma));
    }
    database.exec(QStringLiteral("Pragma application_id = %1").arg(applicationId));
}

void removeAbandonedStorages(const QString& directory) {
    const QStringList names = QDir(directory).entryList(QDir::Files | QDir::NoSymLinks);
    for (const QString& name : names) {
        const QString path = directory + QDir::separator() + name;
        if (isStorageName(name) && hasStorageHeader(path)) {
            removeUnlessHeld(path);
        }
    }
}

} // namespace orvane::engine
