#pragma once

#include "engine/indices/IndexMatching.h"

namespace orvane::engine {

/// Rows for one index as the text of one Insert statement with a list of values per row.
class SqliteInserter : public EngineIndices::InserterInterface {
public:
    SqliteInserter(int index, IndexColumns columns, EngineCache& cache);
    ~SqliteInserter() override;

    void addRow(const dp::Feature& feature) override;
    QString sql() const override;
    QString tableName() const override { return tableName_; }
    int indexId() const override;
    bool isEmpty() const { return values_.isEmpty(); }

private:
    IndexColumns columns_;
    EngineCache& cache_;
    QString values_;
    QString tableName_;
};

} // namespace orvane::engine
