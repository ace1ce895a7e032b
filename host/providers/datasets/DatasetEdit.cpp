#include "host/providers/datasets/DatasetEdit.h"

#include "host/providers/datasets/CheckedFiles.h"
#include "host/providers/datasets/DatasetPool.h"
#include "host/providers/datasets/FileChecks.h"
#include "host/providers/datasets/GdalErrors.h"
#include "platform/utils/Quoting.h"
#include "platform/work/Cancellation.h"

#include <QFileInfo>

#include <sqlite3.h>

#include <chrono>
#include <stdexcept>
#include <thread>

namespace orvane::files {

namespace {

/// How long another program may keep the file locked.
constexpr auto patience = std::chrono::seconds(5);

/// Waiting for a lock of SQLite's, up to the end of our patience or a cancellation.
struct LockWait {
    std::chrono::steady_clock::time_point end;
    work::Cancellation cancellation;
    bool isCancelled = false;

    static int waitMore(void* context, int tries) {
        auto& wait = *static_cast<LockWait*>(context);
        if (tries == 0) {
            wait = {std::chrono::steady_clock::now() + patience, {}, false};
        }
        wait.isCancelled = wait.cancellation.isRequested();
        if (wait.isCancelled || std::chrono::steady_clock::now() > wait.end) {
            return 0;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return 1;
    }
};

/// For the waiting that is under way on this thread.
LockWait& lockWait() {
    static thread_local LockWait wait;
    return wait;
}

QStringList filesOf(const QString& path, GDALDatasetH dataset) {
    QStringList files{path};
    const CPLStringList listed(GDALGetFileList(dataset));
    for (int i = 0; i < listed.size(); ++i) {
        files += QString::fromUtf8(listed[i]);
    }
    files.removeDuplicates();
    return files;
}

QString savepointName(int number) {
    return QStringLiteral("orvane_%1").arg(number);
}

} // namespace

DatasetEdit::DatasetEdit(DatasetPool& pool) : FileEdit(QString::fromUtf8(pool.source().path)), pool_(pool) {
    const auto original = pool.acquire();
    pool.requireOwnRows(original.dataset());
    const GdalErrorScope errors;
    if (!GDALGetInternalHandle(original.dataset(), "SQLITE_HANDLE")) {
        makeCopy(filesOf(path(), original.dataset()));
        try {
            requireShapesOfOneKind(path());
        } catch (const std::runtime_error& error) {
            raiseUnwritten(QString::fromUtf8(error.what()));
        }
    }
    reopen();
}

DatasetEdit::~DatasetEdit() {
    rollback();
}

void DatasetEdit::reopen() {
    try {
        dataset_ = pool_.open(GDAL_OF_UPDATE, hasCopy() ? checkedPath(path()) : pool_.source().path);
    } catch (const std::runtime_error& error) {
        raise(QStringLiteral("%1"), QString::fromUtf8(error.what()));
    }
    if (!hasCopy()) {
        startTransaction();
    }
}

void DatasetEdit::startTransaction() {
    sqlite3_busy_handler(database(), LockWait::waitMore, &lockWait());
    // SQLite would write to the file before the end of a transaction that does not fit its cache, for which
    // nobody may be reading: but the rows to change come from other handles of ours. What is changed stays in
    // memory instead until the end, about as much as it takes in the file. The second keeps the pages that a
    // statement may have to restore from being written for every row.
    execute(QStringLiteral("PRAGMA cache_spill = OFF; PRAGMA temp_store = MEMORY"));
    const GdalErrorScope errors;
    const qint64 version = numberOf("PRAGMA user_version");
    if (GDALDatasetStartTransaction(dataset(), FALSE) != OGRERR_NONE) {
        raiseFromDriver(errors.error());
    }
    // SQLite waits for another writer only where a transaction begins with writing.
    execute(QStringLiteral("PRAGMA user_version = %1").arg(version));
}

qint64 DatasetEdit::numberOf(const char* query) {
    qint64 number = 0;
    const auto take = [](void* target, int, char** values, char**) {
        *static_cast<qint64*>(target) = QByteArray(values[0]).toLongLong();
        return 0;
    };
    if (sqlite3_exec(database(), query, take, &number, nullptr) != SQLITE_OK) {
        raiseFromDriver(QString::fromUtf8(sqlite3_errmsg(database())));
    }
    return number;
}

void DatasetEdit::close() noexcept {
    const TemporaryFilesBeside temporaryFiles(path());
    const GdalErrorScope errors; // what has to be written is by now, or is not wanted
    users_.clear();
    dataset_.reset();
}

sqlite3* DatasetEdit::database() const {
    return static_cast<sqlite3*>(GDALGetInternalHandle(dataset(), "SQLITE_HANDLE"));
}

void DatasetEdit::execute(const QString& statement) {
    if (sqlite3_exec(database(), statement.toUtf8().constData(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        raiseFromDriver(QString::fromUtf8(sqlite3_errmsg(database())));
    }
}

void DatasetEdit::raiseFromDriver(const QString& reason) const {
    if (!hasCopy() && std::exchange(lockWait().isCancelled, false)) {
        throw work::Cancelled();
    }
    raiseUnwritten(reason);
}

void DatasetEdit::raiseIfFailed(const GdalErrorScope& errors) const {
    if (!errors.error().isEmpty()) {
        raiseFromDriver(errors.error());
    }
}

std::shared_ptr<void> DatasetEdit::sharedDataset() const {
    const bool keepsIdentifiers =
        dataset_ && EQUAL(GDALGetDriverShortName(GDALGetDatasetDriver(dataset())), "GPKG");
    return keepsIdentifiers ? dataset_ : nullptr;
}

void DatasetEdit::writeOut() {
    const TemporaryFilesBeside temporaryFiles(path());
    const GdalErrorScope errors;
    if (!hasCopy()) {
        GDALFlushCache(dataset());
        raiseIfFailed(errors);
        return;
    }
    users_.clear();
    dataset_.reset(); // some drivers hold appended features back until then, whatever they are told
    raiseIfFailed(errors);
    reopen();
}

void DatasetEdit::finish() {
    const TemporaryFilesBeside temporaryFiles(path());
    const GdalErrorScope errors;
    users_.clear();
    if (hasCopy()) {
        dataset_.reset(); // many drivers write only now
    } else {
        commitTransaction();
    }
    raiseIfFailed(errors);
}

void DatasetEdit::commitTransaction() {
    const GdalErrorScope errors;
    GDALFlushCache(dataset());
    if (countsAreWrong_) {
        correctCounts();
    }
    raiseIfFailed(errors);
    if (GDALDatasetCommitTransaction(dataset()) != OGRERR_NONE) {
        raiseFromDriver(errors.error());
    }
}

/// GDAL counts along with the rows it adds and deletes, and knows nothing of savepoints.
void DatasetEdit::correctCounts() {
    if (sqlite3_table_column_metadata(database(), "main", "gpkg_ogr_contents", nullptr, nullptr, nullptr,
                                      nullptr, nullptr, nullptr) != SQLITE_OK) {
        return;
    }
    for (int i = 0; i < GDALDatasetGetLayerCount(dataset()); ++i) {
        const std::string_view layer = OGR_L_GetName(GDALDatasetGetLayer(dataset(), i));
        execute(QString::fromStdString("Update gpkg_ogr_contents Set feature_count = (Select Count(*) From " +
                                       utils::sqlIdentifier(layer) + ") Where Lower(table_name) = Lower(" +
                                       utils::sqlText(layer) + ")"));
    }
}

void DatasetEdit::requireTransaction() const {
    // After some failures SQLite ends it by itself: what came next would be written at once.
    if (!hasCopy() && dataset_ && sqlite3_get_autocommit(database())) {
        raise(tr("Изменения «%1» отменены из-за ошибки"), {});
    }
}

void DatasetEdit::markSavepoint(int number) {
    writeOut(); // what GDAL holds back belongs before the savepoint
    execute(QStringLiteral("Savepoint ") + savepointName(number));
}

void DatasetEdit::dropSavepoint(int number) {
    execute(QStringLiteral("Release ") + savepointName(number));
}

void DatasetEdit::returnToSavepoint(int number) {
    writeOut(); // what GDAL holds back belongs to what is taken back
    users_.clear();
    execute(QStringLiteral("Rollback To ") + savepointName(number));
    countsAreWrong_ = true;
}

void DatasetEdit::abandon() noexcept {
    if (hasCopy() || !dataset_ || isPrepared()) {
        return;
    }
    const GdalErrorScope errors;
    users_.clear();
    // After some failures SQLite has ended the transaction by itself: what GDAL then brings up to date on its
    // way out, the time of the change and the like, would be written.
    sqlite3_exec(database(), "PRAGMA query_only = ON", nullptr, nullptr, nullptr);
    GDALDatasetRollbackTransaction(dataset());
}

} // namespace orvane::files
