#pragma once

#include "platform/dp/Table.h"

#include <ogrsf_frmts.h>

#include <QString>

#include <functional>
#include <string>
#include <vector>

namespace orvane::files {

/// A format that the tests write, and the ending of its files.
struct Format {
    const char* driver;
    const char* extension;
};

using DatasetOwner = std::unique_ptr<GDALDataset>;

/// Creates a file through the driver.
DatasetOwner createDataset(const Format& format, const QString& path);
/// Text files are opened with the types of their columns found out.
DatasetOwner openDataset(const QString& path, unsigned flags = 0);

/// Adds a layer with one field of every type the driver takes, and rows of ordinary, extreme and NULL values.
void addLayerOfEveryType(GDALDataset& dataset, const char* layerName, const Format& format);
/// Adds the numbers 0 to rows - 1 as `n`, n / 4 as `r`, and texts `s`, each NULL in every seventh row, at
/// points (n, n).
void addLayerOfNumbers(GDALDataset& dataset, const char* layerName, int rows);

/// "NULL", "i:1", "r:0.5", "t:text", "b:00ff", "w:..." - a text that tells cells apart.
std::string describeCell(const dp::Cell& cell);
/// The same from an OGR feature: what the attribute should show.
std::string describeField(const OGRFeature& feature, int field);
std::string describeGeometry(const OGRFeature& feature);

/// All rows of a scan, each as the texts of the requested attributes.
std::vector<std::vector<std::string>> readRows(dp::Table& table, const dp::ScanRequest& request);
/// A request for attributes by their positions, and one for all.
dp::ScanRequest requestOf(std::vector<int> attributes);
dp::ScanRequest everything(const dp::Table& table);

} // namespace orvane::files
