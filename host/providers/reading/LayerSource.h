#pragma once

#include "host/providers/conditions/SqlFilter.h"
#include "host/providers/conditions/SqlSpatialIndex.h"
#include "host/providers/conditions/TreeFile.h"
#include "host/providers/datasets/DatasetPool.h"
#include "host/providers/reading/LayerScan.h"
#include "host/providers/reading/RowSource.h"

#include <QCoreApplication>

namespace orvane::files {

/// The rows of a layer, through GDAL.
class LayerSource final : public RowSource {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::LayerSource)
public:
    LayerSource(std::shared_ptr<DatasetPool> pool, int layerIndex, QByteArray layerName,
                std::shared_ptr<const LayerSchema> schema)
        : pool_(std::move(pool)), layerIndex_(layerIndex), layerName_(std::move(layerName)),
          schema_(std::move(schema)) {}

    const QByteArray& path() const override { return pool_->source().path; }
    FileStamp firstStamp() const override { return pool_->firstStamp(); }
    std::shared_ptr<const dp::TableSchema> schema() const override { return schema_->schema; }
    ValueClass valueClass(int attribute) const override;

    std::optional<std::int64_t> rowCount() override;
    bool countsExactly() override;
    bool findsRows() override;
    bool isIndexed(int attribute) override;
    bool hasSpatialIndex() override;
    std::optional<std::vector<std::int64_t>> rowsIn(const geometry::Envelope& window,
                                                    std::size_t most) override;
    std::optional<Filter> filterOf(const std::vector<Test>& tests,
                                   const std::optional<geometry::Envelope>& window) override;
    bool isEdited() const override { return pool_->isEdited(); }
    std::unique_ptr<BatchReader> scan(const std::vector<int>& attributes, std::int64_t batchRows,
                                      const std::string& filter) override;
    std::unique_ptr<BatchReader> lookUp(const std::vector<int>& attributes,
                                        std::vector<std::int64_t> ids) override;
    /// Formats without identifiers or record numbers that are found fast (GeoJSON, GML, ...) give their first
    /// rows.
    std::unique_ptr<BatchReader> sample(const std::vector<int>& attributes, std::int64_t rows) override;
    void forget() override;

private:
    std::unique_ptr<BatchReader> sampleByRange(const std::vector<int>& attributes, std::int64_t rows);
    std::unique_ptr<BatchReader> sampleByNumber(const std::vector<int>& attributes, std::int64_t rows);
    LayerScan makeScan(const std::vector<int>& attributes = {});
    const SqlTraits& sqlTraits();
    /// What the layer has of indices by place; at most one of the two.
    struct PlaceIndex {
        std::optional<SqlSpatialIndex> ofSql;
        std::unique_ptr<const TreeFile> tree;
    };
    const PlaceIndex& placeIndex();

    const std::shared_ptr<DatasetPool> pool_;
    const int layerIndex_;
    const QByteArray layerName_;
    const std::shared_ptr<const LayerSchema> schema_;
    std::optional<SqlTraits> sqlTraits_;
    std::optional<PlaceIndex> placeIndex_; ///< once it was looked for
    std::optional<std::int64_t> rowCount_; ///< -1 when the driver does not know
};

} // namespace orvane::files
