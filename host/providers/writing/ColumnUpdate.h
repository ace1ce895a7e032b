#pragma once

#include "host/providers/datasets/GdalHandles.h"
#include "host/providers/datasets/LayerSchema.h"

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace orvane::files {

/// Changes fields of the rows of a GeoPackage with one prepared statement. GDAL writes a whole feature for
/// each change, and its geometry into the spatial index anew, which takes some twenty times as long.
///
/// Works on the handle of SQLite that the dataset has, so that the changes belong to the transaction of the
/// dataset, and triggers see what they see otherwise; must go before the dataset. Used from one thread.
class ColumnUpdate {
public:
    /// For the columns at these positions; null where another way has to be taken: another format, a geometry
    /// or identifier among the columns, a date or time, for which GDAL has a form of its own.
    static std::unique_ptr<ColumnUpdate> make(GDALDatasetH dataset, OGRLayerH layer,
                                              const LayerSchema& schema, const std::vector<int>& positions);

    const std::vector<int>& positions() const { return positions_; }
    /// Gives the row the values that the fields of `feature` have. False when there is no such row. Throws
    /// std::runtime_error with SQLite's reason.
    bool write(OGRFeatureH feature, std::int64_t id);

private:
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };

    ColumnUpdate(sqlite3* database, OGRLayerH layer, std::vector<int> positions)
        : database_(database), layer_(layer), positions_(std::move(positions)) {}
    bool prepare(const LayerSchema& schema);
    void bind(int parameter, OGRFeatureH feature, int field);
    /// Notes in the table of contents that the layer changes, as the format wants it.
    void noteChange() const;

    sqlite3* database_;
    OGRLayerH layer_;
    std::vector<int> positions_;
    std::vector<int> fields_;
    std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
};

} // namespace orvane::files
