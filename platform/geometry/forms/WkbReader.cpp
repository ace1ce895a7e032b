#include "platform/geometry/forms/GeometryFactory.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/shapes/Curves.h"

#include <QtEndian>

#include <cmath>
#include <stdexcept>

namespace orvane::geometry {

namespace {

constexpr int maximumDepth = 32;

[[noreturn]] void fail(const char* reason) {
    throw std::runtime_error(reason);
}

/// How the parts of a geometry are introduced.
enum class Framing {
    Wkb,        ///< byte order, kind
    Spatialite, ///< mark 0x69, kind, in the byte order of the whole
};

/// Reads one geometry from front to back. Never looks beyond the bytes, and compares every count with what is
/// left before it takes memory for it.
class Reader {
public:
    Reader(std::string_view bytes, Framing framing, bool littleEndian)
        : bytes_(bytes), framing_(framing), littleEndian_(littleEndian) {}

    std::shared_ptr<Geometry> readWhole() {
        try {
            auto geometry = framing_ == Framing::Wkb ? readFramed(0) : readBody(0);
            if (!bytes_.empty()) {
                fail("bytes are left over behind the geometry");
            }
            return geometry;
        } catch (const std::invalid_argument& refused) { // half an arc, a line among points
            fail(refused.what());
        }
    }

    std::uint32_t srid() const { return srid_; }

private:
    const char* take(std::size_t size) {
        if (size > bytes_.size()) {
            fail("the geometry ends too early");
        }
        const char* data = bytes_.data();
        bytes_.remove_prefix(size);
        return data;
    }

    std::uint32_t readUInt32() {
        const char* data = take(4);
        return littleEndian_ ? qFromLittleEndian<quint32>(data) : qFromBigEndian<quint32>(data);
    }

    /// A number of things of at least `least` bytes each.
    std::size_t readCount(std::size_t least) {
        const std::size_t count = readUInt32();
        if (count > bytes_.size() / least) {
            fail("a count is larger than the geometry");
        }
        return count;
    }

    void readDoubles(double* target, std::size_t count) {
        const char* data = take(count * sizeof(double));
        if (littleEndian_) {
            qFromLittleEndian<double>(data, static_cast<qsizetype>(count), target);
        } else {
            qFromBigEndian<double>(data, static_cast<qsizetype>(count), target);
        }
    }

    CoordinateSequence readPositions(Dimensions dimensions) {
        const std::size_t stride = strideOf(dimensions);
        const std::size_t count = readCount(stride * sizeof(double));
        return CoordinateSequence(dimensions, count,
                                  [&](double* target) { readDoubles(target, count * stride); });
    }

    std::shared_ptr<Geometry> readFramed(int depth) {
        const auto mark = static_cast<unsigned char>(*take(1));
        if (framing_ == Framing::Spatialite) {
            if (mark != 0x69) {
                fail("a part without its mark");
            }
        } else {
            if (mark > 1) {
                fail("an unknown byte order");
            }
            littleEndian_ = mark == 1;
        }
        return readBody(depth);
    }

    std::shared_ptr<Geometry> readBody(int depth) {
        if (depth >= maximumDepth) {
            fail("geometries are nested too deep");
        }
        std::uint32_t code = readUInt32();
        bool z = false;
        bool m = false;
        if (framing_ == Framing::Wkb && (code & 0xE0000000U) != 0) {
            z = (code & 0x80000000U) != 0;
            m = (code & 0x40000000U) != 0;
            if ((code & 0x20000000U) != 0) {
                srid_ = readUInt32();
            }
            code &= 0x1FFFFFFFU;
        }
        z = z || (code >= 1000 && code < 2000) || (code >= 3000 && code < 4000);
        m = m || (code >= 2000 && code < 4000);
        if (code >= 4000) {
            fail("an unknown kind of geometry");
        }
        return readKind(code % 1000, makeDimensions(z, m), depth);
    }

    std::shared_ptr<Geometry> readKind(std::uint32_t kind, Dimensions dimensions, int depth) {
        const auto type = static_cast<GeometryType>(kind);
        if (kind > static_cast<std::uint32_t>(GeometryType::MultiSurface) ||
            (framing_ == Framing::Spatialite &&
             kind > static_cast<std::uint32_t>(GeometryType::GeometryCollection))) {
            fail("an unknown kind of geometry");
        }
        switch (type) {
        case GeometryType::Point: {
            double ordinates[4];
            readDoubles(ordinates, strideOf(dimensions));
            return std::make_shared<Point>(dimensions, ordinates);
        }
        case GeometryType::LineString: return std::make_shared<LineString>(readPositions(dimensions));
        case GeometryType::CircularString: return std::make_shared<CircularString>(readPositions(dimensions));
        case GeometryType::Polygon: {
            std::vector<CoordinateSequence> rings;
            const std::size_t count = readCount(4);
            rings.reserve(count);
            for (std::size_t i = 0; i < count; ++i) {
                rings.push_back(readPositions(dimensions));
            }
            return std::make_shared<Polygon>(dimensions, std::move(rings));
        }
        case GeometryType::CompoundCurve:
            return std::make_shared<CompoundCurve>(dimensions, readParts(depth));
        case GeometryType::CurvePolygon: return std::make_shared<CurvePolygon>(dimensions, readParts(depth));
        case GeometryType::MultiPoint:
        case GeometryType::MultiLineString:
        case GeometryType::MultiPolygon:
        case GeometryType::GeometryCollection:
        case GeometryType::MultiCurve:
        case GeometryType::MultiSurface:
            return std::make_shared<GeometryCollection>(type, dimensions, readParts(depth));
        default: fail("an unknown kind of geometry");
        }
    }

    std::vector<GeometryPtr> readParts(int depth) {
        const bool littleEndian = littleEndian_;
        const std::size_t count = readCount(9);
        std::vector<GeometryPtr> parts;
        parts.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            parts.push_back(readFramed(depth + 1));
            littleEndian_ = littleEndian;
        }
        return parts;
    }

    std::string_view bytes_;
    Framing framing_;
    bool littleEndian_;
    std::uint32_t srid_ = 0;
};

std::shared_ptr<cs::CoordSystem> systemOf(std::uint32_t srid) {
    if (srid == 0 || srid > 999999) {
        return nullptr;
    }
    return cs::CoordSysFactory::defaultCoordSysFactory()->createFromTaggedString(
        QStringLiteral("epsg:%1").arg(srid));
}

} // namespace

std::shared_ptr<Geometry> GeometryFactory::fromWkb(std::string_view bytes,
                                                   const std::shared_ptr<cs::CoordSystem>& coordSystem) {
    Reader reader(bytes, Framing::Wkb, true);
    std::shared_ptr<Geometry> geometry = reader.readWhole();
    geometry->setCoordSystem(coordSystem ? coordSystem : systemOf(reader.srid()));
    return geometry;
}

std::shared_ptr<Geometry> GeometryFactory::fromWkb(const QByteArray& bytes,
                                                   const std::shared_ptr<cs::CoordSystem>& coordSystem) {
    return fromWkb(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())), coordSystem);
}

std::shared_ptr<Geometry>
GeometryFactory::fromSpatialiteBody(std::string_view body, bool littleEndian,
                                    const std::shared_ptr<cs::CoordSystem>& coordSystem) {
    std::shared_ptr<Geometry> geometry = Reader(body, Framing::Spatialite, littleEndian).readWhole();
    geometry->setCoordSystem(coordSystem);
    return geometry;
}

std::shared_ptr<const Geometry> fitGeometry(const std::shared_ptr<const Geometry>& geometry) {
    constexpr double roundingError = 1e-6;
    const auto system = geometry ? geometry->coordSystem() : nullptr;
    if (!system) {
        return geometry;
    }
    const auto isBeyondPole = [](double y) {
        return std::abs(y) > 90.0 && std::abs(y) <= 90.0 + roundingError;
    };
    const Envelope envelope = geometry->envelope();
    // Only then is the kind of the system worth asking for.
    if ((!isBeyondPole(envelope.minY) && !isBeyondPole(envelope.maxY)) || !system->isGeographic()) {
        return geometry;
    }
    const auto fitted = geometry->mapped([&](double* positions, std::size_t count, Dimensions dimensions) {
        for (std::size_t i = 0; i < count; ++i) {
            double& y = positions[i * strideOf(dimensions) + 1];
            y = isBeyondPole(y) ? std::copysign(90.0, y) : y;
        }
        return true;
    });
    fitted->setCoordSystem(system);
    return fitted;
}

} // namespace orvane::geometry
