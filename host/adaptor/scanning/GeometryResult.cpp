#include "host/adaptor/scanning/GeometryResult.h"

#include "host/adaptor/indices/SpatialIndex.h"
#include "platform/cs/CoordSystem.h"
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/GeometryConversions.h>
#include <orvane/engine/SpatialiteBlob.h>

namespace orvane::adaptor {

GeometryResult::GeometryResult(std::shared_ptr<cs::CoordSystem> coordSystem, engine::EngineCache& cache)
    : coordSystem_(std::move(coordSystem)), cache_(cache) {
    if (coordSystem_) {
        srid_ = coordSystem_->epsg();
        spatialite_ = srid_ > 0;
        if (spatialite_) {
            cache_.save(srid_, coordSystem_); // so that readers of the blobs get this very system back
        }
    }
}

void GeometryResult::set(sqlite3_context* context, std::string_view wkb) {
    if (!isMade_) {
        blob_.clear();
        isMade_ = spatialite_ && engine::appendSpatialiteBlob(wkb, srid_, blob_);
    }
    if (isMade_) {
        sqlite3_result_blob64(context, blob_.data(), blob_.size(), SQLITE_TRANSIENT);
        return;
    }
    const auto geometry = decodeWkb(wkb, coordSystem_);
    engine::toOrvGeo(geometry, context, &cache_, false);
}

} // namespace orvane::adaptor
