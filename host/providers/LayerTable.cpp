#include "host/providers/LayerTable.h"

#include "host/providers/LayerReader.h"

namespace orvane::files {

LayerTable::LayerTable(QString name, std::shared_ptr<DatasetPool> pool, int layerIndex, QByteArray layerName,
                       LayerSchema schema)
    : Table(std::move(name)), reader_(std::make_unique<LayerReader>(
                                  std::move(pool), layerIndex, std::move(layerName), std::move(schema))) {}

LayerTable::~LayerTable() = default;

std::shared_ptr<const dp::TableSchema> LayerTable::schema() const {
    return reader_->schema().schema;
}

std::unique_ptr<dp::Cursor> LayerTable::openCursor(const dp::ScanRequest& request) {
    return reader_->openCursor(request);
}

std::optional<std::int64_t> LayerTable::featureCount() const {
    return reader_->featureCount();
}

std::uint64_t LayerTable::revision() const {
    return reader_->revision();
}

bool LayerTable::usesTerm(int attribute, dp::Comparison comparison, dp::TextCollation collation) const {
    return reader_->usesTerm(attribute, comparison, collation);
}

bool LayerTable::usesWindow() const {
    return reader_->usesWindow();
}

} // namespace orvane::files
