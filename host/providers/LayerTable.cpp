#include "host/providers/LayerTable.h"

#include "host/providers/datasets/Archive.h"
#include "host/providers/reading/LayerReader.h"
#include "host/providers/reading/LayerSource.h"
#include "host/providers/writing/LayerEditor.h"

#include <numeric>
#include <utility>

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
    return reader().openCursor(request);
}

std::unique_ptr<dp::SampleCursor> LayerTable::openSample(const std::vector<int>& attributes,
                                                         std::int64_t rows) {
    return reader().openSample(attributes, rows);
}

std::optional<std::int64_t> LayerTable::featureCount() const {
    return reader().featureCount();
}

std::uint64_t LayerTable::revision() const {
    return reader().revision();
}

bool LayerTable::usesTerm(int attribute, dp::Comparison comparison, dp::TextCollation collation) const {
    return reader_->usesTerm(attribute, comparison, collation);
}

bool LayerTable::looksUp(int attribute, dp::Comparison comparison, dp::TextCollation collation) const {
    return reader().looksUp(attribute, comparison, collation);
}

bool LayerTable::usesWindow() const {
    return reader().usesWindow();
}

LayerReader& LayerTable::reader() const {
    if (std::exchange(hasUnreadEdits_, false)) {
        if (editor_->isInGroup()) {
            editor_->flush();
        }
        reader_->invalidate();
    }
    return *reader_;
}

bool LayerTable::isReadOnly() const {
    return editor_->isReadOnly();
}

void LayerTable::beginEdits() {
    editor_->begin(); // from now on nobody else writes
    rowsAreOld_ = reader().isBehindFile();
}

void LayerTable::requireFreshRows() const {
    if (rowsAreOld_) {
        throw dp::EditError(tr("Файл «%1» изменила другая программа, повторите правку")
                                .arg(pathOnDisk(QString::fromUtf8(reader_->source().path())))
                                .toStdString());
    }
}

void LayerTable::prepareEdits() {
    editor_->prepare();
}

void LayerTable::commitEdits() noexcept {
    rowsAreOld_ = false;
    editor_->commit();
    hasUnreadEdits_ = true;
}

void LayerTable::rollbackEdits() noexcept {
    rowsAreOld_ = false;
    editor_->rollback();
    hasUnreadEdits_ = true;
}

void LayerTable::setSavepoint(int number) {
    editor_->setSavepoint(number);
}

void LayerTable::releaseSavepoint(int number) {
    editor_->releaseSavepoint(number);
}

void LayerTable::rollbackToSavepoint(int number) {
    hasUnreadEdits_ = true;
    editor_->rollbackTo(number);
}

dp::FeatureId LayerTable::insertFeature(const dp::Feature& feature) {
    hasUnreadEdits_ = true;
    return dp::FeatureId(QVariant(static_cast<qlonglong>(editor_->insert(feature))));
}

void LayerTable::updateFeature(const dp::Feature& feature) {
    std::vector<int> all(static_cast<std::size_t>(feature.numAttributes()));
    std::iota(all.begin(), all.end(), 0);
    updateAttributes(feature, all);
}

void LayerTable::updateAttributes(const dp::Feature& changes, const std::vector<int>& positions) {
    requireFreshRows();
    hasUnreadEdits_ = true;
    editor_->update(changes, positions);
}

void LayerTable::deleteFeature(const dp::FeatureId& id) {
    requireFreshRows();
    hasUnreadEdits_ = true;
    editor_->remove(id);
}

} // namespace orvane::files
