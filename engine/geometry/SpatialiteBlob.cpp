#include <orvane/engine/SpatialiteBlob.h>

#include "engine/geometry/SpatialiteLayout.h"
#include "platform/cs/Transformer.h"

#include <cmath>
#include <cstring>
#include <vector>

namespace orvane::engine {

using namespace spatialite;

namespace {

/// Walks over a body. `visit(data, count, dimensions, isShell)` gets each run of positions and returns false
/// to stop. False for a body that is not sound.
template<typename Visit>
class BodyWalker {
public:
    BodyWalker(std::string_view body, bool littleEndian, Visit visit)
        : bytes_(body), littleEndian_(littleEndian), visit_(std::move(visit)) {}

    bool walk() {
        std::uint32_t kind = 0;
        return bytes_.takeUInt32(littleEndian_, kind) && walkKind(kind, true) && bytes_.isAtEnd();
    }

private:
    bool walkKind(std::uint32_t kind, bool mayHaveParts) {
        const auto dimensions = dimensionsOf(kind);
        if (!dimensions) {
            return false;
        }
        const std::uint32_t plain = kind % 1000;
        std::uint32_t count = 1;
        if (plain == Point) {
            return walkPositions(1, *dimensions, true);
        }
        if (!bytes_.takeUInt32(littleEndian_, count)) {
            return false;
        }
        if (plain == LineString) {
            return walkPositions(count, *dimensions, true);
        }
        if (plain == Polygon) {
            return walkRings(count, *dimensions);
        }
        if (plain < MultiPoint || plain > GeometryCollection || !mayHaveParts) {
            return false;
        }
        for (std::uint32_t i = 0; i < count; ++i) {
            const char* mark = bytes_.take(1);
            std::uint32_t partKind = 0;
            if (!mark || *mark != partMark || !bytes_.takeUInt32(littleEndian_, partKind) ||
                !walkKind(partKind, false)) {
                return false;
            }
        }
        return true;
    }

    bool walkRings(std::uint32_t rings, Dimensions dimensions) {
        for (std::uint32_t i = 0; i < rings; ++i) {
            std::uint32_t count = 0;
            if (!bytes_.takeUInt32(littleEndian_, count) || !walkPositions(count, dimensions, i == 0)) {
                return false;
            }
        }
        return true;
    }

    bool walkPositions(std::size_t count, Dimensions dimensions, bool isShell) {
        const std::size_t size = strideOf(dimensions) * sizeof(double);
        if (count > bytes_.left() / size) {
            return false;
        }
        const char* data = bytes_.take(count * size);
        return visit_(data, count, dimensions, isShell);
    }

    Bytes bytes_;
    bool littleEndian_;
    Visit visit_;
};

/// A compressed line or polygon: the first and the last position of each run in doubles, those between them
/// as floats relative to the one before (m in doubles).
bool isSoundCompressed(const SpatialiteHeader& header) {
    Bytes bytes(header.body);
    std::uint32_t kind = 0;
    std::uint32_t rings = 1;
    bytes.takeUInt32(header.littleEndian, kind);
    const auto dimensions = dimensionsOf(kind - 1000000);
    const std::uint32_t plain = kind % 1000;
    if (!dimensions || (plain != LineString && plain != Polygon) ||
        (plain == Polygon && !bytes.takeUInt32(header.littleEndian, rings))) {
        return false;
    }
    const std::size_t whole = strideOf(*dimensions) * sizeof(double);
    const std::size_t between =
        (hasZ(*dimensions) ? 3 : 2) * sizeof(float) + (hasM(*dimensions) ? sizeof(double) : 0);
    for (std::uint32_t i = 0; i < rings; ++i) {
        std::uint32_t count = 0;
        if (!bytes.takeUInt32(header.littleEndian, count) || count > bytes.left() / between) {
            return false;
        }
        const std::size_t size = count > 2 ? 2 * whole + (count - 2) * between : count * whole;
        if (!bytes.take(size)) {
            return false;
        }
    }
    return bytes.isAtEnd();
}

} // namespace

std::optional<SpatialiteHeader> readSpatialiteHeader(std::string_view blob) {
    if (blob.size() < leastSize || blob.front() != startMark || static_cast<unsigned char>(blob[1]) > 1 ||
        blob[bodyOffset - 1] != envelopeMark || blob.back() != endMark) {
        return std::nullopt;
    }
    SpatialiteHeader header;
    header.littleEndian = blob[1] == 1;
    header.srid = readNumber<qint32>(blob.data() + 2, header.littleEndian);
    double* const sides[4] = {&header.envelope.minX, &header.envelope.minY, &header.envelope.maxX,
                              &header.envelope.maxY};
    for (std::size_t i = 0; i < 4; ++i) {
        *sides[i] =
            readNumber<double>(blob.data() + envelopeOffset + i * sizeof(double), header.littleEndian);
    }
    header.body = blob.substr(bodyOffset, blob.size() - bodyOffset - 1);
    header.kind = readNumber<quint32>(header.body.data(), header.littleEndian);
    return header;
}

bool spatialiteBlobPoint(const SpatialiteHeader& header, double& x, double& y) {
    const auto dimensions = dimensionsOf(header.kind);
    if (header.kind % 1000 != Point || !dimensions ||
        header.body.size() != 4 + strideOf(*dimensions) * sizeof(double)) {
        return false;
    }
    x = readNumber<double>(header.body.data() + 4, header.littleEndian);
    y = readNumber<double>(header.body.data() + 4 + sizeof(double), header.littleEndian);
    return true;
}

bool isSoundSpatialiteBody(const SpatialiteHeader& header) {
    if (header.kind >= 1000000) {
        return isSoundCompressed(header);
    }
    return BodyWalker(header.body, header.littleEndian,
                      [](const char*, std::size_t, Dimensions, bool) { return true; })
        .walk();
}

BlobTransformation appendTransformedBlob(const SpatialiteHeader& header, const cs::Transformer& transformer,
                                         int srid, std::string& out) {
    const std::size_t start = out.size();
    if (!header.littleEndian || QSysInfo::ByteOrder != QSysInfo::LittleEndian) {
        return BlobTransformation::NotLinear;
    }
    out.resize(start + bodyOffset + header.body.size() + 1);
    char* target = out.data() + start + bodyOffset;
    std::memcpy(target, header.body.data(), header.body.size());
    target[header.body.size()] = endMark;
    Envelope envelope;
    bool hasImage = true;
    const auto transform = [&](const char* data, std::size_t count, Dimensions dimensions, bool isShell) {
        const std::size_t stride = strideOf(dimensions);
        const std::size_t size = count * stride * sizeof(double);
        constexpr std::size_t inlinePositions = 64;
        double few[inlinePositions * 4];
        std::vector<double> many(count > inlinePositions ? count * stride : 0);
        double* positions = many.empty() ? few : many.data();
        std::memcpy(positions, data, size);
        const bool isEmptyPoint = count == 1 && std::isnan(positions[0]) && std::isnan(positions[1]);
        hasImage = isEmptyPoint || transformer.transform(positions, count, stride, hasZ(dimensions));
        for (std::size_t i = 0; hasImage && isShell && i < count; ++i) {
            envelope.add(positions[i * stride], positions[i * stride + 1]);
        }
        std::memcpy(target + (data - header.body.data()), positions, size);
        return hasImage;
    };
    if (!BodyWalker(header.body, true, transform).walk()) {
        out.resize(start);
        return hasImage ? BlobTransformation::NotLinear : BlobTransformation::NoImage;
    }
    putHeader(out.data() + start, srid, envelope);
    return BlobTransformation::Done;
}

} // namespace orvane::engine
