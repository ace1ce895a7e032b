#include "host/shell/maps/BlobShape.h"

#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/shapes/Geometry.h"
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/SpatialiteBlob.h>

namespace orvane::shell {

std::optional<maps::ShapeView> BlobShape::read(std::string_view blob) {
    constexpr std::uint32_t compressedKinds = 1'000'000;
    if (const auto header = engine::readSpatialiteHeader(blob); header && header->kind < compressedKinds) {
        if (header->srid != srid_) {
            srid_ = header->srid;
            ofSrid_ = cs::CoordSysFactory::defaultCoordSysFactory()->createFromTaggedString(
                QStringLiteral("epsg:%0").arg(srid_));
        }
        system_ = ofSrid_;
        return maps::ShapeView::ofSpatialite(header->kind, header->content, header->littleEndian);
    }
    const auto geometry =
        blob.empty() ? nullptr
                     : cache_.geometryInfo(blob.data(), static_cast<unsigned>(blob.size()), false).geometry();
    if (!geometry) {
        return std::nullopt;
    }
    system_ = geometry->coordSystem();
    wkb_ = geometry::GeometryFactory::toWkb(geometry, QSysInfo::LittleEndian);
    return maps::ShapeView::ofWkb({wkb_.constData(), static_cast<std::size_t>(wkb_.size())});
}

} // namespace orvane::shell
