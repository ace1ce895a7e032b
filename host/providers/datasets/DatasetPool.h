#pragma once

#include "host/providers/datasets/FileOpening.h"
#include "host/providers/datasets/FileStamp.h"
#include "host/providers/datasets/GdalHandles.h"
#include "host/providers/datasets/ResultDirectory.h"
#include "platform/work/Cancellation.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QList>

#include <memory>
#include <mutex>
#include <vector>

namespace orvane::files {

class DatasetEdit;

/// Open handles of one file. A handle serves one cursor at a time, for GDAL keeps the state of a scan in it:
/// a cursor takes one and gives it back. Any thread may use a pool; a handle, the thread that took it.
class DatasetPool : public std::enable_shared_from_this<DatasetPool> {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::DatasetPool)
public:
    /// How the file is opened. Texts are UTF-8.
    struct Source {
        QByteArray path;
        QList<QByteArray> openOptions;
        /// Goes when nobody reads the file any more; null for a file of the user's.
        std::shared_ptr<ResultDirectory> temporaryDirectory = nullptr;
        /// The user wants what the file refers to, wherever it lies.
        bool trustsReferences = false;
    };

    /// A handle out of the pool; gives it back when it dies. What GDAL has SQLite do with it until then ends
    /// with an error once all work is cancelled.
    class Lease {
    public:
        Lease() = default;
        Lease(std::shared_ptr<DatasetPool> pool, DatasetHandle dataset, unsigned generation);
        ~Lease();
        Lease(Lease&&) = default;
        Lease& operator=(Lease&& other) noexcept;

        /// A handle that shows the changes of a group of edits, and writes them.
        Lease(std::shared_ptr<DatasetPool> pool, std::shared_ptr<void> shared)
            : pool_(std::move(pool)), shared_(std::move(shared)) {}

        GDALDatasetH dataset() const { return shared_ ? shared_.get() : dataset_.get(); }
        const DatasetPool& pool() const { return *pool_; }
        /// Whether others use the handle too: the settings of its layers are not for a scan to change.
        bool isShared() const { return shared_ != nullptr; }

    private:
        std::shared_ptr<DatasetPool> pool_;
        std::shared_ptr<void> shared_;
        DatasetHandle dataset_;
        unsigned generation_ = 0;
        std::unique_ptr<const work::Cancellation> cancellation_;
    };

    explicit DatasetPool(Source source)
        : source_(std::move(source)), reach_(reachOf(source_.path, source_.trustsReferences)),
          firstStamp_(source_.path) {}
    ~DatasetPool();
    DatasetPool(const DatasetPool&) = delete;
    DatasetPool& operator=(const DatasetPool&) = delete;

    const Source& source() const { return source_; }
    Reach reach() const { return reach_; }
    /// The file as it was before any handle was opened: one that is changed while it is opened has another
    /// one.
    const FileStamp& firstStamp() const { return firstStamp_; }

    /// An idle handle, or a new one; while a group of edits has changes, one that shows them. Throws
    /// std::runtime_error when the file does not open.
    Lease acquire();
    /// A new handle that does not belong to the pool, of the file or a copy of it. Throws as acquire(), and
    /// to be changed as requireOwnRows().
    DatasetHandle open(unsigned flags, const QByteArray& path) const;
    /// Throws std::runtime_error for a virtual dataset: who changes it would change the files that it names.
    void requireOwnRows(GDALDatasetH dataset) const;
    /// Whether a group of edits has changes, which readers see.
    bool isEdited() const { return editWithChanges() != nullptr; }
    /// The group of edits under way, or else a new one. Throws std::runtime_error.
    std::shared_ptr<DatasetEdit> edit();
    /// Forgets every handle, for the file has changed: idle ones now, the others when they come back.
    void discardHandles();

private:
    class IdleHandles;

    std::shared_ptr<DatasetEdit> editWithChanges() const;
    /// Of the file, or the copy that a group of edits has changed.
    QByteArray currentPath() const;
    [[noreturn]] void raiseUnopened(const QString& reported) const;
    void release(DatasetHandle dataset, unsigned generation);
    std::vector<DatasetHandle> takeIdle();

    const Source source_;
    const Reach reach_;
    const FileStamp firstStamp_;
    std::mutex mutex_;
    std::vector<DatasetHandle> idle_;
    unsigned generation_ = 0;
    std::weak_ptr<DatasetEdit> edit_;
};

/// For what GDAL does with a handle on this thread.
inline Confinement confine(const DatasetPool::Lease& lease) {
    return {lease.pool().reach(), lease.pool().source().path};
}

} // namespace orvane::files
