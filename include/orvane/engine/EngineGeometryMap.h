#pragma once

#include <orvane/engine/Export.h>

#include <QReadWriteLock>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace orvane::geometry {
class Geometry;
}

namespace orvane::engine {

/// Decoded geometries by the bytes they were decoded from. Any thread may use it. A blob that could not be
/// decoded is remembered as null; whatever is stored first for some bytes stays until the map is cleared.
class ORVANE_ENGINE_EXPORT EngineGeometryMap {
public:
    using GeometryPointer = std::shared_ptr<const geometry::Geometry>;
    using Loader = std::function<GeometryPointer(const void* data, unsigned int size)>;

    EngineGeometryMap();
    ~EngineGeometryMap();
    EngineGeometryMap(const EngineGeometryMap&) = delete;
    EngineGeometryMap& operator=(const EngineGeometryMap&) = delete;

    /// The geometry of the bytes. On a miss `loader` decodes them with no lock held; two threads may do so at
    /// once, and both get the result that was stored first. Throws std::bad_function_call for an empty
    /// loader.
    GeometryPointer get(const void* data, unsigned int size, const Loader& loader);
    /// Stores a geometry unless the bytes have one.
    void set(const void* data, unsigned int size, const GeometryPointer& geometry);
    /// Forgets all of them, nulls included.
    void clearMap();

private:
    /// Shorter keys first, keys of one length by their bytes.
    struct KeyLess {
        using is_transparent = void;
        bool operator()(std::string_view a, std::string_view b) const;
    };

    std::map<std::string, GeometryPointer, KeyLess> map_;
    QReadWriteLock lock_;
};

} // namespace orvane::engine
