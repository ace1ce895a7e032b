#pragma once

#include "platform/geometry/shapes/Geometry.h"

#include <QtEndian>

#include <cmath>
#include <string_view>

namespace orvane::geometry {

/// How the bytes of a geometry and of its parts are laid out.
enum class Framing : std::uint8_t {
    Wkb,        ///< well-known binary of ISO 13249-3, and its extended form with high bits: byte order, kind
    Spatialite, ///< within SpatiaLite's blobs: a mark and the kind before each part, one byte order for all
    Fgf         ///< FDO's format: kind, dimensions where there are no parts, all little-endian
};

/// Positions as they stand in the bytes.
struct PositionRun {
    const char* data;
    std::size_t count;
    Dimensions dimensions;
    bool littleEndian;
    bool isHole; ///< a ring behind the first one

    std::size_t doubles() const { return count * strideOf(dimensions); }
    double value(std::size_t index) const {
        const char* bytes = data + index * sizeof(double);
        return littleEndian ? qFromLittleEndian<double>(bytes) : qFromBigEndian<double>(bytes);
    }
    void copyTo(double* target) const {
        const auto size = static_cast<qsizetype>(doubles());
        littleEndian ? qFromLittleEndian<double>(data, size, target)
                     : qFromBigEndian<double>(data, size, target);
    }
    /// Whether x and y are numbers in every position.
    bool areNumbers() const {
        const std::size_t stride = strideOf(dimensions);
        bool areNumbers = true;
        for (std::size_t i = 0; i < count * stride; i += stride) {
            areNumbers &= !std::isnan(value(i)) & !std::isnan(value(i + 1));
        }
        return areNumbers;
    }
    void addTo(Envelope& envelope) const {
        const std::size_t stride = strideOf(dimensions);
        for (std::size_t i = 0; i < count * stride; i += stride) {
            envelope.add(value(i), value(i + 1));
        }
    }
};

/// Walks over the bytes of one geometry from front to back, for whatever is made of them. Never looks beyond
/// them, and compares every count with what is left before it tells of it. The visitor has
///
///     bool begin(GeometryType type, Dimensions dimensions, std::size_t count); // of parts, rings, 0 or 1
///     bool positions(const PositionRun& run);                                  // of a point, line, ring
///     bool end(GeometryType type, Dimensions dimensions);
///
/// each of which may return false to give up. Polyhedral surfaces and networks of triangles are told of as
/// multi-polygons. The dimensions of parts may differ from those of the whole; an FGF with parts has none of
/// its own.
template<Framing framing, typename Visitor>
class GeometryWalker {
public:
    GeometryWalker(std::string_view bytes, Visitor& visitor, bool littleEndian = true)
        : bytes_(bytes), visitor_(visitor), littleEndian_(littleEndian) {}

    /// Whether the bytes are one geometry and nothing else, and the visitor took it.
    bool walk() { return walkFramed(0) && isAtEnd(); }
    /// The same for bytes that begin behind the kind.
    bool walkContent(std::uint32_t kind) { return walkKind(kind, 0) && isAtEnd(); }

    /// Why a walk ended early.
    const char* failure() const { return failure_; }
    /// Of the extended form; 0 for none.
    std::uint32_t srid() const { return srid_; }

private:
    static constexpr int maximumDepth = 32;
    static constexpr std::size_t leastPartSize = framing == Framing::Fgf ? 8 : 9;
    static constexpr char partMark = 0x69;

    bool fail(const char* reason) {
        failure_ = reason;
        return false;
    }

    bool isAtEnd() { return bytes_.empty() || fail("bytes are left over behind the geometry"); }

    bool take(std::size_t size, const char*& data) {
        if (size > bytes_.size()) {
            return fail("the geometry ends too early");
        }
        data = bytes_.data();
        bytes_.remove_prefix(size);
        return true;
    }

    bool takeUInt32(std::uint32_t& value) {
        const char* data = nullptr;
        if (!take(4, data)) {
            return false;
        }
        value = littleEndian_ ? qFromLittleEndian<quint32>(data) : qFromBigEndian<quint32>(data);
        return true;
    }

    /// A number of things of at least `least` bytes each.
    bool takeCount(std::size_t least, std::uint32_t& count) {
        return takeUInt32(count) &&
               (count <= bytes_.size() / least || fail("a count is larger than the geometry"));
    }

    bool walkFramed(int depth) {
        const char* mark = nullptr;
        if constexpr (framing == Framing::Wkb) {
            if (!take(1, mark) || static_cast<unsigned char>(*mark) > 1) {
                return mark ? fail("an unknown byte order") : false;
            }
            littleEndian_ = *mark == 1;
        } else if constexpr (framing == Framing::Spatialite) {
            if (!take(1, mark) || *mark != partMark) {
                return mark ? fail("a part without its mark") : false;
            }
        }
        std::uint32_t kind = 0;
        return takeUInt32(kind) && walkKind(kind, depth);
    }

    /// Splits the code of a kind, and reads what stands between it and the content.
    bool walkKind(std::uint32_t code, int depth) {
        bool z = false;
        bool m = false;
        if constexpr (framing == Framing::Wkb) {
            z = (code & 0x80000000U) != 0;
            m = (code & 0x40000000U) != 0;
            if ((code & 0x20000000U) != 0 && !takeUInt32(srid_)) {
                return false;
            }
            code &= 0x1FFFFFFFU;
        } else if constexpr (framing == Framing::Fgf) {
            std::uint32_t dimensions = 0;
            if (code < 4 && !takeUInt32(dimensions)) {
                return false;
            }
            if (dimensions > 3 || code > 7) {
                return fail("an unknown kind of geometry");
            }
            code += 1000 * dimensions;
        }
        if (code >= 4000) {
            return fail("an unknown kind of geometry");
        }
        if (depth >= maximumDepth) {
            return fail("geometries are nested too deep");
        }
        z = z || code / 1000 % 2 == 1;
        m = m || code >= 2000;
        return walkContent(code % 1000, makeDimensions(z, m), depth);
    }

    bool walkContent(std::uint32_t kind, Dimensions dimensions, int depth) {
        switch (kind) {
        case 1: return walkSingle(GeometryType::Point, dimensions);
        case 2: return walkSingle(GeometryType::LineString, dimensions);
        case 3: return walkRings(dimensions);
        case 4:
        case 5:
        case 6:
        case 7: return walkParts(static_cast<GeometryType>(kind), dimensions, depth);
        default: break;
        }
        if constexpr (framing == Framing::Wkb) {
            switch (kind) {
            case 8: return walkSingle(GeometryType::CircularString, dimensions);
            case 9:
            case 10:
            case 11:
            case 12: return walkParts(static_cast<GeometryType>(kind), dimensions, depth);
            case 15:
            case 16: return walkParts(GeometryType::MultiPolygon, dimensions, depth);
            case 17: return walkRings(dimensions);
            default: break;
            }
        }
        return fail("an unknown kind of geometry");
    }

    bool walkPositions(std::size_t count, Dimensions dimensions, bool isHole) {
        PositionRun run{nullptr, count, dimensions, littleEndian_, isHole};
        return take(run.doubles() * sizeof(double), run.data) && (visitor_.positions(run) || refused());
    }

    bool walkSequence(Dimensions dimensions, bool isHole) {
        std::uint32_t count = 0;
        return takeCount(strideOf(dimensions) * sizeof(double), count) &&
               walkPositions(count, dimensions, isHole);
    }

    bool walkSingle(GeometryType type, Dimensions dimensions) {
        const bool isPoint = type == GeometryType::Point;
        return begin(type, dimensions, isPoint ? 1 : 0) &&
               (isPoint ? walkPositions(1, dimensions, false) : walkSequence(dimensions, false)) &&
               end(type, dimensions);
    }

    bool walkRings(Dimensions dimensions) {
        std::uint32_t rings = 0;
        if (!takeCount(4, rings) || !begin(GeometryType::Polygon, dimensions, rings)) {
            return false;
        }
        for (std::uint32_t i = 0; i < rings; ++i) {
            if (!walkSequence(dimensions, i > 0)) {
                return false;
            }
        }
        return end(GeometryType::Polygon, dimensions);
    }

    bool walkParts(GeometryType type, Dimensions dimensions, int depth) {
        const bool littleEndian = littleEndian_;
        std::uint32_t count = 0;
        if (!takeCount(leastPartSize, count) || !begin(type, dimensions, count)) {
            return false;
        }
        for (std::uint32_t i = 0; i < count; ++i) {
            if (!walkFramed(depth + 1)) {
                return false;
            }
            littleEndian_ = littleEndian;
        }
        return end(type, dimensions);
    }

    bool refused() { return fail("a kind of geometry that is not wanted here"); }
    bool begin(GeometryType type, Dimensions dimensions, std::size_t count) {
        return visitor_.begin(type, dimensions, count) || refused();
    }
    bool end(GeometryType type, Dimensions dimensions) { return visitor_.end(type, dimensions) || refused(); }

    std::string_view bytes_;
    Visitor& visitor_;
    bool littleEndian_;
    std::uint32_t srid_ = 0;
    const char* failure_ = "";
};

/// What a visitor does about all that it does not look at.
struct GeometryVisitor {
    static bool begin(GeometryType, Dimensions, std::size_t) { return true; }
    static bool positions(const PositionRun&) { return true; }
    static bool end(GeometryType, Dimensions) { return true; }
};

} // namespace orvane::geometry
