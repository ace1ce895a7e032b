#pragma once

#include <orvane/engine/EngineIndices.h>

namespace orvane::engine {

/// Attribute indices in a private SQLite database: one temporary table per index, whose primary key is the
/// index's columns followed by the row number. The storage file, in the directory of the setting
/// IndexDirectory, is deleted with the storage; the rows are in a nameless file beside it, with at most 32
/// MiB of them in memory. Files that a killed process left behind are removed when a process first makes
/// storage in that directory.
class ORVANE_ENGINE_EXPORT EngineIndicesSqlite : public EngineIndices {
public:
    EngineIndicesSqlite(const EngineIndicesSetup& setup, EngineCache& cache);
    ~EngineIndicesSqlite() override;

    void dropStorage() override;
    bool isCorrect() const override;
    void dropIndex(int index) override;
    void clearIndex(int index) override;
    std::unique_ptr<InserterInterface> getInserter(int index) override;
    void flushInserter(std::unique_ptr<InserterInterface> inserter) override;
    FeatureIds findRows(int index, const std::vector<Constant>& constants) const override;
    const IndexStatistics& statistics(int index) const override;
    unsigned long long quantity() const override;
    void setQuantity(unsigned long long quantity) override;
    unsigned long long estimateRows(int index, const std::vector<Column>& columns) const override;
    void enumColumns(int index, const std::function<Status(int attribute)>& callback) const override;
    std::unique_ptr<RowLoader> getLoader(int index, work::Progress* progress) override;
    std::unique_ptr<RowLookup> getLookup(int index, std::span<const Column> columns,
                                         RowOrder order) const override;
    Groups groups(int index, int columns) const override;
    bool narrows(quint8 operation, std::string_view pattern) const override;
    unsigned long long countRows(int index, const Column& column, const dp::Cell& operand,
                                 unsigned long long most) const override;

protected:
    void createStorageImpl(const dp::TableSchema& schema) override;
    int addIndexImpl(const std::vector<Column>& columns) override;
    int findIndexImpl(const std::vector<Column>& columns, Conformance& conformance) const override;

private:
    struct Internal;
    std::unique_ptr<Internal> internal_;
};

} // namespace orvane::engine
