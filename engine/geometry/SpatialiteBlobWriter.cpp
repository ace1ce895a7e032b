#include <orvane/engine/SpatialiteBlob.h>

#include "engine/geometry/SpatialiteLayout.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace orvane::engine {

using namespace spatialite;

namespace {

/// What a multi-part kind takes: one kind, or 0 for any of the first three.
std::uint32_t partKindOf(std::uint32_t kind) {
    return kind == GeometryCollection ? 0 : kind - MultiPoint + Point;
}

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

} // namespace

void spatialite::putHeader(char* target, int srid, const Envelope& envelope) {
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

} // namespace orvane::engine
