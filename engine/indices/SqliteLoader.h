#pragma once

#include "engine/indices/IndexMatching.h"
#include "engine/indices/RowSorter.h"
#include "platform/dp/SqliteDatabaseAccess.h"
#include "platform/work/Cancellation.h"
#include "platform/work/Progress.h"

#include <functional>

namespace orvane::engine {

/// What the rows of one load, sorted, are known to look like.
struct GroupCounts {
    qint64 rows = 0;
    qint64 largestGroup = 0;
    qint64 smallestGroup = 0;
    qint64 groups = 0;
};

/// Loads rows through one prepared Insert. They are inserted in the order of the index, which lets SQLite
/// append to its pages instead of searching the tree for every row.
class SqliteLoader : public EngineIndices::RowLoader {
public:
    /// Called once all rows are in the database: with the counts when these rows are all the index has and
    /// were sorted in one portion, else with null.
    using Stored = std::function<void(const GroupCounts* counts)>;

    SqliteLoader(std::shared_ptr<dp::SqliteDatabaseAccess> database, int index, const IndexColumns& columns,
                 RowSorter sorter, Stored stored, work::Progress* progress);
    ~SqliteLoader() override;

    void addRow(qint64 row, std::span<const dp::Cell> values) override;
    void finish() override;

private:
    void storePortion();
    void countGroups();
    void report(qint64 rows);
    /// Binds and runs a statement of `count` rows.
    void insert(dp::SqliteStatement& statement, std::size_t first, std::size_t count);

    std::shared_ptr<dp::SqliteDatabaseAccess> database_;
    dp::SqliteDatabaseAccess::UnitOfWork work_;
    dp::SqliteStatement insertMany_;
    dp::SqliteStatement insertOne_;
    RowSorter sorter_;
    Stored stored_;
    bool isCounting_;
    GroupCounts counts_;
    work::Cancellation cancellation_;
    work::Progress* progress_;
    qint64 unreported_ = 0; ///< rows added since the progress was told
};

} // namespace orvane::engine
