#include "host/providers/conditions/SqlSpatialIndex.h"

#include "host/providers/conditions/SqlNumber.h"
#include "host/providers/datasets/DriverQuery.h"
#include "host/providers/datasets/GdalErrors.h"
#include "host/providers/datasets/GdalHandles.h"
#include "platform/utils/Quoting.h"

#include <ogr_api.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace orvane::files {

namespace {

using utils::sqlIdentifier;
using utils::sqlText;

/// Where the two kinds of files keep what.
struct Layout {
    std::string prefix;       ///< of the table's name
    std::string registration; ///< a condition that the file says so
    std::string triggers;     ///< a condition on the names of those that keep the index up
    int fewestTriggers;
    const char *id, *minX, *maxX, *minY, *maxY;
};

Layout layoutOf(std::string_view driver, const std::string& table, const std::string& column) {
    const std::string name = table + "_" + column;
    if (driver == "GPKG") {
        const std::string prefix = "rtree_" + name + "_";
        return {"rtree_",
                "EXISTS (SELECT 1 FROM gpkg_extensions WHERE lower(table_name) = lower(" + sqlText(table) +
                    ") AND lower(column_name) = lower(" + sqlText(column) +
                    ") AND extension_name = 'gpkg_rtree_index')",
                "lower(substr(name, 1, length(" + sqlText(prefix) + "))) = lower(" + sqlText(prefix) + ")",
                6, // of version 1.3; 1.4 has one more
                "id",
                "minx",
                "maxx",
                "miny",
                "maxy"};
    }
    const auto trigger = [&name](const char* kind) { return "lower(" + sqlText(kind + name) + ")"; };
    return {"idx_",
            "EXISTS (SELECT 1 FROM geometry_columns WHERE lower(f_table_name) = lower(" + sqlText(table) +
                ") AND lower(f_geometry_column) = lower(" + sqlText(column) +
                ") AND spatial_index_enabled = 1)",
            "lower(name) IN (" + trigger("gii_") + ", " + trigger("giu_") + ", " + trigger("gid_") + ")",
            3,
            "pkid",
            "xmin",
            "xmax",
            "ymin",
            "ymax"};
}

/// The texts of the first row that a query finds; none without a row. Throws std::runtime_error.
std::vector<std::string> firstRow(GDALDatasetH dataset, const std::string& sql) {
    const DriverQuery query(dataset, sql);
    const GdalErrorScope errors;
    std::vector<std::string> texts;
    const FeatureHandle row{OGR_L_GetNextFeature(query.layer())};
    errors.raiseIfFailed(QString::fromStdString(sql));
    if (row) {
        for (int i = 0; i < OGR_F_GetFieldCount(row.get()); ++i) {
            texts.emplace_back(OGR_F_GetFieldAsString(row.get(), i));
        }
    }
    return texts;
}

/// Whether samples of the rows, the first and the last among them, are found from the root of the tree.
bool holdsSamples(GDALDatasetH dataset, const SqlSpatialIndex& index, const std::string& table,
                  const std::string& identifier, const std::string& geometry) {
    constexpr std::int64_t samples = 8;
    const auto ends = firstRow(dataset, "SELECT (SELECT min(" + identifier + ") FROM " + table +
                                            "), (SELECT max(" + identifier + ") FROM " + table + ")");
    if (ends.size() < 2 || ends[0].empty()) {
        return true; // an empty table
    }
    const auto first = static_cast<std::uint64_t>(std::stoll(ends[0]));
    const std::uint64_t step = (static_cast<std::uint64_t>(std::stoll(ends[1])) - first) / (samples - 1);
    std::string rows = ends[1];
    for (std::uint64_t i = 0; i + 1 < samples; ++i) {
        rows += ", (SELECT min(" + identifier + ") FROM " + table + " WHERE " + identifier +
                " >= " + std::to_string(static_cast<std::int64_t>(first + i * step)) + ")";
    }
    const auto of = [&geometry](const char* function) {
        return std::string(function) + "(t." + geometry + ")";
    };
    // The sign keeps SQLite from looking the row up by its number.
    return firstRow(dataset, "SELECT 1 FROM " + table + " AS t WHERE t." + identifier + " IN (" + rows +
                                 ") AND " + of("ST_MinX") + " IS NOT NULL AND NOT EXISTS (SELECT 1 FROM " +
                                 index.table + " AS r WHERE +r." + index.id + " = t." + identifier +
                                 " AND r." + index.minX + " <= " + of("ST_MinX") + " AND r." + index.maxX +
                                 " >= " + of("ST_MaxX") + " AND r." + index.minY + " <= " + of("ST_MinY") +
                                 " AND r." + index.maxY + " >= " + of("ST_MaxY") + ")")
        .empty();
}

/// Coordinates in the tree are single precision, rounded outwards; what is beyond their range is infinite at
/// one end or the other.
double widened(double value, double towards) {
    if (!(std::abs(value) < FLT_MAX)) {
        return towards;
    }
    return std::nextafter(static_cast<float>(value), static_cast<float>(towards));
}

} // namespace

std::optional<SqlSpatialIndex> spatialIndexOf(GDALDatasetH dataset, OGRLayerH layer) try {
    const std::string_view driver = GDALGetDriverShortName(GDALGetDatasetDriver(dataset));
    const std::string table = OGR_L_GetName(layer);
    const std::string column = OGR_L_GetGeometryColumn(layer);
    const std::string identifier = OGR_L_GetFIDColumn(layer);
    if ((driver != "GPKG" && driver != "SQLite") || identifier.empty() || column.empty() ||
        !OGR_L_TestCapability(layer, OLCFastSpatialFilter)) {
        return std::nullopt;
    }
    const Layout layout = layoutOf(driver, table, column);
    const auto tree = firstRow(
        dataset,
        "SELECT name FROM sqlite_master AS tree WHERE type = 'table' AND lower(name) = lower(" +
            sqlText(layout.prefix + table + "_" + column) + ") AND " + layout.registration +
            " AND (SELECT count(*) FROM sqlite_master WHERE type = 'trigger' AND lower(tbl_name) = lower(" +
            sqlText(table) + ") AND " + layout.triggers + ") >= " + std::to_string(layout.fewestTriggers) +
            // The tree holds row numbers: the identifier has to be another name for them.
            " AND EXISTS (SELECT 1 FROM pragma_table_info(" + sqlText(table) +
            ") WHERE lower(name) = lower(" + sqlText(identifier) +
            ") AND pk = 1 AND upper(type) = 'INTEGER')");
    if (tree.empty()) {
        return std::nullopt;
    }
    SqlSpatialIndex index{
        sqlIdentifier(tree.front()), layout.id, layout.minX, layout.maxX, layout.minY, layout.maxY};
    return holdsSamples(dataset, index, sqlIdentifier(table), sqlIdentifier(identifier),
                        sqlIdentifier(column))
               ? std::optional(std::move(index))
               : std::nullopt;
} catch (const std::runtime_error&) {
    return std::nullopt; // damaged, or kept in another way
}

std::string sqlOfWindow(const SqlSpatialIndex& index, const std::string& identifier,
                        const geometry::Envelope& window) {
    constexpr double infinite = std::numeric_limits<double>::infinity();
    return identifier + " IN (SELECT " + index.id + " FROM " + index.table + " WHERE " + index.maxX +
           " >= " + sqlNumber(widened(window.minX, -infinite)) + " AND " + index.minX +
           " <= " + sqlNumber(widened(window.maxX, infinite)) + " AND " + index.maxY +
           " >= " + sqlNumber(widened(window.minY, -infinite)) + " AND " + index.minY +
           " <= " + sqlNumber(widened(window.maxY, infinite)) + ")";
}

} // namespace orvane::files
