#include "host/providers/datasets/ExchangeJournal.h"

#include "platform/work/Cancellation.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDataStream>
#include <QFile>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane::files {

namespace {

namespace fs = std::filesystem;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::ExchangeJournal)
};

constexpr char journalName[] = ".orvane-exchange";
constexpr char directoryStart[] = ".orvane-";
constexpr quint32 format = 0x4f584a31;
/// An exchange takes milliseconds.
constexpr auto patience = std::chrono::seconds(5);

[[noreturn]] void raise(const fs::path& path, const QString& reason) {
    throw std::runtime_error(path.string() + ": " + reason.toStdString());
}

[[noreturn]] void raise(const fs::path& path, int code) {
    throw std::runtime_error(path.string() + ": " + std::generic_category().message(code));
}

/// Closes with its scope.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) {
            ::close(number_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int number() const { return number_; }

private:
    int number_;
};

QByteArray bytesOf(const std::string& text) {
    return QByteArray::fromStdString(text);
}

void write(const ExchangePlan& plan, const fs::path& path) {
    QFile file(QFile::decodeName(bytesOf(path.string())));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        raise(path, file.errorString());
    }
    QDataStream stream(&file);
    stream << format << bytesOf(plan.directory) << static_cast<quint32>(plan.steps.size());
    for (const ExchangeStep& step : plan.steps) {
        stream << bytesOf(step.place.string()) << step.replaces << static_cast<quint64>(step.size)
               << static_cast<qint64>(step.time);
    }
    if (!file.flush() || stream.status() != QDataStream::Ok) {
        raise(path, file.errorString());
    }
    writeToDisk(path);
}

/// Whether a path leads to a file of the folder, or of one below it, without a detour over links.
bool staysWithin(const fs::path& folder, const fs::path& path) {
    const bool isPlain = path.is_relative() && path.has_filename() &&
                         std::none_of(path.begin(), path.end(),
                                      [](const fs::path& part) { return part == ".." || part == "."; });
    std::error_code error;
    return isPlain && fs::canonical(folder / path.parent_path(), error) ==
                          (fs::canonical(folder, error) / path.parent_path() / "").parent_path();
}

/// The plan that a journal tells; nothing where it is none of ours. What it names lies in the folder.
std::optional<ExchangePlan> read(const fs::path& folder, int descriptor) {
    QFile file;
    if (!file.open(descriptor, QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    QDataStream stream(&file);
    quint32 mark = 0;
    quint32 count = 0;
    QByteArray directory;
    stream >> mark >> directory >> count;
    ExchangePlan plan{folder, directory.toStdString(), {}};
    if (mark != format || directory.contains('/') || !directory.startsWith(directoryStart)) {
        return std::nullopt;
    }
    while (plan.steps.size() < count && stream.status() == QDataStream::Ok) {
        QByteArray place;
        bool replaces = false;
        quint64 size = 0;
        qint64 time = 0;
        stream >> place >> replaces >> size >> time;
        plan.steps.push_back({place.toStdString(), replaces, size, time});
        if (!staysWithin(folder, plan.steps.back().place)) {
            return std::nullopt;
        }
    }
    return stream.status() == QDataStream::Ok ? std::optional(std::move(plan)) : std::nullopt;
}

/// Whether the file is still the one of that name.
bool isAt(int descriptor, const fs::path& path) {
    struct stat opened {};
    struct stat named {};
    return ::fstat(descriptor, &opened) == 0 && ::lstat(path.c_str(), &named) == 0 &&
           opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
}

/// In a folder where everybody takes away only his own files, the journal of another would let him take away
/// ours. Elsewhere who can write a journal can do himself what it makes us do. The descriptor may be -1.
bool isOfAnother(const fs::path& folder, int descriptor) {
    struct stat shared {};
    struct stat journal {};
    const bool isKnown = descriptor < 0 ? ::lstat((folder / journalName).c_str(), &journal) == 0
                                        : ::fstat(descriptor, &journal) == 0;
    return isKnown && journal.st_uid != ::geteuid() && ::stat(folder.c_str(), &shared) == 0 &&
           (shared.st_mode & S_ISVTX) != 0;
}

void takeBack(const fs::path& folder, int descriptor) {
    const fs::path journal = folder / journalName;
    const auto plan = read(folder, descriptor);
    if (!plan) {
        raise(journal, Texts::tr("это не запись о замене файлов"));
    }
    for (std::size_t step = plan->steps.size(); step-- > 0;) {
        plan->undo(step);
    }
    writeToDisk(folder);
    if (::unlink(journal.c_str()) != 0 && errno != ENOENT) {
        raise(journal, errno);
    }
}

/// Gives a finished file its name unless there is one of that name.
bool takeName(const fs::path& from, const fs::path& to) {
    if (::link(from.c_str(), to.c_str()) == 0) {
        return true;
    }
    // Not every file system has second names.
    return errno != EEXIST &&
           ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0;
}

} // namespace

void writeToDisk(const fs::path& path) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.number() < 0 || (::fsync(file.number()) != 0 && errno != EINVAL)) { // some know no such thing
        raise(path, errno);
    }
}

void ExchangeStep::takeStamp(const fs::path& finished) {
    size = fs::file_size(finished);
    time = fs::last_write_time(finished).time_since_epoch().count();
}

bool ExchangeStep::hasStampOf(const fs::path& file) const {
    std::error_code error;
    return fs::file_size(file, error) == size &&
           fs::last_write_time(file, error).time_since_epoch().count() == time && !error;
}

fs::path ExchangePlan::backupOf(std::size_t step) const {
    return folder / directory / "replaced" / std::to_string(step);
}

void ExchangePlan::undo(std::size_t step) const {
    const fs::path place = placeOf(step);
    int code = 0;
    if (steps[step].replaces) {
        code = std::rename(backupOf(step).c_str(), place.c_str()) == 0 ? 0 : errno;
    } else if (steps[step].hasStampOf(place)) {
        code = ::unlink(place.c_str()) == 0 ? 0 : errno;
    }
    if (code != 0 && code != ENOENT) { // without a backup the step was not made, or is taken back
        raise(place, code);
    }
}

ExchangeJournal::~ExchangeJournal() {
    if (descriptor_ >= 0) {
        ::close(descriptor_); // and what could not be withdrawn is for who opens the files next
    }
}

void ExchangeJournal::post(const ExchangePlan& plan) {
    if (!posted_.empty()) {
        return;
    }
    const fs::path draft = plan.folder / plan.directory / "journal";
    const fs::path journal = plan.folder / journalName;
    if (descriptor_ < 0) {
        write(plan, draft);
        descriptor_ = ::open(draft.c_str(), O_RDONLY | O_CLOEXEC);
        if (descriptor_ < 0) {
            raise(draft, errno);
        }
        ::flock(descriptor_, LOCK_EX | LOCK_NB);
    }
    while (!takeName(draft, journal)) {
        if (const int code = errno; code != EEXIST || isOfAnother(plan.folder, -1)) {
            raise(journal, code);
        }
        settleExchange(plan.folder);
    }
    posted_ = journal;
    writeToDisk(plan.folder);
}

void ExchangeJournal::withdraw() noexcept {
    ::unlink(posted_.c_str());
    posted_.clear();
}

void settleExchange(const fs::path& folder) {
    const fs::path journal = folder / journalName;
    const auto end = std::chrono::steady_clock::now() + patience;
    const work::Cancellation cancellation;
    while (true) {
        struct stat status {};
        if (::lstat(journal.c_str(), &status) != 0) { // as nearly always
            return;
        }
        const Descriptor file(::open(journal.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (file.number() < 0) {
            const int code = errno;
            if (code == ENOENT || isOfAnother(folder, -1)) {
                return;
            }
            raise(journal, code);
        }
        if (isOfAnother(folder, file.number())) {
            return;
        }
        const bool isLocked = ::flock(file.number(), LOCK_EX | LOCK_NB) == 0;
        const bool hasLocks = isLocked || errno == EWOULDBLOCK;
        const bool isLate = std::chrono::steady_clock::now() > end;
        if (isLocked || (isLate && !hasLocks)) {
            if (isAt(file.number(), journal)) {
                takeBack(folder, file.number());
            }
            continue;
        }
        if (isLate) {
            raise(folder, Texts::tr("файлы в этой папке заменяет другая программа"));
        }
        cancellation.check();
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

void settleExchangeAround(const std::string& path) {
    std::error_code error;
    fs::path file = fs::canonical(path, error);
    if (error) { // such as one that was taken away half-way
        file = fs::absolute(path, error);
    }
    const fs::path folder = file.parent_path();
    settleExchange(folder);
    settleExchange(folder.parent_path());
}

} // namespace orvane::files
