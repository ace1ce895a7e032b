#pragma once

#include "host/maps/shapes/ShapeReader.h"
#include "platform/cs/CoordSystem.h"

#include <QByteArray>

#include <memory>
#include <optional>
#include <string_view>

namespace orvane::engine {
class EngineCache;
}

namespace orvane::shell {

/// Reads the geometries of blobs for drawing; SpatiaLite's, which most are, without making an object.
class BlobShape {
public:
    /// Not owned.
    explicit BlobShape(engine::EngineCache& cache) : cache_(cache) {}

    /// None for bytes that are no geometry. Valid until the next call, and as long as the blob.
    std::optional<maps::ShapeView> read(std::string_view blob);
    /// Of the blob read last; null for none.
    const std::shared_ptr<cs::CoordSystem>& system() const { return system_; }

private:
    engine::EngineCache& cache_;
    QByteArray wkb_;
    std::shared_ptr<cs::CoordSystem> system_;
    std::shared_ptr<cs::CoordSystem> ofSrid_;
    int srid_ = 0; ///< whose system is kept
};

} // namespace orvane::shell
