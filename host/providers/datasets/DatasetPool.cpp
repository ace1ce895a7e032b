#include "host/providers/datasets/DatasetPool.h"

#include "host/providers/datasets/Archive.h"
#include "host/providers/datasets/DatasetEdit.h"
#include "host/providers/datasets/ExchangeJournal.h"
#include "host/providers/datasets/FileChecks.h"
#include "host/providers/datasets/GdalErrors.h"
#include "host/providers/datasets/HotJournal.h"

#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <list>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <unistd.h>

namespace orvane::files {

namespace {

/// Enough for a query with several joins; each holds a file open, and some drivers keep all features in
/// memory.
constexpr std::size_t mostIdle = 4;

/// Lets a statement that SQLite runs for GDAL look at a cancellation now and then; at none when it is null.
void endWhenCancelled(GDALDatasetH dataset, const work::Cancellation* cancellation) {
    constexpr int instructionsBetweenLooks = 10'000;
    const auto look = [](void* asked) {
        return static_cast<int>(static_cast<const work::Cancellation*>(asked)->isRequested());
    };
    if (auto* database = static_cast<sqlite3*>(GDALGetInternalHandle(dataset, "SQLITE_HANDLE"))) {
        sqlite3_progress_handler(database, cancellation ? instructionsBetweenLooks : 0, look,
                                 const_cast<work::Cancellation*>(cancellation));
    }
}

/// Idle handles of all files together: an eighth of the files that the process may have open, for a handle
/// holds up to three of them.
std::size_t mostIdleOfAll() {
    rlimit limit{};
    constexpr rlim_t least = 8;
    constexpr rlim_t most = 256;
    const bool isKnown = ::getrlimit(RLIMIT_NOFILE, &limit) == 0;
    return isKnown ? std::clamp(limit.rlim_cur / 8, least, most) : least;
}

bool isOutOfDescriptors() {
    const int descriptor = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    const bool isOut = descriptor < 0 && (errno == EMFILE || errno == ENFILE);
    if (descriptor >= 0) {
        ::close(descriptor);
    }
    return isOut;
}

/// GDAL's reason, without the path that stands before it.
QString withoutPath(const QString& reason, const QString& path) {
    const QString start = path + QStringLiteral(": ");
    return reason.startsWith(start) ? reason.mid(start.size()) : reason;
}

} // namespace

/// The pools that have idle handles, the one that was used last at the end. Any thread.
class DatasetPool::IdleHandles {
public:
    static IdleHandles& instance() {
        static auto* const handles = new IdleHandles; // pools may go after all else has gone
        return *handles;
    }
    /// The pool has as many idle handles now: others lose theirs where all together are too many.
    void set(DatasetPool* pool, std::size_t count) {
        std::vector<DatasetHandle> discarded; // closed without the lock
        const std::lock_guard lock(mutex_);
        forget(pool);
        if (count > 0) {
            pools_.push_back({pool, count});
            total_ += count;
        }
        while (total_ > most_ && pools_.size() > 1) {
            DatasetPool* const oldest = pools_.front().first;
            for (DatasetHandle& handle : oldest->takeIdle()) {
                discarded.push_back(std::move(handle));
            }
            forget(oldest);
        }
    }

private:
    void forget(const DatasetPool* pool) {
        const auto known = std::find_if(pools_.begin(), pools_.end(),
                                        [pool](const auto& entry) { return entry.first == pool; });
        if (known != pools_.end()) {
            total_ -= known->second;
            pools_.erase(known);
        }
    }

    const std::size_t most_ = mostIdleOfAll();
    std::mutex mutex_;
    std::list<std::pair<DatasetPool*, std::size_t>> pools_;
    std::size_t total_ = 0;
};

DatasetPool::~DatasetPool() {
    IdleHandles::instance().set(this, 0);
}

DatasetPool::Lease::Lease(std::shared_ptr<DatasetPool> pool, DatasetHandle dataset, unsigned generation)
    : pool_(std::move(pool)), dataset_(std::move(dataset)), generation_(generation),
      cancellation_(std::make_unique<work::Cancellation>()) {
    endWhenCancelled(dataset_.get(), cancellation_.get());
}

DatasetPool::Lease::~Lease() {
    if (dataset_) {
        endWhenCancelled(dataset_.get(), nullptr);
        pool_->release(std::move(dataset_), generation_);
    }
}

DatasetPool::Lease& DatasetPool::Lease::operator=(Lease&& other) noexcept {
    std::swap(pool_, other.pool_);
    std::swap(shared_, other.shared_);
    std::swap(dataset_, other.dataset_);
    std::swap(generation_, other.generation_);
    std::swap(cancellation_, other.cancellation_);
    return *this;
}

DatasetPool::Lease DatasetPool::acquire() {
    if (const auto edit = editWithChanges()) {
        if (auto shared = edit->sharedDataset()) {
            return {shared_from_this(), std::move(shared)};
        }
    }
    std::unique_lock lock(mutex_);
    const unsigned generation = generation_;
    if (!idle_.empty()) {
        auto dataset = std::move(idle_.back());
        idle_.pop_back();
        return {shared_from_this(), std::move(dataset), generation};
    }
    lock.unlock();
    return {shared_from_this(), open(GDAL_OF_READONLY, currentPath()), generation};
}

std::shared_ptr<DatasetEdit> DatasetPool::editWithChanges() const {
    const auto edit = edit_.lock();
    return edit && edit->hasChanges() && !edit->isEnded() ? edit : nullptr;
}

QByteArray DatasetPool::currentPath() const {
    const auto edit = editWithChanges();
    return edit ? edit->path().toUtf8() : source_.path;
}

std::shared_ptr<DatasetEdit> DatasetPool::edit() {
    auto edit = edit_.lock();
    if (!edit || edit->isEnded()) {
        edit = std::make_shared<DatasetEdit>(*this);
        edit_ = edit;
        discardHandles(); // idle ones must not hold the file
    }
    return edit;
}

void DatasetPool::discardHandles() {
    std::vector<DatasetHandle> discarded;
    const std::lock_guard lock(mutex_);
    ++generation_;
    discarded.swap(idle_);
}

std::vector<DatasetHandle> DatasetPool::takeIdle() {
    const std::lock_guard lock(mutex_);
    return std::exchange(idle_, {});
}

DatasetHandle DatasetPool::open(unsigned flags, const QByteArray& path) const {
    requireOrdinaryFile(path);
    const QString file = pathOnDisk(QString::fromUtf8(path));
    settleExchangeAround(QFile::encodeName(file).toStdString());
    rollBackDatabase(file);
    QString reason;
    DatasetHandle dataset = openFileWithin(reach_, path, flags, source_.openOptions, reason);
    if (!dataset) {
        raiseUnopened(reason);
    }
    if ((flags & GDAL_OF_UPDATE) != 0) {
        requireOwnRows(dataset.get());
    }
    return dataset;
}

void DatasetPool::requireOwnRows(GDALDatasetH dataset) const {
    if (isVirtual(dataset)) {
        throw std::runtime_error(tr("«%1» только читается: его строки лежат в других файлах")
                                     .arg(QString::fromUtf8(source_.path))
                                     .toStdString());
    }
}

void DatasetPool::raiseUnopened(const QString& reported) const {
    QString path = QString::fromUtf8(source_.path);
    QString reason = withoutPath(reported, path);
    path = pathOnDisk(path);
    const QFileInfo file(path);
    if (file.isFile() && file.size() == 0) {
        reason = tr("файл пуст");
    } else if (reason.isEmpty() ||
               reported.contains(QLatin1String("not recognized as a supported"))) { // GDAL's
        reason = tr("в нём нет таблиц в известном формате");
    }
    if (isOutOfDescriptors()) {
        reason = tr("открыто слишком много файлов");
    }
    const QString message = tr("Не удалось открыть «%1»").arg(path);
    throw std::runtime_error(
        (reason.isEmpty() ? message : message + QStringLiteral(": ") + reason).toStdString());
}

void DatasetPool::release(DatasetHandle dataset, unsigned generation) {
    const GdalErrorScope errors;
    std::unique_lock lock(mutex_);
    if (generation != generation_ || idle_.size() >= mostIdle) {
        return;
    }
    idle_.push_back(std::move(dataset));
    const std::size_t count = idle_.size();
    lock.unlock();
    IdleHandles::instance().set(this, count);
}

} // namespace orvane::files
