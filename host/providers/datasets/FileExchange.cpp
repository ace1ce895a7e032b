#include "host/providers/datasets/FileExchange.h"

#include <QFile>

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace orvane::files {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void raise(const fs::path& path, int code) {
    throw std::runtime_error(path.string() + ": " + std::generic_category().message(code));
}

/// Some file systems tell only now that there is no room.
void writeToDisk(const fs::path& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        raise(path, errno);
    }
    const bool isWritten = ::fsync(descriptor) == 0 || errno == EINVAL; // some know no such thing
    const int code = errno;
    ::close(descriptor);
    if (!isWritten) {
        raise(path, code);
    }
}

void moveFile(const fs::path& from, const fs::path& to) {
    if (std::rename(from.c_str(), to.c_str()) != 0) {
        raise(to, errno);
    }
}

/// A second name; false where the file system has none.
bool addName(const fs::path& from, const fs::path& to) {
    if (::link(from.c_str(), to.c_str()) == 0) {
        return true;
    }
    if (errno == EEXIST) {
        raise(to, EEXIST);
    }
    return false;
}

} // namespace

FileExchange::FileExchange(const QString& backups) : backups_(QFile::encodeName(backups).toStdString()) {}

fs::path FileExchange::nextBackup() const {
    return backups_ / std::to_string(steps_.size());
}

void FileExchange::put(const fs::path& finished, const fs::path& place, bool overwrites) {
    writeToDisk(finished);
    Step step{place, {}};
    std::error_code error;
    if (!fs::exists(fs::symlink_status(place, error))) {
        if (!addName(finished, place)) { // which, other than a renaming, never replaces
            moveFile(finished, place);
        }
    } else if (overwrites) {
        step.backup = nextBackup();
        if (!addName(place, step.backup)) {
            fs::copy_file(place, step.backup);
        }
        moveFile(finished, place);
    } else {
        raise(place, EEXIST);
    }
    steps_.push_back(std::move(step));
}

void FileExchange::remove(const fs::path& place) {
    Step step{place, nextBackup()};
    moveFile(place, step.backup);
    steps_.push_back(std::move(step));
}

void FileExchange::undo() noexcept {
    for (; !steps_.empty(); steps_.pop_back()) {
        const Step& step = steps_.back();
        if (step.backup.empty()) {
            ::unlink(step.place.c_str());
        } else {
            std::rename(step.backup.c_str(), step.place.c_str());
        }
    }
}

} // namespace orvane::files
