#include "host/providers/datasets/ResultDirectory.h"

#include "host/providers/datasets/ExchangeJournal.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <new>
#include <set>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane::files {

namespace {

namespace fs = std::filesystem;

/// The beginning of every name: six letters of chance follow.
constexpr std::string_view nameStart = "orvane-result-";
constexpr std::string_view chance = "XXXXXX"; // of mkdtemp

/// A file made by the owner when it holds the lock: where it stands and nobody holds the lock, the owner is
/// dead.
constexpr char mark[] = ".orvane-result";

/// The mark goes last: until then it tells the next one of what is left.
void removeDirectory(const fs::path& directory) {
    std::error_code error;
    fs::directory_iterator entry(directory, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        if (entry->path().filename() != mark) {
            std::error_code ignored;
            fs::remove_all(entry->path(), ignored);
        }
    }
    fs::remove_all(directory, error);
}

/// The directories of this process.
class DirectoryList {
public:
    static DirectoryList& instance() {
        static auto* const list = new DirectoryList; // tables may go after all else has gone
        return *list;
    }
    void add(const std::string& path) {
        const std::lock_guard lock(mutex_);
        paths_.insert(path);
    }
    void take(const std::string& path) {
        const std::lock_guard lock(mutex_);
        paths_.erase(path);
    }
    std::unique_lock<std::recursive_mutex> hold() { return std::unique_lock(mutex_); }
    void removeAll() {
        const std::lock_guard lock(mutex_);
        for (const std::string& path : paths_) {
            removeDirectory(path);
        }
    }

private:
    std::recursive_mutex mutex_;
    std::set<std::string> paths_;
};

[[noreturn]] void raise(int code) {
    throw std::runtime_error(std::generic_category().message(code));
}

/// The descriptor of the directory itself, not of what a link leads to; -1 with errno.
int openDirectory(const std::string& path) {
    return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

/// Another user's would let him choose what we remove. One without mark has lost its owner before it came to
/// lock it, and is empty, or is none of ours.
void removeIfAbandoned(const std::string& directory) {
    const int lock = openDirectory(directory);
    struct stat status {};
    if (lock >= 0 && ::fstat(lock, &status) == 0 && status.st_uid == ::geteuid() &&
        ::flock(lock, LOCK_EX | LOCK_NB) == 0) {
        if (::faccessat(lock, mark, F_OK, AT_SYMLINK_NOFOLLOW) == 0) {
            removeDirectory(directory);
        } else {
            ::rmdir(directory.c_str());
        }
    }
    ::close(lock);
}

void removeAbandoned(const fs::path& parent, const std::string& start) {
    std::error_code error;
    fs::directory_iterator entry(parent, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (name.size() == start.size() + chance.size() && name.starts_with(start)) {
            removeIfAbandoned(entry->path().string());
        }
    }
}

} // namespace

std::shared_ptr<ResultDirectory> ResultDirectory::beside(const QString& path) {
    settleExchangeAround(QFile::encodeName(path).toStdString()); // it may need what a directory there holds
    return std::shared_ptr<ResultDirectory>(
        new ResultDirectory(QFileInfo(path).absolutePath(), "." + std::string(nameStart)));
}

std::shared_ptr<ResultDirectory> ResultDirectory::temporary(const QString& parent) {
    return std::shared_ptr<ResultDirectory>(
        new ResultDirectory(parent.isEmpty() ? QDir::tempPath() : parent, std::string(nameStart)));
}

ResultDirectory::ResultDirectory(const QString& parent, const std::string& start) {
    const fs::path place(QFile::encodeName(parent).toStdString());
    removeAbandoned(place, start);
    do {
        path_ = (place / (start + std::string(chance))).string();
        if (!::mkdtemp(path_.data())) {
            raise(errno);
        }
        DirectoryList::instance().add(path_);
    } while (!claim());
}

/// False where somebody has taken the directory for abandoned, before it was locked.
bool ResultDirectory::claim() {
    lock_ = openDirectory(path_);
    if (lock_ < 0 && errno != ENOENT) {
        const int code = errno;
        remove();
        raise(code);
    }
    const bool isLocked = lock_ >= 0 && ::flock(lock_, LOCK_EX | LOCK_NB) == 0;
    if (!isLocked && lock_ >= 0 && errno != EWOULDBLOCK) {
        return true; // a file system without locks: nobody takes away what bears no mark
    }
    if (!isLocked || ::access(path_.c_str(), F_OK) != 0) {
        remove();
        return false;
    }
    ::close(::openat(lock_, mark, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    return true;
}

void ResultDirectory::remove() noexcept {
    try {
        removeDirectory(path_);
    } catch (const std::bad_alloc&) {
        // The next one sweeps it.
    }
    ::close(std::exchange(lock_, -1));
    DirectoryList::instance().take(path_);
}

ResultDirectory::~ResultDirectory() {
    if (!isKept_) {
        remove();
    } else {
        ::close(lock_);
    }
}

void ResultDirectory::keep() {
    isKept_ = true;
    ::unlinkat(lock_, mark, 0);
    DirectoryList::instance().take(path_);
}

std::unique_lock<std::recursive_mutex> ResultDirectory::keepAll() {
    return DirectoryList::instance().hold();
}

QString ResultDirectory::path() const {
    return QFile::decodeName(QByteArray::fromStdString(path_));
}

QString ResultDirectory::filePath(const QString& name) const {
    return path() + QLatin1Char('/') + name;
}

void removeResultDirectories() {
    DirectoryList::instance().removeAll();
}

} // namespace orvane::files
