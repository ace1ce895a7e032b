#include "engine/indices/StorageFile.h"

#include "platform/core/TypedSettings.h"
#include "platform/di/ServiceLocator.h"
#include "platform/dp/SqliteDatabaseAccess.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QUuid>
#include <QtEndian>

#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <mutex>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

bool hasStorageHeader(int file) {
    std::array<char, headerSize> header;
    return ::pread(file, header.data(), header.size(), 0) == headerSize &&
           std::memcmp(header.data(), headerMagic, sizeof headerMagic - 1) == 0 &&
           qFromBigEndian<quint32>(header.data() + applicationIdOffset) == applicationId;
}

/// Of a process that was killed before it came to write the header.
bool isLeftEmpty(const struct stat& status) {
    constexpr int longestStart = 60; // seconds
    return status.st_size == 0 && ::time(nullptr) - status.st_mtime > longestStart;
}

/// Whether no process holds the lock that claimStorage() takes.
bool isFree(int file) {
    // SQLite file format, "File Locking": the bytes that a process which writes holds.
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = 0x40000000;
    lock.l_len = 512;
    return ::fcntl(file, F_SETLK, &lock) == 0;
}

/// SQLite is not asked to open the file: it would act on a journal that somebody else has put beside it.
void removeIfAbandoned(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    const int file = ::open(name.constData(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) {
        return;
    }
    struct stat status {};
    const bool isOwn = ::fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid();
    if (isOwn && (hasStorageHeader(file) || isLeftEmpty(status)) && isFree(file)) {
        ::unlink(name.constData());
    }
    ::close(file);
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

QString makeStorageFile() {
    const QString directory = storageDirectory();
    removeAbandonedStoragesOnce(directory);
    const QString path = directory + QDir::separator() + QUuid::createUuid().toString();
    const int file = ::open(QFile::encodeName(path).constData(),
                            O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0) {
        const int code = errno;
        throw std::runtime_error(path.toStdString() + ": " + std::generic_category().message(code));
    }
    ::close(file);
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
        if (isStorageName(name)) {
            removeIfAbandoned(path);
        }
    }
}

} // namespace orvane::engine
