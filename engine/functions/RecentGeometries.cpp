#include "RecentGeometries.h"

#include "PreparedArgument.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/shapes/Geometry.h"
#include <orvane/engine/EngineCache.h>

#include <functional>

namespace orvane::engine {

namespace {

/// Cheap and good enough to tell blobs apart: the head holds the envelope, the tail coordinates. What is
/// found by it is compared byte by byte.
std::uint64_t hashOf(std::string_view blob) {
    constexpr std::size_t sample = 64;
    const std::hash<std::string_view> hash;
    std::uint64_t value = hash(blob.substr(0, sample));
    if (blob.size() > sample) {
        value = value * 31 + hash(blob.substr(blob.size() - sample));
    }
    return value * 31 + blob.size();
}

} // namespace

RecentGeometries& RecentGeometries::ofStatement(sqlite3_context* context) {
    return engine::ofStatement<RecentGeometries>(context);
}

void RecentGeometries::clear() {
    entries_ = {};
    bytes_ = 0;
}

RecentGeometries::Entry* RecentGeometries::find(EngineCache& cache, std::string_view blob,
                                                std::shared_ptr<const geometry::Geometry>& geometry) {
    const std::uint64_t hash = hashOf(blob);
    std::unique_ptr<Entry>& entry = entries_[hash % entryCount];
    if (entry && entry->blob == blob) {
        geometry = entry->geometry;
        return entry.get();
    }
    geometry = cache.geometryInfo(blob.data(), static_cast<unsigned int>(blob.size()), true).geometry();
    std::uint64_t& seen = seen_[hash % entryCount];
    if (seen != hash) {
        seen = hash;
        return nullptr;
    }
    const std::size_t freed = entry ? entry->blob.size() : 0;
    if (blob.size() > mostBytes - bytes_ + freed) {
        clear();
        return nullptr;
    }
    bytes_ = bytes_ - freed + blob.size();
    entry = std::make_unique<Entry>(Entry{std::string(blob), geometry, nullptr, nullptr});
    return entry.get();
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

GeometryPair recentPair(sqlite3_context* context, sqlite3_value* first, sqlite3_value* second) {
    if (sqlite3_value_type(first) != SQLITE_BLOB || sqlite3_value_type(second) != SQLITE_BLOB) {
        return geometryPair(context, first, second);
    }
    const auto bytesOf = [](sqlite3_value* value) {
        const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
        return std::string_view(bytes, static_cast<std::size_t>(sqlite3_value_bytes(value)));
    };
    auto& cache = *static_cast<EngineCache*>(sqlite3_user_data(context));
    RecentGeometries& recent = RecentGeometries::ofStatement(context);
    GeometryPair pair{recent.get(cache, bytesOf(first)), recent.get(cache, bytesOf(second))};
    if (!pair.first || !pair.second) {
        return pair;
    }
    const auto a = pair.first->coordSystem();
    const auto b = pair.second->coordSystem();
    if (a && b && a != b && !a->equals(*b)) {
        const GeometryPtr transformed = recent.get(cache, bytesOf(second), a);
        pair.second = transformed ? transformed : pair.second;
    } else if (a && !b) {
        pair.second = withCoordSystem(pair.second, a);
    } else if (b && !a) {
        pair.first = withCoordSystem(pair.first, b);
    }
    return pair;
}

} // namespace orvane::engine
