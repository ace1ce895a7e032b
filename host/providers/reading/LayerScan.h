#pragma once

#include "host/providers/columns/ColumnBatch.h"
#include "host/providers/datasets/DatasetPool.h"
#include "host/providers/datasets/DriverQuery.h"
#include "host/providers/datasets/GdalErrors.h"
#include "host/providers/datasets/LayerSchema.h"

#include <QCoreApplication>

#include <string>

namespace orvane::files {

/// What one pass over a layer reads, with the handle it reads from.
struct LayerScan {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::LayerScan)
public:
    DatasetPool::Lease lease;
    OGRLayerH layer = nullptr;
    /// Read instead of a layer whose handle is not ours alone.
    std::shared_ptr<DriverQuery> query = nullptr;
    std::shared_ptr<const LayerSchema> schema;
    std::vector<const LayerColumn*> columns; ///< of the schema, those that are read
    std::string filter;                      ///< condition in the driver's SQL, empty for all rows
    std::int64_t batchRows = rowsPerBatch;
    std::int64_t promisedRows = 0; ///< by a header, without a filter; 0 where none does
    std::int64_t rows = 0;         ///< read so far

    /// Throws std::runtime_error with the name of the file and GDAL's reason, or the other when it gave none.
    [[noreturn]] void raise(const GdalErrorScope& errors, const QString& otherwise = {}) const;
    /// At the end of a scan: raises where no row came though some were promised, which GDAL does not mind.
    void requireRows(const GdalErrorScope& errors) const;
};

/// The layer of a handle; null when the file has no such layer any more.
OGRLayerH findLayer(GDALDatasetH dataset, int index, const QByteArray& name);
/// Whether the layer still has the fields that the schema was made of.
bool hasFieldsOf(OGRLayerH layer, const LayerSchema& schema);

/// The reader that suits the driver and the columns: an Arrow stream where it is fast and exact, else
/// features. Only the columns asked for are read from the file. Throws std::runtime_error when the driver
/// refuses.
std::unique_ptr<BatchReader> startScan(LayerScan scan);

/// A reader of the features with these identifiers, in that order; those that do not exist are left out.
std::unique_ptr<BatchReader> startLookup(LayerScan scan, std::vector<std::int64_t> ids);

} // namespace orvane::files
