#pragma once

#include "platform/dp/AttributeDefinition.h"
#include <orvane/engine/Export.h>

#include <QByteArray>
#include <QString>

#include <memory>

struct gaiaGeomCollStruct;
struct sqlite3_context;
struct sqlite3_value;

namespace orvane::cs {
class CoordSystem;
}
namespace orvane::geometry {
class Geometry;
}

namespace orvane::engine {

class EngineCache;

// Geometries between the application's objects and SQL values. A geometry value is an engine geometry blob, a
// SpatiaLite blob, well-known binary or FGF; each reader is tried on the whole value in this order. All
// functions are reentrant. Functions with a context expect the EngineCache as the user data of the SQL
// function.

/// A geometry collection of SpatiaLite from a SpatiaLite blob, WKB or FGF; null for anything else, also for
/// bytes whose counts do not agree with their length, which the readers of SpatiaLite do not check. The
/// caller frees it with gaiaFreeGeomColl.
ORVANE_ENGINE_EXPORT gaiaGeomCollStruct* toGaia(const unsigned char* blob, int size);

/// The SpatiaLite blob of a geometry, curves approximated; empty for null and for what SpatiaLite cannot
/// hold. The SRID is the EPSG code of the coordinate system, 0 for none or one without a code. The cache,
/// which may be null, learns the coordinate system of the code.
ORVANE_ENGINE_EXPORT QByteArray toGaia(const std::shared_ptr<const geometry::Geometry>& geometry,
                                       EngineCache* cache);
/// The same as the result of an SQL function, NULL for an empty blob; the cache learns the geometry of a blob
/// that holds all of it.
ORVANE_ENGINE_EXPORT void toGaia(const std::shared_ptr<const geometry::Geometry>& geometry,
                                 sqlite3_context* context, EngineCache* cache);

/// The engine geometry blob of a geometry that is not null. The cache, which may be null only for a geometry
/// without coordinate system, learns the coordinate system of the payload.
ORVANE_ENGINE_EXPORT QByteArray toOrvGeo(const std::shared_ptr<const geometry::Geometry>& geometry,
                                         EngineCache* cache);
/// The same as the result of an SQL function, NULL for null. With `remember` the cache learns the geometry of
/// the blob.
ORVANE_ENGINE_EXPORT void toOrvGeo(const std::shared_ptr<const geometry::Geometry>& geometry,
                                   sqlite3_context* context, EngineCache* cache, bool remember);

/// The geometry that an SQL value holds; null for NULL, texts, numbers, and blobs that no reader takes.
ORVANE_ENGINE_EXPORT std::shared_ptr<const geometry::Geometry> toGeometry(sqlite3_context* context,
                                                                          sqlite3_value* value, bool useMemo);

/// The coordinate system that the value's text names ("epsg:3857", "proj:+proj=...", "wkt:..."); null
/// otherwise.
ORVANE_ENGINE_EXPORT std::shared_ptr<cs::CoordSystem> toCS(sqlite3_value* value);

/// The text that declares a table column for the attribute: name, type, collation and uniqueness. Geometry
/// and style columns carry their fixed names, whatever the attribute is called. The cache learns the
/// coordinate system of a geometry attribute. `quote` stands around other names.
ORVANE_ENGINE_EXPORT QString toString(const dp::AttributeDefinitionPointer& attribute, EngineCache* cache,
                                      char quote);

} // namespace orvane::engine
