#pragma once

#include "host/providers/datasets/LayerSchema.h"

#include <QByteArray>
#include <QList>

#include <optional>
#include <string_view>

namespace orvane::files {

/// How a CSV file is opened, from the names of its columns.
struct CsvRules {
    QList<QByteArray> openOptions;
    /// The points come from columns of longitude and latitude: WGS 84.
    bool isGeographic = false;
};

/// A pair of coordinate columns (lon and lat, longitude and latitude, x and y, easting and northing, ...)
/// makes points, a column wkt, geom, geometry, the_geom or wkt_geom geometries; letter case is ignored. The
/// columns stay columns too. Types are found in the first 10 MB: a later value that does not fit the type of
/// its column is NULL, with a warning.
CsvRules csvRulesOf(OGRLayerH layer);

/// The types of a layer as a .csvt file names them, but texts for the columns of numbers that hold codes,
/// which would lose digits: one starts with a needless zero, or is whole and too long for 64 bits. `plain` is
/// the same layer with nothing but texts, of which the first 10 MB are looked at. Empty when there are no
/// codes.
QByteArray typesKeepingCodes(OGRLayerH plain, OGRLayerH typed);

/// Makes columns of numbers of the text columns that hold, in the whole file, numbers and marks for missing
/// ones (NA, N/A, #N/A, NULL, NaN, "-", "..", in any letter case, or nothing): the marks are NULL. Columns
/// with codes stay texts.
FieldReadings numbersWithGaps(OGRLayerH layer);

/// The number in a text of such a column; nothing for a mark and for any other text.
std::optional<std::int64_t> integerInText(std::string_view text);
std::optional<double> realInText(std::string_view text);

} // namespace orvane::files
