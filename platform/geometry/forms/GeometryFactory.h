#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Geometry.h"

#include <QByteArray>
#include <QSysInfo>

#include <optional>
#include <string_view>

namespace orvane::geometry {

/// Geometries from and to well-known binary (ISO 13249-3: z, m and curves by codes of 1000, 2000 and 3000).
class ORVANE_PLATFORM_EXPORT GeometryFactory {
public:
    /// Empty for null. Ellipses and rounded rectangles are written as inStandardKinds makes them.
    static QByteArray toWkb(const std::shared_ptr<const Geometry>& geometry, QSysInfo::Endian byteOrder);

    /// The extended form, little-endian; without an SRID for 0.
    static QByteArray toExtendedWkb(const std::shared_ptr<const Geometry>& geometry, int srid);

    /// Reads either byte order, part by part. The high bits of the extended form (0x80000000 z, 0x40000000 m,
    /// 0x20000000 SRID) are understood too; an SRID serves as EPSG code when `coordSystem` is null.
    /// Polyhedral surfaces and networks of triangles become multi-polygons. Throws std::runtime_error for
    /// broken bytes, bytes left over, and nesting beyond 32 levels.
    static std::shared_ptr<Geometry> fromWkb(const QByteArray& bytes,
                                             const std::shared_ptr<cs::CoordSystem>& coordSystem);
    static std::shared_ptr<Geometry> fromWkb(std::string_view bytes,
                                             const std::shared_ptr<cs::CoordSystem>& coordSystem);

    /// FGF without curves. Throws std::runtime_error as fromWkb does.
    static std::shared_ptr<Geometry> fromFgf(std::string_view bytes);

    /// What a SpatiaLite blob has behind its kind (linear, 1 to 3007) up to the end mark: parts introduced by
    /// a mark and their kind, all in one byte order. Throws std::runtime_error as fromWkb does.
    static std::shared_ptr<Geometry> fromSpatialite(std::uint32_t kind, std::string_view content,
                                                    bool littleEndian,
                                                    const std::shared_ptr<cs::CoordSystem>& coordSystem);
};

/// The envelope of a geometry in well-known binary, without an object; empty for an empty one. None where the
/// positions do not tell: for curves, and for bytes that are not well formed.
ORVANE_PLATFORM_EXPORT std::optional<Envelope> envelopeOfWkb(std::string_view bytes);

/// The geometry as its coordinate system wants it: latitudes of a geographic system that rounding pushed
/// beyond a pole (by up to a millionth of a degree) are put on the pole. The same pointer when there is
/// nothing to do.
ORVANE_PLATFORM_EXPORT std::shared_ptr<const Geometry>
fitGeometry(const std::shared_ptr<const Geometry>& geometry);

} // namespace orvane::geometry
