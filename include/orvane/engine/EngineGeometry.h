#pragma once

#include <orvane/engine/Export.h>

#include <QByteArray>

#include <functional>
#include <memory>

namespace orvane::cs {
class CoordSystem;
}
namespace orvane::geometry {
class Geometry;
}

namespace orvane::engine {

/// A geometry as the database knows it, and the codec of the engine geometry blob: a geometry section and,
/// when the geometry carries a coordinate system, a coordinate-system section, each a tag byte, a
/// little-endian length of one to four bytes, and a payload written by the serialization archives. An
/// immutable value; copies share the geometry.
class ORVANE_ENGINE_EXPORT EngineGeometry {
public:
    using CoordSystemWritten =
        std::function<void(const std::shared_ptr<cs::CoordSystem>&, const QByteArray& payload)>;
    using CoordSystemLookup = std::function<std::shared_ptr<cs::CoordSystem>(const void* data, int size)>;

    explicit EngineGeometry(std::shared_ptr<const geometry::Geometry> geometry);

    std::shared_ptr<const geometry::Geometry> geometry() const { return geometry_; }
    explicit operator bool() const { return geometry_ != nullptr; }

    /// The blob of a geometry that is not null. `written` receives the coordinate system and its payload when
    /// there is one, and must then not be empty.
    static QByteArray serialize(const std::shared_ptr<geometry::Geometry>& geometry,
                                const CoordSystemWritten& written);
    QByteArray serialize(const CoordSystemWritten& written) const;

    /// Reads a blob. `lookup` may know the coordinate system of a payload; null lets the reader decode it.
    /// Anything that is no blob gives an empty value, never an exception of its own.
    static EngineGeometry deserialize(const QByteArray& blob, const CoordSystemLookup& lookup);

private:
    std::shared_ptr<const geometry::Geometry> geometry_;
};

} // namespace orvane::engine
