#pragma once

#include "host/adaptor/declaration/TableDeclaration.h"
#include "host/adaptor/indices/AttributeIndexing.h"
#include "host/adaptor/indices/SpatialIndexing.h"
#include "host/adaptor/statistics/TableSpace.h"
#include "host/adaptor/statistics/ValueStatistics.h"

#include "platform/dp/Table.h"
#include <orvane/engine/TableManagement.h>

#include <QString>

#include <sqlite3.h>

#include <memory>
#include <optional>

namespace orvane::engine {
class EngineCache;
}

namespace orvane::adaptor {

/// One virtual table: a table of the catalogue as SQLite knows it. Belongs to SQLite, which reaches it
/// through the base.
class VirtualTable : public sqlite3_vtab {
public:
    /// A null table is one that was closed already.
    VirtualTable(QString name, std::shared_ptr<dp::Table> table, const dp::TableSchema& schema,
                 engine::EngineCache& cache, AttributeIndexing::Stores indices);
    virtual ~VirtualTable() = default;
    VirtualTable(const VirtualTable&) = delete;
    VirtualTable& operator=(const VirtualTable&) = delete;

    const QString& name() const { return name_; }
    void setName(QString name) { name_ = std::move(name); }
    const TableDeclaration& declaration() const { return declaration_; }
    engine::EngineCache& cache() const { return cache_; }

    /// The table behind; throws std::runtime_error when it was closed.
    dp::Table& table() const;
    /// Null once the table was closed.
    const std::shared_ptr<dp::Table>& tableOrNull() const { return table_; }
    /// Lets go of the table, and of its indices with their place on the disk. Cursors that are open keep what
    /// they read from.
    void detach();

    /// Gives every row of the table as it is now its row number, in the table's order.
    void numberRows(const work::Cancellation& cancellation);
    /// The row of that number; invalid when none has it once all rows are numbered.
    dp::FeatureId idOfRow(qint64 number, const work::Cancellation& cancellation);

    /// The attribute indices of the table.
    AttributeIndexing& indexing() { return indexing_; }
    const AttributeIndexing& indexing() const { return indexing_; }
    /// What finds its rows by the place of their geometries.
    SpatialIndexing& spatialIndexing() { return spatialIndexing_; }
    const SpatialIndexing& spatialIndexing() const { return spatialIndexing_; }

    /// Where the table's geometries lie.
    TableSpace& space() { return space_; }
    /// What its values are like.
    ValueStatistics& values() { return values_; }
    /// Another table of the same database that is open; null when there is none of that name.
    virtual VirtualTable* otherTable(const QString& name) const = 0;

private:
    QString name_;
    std::shared_ptr<dp::Table> table_;
    TableDeclaration declaration_;
    engine::EngineCache& cache_;
    ValueStatistics values_;
    AttributeIndexing indexing_;
    SpatialIndexing spatialIndexing_;
    TableSpace space_;
    std::optional<std::uint64_t> numberedRevision_; ///< of the table when all its rows were numbered
};

/// What the engine holds of a virtual table.
class VirtualTableManagement : public engine::TableManagement {
public:
    explicit VirtualTableManagement(VirtualTable& table) : table_(table) {}

    VirtualTable& table() const { return table_; }
    void detach() override { table_.detach(); }
    QString tableName() const override { return table_.name(); }
    void indicesCleared() override { table_.indexing().forget(); }
    std::shared_ptr<cs::CoordSystem> coordSystem() override;

private:
    VirtualTable& table_;
};

} // namespace orvane::adaptor
