#pragma once

#include "host/providers/datasets/DatasetEdit.h"
#include "host/providers/datasets/DatasetPool.h"
#include "host/providers/datasets/LayerSchema.h"
#include "host/providers/writing/ColumnUpdate.h"
#include "host/providers/writing/TableEditor.h"

#include <QCoreApplication>

#include <optional>
#include <type_traits>

namespace orvane::files {

/// Writes features to a layer through GDAL.
class LayerEditor final : public TableEditor {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::LayerEditor)
public:
    LayerEditor(std::shared_ptr<DatasetPool> pool, int layerIndex, QByteArray layerName,
                std::shared_ptr<const LayerSchema> schema)
        : pool_(std::move(pool)), layerIndex_(layerIndex), layerName_(std::move(layerName)),
          schema_(std::move(schema)) {}

    bool isReadOnly() override;
    std::int64_t insert(const dp::Feature& feature) override;
    void update(const dp::Feature& feature, const std::vector<int>& positions) override;
    void remove(const dp::FeatureId& id) override;

private:
    /// What is used of the dataset that is edited, as long as it is open.
    struct Target {
        OGRLayerH layer = nullptr;
        std::unique_ptr<ColumnUpdate> columnUpdate; ///< the last one
    };

    void requireWritable() const;
    OGRLayerH findIn(GDALDatasetH dataset) const;
    std::shared_ptr<FileEdit> startEdit() override;
    DatasetEdit& datasetEdit() const { return static_cast<DatasetEdit&>(edit()); }
    std::shared_ptr<Target> target();
    /// Runs an edit on the layer.
    template<class Edit>
    std::invoke_result_t<Edit> onLayer(Edit edit);
    void requireCapability(const char* capability);
    /// GDAL writes a FlatGeobuf anew with a spatial index, which leaves out rows without a geometry.
    void requireShape(OGRFeatureH feature) const;
    void setAttribute(OGRFeatureH target, const dp::Feature& feature, int position, bool isNew) const;
    /// Whether the change could be written without reading the whole feature.
    bool updateColumns(const dp::Feature& feature, const std::vector<int>& positions);
    /// Refuses NULL where a value is needed. False where the default of a new row takes its place.
    bool acceptsNull(const LayerColumn& column, const QString& name, bool isNew) const;
    [[noreturn]] void raiseUnwritten(const QString& what, const QString& reason,
                                     const dp::Feature& feature) const;
    std::int64_t idNumber(const dp::FeatureId& id) const;
    FeatureHandle readFeature(const dp::FeatureId& id) const;
    [[noreturn]] void raiseAbsent(const dp::FeatureId& id) const;

    std::shared_ptr<DatasetPool> pool_;
    const int layerIndex_;
    const QByteArray layerName_;
    std::shared_ptr<const LayerSchema> schema_;
    std::optional<bool> isReadOnly_;
    std::weak_ptr<Target> target_;
    OGRLayerH layer_ = nullptr; ///< the target's, during an edit
};

} // namespace orvane::files
