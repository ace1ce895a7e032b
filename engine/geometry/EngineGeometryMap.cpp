#include <orvane/engine/EngineGeometryMap.h>

#include "engine/geometry/Locking.h"

#include <cstring>

namespace orvane::engine {

EngineGeometryMap::EngineGeometryMap() = default;
EngineGeometryMap::~EngineGeometryMap() = default;

bool EngineGeometryMap::KeyLess::operator()(std::string_view a, std::string_view b) const {
    if (a.size() != b.size()) {
        return a.size() < b.size();
    }
    return !a.empty() && std::memcmp(a.data(), b.data(), a.size()) < 0;
}

EngineGeometryMap::GeometryPointer EngineGeometryMap::get(const void* data, unsigned int size,
                                                          const Loader& loader) {
    const std::string_view key(static_cast<const char*>(data), size);
    {
        const ReadLocked lock(&lock_);
        if (const auto found = map_.find(key); found != map_.end()) {
            return found->second;
        }
    }
    GeometryPointer loaded = loader(data, size);
    const WriteLocked lock(&lock_);
    if (const auto found = map_.find(key); found != map_.end()) {
        return found->second;
    }
    return map_.emplace(key, std::move(loaded)).first->second;
}

void EngineGeometryMap::set(const void* data, unsigned int size, const GeometryPointer& geometry) {
    const std::string_view key(static_cast<const char*>(data), size);
    const WriteLocked lock(&lock_);
    if (map_.find(key) == map_.end()) {
        map_.emplace(key, geometry);
    }
}

void EngineGeometryMap::clearMap() {
    const WriteLocked lock(&lock_);
    map_.clear();
}

} // namespace orvane::engine
