#pragma once

#include "host/adaptor/declaration/TableDeclaration.h"
#include "host/adaptor/indices/AttributeIndexing.h"
#include "host/adaptor/indices/SpatialIndex.h"
#include "host/adaptor/rows/ArrangedRows.h"

#include "platform/dp/Table.h"
#include <orvane/engine/TableManagement.h>

#include <QString>

#include <sqlite3.h>

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

namespace orvane::engine {
class EngineCache;
}

namespace orvane::adaptor {

/// One virtual table: a table of the catalogue as SQLite knows it. Belongs to SQLite, which reaches it
/// through the base.
class VirtualTable : public sqlite3_vtab {
public:
    /// Answers the index store of a table; null without an engine. No function at all where no index is to be
    /// made.
    using IndexStore = std::function<engine::EngineIndices*(const std::shared_ptr<dp::Table>&)>;

    /// A null table is one that was closed already.
    VirtualTable(QString name, std::shared_ptr<dp::Table> table, const dp::TableSchema& schema,
                 engine::EngineCache& cache, IndexStore indexStore);

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

    /// Whether the spatial index of the table as it is now is there already.
    bool hasSpatialIndex() const { return spatialIndex_ && spatialIndexRevision_ == table().revision(); }
    /// The spatial index of the table as it is now, made when first asked for.
    SpatialIndex& spatialIndex(const work::Cancellation& cancellation);

    /// Gives every row of the table as it is now its row number, in the table's order.
    void numberRows(const work::Cancellation& cancellation);
    /// The row of that number; invalid when none has it once all rows are numbered.
    dp::FeatureId idOfRow(qint64 number, const work::Cancellation& cancellation);

    /// The features that can satisfy the terms, where an attribute index tells.
    std::optional<std::vector<dp::FeatureId>> findByIndex(std::span<const dp::ScanTerm> terms,
                                                          const work::Cancellation& cancellation);
    /// As the functions of AttributeIndexing; no order and nothing counted where no index is to be made.
    bool hasOrder(int attribute) const;
    std::optional<double> largestGroup(int attribute) const;
    /// The rows in the order of the keys; null when no index has that of the first.
    std::unique_ptr<dp::Cursor> openInOrder(const std::vector<int>& attributes,
                                            std::vector<ArrangedRows::Key> keys,
                                            const work::Cancellation& cancellation);
    void countSort(int attribute, const work::Cancellation& cancellation);
    /// Whether attribute indices are made of the table when they pay.
    bool makesIndices() const { return indexStore_ != nullptr; }
    /// What came of the last findByIndex.
    IndexUse lastIndexUse() const;
    /// Rows that an equality on the attribute finds on average; nothing when it is not known.
    std::optional<double> averageGroup(int attribute) const;
    /// Rows that a range or pattern on the attribute finds, up to `most`; nothing without an index on it.
    std::optional<double> countRows(int attribute, dp::Comparison comparison, const dp::Cell& operand,
                                    std::size_t most) const;
    /// Whether an index can look texts up by how the pattern begins; false where none is to be made.
    bool narrows(dp::Comparison comparison, std::string_view pattern) const;
    void forgetIndices() { indexing_.forget(); }

private:
    /// The table's attribute indices; null when none are made, and for a closed table.
    engine::EngineIndices* indices() const;

    QString name_;
    std::shared_ptr<dp::Table> table_;
    TableDeclaration declaration_;
    engine::EngineCache& cache_;
    IndexStore indexStore_;
    AttributeIndexing indexing_;
    std::unique_ptr<SpatialIndex> spatialIndex_;
    std::uint64_t spatialIndexRevision_ = 0;
    std::optional<std::uint64_t> numberedRevision_; ///< of the table when all its rows were numbered
};

/// What the engine holds of a virtual table.
class VirtualTableManagement : public engine::TableManagement {
public:
    explicit VirtualTableManagement(VirtualTable& table) : table_(table) {}

    bool isOf(const VirtualTable& table) const { return &table_ == &table; }
    void detach() override { table_.detach(); }
    QString tableName() const override { return table_.name(); }
    void indicesCleared() override { table_.forgetIndices(); }
    std::shared_ptr<cs::CoordSystem> coordSystem() override;

private:
    VirtualTable& table_;
};

} // namespace orvane::adaptor
