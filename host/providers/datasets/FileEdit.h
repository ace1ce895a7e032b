#pragma once

#include "host/providers/datasets/WorkingCopy.h"

#include <QCoreApplication>

#include <optional>
#include <vector>

namespace orvane::files {

/// A group of edits of a file, of however many of its tables: in a working copy, which takes the place of the
/// file at the end, unless the format has transactions of its own.
///
/// Operations throw std::runtime_error with the file and the reason. Each table may call the ones that end
/// the group or set a savepoint: only the first call has an effect. Used from one thread.
class FileEdit {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::FileEdit)
public:
    virtual ~FileEdit();
    FileEdit(const FileEdit&) = delete;
    FileEdit& operator=(const FileEdit&) = delete;

    /// To be called before each change.
    void beforeChange();
    /// Makes path() hold all changes.
    void flush();

    bool isEnded() const { return isEnded_; }
    bool hasChanges() const { return hasChanges_; }
    /// What shows the changes to who opens it.
    QString path() const { return copy_ ? copy_->path() : file_; }

    void setSavepoint(int number);
    void releaseSavepoint(int number);
    /// Takes back what was changed since; everything where the savepoint is older than the group.
    void rollbackTo(int number);

    /// Does all that can fail, and lets the changes appear in the file: afterwards commit() or rollback().
    /// The waiting for others who read or write the file can be cancelled (work::Cancelled).
    void prepare();
    void commit() noexcept;
    /// After prepare() it takes back what a working copy has replaced; a transaction is committed by then.
    void rollback() noexcept;

protected:
    /// `file` is the path that messages name.
    explicit FileEdit(QString file) : file_(std::move(file)) {}

    /// Copies the files of the dataset, which is edited in the copy then.
    void makeCopy(const QStringList& files);
    bool hasCopy() const { return copy_.has_value(); }
    bool isPrepared() const { return isPrepared_; }

    /// Throws where a failure has ended the transaction.
    virtual void requireTransaction() const {}
    /// Brings what is held back into the copy.
    virtual void writeOut() = 0;
    /// Nobody uses the copy any more. Not called by the destructor: who overrides it rolls back in its own.
    virtual void close() noexcept {}
    virtual void reopen() {}
    /// The last step before the copy takes the place of the file, or the end of a transaction.
    virtual void finish() { flush(); }
    /// In a transaction.
    virtual void markSavepoint(int) {}
    virtual void dropSavepoint(int) {}
    virtual void returnToSavepoint(int) {}
    virtual void abandon() noexcept {}

    [[noreturn]] void raise(const QString& what, QString reason) const;
    [[noreturn]] void raiseUnwritten(const QString& reason) const;

private:
    struct Savepoint {
        int number;
        std::optional<int> saved; ///< what the working copy remembers; nothing when it has not changed since
    };

    template<class Work>
    void onDisk(Work work) const;
    std::vector<Savepoint>::iterator findSavepoint(int number);

    const QString file_;
    std::optional<WorkingCopy> copy_;
    std::vector<Savepoint> savepoints_;
    bool hasChanges_ = false;
    bool isFlushed_ = true;
    bool isPrepared_ = false;
    bool isEnded_ = false;
};

} // namespace orvane::files
