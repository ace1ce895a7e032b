#pragma once

#include "engine/indices/IndexMatching.h"
#include "platform/dp/SqliteDatabaseAccess.h"
#include "platform/work/Cancellation.h"
#include "platform/work/Progress.h"
#include <orvane/engine/rows/RowOrder.h>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace orvane::engine {

/// Loads rows through one prepared Insert. They are inserted in the order of the index, which lets SQLite
/// append to its pages instead of searching the tree for every row.
class SqliteLoader : public EngineIndices::RowLoader {
public:
    /// Groups of rows that agree in the first column of an index, in the first two and so on.
    using GroupCounts = std::vector<EngineIndices::Groups>;
    /// Called once all rows are in the database, with their number; with the groups when these rows are all
    /// the index has and were sorted in one portion, else with none.
    using Stored = std::function<void(qint64 rows, GroupCounts groups)>;

    /// Texts under the collation Locale are ordered by `locale`.
    SqliteLoader(std::shared_ptr<dp::SqliteDatabaseAccess> database, int index, const IndexColumns& columns,
                 std::vector<RowOrder::Key> keys, std::shared_ptr<const LocaleOrder> locale, Stored stored,
                 work::Progress* progress);
    ~SqliteLoader() override;

    void addRow(qint64 row, std::span<const dp::Cell> values) override;
    void finish() override;

private:
    void restart();
    void storePortion();
    void countGroups();
    void report(std::size_t rows);
    /// Binds and runs a statement of `count` rows.
    void insert(dp::SqliteStatement& statement, std::uint32_t first, std::uint32_t count);

    std::shared_ptr<dp::SqliteDatabaseAccess> database_;
    dp::SqliteDatabaseAccess::UnitOfWork work_;
    dp::SqliteStatement insertMany_;
    dp::SqliteStatement insertOne_;
    std::vector<RowOrder::Key> keys_;
    std::shared_ptr<const LocaleOrder> locale_;
    std::optional<RowOrder> order_; ///< of the portion, as the two below
    std::optional<ByteArena> texts_;
    std::vector<std::int64_t> rows_;
    Stored stored_;
    bool isCounting_;
    GroupCounts groups_;
    qint64 rowCount_ = 0;
    work::Cancellation cancellation_;
    work::Progress* progress_;
    std::size_t unreported_ = 0; ///< rows added since the progress was told
};

} // namespace orvane::engine
