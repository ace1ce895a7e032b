#include "host/providers/datasets/WorkingCopy.h"

#include "platform/work/Cancellation.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QFileInfo>

#include <cerrno>
#include <chrono>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace orvane::files {

namespace {

namespace fs = std::filesystem;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::WorkingCopy)
};

fs::path pathOf(const QString& name) {
    return QFile::encodeName(name).toStdString();
}

QString textOf(const fs::path& path) {
    return QFile::decodeName(QByteArray::fromStdString(path.string()));
}

void copyFile(const fs::path& from, const fs::path& to) {
    fs::create_directories(to.parent_path());
    fs::copy_file(from, to, fs::copy_options::overwrite_existing);
    // So that the time tells of every later change, however soon it comes.
    fs::last_write_time(to, fs::last_write_time(to) - std::chrono::hours(24));
}

/// Held while originals are compared and replaced, so that of two who do that one comes after the other.
class Turn {
public:
    explicit Turn(const fs::path& file) : descriptor_(::open(file.c_str(), O_RDONLY | O_CLOEXEC)) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        const work::Cancellation cancellation;
        while (descriptor_ >= 0 && ::flock(descriptor_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK &&
               std::chrono::steady_clock::now() < end && !cancellation.isRequested()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
    ~Turn() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

private:
    const int descriptor_;
};

/// Whether a path leads out of the directory that it is relative to.
bool leadsOut(const fs::path& relative) {
    return relative.empty() || *relative.begin() == "..";
}

} // namespace

WorkingCopy::WorkingCopy(const QString& path, const QStringList& files)
    : directory_(ResultDirectory::beside(QFileInfo(path).canonicalFilePath())),
      copies_(pathOf(directory_->filePath(QStringLiteral("copies")))), exchange_(directory_) {
    fs::create_directory(copies_);
    const fs::path dataset = fs::canonical(pathOf(path));
    root_ = dataset.parent_path();
    dataset_ = dataset.filename();
    const bool isDirectory = fs::is_directory(dataset);
    const fs::path given = isDirectory ? pathOf(path) : pathOf(path).parent_path();
    const fs::path below = isDirectory ? dataset_ : fs::path();
    for (const QString& file : files) {
        const fs::path original = pathOf(file);
        const fs::path relative = QFileInfo(file).canonicalFilePath() == textOf(dataset)
                                      ? dataset_
                                      : below / original.lexically_relative(given.empty() ? "." : given);
        if (leadsOut(relative)) {
            throw std::runtime_error(
                Texts::tr("файл «%1» лежит в другой папке, измените его сам").arg(file).toStdString());
        }
        if (!fs::is_regular_file(root_ / relative)) {
            continue;
        }
        // First: what is replaced while it is copied is told from the stamp in the end.
        originals_[relative] = stampOf(root_ / relative);
        copyFile(root_ / relative, copies_ / relative);
    }
    unchanged_ = stampsBelow(copies_);
}

QString WorkingCopy::path() const {
    return textOf(copies_ / dataset_);
}

fs::path WorkingCopy::savedRoot(int savepoint) const {
    return pathOf(directory_->filePath(QStringLiteral("savepoint-%1").arg(savepoint)));
}

void WorkingCopy::save(int savepoint) {
    fs::remove_all(savedRoot(savepoint));
    fs::copy(copies_, savedRoot(savepoint), fs::copy_options::recursive);
}

void WorkingCopy::restore(int savepoint) {
    fs::remove_all(copies_);
    fs::copy(savedRoot(savepoint), copies_, fs::copy_options::recursive);
}

WorkingCopy::Stamp WorkingCopy::stampOf(const fs::path& file) {
    return {fs::file_size(file), fs::last_write_time(file)};
}

WorkingCopy::Stamps WorkingCopy::stampsBelow(const fs::path& root) {
    Stamps stamps;
    QDirIterator files(textOf(root), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const fs::path file = pathOf(files.next());
        stamps[file.lexically_relative(root)] = stampOf(file);
    }
    return stamps;
}

void WorkingCopy::publish() {
    const Turn turn(root_ / dataset_);
    for (const auto& [file, stamp] : originals_) {
        std::error_code error;
        if (!fs::exists(root_ / file, error) || stampOf(root_ / file) != stamp) {
            throw std::runtime_error(Texts::tr("файл «%1» тем временем изменила другая программа")
                                         .arg(textOf(root_ / file))
                                         .toStdString());
        }
    }
    const Stamps finished = stampsBelow(copies_);
    for (const auto& [file, stamp] : finished) {
        const auto before = unchanged_.find(file);
        if (before == unchanged_.end() || before->second != stamp) {
            exchange_.put(copies_ / file, root_ / file, originals_.count(file) != 0);
        }
    }
    for (const auto& [file, stamp] : originals_) {
        if (finished.count(file) == 0) {
            exchange_.remove(root_ / file);
        }
    }
    exchange_.carryOut();
}

void WorkingCopy::unpublish() noexcept {
    exchange_.undo();
}

} // namespace orvane::files
