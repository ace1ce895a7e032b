#include "RecentGeometries.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/shapes/Geometry.h"
#include <orvane/engine/EngineCache.h>

#include <functional>

namespace orvane::engine {

namespace {

/// Cheap and good enough to tell blobs apart: the head holds the envelope, the tail coordinates. What is
/// found by it is compared byte by byte.
std::uint64_t hashOf(std::string_view blob, std::uint64_t cacheIdentity) {
    constexpr std::size_t sample = 64;
    const std::hash<std::string_view> hash;
    std::uint64_t value = hash(blob.substr(0, sample));
    if (blob.size() > sample) {
        value = value * 31 + hash(blob.substr(blob.size() - sample));
    }
    return (value * 31 + blob.size()) * 31 + cacheIdentity;
}

} // namespace

RecentGeometries& RecentGeometries::ofThread() {
    thread_local const auto geometries = std::make_unique<RecentGeometries>();
    return *geometries;
}

void RecentGeometries::clear() {
    entries_.fill(Entry());
    bytes_ = 0;
}

RecentGeometries::Entry* RecentGeometries::find(EngineCache& cache, std::string_view blob,
                                                std::shared_ptr<const geometry::Geometry>& geometry) {
    const std::uint64_t hash = hashOf(blob, cache.identity());
    Entry& entry = entries_[hash % entryCount];
    if (entry.cache == cache.identity() && entry.blob == blob) {
        geometry = entry.geometry;
        return &entry;
    }
    geometry = cache.geometryInfo(blob.data(), static_cast<unsigned int>(blob.size()), true).geometry();
    if (entry.seen != hash) {
        entry.seen = hash;
        return nullptr;
    }
    if (blob.size() > mostBytes - bytes_ + entry.blob.size()) {
        clear();
        if (blob.size() > mostBytes) {
            return nullptr;
        }
    }
    bytes_ = bytes_ - entry.blob.size() + blob.size();
    entry = {hash, cache.identity(), std::string(blob), geometry, nullptr, nullptr};
    return &entry;
}

std::shared_ptr<const geometry::Geometry> RecentGeometries::get(EngineCache& cache, std::string_view blob) {
    std::shared_ptr<const geometry::Geometry> geometry;
    find(cache, blob, geometry);
    return geometry;
}

std::shared_ptr<const geometry::Geometry>
RecentGeometries::get(EngineCache& cache, std::string_view blob,
                      const std::shared_ptr<cs::CoordSystem>& target) {
    std::shared_ptr<const geometry::Geometry> geometry;
    Entry* entry = find(cache, blob, geometry);
    if (!entry || !geometry) {
        return geometry ? geometry->transformed(target) : nullptr;
    }
    if (entry->target != target) {
        entry->transformed = geometry->transformed(target);
        entry->target = target;
    }
    return entry->transformed;
}

} // namespace orvane::engine
