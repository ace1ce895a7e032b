#include "host/shell/prompt/HistoryFile.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane::shell {

namespace {

/// Far more than is ever kept: what is larger is no history, and libedit would take it into memory.
constexpr std::int64_t largestFile = std::int64_t{64} << 20;

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Where a symbolic link of the user's own leads; the path itself when it is no link. Empty for the link of
/// somebody else and for one that leads nowhere.
std::string behindOwnLink(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) {
        return path;
    }
    const std::unique_ptr<char, decltype(&std::free)> target(::realpath(path.c_str(), nullptr), &std::free);
    return target && status.st_uid == ::geteuid() ? target.get() : std::string();
}

/// Null unless it is a file of the user's own, which is for nobody else from then on.
File openOwn(const std::string& path, int flags, const char* mode) {
    const int descriptor =
        ::open(behindOwnLink(path).c_str(), flags | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        return nullptr;
    }
    struct stat status {};
    const bool isOwn = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
                       status.st_uid == ::geteuid() && ::fchmod(descriptor, 0600) == 0;
    File file(isOwn ? ::fdopen(descriptor, mode) : nullptr);
    if (!file) {
        ::close(descriptor);
    }
    return file;
}

} // namespace

HistoryFile HistoryFile::standard() {
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const std::string directory = QFile::encodeName(data + QStringLiteral("/orvane")).toStdString();
    if (data.isEmpty() || !QDir().mkpath(data) ||
        (::mkdir(directory.c_str(), 0700) != 0 && errno != EEXIST)) {
        return HistoryFile({});
    }
    return HistoryFile(directory + "/history");
}

void HistoryFile::load(History* history) const {
    const File file = openOwn(path_, O_RDONLY, "r");
    struct stat status {};
    if (!file || ::fstat(::fileno(file.get()), &status) != 0 || status.st_size > largestFile) {
        return;
    }
    // The file that has been looked at, whatever bears its name by now.
    const std::string opened = "/dev/fd/" + std::to_string(::fileno(file.get()));
    HistEvent event;
    ::history(history, &event, H_LOAD, opened.c_str());
}

void HistoryFile::save(History* history) const {
    const File file = openOwn(path_, O_WRONLY | O_CREAT, "w");
    if (!file || ::flock(::fileno(file.get()), LOCK_EX | LOCK_NB) != 0) {
        return; // what is not kept now is with the next line
    }
    // Over what is there: at no moment is the file empty.
    HistEvent event;
    ::history(history, &event, H_SAVE_FP, file.get());
    const long size = std::ftell(file.get());
    if (size >= 0 && std::fflush(file.get()) == 0) {
        [[maybe_unused]] const int ignored = ::ftruncate(::fileno(file.get()), size);
    }
}

} // namespace orvane::shell
