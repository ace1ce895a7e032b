#pragma once

#include "host/providers/Export.h"
#include "platform/dp/Table.h"

#include <memory>
#include <mutex>

namespace orvane::files {

class DatasetPool;
struct LayerSchema;

/// A layer of a file as a table. Identifiers are the layer's 64-bit feature identifiers.
///
/// Any number of cursors may be open at once, each in a thread of its own; they see the file as it was when
/// they were opened or later.
class ORVANE_FILES_EXPORT LayerTable final : public dp::Table {
    Q_OBJECT
public:
    /// A layer by its position in the file. Use openFile().
    LayerTable(QString name, std::shared_ptr<DatasetPool> pool, int layerIndex, QByteArray layerName,
               LayerSchema schema);
    ~LayerTable() override;

    std::shared_ptr<const dp::TableSchema> schema() const override;
    std::unique_ptr<dp::Cursor> openCursor(const dp::ScanRequest& request) override;
    std::optional<std::int64_t> featureCount() const override;

private:
    std::shared_ptr<DatasetPool> pool_;
    int layerIndex_;
    QByteArray layerName_;
    std::shared_ptr<const LayerSchema> layerSchema_;
    mutable std::mutex mutex_;
    mutable std::optional<std::int64_t> featureCount_;
};

} // namespace orvane::files
