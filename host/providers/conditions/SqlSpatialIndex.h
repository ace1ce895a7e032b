#pragma once

#include "platform/dp/ScanRequest.h"

#include <gdal.h>

#include <optional>
#include <string>

namespace orvane::files {

/// The R-tree over the bounding boxes of a table in a GeoPackage or a SpatiaLite file.
struct SqlSpatialIndex {
    std::string table; ///< as SQL identifiers, as the five columns
    std::string id, minX, maxX, minY, maxY;
};

/// The index of a layer, if the file says that it has one, keeps it up by triggers, and samples of the rows
/// are in it where they belong. A file that a program without triggers has changed may still tell a lie in
/// between: as it does to every program that reads it.
std::optional<SqlSpatialIndex> spatialIndexOf(GDALDatasetH dataset, OGRLayerH layer);

/// Rows whose bounding box in the R-tree meets the window. (OGR's own spatial filter tests the exact shape:
/// it would leave out the U around a window, whose bounding box meets it.) `identifier` is the column of the
/// table, as an SQL identifier.
std::string sqlOfWindow(const SqlSpatialIndex& index, const std::string& identifier,
                        const geometry::Envelope& window);

} // namespace orvane::files
