#pragma once

#include "platform/geometry/shapes/Coordinates.h"
#include <orvane/engine/Export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvane::cs {
class Transformer;
}

namespace orvane::engine {

// SpatiaLite's BLOB-Geometry as bytes, without objects: a zero, the byte order, the SRID, the envelope, 0x7C,
// the kind and the coordinates, 0xFE. Its tiny points: a zero, the byte order plus 0x80, the SRID, the
// dimensions in one byte, the coordinates, 0xFE. All functions are reentrant and throw only std::bad_alloc.

/// Appends the blob of a geometry in well-known binary of either byte order, z and m kept: the bytes that
/// gaiaToSpatiaLiteBlobWkb writes. The parts of a collection are ordered points, lines, polygons, as there.
/// False, with `out` as it was, for curves, for what the blob cannot hold (polygons without rings,
/// collections without parts, parts with parts or of other dimensions than the whole), for an SRID within the
/// bytes, and for broken bytes.
ORVANE_ENGINE_EXPORT bool appendSpatialiteBlob(std::string_view isoWkb, int srid, std::string& out);

/// What stands before the coordinates.
struct SpatialiteHeader {
    std::int32_t srid = 0;
    geometry::Envelope envelope; ///< of an empty geometry empty
    std::uint32_t kind = 0;      ///< 1 to 3007; from 1000000 compressed
    bool littleEndian = true;
    std::string_view content; ///< from behind the kind up to the end mark
};

/// None for bytes without the marks of a blob. The content is not looked at.
ORVANE_ENGINE_EXPORT std::optional<SpatialiteHeader> readSpatialiteHeader(std::string_view blob);

/// x and y of a blob that holds one point; false for any other.
ORVANE_ENGINE_EXPORT bool spatialiteBlobPoint(const SpatialiteHeader& header, double& x, double& y);

/// Whether counts, parts and marks of the content agree with its length, compressed kinds included.
ORVANE_ENGINE_EXPORT bool isSoundSpatialiteBlob(const SpatialiteHeader& header);

/// How a transformation of a blob ended.
enum class BlobTransformation {
    Done,
    NoImage,  ///< a position has no place in the target
    NotLinear ///< broken, big-endian, or a kind that this way does not know
};

/// Appends the blob with its coordinates transformed and another SRID. `out` is as it was unless Done.
ORVANE_ENGINE_EXPORT BlobTransformation appendTransformedBlob(const SpatialiteHeader& header,
                                                              const cs::Transformer& transformer, int srid,
                                                              std::string& out);

} // namespace orvane::engine
