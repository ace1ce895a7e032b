#pragma once

#include "host/providers/datasets/DatasetPool.h"
#include "host/providers/datasets/LayerSchema.h"
#include "host/providers/writing/ColumnUpdate.h"
#include "platform/dp/Feature.h"

#include <QCoreApplication>

#include <optional>
#include <type_traits>

namespace orvane::files {

/// Writes features to a layer through a handle of its own, which is open from the first edit to the end of
/// the group. Outside a group each edit is one. Every failure is a dp::EditError. Used from one thread at a
/// time.
class LayerEditor {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::LayerEditor)
public:
    LayerEditor(std::shared_ptr<DatasetPool> pool, int layerIndex, QByteArray layerName,
                std::shared_ptr<const LayerSchema> schema)
        : pool_(std::move(pool)), layerIndex_(layerIndex), layerName_(std::move(layerName)),
          schema_(std::move(schema)) {}
    ~LayerEditor();

    /// Whether the driver, or the permissions of the file, allow no edit of any kind.
    bool isReadOnly();

    void begin();
    void commit();
    /// Fails where the format has no transactions: what was written stays.
    void rollback();

    std::int64_t insert(const dp::Feature& feature);
    /// Writes the attributes at these positions; the others stay.
    void update(const dp::Feature& feature, const std::vector<int>& positions);
    void remove(const dp::FeatureId& id);

private:
    void open();
    void close();
    template<class Edit>
    std::invoke_result_t<Edit> inGroup(Edit edit);
    void requireCapability(const char* capability);
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
    DatasetHandle dataset_;
    OGRLayerH layer_ = nullptr;
    std::unique_ptr<ColumnUpdate> columnUpdate_; ///< the last one of the group
    bool isInGroup_ = false;
    bool hasTransaction_ = false;
};

} // namespace orvane::files
