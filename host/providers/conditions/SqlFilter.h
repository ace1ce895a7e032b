#pragma once

#include "host/providers/columns/ColumnBatch.h"
#include "host/providers/datasets/LayerSchema.h"
#include "platform/dp/Condition.h"

#include <gdal.h>

#include <optional>
#include <string>
#include <vector>

namespace orvane::files {

/// What a driver that keeps its tables in SQLite lets us ask of a layer. Other drivers compare rows one by
/// one after reading them, which the cursor does as well.
struct SqlTraits {
    bool evaluatesSql = false;
    std::string identifier;      ///< name of the identifier column
    std::vector<bool> isIndexed; ///< per attribute: an index of the file begins with it
};

SqlTraits sqlTraitsOf(GDALDatasetH dataset, OGRLayerH layer, const LayerSchema& schema);

/// The condition as SQL text, empty when SQLite could leave out a row that the cursor would deliver. SQLite
/// stores what it is given, whatever the type of the column: values of another class than the column's are
/// let through, as the driver turns them into something.
std::optional<std::string> sqlOfCondition(const LayerColumn& column, ValueClass valueClass,
                                          const dp::Condition& condition);

} // namespace orvane::files
