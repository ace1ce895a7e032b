#pragma once

#include <gdal.h>
#include <ogr_api.h>

#include <cstdint>
#include <string>

namespace orvane::files {

/// The rows of a query in a driver's own SQL. Must go before the dataset.
class DriverQuery {
public:
    /// Throws std::runtime_error with GDAL's reason.
    DriverQuery(GDALDatasetH dataset, const std::string& sql);
    ~DriverQuery();
    DriverQuery(const DriverQuery&) = delete;
    DriverQuery& operator=(const DriverQuery&) = delete;

    OGRLayerH layer() const { return layer_; }

private:
    GDALDatasetH dataset_;
    OGRLayerH layer_;
};

/// The number of rows that a layer has now, counted by a driver of SQLite's.
std::int64_t countRows(GDALDatasetH dataset, OGRLayerH layer);

} // namespace orvane::files
