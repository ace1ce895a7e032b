#include "host/providers/LayerTable.h"

#include "host/providers/reading/LayerReader.h"
#include "host/providers/reading/LayerSource.h"
#include "host/providers/writing/LayerEditor.h"

#include <numeric>

namespace orvane::files {

LayerTable::LayerTable(QString name, std::shared_ptr<RowSource> source, std::unique_ptr<TableEditor> editor)
    : Table(std::move(name)), reader_(std::make_unique<LayerReader>(std::move(source))),
      editor_(std::move(editor)) {}

std::shared_ptr<LayerTable> LayerTable::ofLayer(QString name, const std::shared_ptr<DatasetPool>& pool,
                                                int layerIndex, const QByteArray& layerName,
                                                LayerSchema schema) {
    const auto shared = std::make_shared<const LayerSchema>(std::move(schema));
    return std::make_shared<LayerTable>(std::move(name),
                                        std::make_shared<LayerSource>(pool, layerIndex, layerName, shared),
                                        std::make_unique<LayerEditor>(pool, layerIndex, layerName, shared));
}

LayerTable::~LayerTable() = default;

std::shared_ptr<const dp::TableSchema> LayerTable::schema() const {
    return reader_->source().schema();
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

bool LayerTable::isReadOnly() const {
    return editor_->isReadOnly();
}

void LayerTable::beginEdits() {
    reader_->invalidate(); // idle handles must not hold the file
    editor_->begin();
    isInGroup_ = true;
}

void LayerTable::commitEdits() {
    isInGroup_ = false;
    edit([this] { editor_->commit(); });
}

void LayerTable::rollbackEdits() {
    isInGroup_ = false;
    edit([this] { editor_->rollback(); });
}

dp::FeatureId LayerTable::insertFeature(const dp::Feature& feature) {
    return edit([&] { return dp::FeatureId(QVariant(static_cast<qlonglong>(editor_->insert(feature)))); });
}

void LayerTable::updateFeature(const dp::Feature& feature) {
    std::vector<int> all(static_cast<std::size_t>(feature.numAttributes()));
    std::iota(all.begin(), all.end(), 0);
    updateAttributes(feature, all);
}

void LayerTable::updateAttributes(const dp::Feature& changes, const std::vector<int>& positions) {
    edit([&] { editor_->update(changes, positions); });
}

void LayerTable::deleteFeature(const dp::FeatureId& id) {
    edit([&] { editor_->remove(id); });
}

/// Runs an edit; what was read before it is forgotten unless the end of the group is still to come.
template<class Edit>
std::invoke_result_t<Edit> LayerTable::edit(Edit edit) {
    struct Invalidator {
        LayerTable& table;
        ~Invalidator() {
            if (!table.isInGroup_)
                table.reader_->invalidate();
        }
    };
    const Invalidator invalidator{*this};
    return edit();
}

} // namespace orvane::files
