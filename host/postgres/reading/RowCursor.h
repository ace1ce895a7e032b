#pragma once

#include "host/postgres/connection/Server.h"
#include "host/postgres/description/TableDescription.h"
#include "platform/dp/Cursor.h"
#include "platform/work/Cancellation.h"

#include <memory>
#include <string>
#include <vector>

namespace orvane::postgres {

/// The rows that a query finds, fetched in batches from a cursor of the server's, which sees the table as it
/// was when the cursor was opened. The next batch is on its way while one is read.
class RowCursor final : public dp::SampleCursor {
public:
    /// What the columns of the query's result are: attributes of the table, and its key behind them.
    struct Layout {
        std::vector<int> attributes;
        std::size_t keySize = 1;
        bool hasPage = false; ///< behind the key the place of the row, whose pages are runs
        bool isLookedUp = false;
    };

    /// Within a group of edits `connection` is the group's, else null: the cursor has one of its own then.
    RowCursor(std::shared_ptr<const TableDescription> table, std::shared_ptr<Server> server,
              std::shared_ptr<Connection> connection, const Command& query, Layout layout);
    ~RowCursor() override;

    bool next() override;
    dp::Cell cell(int attribute) override;
    dp::FeatureId featureId() override;
    std::int64_t run() const override { return run_; }
    bool isLookedUp() const override { return layout_.isLookedUp; }

private:
    struct Slot {
        int column = -1; ///< of the result
        ValueKind kind = ValueKind::Text;
        std::string memory;
    };

    Connection& connection() const { return shared_ ? *shared_ : *lease_; }
    Command fetch() const;
    Result openShared(const Command& declaration);
    bool nextBatch();
    void take(Result batch);
    void chooseBatch();
    void finish();
    std::string_view value(int column) const {
        return {PQgetvalue(batch_.get(), row_, column),
                static_cast<std::size_t>(PQgetlength(batch_.get(), row_, column))};
    }

    const std::shared_ptr<const TableDescription> table_;
    const std::shared_ptr<Server> server_;
    const std::shared_ptr<Connection> shared_;
    const Layout layout_;
    const std::string name_; ///< of the server's cursor
    const work::Cancellation cancellation_;
    Server::Lease lease_;
    std::vector<Slot> slots_; ///< by attribute
    std::string key_;         ///< memory of the key
    Result batch_;
    int row_ = -1;
    int rows_ = 0;
    int wanted_;            ///< rows of the batch under way
    int generation_ = 0;    ///< of the cursors of a shared connection
    bool isClosed_ = false; ///< likewise
    bool isAtEnd_ = false;
    bool isReadingAhead_ = false;
    std::int64_t run_ = 0;
};

} // namespace orvane::postgres
