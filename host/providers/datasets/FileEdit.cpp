#include "host/providers/datasets/FileEdit.h"

#include "host/providers/datasets/CheckedFiles.h"
#include "host/providers/datasets/FileStamp.h"
#include "platform/work/Cancellation.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace orvane::files {

FileEdit::~FileEdit() = default;

void FileEdit::raise(const QString& what, QString reason) const {
    QString text = what.arg(file_);
    if (!reason.isEmpty()) {
        text += QStringLiteral(": ") + withoutCheckedPrefix(std::move(reason)).replace(path(), file_);
    }
    throw std::runtime_error(text.toStdString());
}

void FileEdit::raiseUnwritten(const QString& reason) const {
    raise(tr("Не удалось записать «%1»"), reason);
}

template<class Work>
void FileEdit::onDisk(Work work) const {
    try {
        work();
    } catch (const work::Cancelled&) {
        throw;
    } catch (const std::filesystem::filesystem_error& error) {
        raiseUnwritten(QString::fromStdString(error.code().message()));
    } catch (const std::runtime_error& error) {
        raiseUnwritten(QString::fromUtf8(error.what()));
    }
}

void FileEdit::makeCopy(const QStringList& files) {
    onDisk([&] { copy_.emplace(file_, files); });
}

void FileEdit::beforeChange() {
    requireTransaction();
    hasChanges_ = true;
    const auto unsaved = std::find_if(savepoints_.begin(), savepoints_.end(),
                                      [](const Savepoint& savepoint) { return !savepoint.saved; });
    if (copy_ && unsaved != savepoints_.end()) {
        flush();
        onDisk([&] { copy_->save(unsaved->number); });
        for (auto each = unsaved; each != savepoints_.end(); ++each) {
            each->saved = unsaved->number;
        }
    }
    isFlushed_ = false;
}

void FileEdit::flush() {
    if (!isEnded_ && !std::exchange(isFlushed_, true)) {
        writeOut();
    }
}

std::vector<FileEdit::Savepoint>::iterator FileEdit::findSavepoint(int number) {
    return std::find_if(savepoints_.begin(), savepoints_.end(),
                        [number](const Savepoint& savepoint) { return savepoint.number == number; });
}

void FileEdit::setSavepoint(int number) {
    if (isEnded_ || findSavepoint(number) != savepoints_.end()) {
        return;
    }
    if (!copy_) {
        requireTransaction();
        markSavepoint(number);
    }
    savepoints_.push_back({number, std::nullopt});
}

void FileEdit::releaseSavepoint(int number) {
    // The group may have begun between that savepoint and one within it.
    const auto first =
        std::find_if(savepoints_.begin(), savepoints_.end(),
                     [number](const Savepoint& savepoint) { return savepoint.number >= number; });
    if (isEnded_ || first == savepoints_.end()) {
        return;
    }
    const int outermost = first->number;
    savepoints_.erase(first, savepoints_.end());
    if (!copy_) {
        dropSavepoint(outermost);
    }
}

void FileEdit::rollbackTo(int number) {
    const auto found = findSavepoint(number);
    if (isEnded_ || found == savepoints_.end()) {
        rollback();
        return;
    }
    savepoints_.erase(found + 1, savepoints_.end());
    if (!copy_) {
        returnToSavepoint(number);
    } else if (found->saved) {
        close();
        onDisk([&] { copy_->restore(*found->saved); });
        isFlushed_ = true;
        reopen();
    }
}

void FileEdit::prepare() {
    if (isPrepared_ || isEnded_) {
        return;
    }
    if (!hasChanges_) {
        rollback();
        return;
    }
    finish();
    if (copy_) {
        onDisk([this] { copy_->publish(); });
    }
    isPrepared_ = true;
}

void FileEdit::commit() noexcept {
    isEnded_ = true;
    close();
    copy_.reset();
    FileStamp::noteWrite(); // of which the other tables of the file learn
}

void FileEdit::rollback() noexcept {
    if (std::exchange(isEnded_, true)) {
        return;
    }
    if (copy_ && isPrepared_) {
        copy_->unpublish();
    }
    abandon();
    close();
    copy_.reset();
}

} // namespace orvane::files
