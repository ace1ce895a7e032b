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

void GeometryResult::makeBlob(std::string_view wkb) {
    if (isMade_) {
        return;
    }
    isMade_ = true;
    blob_.clear();
    if (spatialite_ && engine::appendSpatialiteBlob(wkb, srid_, blob_)) {
        return;
    }
    blob_.clear();
    if (const auto geometry = decodeWkb(wkb, coordSystem_)) {
        const QByteArray blob = engine::toOrvGeo(geometry, &cache_);
        blob_.assign(blob.constData(), static_cast<std::size_t>(blob.size()));
    }
}

void GeometryResult::set(sqlite3_context* context, std::string_view wkb) {
    makeBlob(wkb);
    if (!blob_.empty()) {
        sqlite3_result_blob64(context, blob_.data(), blob_.size(), SQLITE_TRANSIENT);
    }
}

void GeometryResult::setOperand(sqlite3_context* context, std::string_view wkb) {
    makeBlob(wkb);
    if (!blob_.empty()) {
        sqlite3_result_text64(context, blob_.data(), blob_.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
}

} // namespace orvane::adaptor
