#include "host/providers/datasets/ResultDirectory.h"

#include "host/providers/datasets/ExchangeJournal.h"

#include <QDir>
#include <QFileInfo>

#include <filesystem>
#include <mutex>
#include <set>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace orvane::files {

namespace {

namespace fs = std::filesystem;

/// Made by the owner when it holds the lock: where it stands and nobody holds the lock, the owner is dead.
constexpr char mark[] = ".orvane-result";
constexpr char placeholder[] = "XXXXXX"; // of QTemporaryDir

/// The directories of this process.
class DirectoryList {
public:
    static DirectoryList& instance() {
        static auto* const list = new DirectoryList; // tables may go after all else has gone
        return *list;
    }
    void add(const QString& path) {
        const std::lock_guard lock(mutex_);
        paths_.insert(path.toStdString());
    }
    void take(const QString& path) {
        const std::lock_guard lock(mutex_);
        paths_.erase(path.toStdString());
    }
    std::unique_lock<std::recursive_mutex> hold() { return std::unique_lock(mutex_); }
    void removeAll() {
        const std::lock_guard lock(mutex_);
        std::error_code ignored;
        for (const std::string& path : paths_) {
            fs::remove_all(path, ignored);
        }
    }

private:
    std::recursive_mutex mutex_;
    std::set<std::string> paths_;
};

/// The descriptor that holds the lock, -1 when somebody else does or the file system has no locks.
int lockDirectory(const char* path) {
    const int descriptor = ::open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0 || ::flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
        return descriptor;
    }
    ::close(descriptor);
    return -1;
}

void removeUnlessHeld(const fs::path& directory) {
    std::error_code ignored;
    if (!fs::exists(directory / mark, ignored)) {
        return;
    }
    if (const int lock = lockDirectory(directory.c_str()); lock >= 0) {
        fs::remove_all(directory, ignored);
        ::close(lock);
    }
}

void removeAbandoned(const QString& pathTemplate) {
    const fs::path form(QFile::encodeName(pathTemplate).toStdString());
    const std::string name = form.filename().string();
    const std::string start = name.substr(0, name.size() - (sizeof placeholder - 1));
    std::error_code error;
    fs::directory_iterator entry(form.parent_path(), error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const std::string found = entry->path().filename().string();
        if (found.size() == name.size() && found.compare(0, start.size(), start) == 0) {
            removeUnlessHeld(entry->path());
        }
    }
}

} // namespace

std::shared_ptr<ResultDirectory> ResultDirectory::beside(const QString& path) {
    settleExchangeAround(QFile::encodeName(path).toStdString()); // it may need what a directory there holds
    const QString name = QStringLiteral(".orvane-") + QLatin1String(placeholder);
    return std::shared_ptr<ResultDirectory>(
        new ResultDirectory(QFileInfo(path).absoluteDir().filePath(name)));
}

std::shared_ptr<ResultDirectory> ResultDirectory::temporary() {
    const QString name = QStringLiteral("orvane-") + QLatin1String(placeholder);
    return std::shared_ptr<ResultDirectory>(new ResultDirectory(QDir::temp().filePath(name)));
}

ResultDirectory::ResultDirectory(const QString& pathTemplate)
    : directory_((removeAbandoned(pathTemplate), pathTemplate)) {
    if (!directory_.isValid()) {
        throw std::runtime_error(directory_.errorString().toStdString());
    }
    DirectoryList::instance().add(path());
    lock_ = lockDirectory(QFile::encodeName(path()).constData());
    if (lock_ >= 0) {
        QFile file(filePath(QLatin1String(mark)));
        file.open(QIODevice::WriteOnly);
    }
}

ResultDirectory::~ResultDirectory() {
    if (directory_.autoRemove()) {
        directory_.remove();
    }
    if (lock_ >= 0) {
        ::close(lock_);
    }
    DirectoryList::instance().take(path());
}

void ResultDirectory::keep() {
    directory_.setAutoRemove(false);
    QFile::remove(filePath(QLatin1String(mark)));
    DirectoryList::instance().take(path());
}

std::unique_lock<std::recursive_mutex> ResultDirectory::keepAll() {
    return DirectoryList::instance().hold();
}

void removeResultDirectories() {
    DirectoryList::instance().removeAll();
}

} // namespace orvane::files
