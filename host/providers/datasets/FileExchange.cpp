#include "host/providers/datasets/FileExchange.h"

#include <QFile>

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace orvane::files {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void raise(const fs::path& path, int code) {
    throw std::runtime_error(path.string() + ": " + std::generic_category().message(code));
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

/// A second name, or a copy that is complete as soon as it has its name.
void keep(const fs::path& file, const fs::path& backup) {
    if (!addName(file, backup)) {
        const fs::path draft = backup.string() + ".part";
        fs::copy_file(file, draft);
        writeToDisk(draft);
        moveFile(draft, backup);
    }
}

/// Who may do what with a file is as with the one that it replaces. A group that the system does not let us
/// give gets no more than everybody.
void copyAccess(const fs::path& replaced, const fs::path& finished) {
    struct stat status {};
    if (::lstat(replaced.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return;
    }
    const bool hasGroup = ::lchown(finished.c_str(), status.st_uid, status.st_gid) == 0 ||
                          ::lchown(finished.c_str(), static_cast<uid_t>(-1), status.st_gid) == 0;
    const mode_t all = status.st_mode & 0777;
    ::chmod(finished.c_str(), hasGroup ? all : all & (0707 | (all & 07) << 3));
}

fs::path pathOf(const QString& name) {
    return QFile::encodeName(name).toStdString();
}

} // namespace

FileExchange::FileExchange(std::shared_ptr<ResultDirectory> directory) : directory_(std::move(directory)) {
    const fs::path path = pathOf(directory_->path());
    plan_.folder = path.parent_path();
    plan_.directory = path.filename().string();
}

FileExchange::~FileExchange() = default;

void FileExchange::plan(fs::path finished, const fs::path& place, bool overwrites) {
    plan_.steps.push_back({fs::absolute(place).lexically_normal().lexically_relative(plan_.folder)});
    finished_.push_back(std::move(finished));
    overwrites_.push_back(overwrites);
}

void FileExchange::put(const fs::path& finished, const fs::path& place, bool overwrites) {
    plan(finished, place, overwrites);
}

void FileExchange::remove(const fs::path& place) {
    plan({}, place, true);
}

void FileExchange::carryOut() {
    const auto kept = ResultDirectory::keepAll(); // also where the process has to end at once
    for (std::size_t step = 0; step < plan_.steps.size(); ++step) {
        std::error_code error;
        plan_.steps[step].replaces = fs::exists(fs::symlink_status(plan_.placeOf(step), error));
        if (!finished_[step].empty()) {
            copyAccess(plan_.placeOf(step), finished_[step]);
            writeToDisk(finished_[step]);
            plan_.steps[step].takeStamp(finished_[step]);
        }
    }
    if (!plan_.steps.empty()) {
        fs::create_directory(plan_.backupOf(0).parent_path());
    }
    if (plan_.steps.size() > 1) {
        journal_ = std::make_unique<ExchangeJournal>();
        journal_->post(plan_);
    }
    try {
        for (std::size_t step = 0; step < plan_.steps.size(); ++step) {
            carryOut(step);
        }
        writeToDisk(plan_.folder);
    } catch (...) {
        undo();
        throw;
    }
    if (journal_) {
        journal_->withdraw();
    }
}

void FileExchange::carryOut(std::size_t step) {
    const fs::path& finished = finished_[step];
    const fs::path place = plan_.placeOf(step);
    const fs::path backup = plan_.backupOf(step);
    done_ = step + 1;
    if (finished.empty()) {
        moveFile(place, backup);
    } else if (!plan_.steps[step].replaces) {
        if (!addName(finished, place)) { // which, other than a renaming, never replaces
            moveFile(finished, place);
        }
    } else if (overwrites_[step]) {
        keep(place, backup);
        moveFile(finished, place);
    } else {
        raise(place, EEXIST);
    }
}

void FileExchange::undo() noexcept {
    bool isUndone = true;
    const auto attempt = [&isUndone](auto work) {
        try {
            work();
        } catch (const std::exception&) {
            isUndone = false;
        }
    };
    if (journal_ && done_ > 0) {
        attempt([this] { journal_->post(plan_); });
        isUndone = true;
    }
    for (; done_ > 0; --done_) {
        attempt([this] { plan_.undo(done_ - 1); });
    }
    if (!isUndone) {
        directory_->keep(); // what was replaced is nowhere else
    } else if (journal_) {
        journal_->withdraw();
    }
}

} // namespace orvane::files
