#include "host/providers/LayerTable.h"

#include "host/providers/BatchCursor.h"
#include "host/providers/GdalErrors.h"
#include "host/providers/LayerScan.h"

#include <algorithm>

namespace orvane::files {

namespace {

/// The layer of a handle; null when the file has no such layer any more.
OGRLayerH findLayer(GDALDatasetH dataset, int index, const QByteArray& name) {
    const OGRLayerH layer = GDALDatasetGetLayer(dataset, index);
    return layer && name == OGR_L_GetName(layer) ? layer
                                                 : GDALDatasetGetLayerByName(dataset, name.constData());
}

/// Whether the layer still has the fields that the schema was made of.
bool hasFieldsOf(OGRLayerH layer, const LayerSchema& schema) {
    const OGRFeatureDefnH definition = OGR_L_GetLayerDefn(layer);
    const int fields = OGR_FD_GetFieldCount(definition);
    return std::all_of(schema.columns.begin(), schema.columns.end(), [&](const LayerColumn& column) {
        return column.source != LayerColumn::Source::Field ||
               (column.field < fields &&
                column.name == OGR_Fld_GetNameRef(OGR_FD_GetFieldDefn(definition, column.field)));
    });
}

/// The identifiers among the values, each once, in ascending order, which is the fastest to read.
std::vector<std::int64_t> sortedIds(const std::vector<dp::FeatureId>& ids) {
    std::vector<std::int64_t> sorted;
    for (const auto& id : ids) {
        bool isNumber = false;
        const auto value = id.value().toLongLong(&isNumber);
        if (isNumber)
            sorted.push_back(value);
    }
    std::sort(sorted.begin(), sorted.end());
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    return sorted;
}

} // namespace

LayerTable::LayerTable(QString name, std::shared_ptr<DatasetPool> pool, int layerIndex, QByteArray layerName,
                       LayerSchema schema)
    : Table(std::move(name)), pool_(std::move(pool)), layerIndex_(layerIndex),
      layerName_(std::move(layerName)), layerSchema_(std::make_shared<const LayerSchema>(std::move(schema))) {
}

LayerTable::~LayerTable() = default;

std::shared_ptr<const dp::TableSchema> LayerTable::schema() const {
    return layerSchema_->schema;
}

std::unique_ptr<dp::Cursor> LayerTable::openCursor(const dp::ScanRequest& request) {
    LayerScan scan{pool_->acquire(), nullptr, layerSchema_, {}, {}, BATCH_ROWS};
    scan.layer = findLayer(scan.lease.dataset(), layerIndex_, layerName_);
    if (!scan.layer || !hasFieldsOf(scan.layer, *layerSchema_))
        throw std::runtime_error(
            tr("Слой «%1» изменил своё строение, откройте файл заново").arg(name()).toStdString());

    std::vector<int> slots(layerSchema_->columns.size(), -1);
    for (const int attribute : request.attributes) {
        auto& slot = slots[static_cast<std::size_t>(attribute)];
        if (slot >= 0)
            continue;
        slot = static_cast<int>(scan.columns.size());
        scan.columns.push_back(&layerSchema_->columns[static_cast<std::size_t>(attribute)]);
    }
    if (request.limit >= 0)
        scan.batchRows = std::clamp<std::int64_t>(request.limit, 1, BATCH_ROWS);
    auto reader =
        request.ids ? startLookup(std::move(scan), sortedIds(*request.ids)) : startScan(std::move(scan));
    return std::make_unique<BatchCursor>(std::move(reader), std::move(slots));
}

std::optional<std::int64_t> LayerTable::featureCount() const {
    const std::lock_guard lock(mutex_);
    if (!featureCount_) {
        const GdalErrorScope errors;
        const auto lease = pool_->acquire();
        const OGRLayerH layer = findLayer(lease.dataset(), layerIndex_, layerName_);
        featureCount_ = layer ? OGR_L_GetFeatureCount(layer, FALSE) : -1;
    }
    return *featureCount_ < 0 ? std::nullopt : featureCount_;
}

} // namespace orvane::files
