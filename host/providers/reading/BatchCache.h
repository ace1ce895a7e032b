#pragma once

#include "host/providers/Export.h"
#include "host/providers/columns/ColumnBatch.h"

#include <atomic>
#include <map>
#include <mutex>
#include <optional>

namespace orvane::files {

class RowFilter;

/// The batches of a complete scan of some attributes of a table.
class CachedScan {
public:
    CachedScan(std::vector<int> scannedAttributes, int columnOfGeometries)
        : attributes(std::move(scannedAttributes)), geometryColumn(columnOfGeometries) {}

    /// The bounding boxes of the geometries of a batch; made for all batches at the first call. Only for
    /// scans with a geometry column. Any thread may call it.
    const std::shared_ptr<const BatchBoxes>& boxes(std::size_t batch) const;
    bool hasSameRows(const CachedScan& other) const;

    const std::vector<int> attributes; ///< of the columns in each batch
    const int geometryColumn;          ///< column of the geometries, -1 for none
    std::vector<ColumnBatch> batches;
    std::int64_t rows = 0;
    bool idsAscend = true; ///< over the whole scan
    std::size_t bytes = 0;
    std::uint64_t lastUse = 0; ///< guarded by the cache

private:
    mutable std::once_flag boxesOnce_;
    mutable std::vector<std::shared_ptr<const BatchBoxes>> boxes_;
};

/// Some attributes of a table in memory. They may come from several scans, which have the same rows in the
/// same batches.
struct CachedColumns {
    struct Column {
        std::shared_ptr<const CachedScan> scan;
        std::size_t position = 0;
    };
    std::shared_ptr<const CachedScan> rows; ///< any of the scans, for the identifiers
    std::vector<Column> columns;            ///< one for each attribute asked for
};

/// Keeps complete scans in memory for the next cursor, for all tables of the process within one bound of
/// bytes; what was not used for longest goes first. A cursor keeps alive what it reads. Any thread may use
/// it.
class ORVANE_FILES_EXPORT BatchCache {
public:
    /// Names one state of one table; a table takes a new key whenever its rows have changed.
    using TableKey = std::uint64_t;

    static BatchCache& instance();
    static TableKey newKey();

    /// 256 MB unless set. Lowering it drops scans at once.
    void setCapacity(std::size_t bytes);
    std::size_t capacity() const;
    /// Held by scans, finished or growing.
    std::size_t bytes() const;

    /// The attributes of a table, or nothing when one of them is missing.
    std::optional<CachedColumns> find(TableKey table, const std::vector<int>& attributes);
    /// The number of rows of a table of which some scan is kept.
    std::optional<std::int64_t> rowCount(TableKey table) const;
    /// Forgets the scans of a table.
    void drop(TableKey table);

    /// Counts the bytes of a growing scan in, at the cost of others; false when they do not fit.
    bool reserve(std::size_t bytes);
    void release(std::size_t bytes);
    /// Keeps a finished scan whose bytes are reserved. Scans of the same table that have other rows, or no
    /// attribute that this one has not, are dropped.
    void store(TableKey table, std::shared_ptr<CachedScan> scan);

private:
    using Scans = std::vector<std::shared_ptr<CachedScan>>;

    bool dropLeastRecentlyUsed();

    mutable std::mutex mutex_;
    std::map<TableKey, Scans> tables_;
    std::size_t capacity_ = std::size_t{256} << 20;
    std::size_t bytes_ = 0;
    std::uint64_t uses_ = 0;
};

/// Passes the batches of a complete scan on and, when it came to its end, hands them to the cache. Gives up
/// collecting when they take more than half of the cache.
class ScanCollector final : public BatchReader {
public:
    /// The scan is kept only when `currentKey` still is `table` at the end.
    ScanCollector(std::unique_ptr<BatchReader> reader, BatchCache::TableKey table,
                  std::shared_ptr<const std::atomic<BatchCache::TableKey>> currentKey,
                  std::shared_ptr<CachedScan> scan);
    ~ScanCollector() override;

    bool next(ColumnBatch& batch) override;

private:
    void collect(const ColumnBatch& batch);
    void giveUp();

    std::unique_ptr<BatchReader> reader_;
    BatchCache::TableKey table_;
    std::shared_ptr<const std::atomic<BatchCache::TableKey>> currentKey_;
    std::shared_ptr<CachedScan> scan_; ///< null once given up or handed over
};

/// Reads columns from the cache, leaving out the batches in which no row can pass the filter.
class CachedReader final : public BatchReader {
public:
    /// `filter` may be null. The batches carry the boxes of the geometries of `boxes` unless it is null.
    CachedReader(CachedColumns columns, std::shared_ptr<const RowFilter> filter,
                 std::shared_ptr<const CachedScan> boxes)
        : columns_(std::move(columns)), filter_(std::move(filter)), boxes_(std::move(boxes)) {}

    bool next(ColumnBatch& batch) override;

private:
    CachedColumns columns_;
    std::shared_ptr<const RowFilter> filter_;
    std::shared_ptr<const CachedScan> boxes_;
    std::size_t next_ = 0;
};

} // namespace orvane::files
