#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>

namespace orvane::cs {
class CoordSystem;
}
namespace orvane::engine {
class EngineCache;
}

namespace orvane::adaptor {

/// Turns the well-known binary of a table's geometries into the blobs that SQLite sees: SpatiaLite's where
/// that loses nothing, else the engine's own.
class GeometryResult {
public:
    GeometryResult(std::shared_ptr<cs::CoordSystem> coordSystem, engine::EngineCache& cache);

    /// For another row: its geometry is another one.
    void forgetRow() { isMade_ = false; }
    /// Sets the result to the blob, or to NULL when the bytes are no geometry. Asked again for the row, as by
    /// every function of the statement that takes the geometry, it makes nothing anew.
    void set(sqlite3_context* context, std::string_view wkb);
    /// The same with the bytes of the blob as a text: an operand of a relation.
    void setOperand(sqlite3_context* context, std::string_view wkb);

private:
    /// Leaves blob_ empty where the bytes are no geometry.
    void makeBlob(std::string_view wkb);

    std::shared_ptr<cs::CoordSystem> coordSystem_;
    engine::EngineCache& cache_;
    int srid_ = 0;           ///< of the SpatiaLite blobs
    bool spatialite_ = true; ///< the coordinate system has a code, or there is none
    bool isMade_ = false;    ///< blob_ is the row's
    std::string blob_;       ///< reused from row to row
};

} // namespace orvane::adaptor
