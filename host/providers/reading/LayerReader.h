#pragma once

#include "host/providers/datasets/FileStamp.h"
#include "host/providers/reading/BatchCache.h"
#include "host/providers/reading/RowSource.h"
#include "platform/dp/Cursor.h"

#include <optional>

namespace orvane::files {

/// Chooses how the requests on one table are answered: from the batches in memory, by a filter of the format,
/// by identifiers, or by reading the rows from one end to the other. Used from one thread at a time; the
/// cursors do not refer to it.
class LayerReader {
public:
    explicit LayerReader(std::shared_ptr<RowSource> source);
    ~LayerReader();
    LayerReader(const LayerReader&) = delete;
    LayerReader& operator=(const LayerReader&) = delete;

    const RowSource& source() const { return *source_; }

    std::unique_ptr<dp::Cursor> openCursor(const dp::ScanRequest& request);
    /// As dp::Table::openSample().
    std::unique_ptr<dp::SampleCursor> openSample(const std::vector<int>& attributes, std::int64_t rows);
    std::optional<std::int64_t> featureCount();
    BatchCache::TableKey revision();
    bool usesTerm(int attribute, dp::Comparison comparison, dp::TextCollation collation) const;
    bool looksUp(int attribute, dp::Comparison comparison, dp::TextCollation collation);
    bool usesWindow() { return source_->hasSpatialIndex(); }
    /// Forgets everything that was read: the rows have changed.
    void invalidate();
    /// Whether the file was written since the last cursor was opened; later cursors see that.
    bool isBehindFile();

private:
    struct Query;

    void followFile();
    bool isNarrow(const std::vector<int>& attributes) const;

    /// When no value is asked for and the driver knows the number of rows.
    std::unique_ptr<dp::Cursor> openForCounting(const dp::ScanRequest& request);
    std::unique_ptr<dp::Cursor> openById(const Query& query, std::vector<std::int64_t> ids);
    std::unique_ptr<dp::Cursor> openFromCache(const Query& query);
    std::unique_ptr<dp::Cursor> openByTree(const Query& query);
    std::unique_ptr<dp::Cursor> openByDriver(const Query& query);
    /// Whether the columns of the conditions are in memory, or could be read into it whole.
    bool loadTestedColumns(const Query& query);
    /// Tests these columns and looks the rows that pass up; reads the layer when they are many.
    std::unique_ptr<dp::Cursor> openByTestedColumns(const Query& query);
    std::unique_ptr<dp::Cursor> openFullScan(const Query& query);
    std::unique_ptr<dp::SampleCursor> makeCursor(const Query& query, std::unique_ptr<BatchReader> reader,
                                                 std::shared_ptr<const RowFilter> filter,
                                                 bool isLookedUp = false);

    /// Counts look-ups of features; true when keeping their columns in memory has become cheaper.
    bool lookupsCostMoreThanAScan(std::size_t count);
    std::unique_ptr<BatchReader> startCollectedScan(const std::vector<int>& attributes);
    /// Reads columns into the cache, as far as there is room; stops when the query is cancelled.
    void load(const std::vector<int>& attributes);
    void loadWholeOnce();

    const std::shared_ptr<RowSource> source_;
    const int geometry_; ///< position of the geometry, -1 for none
    FileStamp stamp_;
    /// The state of the rows; 0 once the table is gone. Scans that end later are not kept.
    std::shared_ptr<std::atomic<BatchCache::TableKey>> key_;
    bool wholeWasTried_ = false;
    int driverFilters_ = 0; ///< scans that the driver filtered without an index
    std::int64_t lookups_ = 0;
};

} // namespace orvane::files
