#pragma once

#include "platform/geometry/shapes/Coordinates.h"

#include <QtEndian>

#include <cstdint>
#include <optional>
#include <string_view>

/// How SpatiaLite's BLOB-Geometry is laid out, for the sources that write and read it.
namespace orvane::engine::spatialite {

using geometry::Dimensions;
using geometry::Envelope;
using geometry::strideOf;

inline constexpr char startMark = 0x00;
inline constexpr char envelopeMark = 0x7C;
inline constexpr char partMark = 0x69;
inline constexpr char endMark = static_cast<char>(0xFE);
inline constexpr std::size_t envelopeOffset = 6;
inline constexpr std::size_t bodyOffset = 39;
inline constexpr std::size_t kindSize = 4;
/// The byte order of tiny points, plus 0 or 1.
inline constexpr unsigned char tinyPointOrder = 0x80;
inline constexpr std::size_t tinyContentOffset = 7;
/// Added to the kinds of compressed lines and polygons.
inline constexpr std::uint32_t compressedKinds = 1000000;
/// Header, kind, end mark.
inline constexpr std::size_t leastSize = bodyOffset + kindSize + 1;
/// A blob has this many bytes more than the well-known binary of the same geometry.
inline constexpr std::size_t sizeBeyondWkb = bodyOffset + 1 - 1;

enum Kind : std::uint32_t {
    Point = 1,
    LineString = 2,
    Polygon = 3,
    MultiPoint = 4,
    MultiLineString = 5,
    MultiPolygon = 6,
    GeometryCollection = 7
};

template<typename Number>
Number readNumber(const char* data, bool littleEndian) {
    return littleEndian ? qFromLittleEndian<Number>(data) : qFromBigEndian<Number>(data);
}

inline std::optional<Dimensions> dimensionsOf(std::uint32_t kind) {
    return kind < 4000 ? std::optional(static_cast<Dimensions>(kind / 1000)) : std::nullopt;
}

/// The position in the usual blob of a point: x and y in little-endian, not tiny. Null for any other blob.
inline const char* usualPoint(std::string_view blob) {
    constexpr std::size_t contentOffset = bodyOffset + kindSize;
    constexpr std::size_t size = contentOffset + 2 * sizeof(double) + 1;
    const bool isUsual = blob.size() == size && blob.front() == startMark && blob[1] == 1 &&
                         blob[bodyOffset - 1] == envelopeMark &&
                         readNumber<quint32>(blob.data() + bodyOffset, true) == Point &&
                         blob.back() == endMark;
    return isUsual ? blob.data() + contentOffset : nullptr;
}

/// Bytes read from front to back; false once they do not suffice.
class Bytes {
public:
    explicit Bytes(std::string_view bytes) : bytes_(bytes) {}

    bool isAtEnd() const { return bytes_.empty(); }
    std::size_t left() const { return bytes_.size(); }

    const char* take(std::size_t size) {
        if (size > bytes_.size()) {
            return nullptr;
        }
        const char* data = bytes_.data();
        bytes_.remove_prefix(size);
        return data;
    }

    bool takeUInt32(bool littleEndian, std::uint32_t& value) {
        const char* data = take(4);
        if (data) {
            value = readNumber<quint32>(data, littleEndian);
        }
        return data != nullptr;
    }

private:
    std::string_view bytes_;
};

/// Writes all that stands before the kind.
void putHeader(char* target, int srid, const Envelope& envelope);

} // namespace orvane::engine::spatialite
