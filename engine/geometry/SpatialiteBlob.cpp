#include <orvane/engine/SpatialiteBlob.h>

#include "platform/cs/Transformer.h"

#include <QtEndian>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace orvane::engine {

namespace {

using geometry::Dimensions;
using geometry::Envelope;
using geometry::strideOf;

constexpr char startMark = 0x00;
constexpr char envelopeMark = 0x7C;
constexpr char partMark = 0x69;
constexpr char endMark = static_cast<char>(0xFE);
constexpr std::size_t envelopeOffset = 6;
constexpr std::size_t bodyOffset = 39;
/// Header, kind, end mark.
constexpr std::size_t leastSize = bodyOffset + 4 + 1;
/// A blob has this many bytes more than the well-known binary of the same geometry.
constexpr std::size_t sizeBeyondWkb = bodyOffset + 1 - 1;

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

std::optional<Dimensions> dimensionsOf(std::uint32_t kind) {
    return kind < 4000 ? std::optional(static_cast<Dimensions>(kind / 1000)) : std::nullopt;
}

/// What a multi-part kind takes: one kind, or 0 for any of the first three.
std::uint32_t partKindOf(std::uint32_t kind) {
    return kind == GeometryCollection ? 0 : kind - MultiPoint + Point;
}

/// Bytes read from front to back; false once they do not suffice.
class Bytes {
public:
    explicit Bytes(std::string_view bytes) : bytes_(bytes) {}

    bool isAtEnd() const { return bytes_.empty(); }
    std::size_t left() const { return bytes_.size(); }
    std::string_view rest() const { return bytes_; }

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

/// Writes a blob from well-known binary into memory that is certainly large enough: nothing of it grows.
class BlobWriter {
public:
    BlobWriter(std::string_view wkb, char* target) : wkb_(wkb), target_(target) {}

    bool write() {
        Bytes bytes(wkb_);
        std::uint32_t kind = 0;
        if (!takeHeader(bytes, kind) || !dimensionsOf(kind)) {
            return false;
        }
        dimensions_ = *dimensionsOf(kind);
        putUInt32(kind);
        kind %= 1000;
        const bool complete = kind >= MultiPoint ? kind <= GeometryCollection && writeParts(bytes, kind)
                                                 : writeSingle(bytes, kind);
        return complete && bytes.isAtEnd();
    }

    char* target() const { return target_; }
    const Envelope& envelope() const { return envelope_; }

private:
    bool takeHeader(Bytes& bytes, std::uint32_t& kind) {
        const char* order = bytes.take(1);
        if (!order || static_cast<unsigned char>(*order) > 1) {
            return false;
        }
        littleEndian_ = *order == 1;
        return bytes.takeUInt32(littleEndian_, kind);
    }

    void putUInt32(std::uint32_t value) {
        qToLittleEndian<quint32>(value, target_);
        target_ += sizeof(quint32);
    }

    bool writePositions(Bytes& bytes, std::size_t count, bool inEnvelope) {
        const std::size_t stride = strideOf(dimensions_);
        if (count > bytes.left() / (stride * sizeof(double))) {
            return false;
        }
        const char* source = bytes.take(count * stride * sizeof(double));
        if (littleEndian_) {
            std::memcpy(target_, source, count * stride * sizeof(double));
        } else {
            for (std::size_t i = 0; i < count * stride; ++i) {
                qToLittleEndian<quint64>(qFromBigEndian<quint64>(source + i * sizeof(double)),
                                         target_ + i * sizeof(double));
            }
        }
        if (inEnvelope) {
            for (std::size_t i = 0; i < count; ++i) {
                const char* position = target_ + i * stride * sizeof(double);
                envelope_.add(qFromLittleEndian<double>(position),
                              qFromLittleEndian<double>(position + sizeof(double)));
            }
        }
        target_ += count * stride * sizeof(double);
        return true;
    }

    bool writeSequence(Bytes& bytes, bool inEnvelope) {
        std::uint32_t count = 0;
        if (!bytes.takeUInt32(littleEndian_, count)) {
            return false;
        }
        putUInt32(count);
        return writePositions(bytes, count, inEnvelope);
    }

    bool writeSingle(Bytes& bytes, std::uint32_t kind) {
        if (kind == Point) {
            return writePositions(bytes, 1, true);
        }
        if (kind == LineString) {
            return writeSequence(bytes, true);
        }
        std::uint32_t rings = 0;
        if (kind != Polygon || !bytes.takeUInt32(littleEndian_, rings) || rings == 0) {
            return false;
        }
        putUInt32(rings);
        for (std::uint32_t i = 0; i < rings; ++i) {
            if (!writeSequence(bytes, i == 0)) {
                return false;
            }
        }
        return true;
    }

    bool writeParts(Bytes& bytes, std::uint32_t kind) {
        std::uint32_t count = 0;
        if (!bytes.takeUInt32(littleEndian_, count) || count == 0) {
            return false;
        }
        putUInt32(count);
        if (const std::uint32_t partKind = partKindOf(kind)) {
            return writePartsOfKind(bytes, count, partKind, false);
        }
        // The blob groups the parts of a collection by kind: three walks, each copying one kind.
        const std::string_view parts = bytes.rest();
        for (const std::uint32_t partKind : {Point, LineString, Polygon}) {
            bytes = Bytes(parts);
            if (!writePartsOfKind(bytes, count, partKind, true)) {
                return false;
            }
        }
        return true;
    }

    bool writePartsOfKind(Bytes& bytes, std::uint32_t count, std::uint32_t wanted, bool skipOthers) {
        for (std::uint32_t i = 0; i < count; ++i) {
            std::uint32_t kind = 0;
            if (!takeHeader(bytes, kind) || dimensionsOf(kind) != dimensions_) {
                return false;
            }
            const std::uint32_t plain = kind % 1000;
            if (plain == wanted) {
                *target_++ = partMark;
                putUInt32(kind);
                if (!writeSingle(bytes, plain)) {
                    return false;
                }
            } else if (!skipOthers || !skipSingle(bytes, plain)) {
                return false;
            }
        }
        return true;
    }

    bool skipSequence(Bytes& bytes) {
        std::uint32_t count = 0;
        const std::size_t size = strideOf(dimensions_) * sizeof(double);
        return bytes.takeUInt32(littleEndian_, count) && count <= bytes.left() / size &&
               bytes.take(count * size);
    }

    bool skipSingle(Bytes& bytes, std::uint32_t kind) {
        if (kind == Point) {
            return bytes.take(strideOf(dimensions_) * sizeof(double)) != nullptr;
        }
        if (kind == LineString) {
            return skipSequence(bytes);
        }
        std::uint32_t rings = 0;
        if (kind != Polygon || !bytes.takeUInt32(littleEndian_, rings)) {
            return false;
        }
        for (std::uint32_t i = 0; i < rings; ++i) {
            if (!skipSequence(bytes)) {
                return false;
            }
        }
        return true;
    }

    std::string_view wkb_;
    char* target_;
    Envelope envelope_;
    Dimensions dimensions_ = Dimensions::XY;
    bool littleEndian_ = true;
};

void putHeader(char* target, int srid, const Envelope& envelope) {
    // What SpatiaLite writes for a geometry without positions.
    constexpr double most = std::numeric_limits<double>::max();
    target[0] = startMark;
    target[1] = 1;
    qToLittleEndian<qint32>(srid, target + 2);
    const double values[4] = {std::min(envelope.minX, most), std::min(envelope.minY, most),
                              std::max(envelope.maxX, -most), std::max(envelope.maxY, -most)};
    qToLittleEndian<double>(values, 4, target + envelopeOffset);
    target[bodyOffset - 1] = envelopeMark;
}

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

bool appendSpatialiteBlob(std::string_view isoWkb, int srid, std::string& out) {
    const std::size_t start = out.size();
    if (isoWkb.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()) - sizeBeyondWkb) {
        return false;
    }
    out.resize(start + sizeBeyondWkb + isoWkb.size());
    BlobWriter writer(isoWkb, out.data() + start + bodyOffset);
    if (!writer.write()) {
        out.resize(start);
        return false;
    }
    *writer.target() = endMark;
    putHeader(out.data() + start, srid, writer.envelope());
    return true;
}

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

bool spatialiteBlobEnvelope(std::string_view blob, geometry::Envelope& envelope) {
    const auto header = readSpatialiteHeader(blob);
    if (header) {
        envelope = header->envelope;
    }
    return header.has_value();
}

std::optional<std::int32_t> spatialiteBlobSrid(std::string_view blob) {
    const auto header = readSpatialiteHeader(blob);
    return header ? std::optional(header->srid) : std::nullopt;
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
