#pragma once

#include "host/providers/reading/SampleReader.h"

#include <gdal.h>

#include <string>

namespace orvane::files {

/// Where the identifiers of a table in SQLite lie: ranges that begin and end with one, ascending. `table` and
/// `identifier` are quoted, `rows` is what the table has. Looks only so close that most identifiers within
/// the ranges are those of rows, where a few hundred look-ups tell. Throws std::runtime_error.
std::vector<IdRange> occupiedIds(GDALDatasetH dataset, const std::string& table,
                                 const std::string& identifier, std::int64_t rows);

} // namespace orvane::files
