#include "host/providers/reading/BatchCache.h"

#include "host/providers/conditions/RowFilter.h"

#include <algorithm>
#include <cstring>

namespace orvane::files {

namespace {

std::size_t bytesOf(const ColumnBatch& batch) {
    std::size_t bytes = sizeof batch + batch.fids.bytes;
    for (const auto& column : batch.columns) {
        bytes += column.bytes + sizeof column;
        if (column.kind == ColumnKind::Wkb) {
            bytes += static_cast<std::size_t>(batch.rows) * sizeof(geometry::Envelope);
        }
    }
    return bytes;
}

const std::int64_t* idsOf(const ColumnBatch& batch) {
    return static_cast<const std::int64_t*>(batch.fids.values) + batch.fids.first;
}

} // namespace

const std::shared_ptr<const BatchBoxes>& CachedScan::boxes(std::size_t batch) const {
    std::call_once(boxesOnce_, [this] {
        for (const auto& each : batches) {
            boxes_.push_back(boxesOf(each.columns[static_cast<std::size_t>(geometryColumn)], each.rows));
        }
    });
    return boxes_[batch];
}

bool CachedScan::hasSameRows(const CachedScan& other) const {
    return std::equal(batches.begin(), batches.end(), other.batches.begin(), other.batches.end(),
                      [](const ColumnBatch& a, const ColumnBatch& b) {
                          return a.rows == b.rows &&
                                 std::equal(idsOf(a), idsOf(a) + a.rows, idsOf(b), idsOf(b) + b.rows);
                      });
}

BatchCache& BatchCache::instance() {
    // Never destroyed: a table that the database still knows at the end of the process goes after everything
    // else.
    static auto& cache = *new BatchCache;
    return cache;
}

BatchCache::TableKey BatchCache::newKey() {
    static std::atomic<TableKey> last = 0;
    return ++last;
}

void BatchCache::setCapacity(std::size_t bytes) {
    const std::lock_guard lock(mutex_);
    capacity_ = bytes;
    while (bytes_ > capacity_ && dropLeastRecentlyUsed()) {
    }
}

std::size_t BatchCache::capacity() const {
    const std::lock_guard lock(mutex_);
    return capacity_;
}

std::size_t BatchCache::bytes() const {
    const std::lock_guard lock(mutex_);
    return bytes_;
}

std::optional<CachedColumns> BatchCache::find(TableKey table, const std::vector<int>& attributes) {
    const std::lock_guard lock(mutex_);
    const auto found = tables_.find(table);
    if (found == tables_.end()) {
        return std::nullopt;
    }
    CachedColumns result;
    result.rows = found->second.front();
    result.columns.reserve(attributes.size());
    for (const int attribute : attributes) {
        for (const auto& scan : found->second) {
            const auto position = std::find(scan->attributes.begin(), scan->attributes.end(), attribute);
            if (position != scan->attributes.end()) {
                result.columns.push_back(
                    {scan, static_cast<std::size_t>(position - scan->attributes.begin())});
                break;
            }
        }
    }
    if (result.columns.size() < attributes.size()) {
        return std::nullopt;
    }
    ++uses_;
    for (const auto& scan : found->second) {
        const bool isUsed = scan == result.rows || std::any_of(result.columns.begin(), result.columns.end(),
                                                               [&](const CachedColumns::Column& column) {
                                                                   return column.scan == scan;
                                                               });
        if (isUsed) {
            scan->lastUse = uses_;
        }
    }
    return result;
}

std::optional<std::int64_t> BatchCache::rowCount(TableKey table) const {
    const std::lock_guard lock(mutex_);
    const auto found = tables_.find(table);
    if (found == tables_.end()) {
        return std::nullopt;
    }
    return found->second.front()->rows;
}

void BatchCache::drop(TableKey table) {
    const std::lock_guard lock(mutex_);
    const auto found = tables_.find(table);
    if (found == tables_.end()) {
        return;
    }
    for (const auto& scan : found->second) {
        bytes_ -= scan->bytes;
    }
    tables_.erase(found);
}

bool BatchCache::reserve(std::size_t bytes) {
    const std::lock_guard lock(mutex_);
    while (bytes > capacity_ || bytes_ > capacity_ - bytes) {
        if (!dropLeastRecentlyUsed()) {
            return false;
        }
    }
    bytes_ += bytes;
    return true;
}

void BatchCache::release(std::size_t bytes) {
    const std::lock_guard lock(mutex_);
    bytes_ -= bytes;
}

void BatchCache::store(TableKey table, std::shared_ptr<CachedScan> scan) {
    const std::lock_guard lock(mutex_);
    auto& scans = tables_[table];
    const auto isReplaced = [&](const std::shared_ptr<CachedScan>& older) {
        const bool hasNothingMore =
            std::all_of(older->attributes.begin(), older->attributes.end(), [&](int attribute) {
                return std::count(scan->attributes.begin(), scan->attributes.end(), attribute) > 0;
            });
        const bool isDropped = hasNothingMore || !older->hasSameRows(*scan);
        if (isDropped) {
            bytes_ -= older->bytes;
        }
        return isDropped;
    };
    scans.erase(std::remove_if(scans.begin(), scans.end(), isReplaced), scans.end());
    scan->lastUse = ++uses_;
    scans.push_back(std::move(scan));
}

bool BatchCache::dropLeastRecentlyUsed() {
    auto oldestTable = tables_.end();
    Scans::iterator oldest;
    for (auto table = tables_.begin(); table != tables_.end(); ++table) {
        const auto candidate =
            std::min_element(table->second.begin(), table->second.end(),
                             [](const auto& a, const auto& b) { return a->lastUse < b->lastUse; });
        if (oldestTable == tables_.end() || (*candidate)->lastUse < (*oldest)->lastUse) {
            oldestTable = table;
            oldest = candidate;
        }
    }
    if (oldestTable == tables_.end()) {
        return false;
    }
    bytes_ -= (*oldest)->bytes;
    oldestTable->second.erase(oldest);
    if (oldestTable->second.empty()) {
        tables_.erase(oldestTable);
    }
    return true;
}

ScanCollector::ScanCollector(std::unique_ptr<BatchReader> reader, BatchCache::TableKey table,
                             std::shared_ptr<const std::atomic<BatchCache::TableKey>> currentKey,
                             std::shared_ptr<CachedScan> scan)
    : reader_(std::move(reader)), table_(table), currentKey_(std::move(currentKey)), scan_(std::move(scan)) {}

ScanCollector::~ScanCollector() {
    giveUp();
}

bool ScanCollector::next(ColumnBatch& batch) {
    if (reader_->next(batch)) {
        if (scan_) {
            collect(batch);
        }
        return true;
    }
    if (scan_ && *currentKey_ == table_) {
        BatchCache::instance().store(table_, std::exchange(scan_, nullptr));
    }
    giveUp();
    return false;
}

void ScanCollector::collect(const ColumnBatch& batch) {
    auto& cache = BatchCache::instance();
    const auto bytes = bytesOf(batch);
    if (scan_->bytes + bytes > cache.capacity() / 2 || !cache.reserve(bytes)) {
        giveUp();
        return;
    }
    scan_->bytes += bytes;
    const auto* ids = idsOf(batch);
    scan_->idsAscend =
        scan_->idsAscend && std::is_sorted(ids, ids + batch.rows) &&
        (scan_->batches.empty() || idsOf(scan_->batches.back())[scan_->batches.back().rows - 1] <= ids[0]);
    scan_->rows += batch.rows;
    scan_->batches.push_back(batch);
}

void ScanCollector::giveUp() {
    if (!scan_) {
        return;
    }
    BatchCache::instance().release(scan_->bytes);
    scan_ = nullptr;
}

bool CachedReader::next(ColumnBatch& batch) {
    for (; next_ < columns_.rows->batches.size(); ++next_) {
        const auto& rows = columns_.rows->batches[next_];
        batch.rows = rows.rows;
        batch.fids = rows.fids;
        if (boxes_) {
            batch.boxes = boxes_->boxes(next_);
        }
        if (filter_ && !filter_->canPass(batch)) {
            continue;
        }
        batch.columns.resize(columns_.columns.size());
        for (std::size_t i = 0; i < columns_.columns.size(); ++i) {
            const auto& column = columns_.columns[i];
            batch.columns[i] = column.scan->batches[next_].columns[column.position];
        }
        ++next_;
        return true;
    }
    return false;
}

} // namespace orvane::files
