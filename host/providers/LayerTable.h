#pragma once

#include "host/providers/Export.h"
#include "platform/dp/Table.h"

#include <memory>

namespace orvane::files {

class DatasetPool;
class LayerReader;
class RowSource;
class TableEditor;
struct LayerSchema;

/// A layer of a file, or a text table. Identifiers are the layer's 64-bit feature identifiers.
///
/// Any number of cursors may be open at once, each in a thread of its own; they see the file as it was when
/// they were opened or later. What another program writes to the file is seen by cursors opened a tenth of a
/// second later at the latest.
class ORVANE_FILES_EXPORT LayerTable final : public dp::Table {
    Q_OBJECT
public:
    LayerTable(QString name, std::shared_ptr<RowSource> source, std::unique_ptr<TableEditor> editor);
    /// A layer by its position in the file. Use openFile().
    static std::shared_ptr<LayerTable> ofLayer(QString name, const std::shared_ptr<DatasetPool>& pool,
                                               int layerIndex, const QByteArray& layerName,
                                               LayerSchema schema);
    ~LayerTable() override;

    std::shared_ptr<const dp::TableSchema> schema() const override;

    /// Throws std::runtime_error also when the file lost a field that it had when it was opened.
    std::unique_ptr<dp::Cursor> openCursor(const dp::ScanRequest& request) override;
    std::unique_ptr<dp::SampleCursor> openSample(const std::vector<int>& attributes,
                                                 std::int64_t rows) override;
    std::optional<std::int64_t> featureCount() const override;
    std::uint64_t revision() const override;
    bool usesTerm(int attribute, dp::Comparison comparison, dp::TextCollation collation) const override;
    bool looksUp(int attribute, dp::Comparison comparison, dp::TextCollation collation) const override;
    /// True where the file has a spatial index of the layer that can be trusted.
    bool usesWindow() const override;

    /// True when the driver, or the permissions of the file, allow no edit at all.
    bool isReadOnly() const override;
    /// Outside a group each edit is committed by itself. Layers of one file share a group. Files of SQLite's
    /// are edited in a transaction of theirs, any other in a copy that takes its place.
    void beginEdits() override;
    void prepareEdits() override;
    void commitEdits() noexcept override;
    void rollbackEdits() noexcept override;
    void setSavepoint(int number) override;
    void releaseSavepoint(int number) override;
    void rollbackToSavepoint(int number) override;
    /// A valid identifier of the feature is kept where the format allows it.
    dp::FeatureId insertFeature(const dp::Feature& feature) override;
    void updateFeature(const dp::Feature& feature) override;
    void updateAttributes(const dp::Feature& changes, const std::vector<int>& positions) override;
    void deleteFeature(const dp::FeatureId& id) override;

private:
    /// Lets the reader see what was edited since it last read.
    LayerReader& reader() const;

    /// Refuses to change a row by values of it that another program has replaced.
    void requireFreshRows() const;

    std::unique_ptr<LayerReader> reader_;
    std::unique_ptr<TableEditor> editor_;
    mutable bool hasUnreadEdits_ = false;
    bool rowsAreOld_ = false; ///< those that were read before the group of edits began
};

} // namespace orvane::files
