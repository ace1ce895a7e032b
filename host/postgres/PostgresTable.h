#pragma once

#include "host/postgres/Export.h"
#include "platform/dp/Table.h"

#include <memory>

namespace orvane::postgres {

class Connection;
class EditTransaction;
class Server;
struct Command;
struct TableDescription;

/// A table or view of a PostgreSQL database. A cursor sees the rows as they were when it was opened; what
/// others change afterwards is noticed by revision() a second later at the latest, by cursors at once. Each
/// cursor that is not at its end has a connection of its own.
class ORVANE_POSTGRES_EXPORT PostgresTable final : public dp::Table {
    Q_OBJECT
public:
    /// The tables of one database share their edits.
    struct Edits {
        std::weak_ptr<EditTransaction> current;
        std::uint64_t changes = 0; ///< so far, for revision()
    };

    PostgresTable(QString name, std::shared_ptr<Server> server, std::shared_ptr<Edits> edits,
                  TableDescription description);
    ~PostgresTable() override;

    std::shared_ptr<const dp::TableSchema> schema() const override;

    /// Throws std::runtime_error also when the server cannot be reached, work::Cancelled while it is waited
    /// for.
    std::unique_ptr<dp::Cursor> openCursor(const dp::ScanRequest& request) override;
    std::unique_ptr<dp::SampleCursor> openSample(const std::vector<int>& attributes,
                                                 std::int64_t rows) override;
    /// As the server's planner expects.
    std::optional<std::int64_t> featureCount() const override;
    std::uint64_t revision() const override;
    bool usesTerm(int attribute, dp::Comparison comparison, dp::TextCollation collation) const override;
    bool looksUp(int attribute, dp::Comparison comparison, dp::TextCollation collation) const override;
    bool usesWindow() const override;

    /// True for what has no key, for views, and where the user may change nothing.
    bool isReadOnly() const override;
    /// A transaction of the server's, which all tables of the database share. prepareEdits() commits it.
    void beginEdits() override;
    void prepareEdits() override;
    void commitEdits() noexcept override;
    void rollbackEdits() noexcept override;
    void setSavepoint(int number) override;
    void releaseSavepoint(int number) override;
    void rollbackToSavepoint(int number) override;
    dp::FeatureId insertFeature(const dp::Feature& feature) override;
    void updateFeature(const dp::Feature& feature) override;
    void updateAttributes(const dp::Feature& changes, const std::vector<int>& positions) override;
    void deleteFeature(const dp::FeatureId& id) override;

    /// Requests sent to the server so far, also for other tables of the same database.
    std::int64_t requests() const;

private:
    /// The connection on which the table's own changes are seen; null where there are none.
    std::shared_ptr<Connection> editedConnection() const;
    EditTransaction& transaction() const;
    /// Refuses an edit that found no row.
    void change(const Command& command, const dp::FeatureId& id);

    const std::shared_ptr<const TableDescription> description_;
    const std::shared_ptr<Server> server_;
    const std::shared_ptr<Edits> edits_;
    std::shared_ptr<EditTransaction> transaction_; ///< of the group under way
    mutable std::optional<std::int64_t> count_;
    mutable std::uint64_t countRevision_ = 0; ///< at which the server was asked
};

} // namespace orvane::postgres
