#pragma once

#include "host/providers/columns/ColumnBatch.h"
#include "platform/dp/TableSchema.h"

#include <ogr_api.h>

#include <memory>
#include <string>
#include <vector>

namespace orvane::files {

/// Where the values of one attribute come from, and how they are read.
struct LayerColumn {
    enum class Source : std::uint8_t { FeatureId, Field, Geometry };
    /// How a single OGR feature's value becomes a value of a batch.
    enum class Reading : std::uint8_t { Integer, Real, Text, Date, Time, DateTime, Bytes, List, Geometry };

    Source source = Source::Field;
    Reading reading = Reading::Text;
    int field = -1; ///< position among the layer's fields, for Source::Field
    /// The layout in the batches of drivers with a fast Arrow stream.
    ColumnKind arrowKind = ColumnKind::Text;
    /// False where such a stream gives other values than the features: it reads unreadable dates as
    /// 1970-01-01.
    bool isArrowExact = true;
    std::string name; ///< the layer's own name of the field or geometry column, UTF-8
};

/// The attributes of a layer as the table shows them.
struct LayerSchema {
    std::shared_ptr<const dp::TableSchema> schema;
    std::vector<LayerColumn> columns; ///< one per attribute of the schema
};

/// The attributes are, in order: the feature identifier where the layer names it (as GeoPackage does), the
/// layer's fields, the first geometry column. Further geometry columns are left out, with a note in the log.
///
/// Field types: integers of 16 and 32 bits are Int, of 64 bits LongLong, real numbers Double or Float, and
/// Bool, QString, QDate, QTime, QDateTime and QByteArray. Lists come as texts holding a JSON array, JSON as
/// text. Date-times are given as the file writes them: an offset from UTC is not kept.
LayerSchema describeLayer(OGRLayerH layer);

/// Null for a null reference, for one without a place on the Earth (local, engineering, "undefined"), and for
/// one that PROJ does not understand.
std::shared_ptr<cs::CoordSystem> coordSystemOf(OGRSpatialReferenceH reference);

} // namespace orvane::files
