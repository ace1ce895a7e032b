#include <orvane/engine/SpatialiteBlob.h>

#include "engine/geometry/SpatialiteLayout.h"
#include "platform/geometry/forms/GeometryWalker.h"
#include "platform/geometry/shapes/Shapes.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>

namespace orvane::engine {

using namespace spatialite;

namespace {

using geometry::GeometryType;

/// Writes a blob from well-known binary into memory that is certainly large enough: nothing of it grows.
class BlobWriter {
public:
    BlobWriter(std::string_view wkb, char* target) : wkb_(wkb), target_(target) {}

    bool write() {
        if (!walk()) {
            return false;
        }
        // The blob groups the parts of a collection by kind: a walk for each.
        const GeometryType kinds[] = {GeometryType::LineString, GeometryType::Polygon};
        return type_ != GeometryType::GeometryCollection ||
               std::all_of(std::begin(kinds), std::end(kinds), [this](GeometryType kind) {
                   wanted_ = kind;
                   return walk();
               });
    }

    char* target() const { return target_; }
    const Envelope& envelope() const { return envelope_; }

    // What the walker tells.
    bool begin(GeometryType type, Dimensions dimensions, std::size_t count) {
        isLine_ = type != GeometryType::Point;
        if (!isInside_) {
            isInside_ = true;
            return beginWhole(type, dimensions, count);
        }
        if (type > GeometryType::Polygon || !geometry::GeometryCollection::takes(type_, type) ||
            dimensions != dimensions_ || (type == GeometryType::Polygon && count == 0)) {
            return false;
        }
        isSkipped_ = type_ == GeometryType::GeometryCollection && type != wanted_;
        if (!isSkipped_) {
            *target_++ = partMark;
            putKind(type, count);
        }
        return true;
    }

    bool positions(const geometry::PositionRun& run) {
        if (isSkipped_) {
            return true;
        }
        if (isLine_) {
            putUInt32(static_cast<std::uint32_t>(run.count));
        }
        const std::size_t size = run.doubles() * sizeof(double);
        if (run.littleEndian) {
            std::memcpy(target_, run.data, size);
        } else {
            for (std::size_t i = 0; i < size; i += sizeof(double)) {
                qToLittleEndian<quint64>(qFromBigEndian<quint64>(run.data + i), target_ + i);
            }
        }
        if (!run.isHole) {
            run.addTo(envelope_);
        }
        target_ += size;
        return true;
    }

    static bool end(GeometryType, Dimensions) { return true; }

private:
    bool walk() {
        isInside_ = false;
        geometry::GeometryWalker<geometry::Framing::Wkb, BlobWriter> walker(wkb_, *this);
        return walker.walk() && walker.srid() == 0;
    }

    /// The first walk writes what stands before the parts.
    bool beginWhole(GeometryType type, Dimensions dimensions, std::size_t count) {
        if (type > GeometryType::GeometryCollection || (count == 0 && type != GeometryType::LineString)) {
            return false;
        }
        isSkipped_ = false;
        if (wanted_ == GeometryType::Point) {
            type_ = type;
            dimensions_ = dimensions;
            putKind(type, count);
        }
        return true;
    }

    void putKind(GeometryType type, std::size_t count) {
        putUInt32(static_cast<std::uint32_t>(type) + 1000 * static_cast<std::uint32_t>(dimensions_));
        if (type >= GeometryType::Polygon) { // rings or parts
            putUInt32(static_cast<std::uint32_t>(count));
        }
    }

    void putUInt32(std::uint32_t value) {
        qToLittleEndian<quint32>(value, target_);
        target_ += sizeof(quint32);
    }

    std::string_view wkb_;
    char* target_;
    Envelope envelope_;
    Dimensions dimensions_ = Dimensions::XY;
    GeometryType type_ = GeometryType::Point;   ///< of the whole
    GeometryType wanted_ = GeometryType::Point; ///< the parts of a collection that this walk writes
    bool isInside_ = false;
    bool isSkipped_ = false;
    bool isLine_ = false; ///< positions are counted
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

namespace {

/// A short way for the usual rows of tables: a point of x and y in the byte order of blobs, whose kind and
/// position stand in the blob as they are.
bool appendPoint(std::string_view wkb, int srid, std::string& out) {
    constexpr std::string_view head("\1\1\0\0\0", 1 + kindSize);
    constexpr std::size_t positionSize = 2 * sizeof(double);
    if (wkb.size() != head.size() + positionSize || wkb.substr(0, head.size()) != head) {
        return false;
    }
    const std::size_t start = out.size();
    out.resize(start + sizeBeyondWkb + wkb.size());
    char* const target = out.data() + start;
    std::memcpy(target + bodyOffset, wkb.data() + 1, wkb.size() - 1);
    out.back() = endMark;
    Envelope envelope;
    geometry::PositionRun{wkb.data() + head.size(), 1, Dimensions::XY, true, false}.addTo(envelope);
    putHeader(target, srid, envelope);
    return true;
}

} // namespace

bool appendSpatialiteBlob(std::string_view isoWkb, int srid, std::string& out) {
    if (appendPoint(isoWkb, srid, out)) {
        return true;
    }
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
    // The extended form may have spelt out that there is no coordinate system.
    out.resize(static_cast<std::size_t>(writer.target() + 1 - out.data()));
    return true;
}

} // namespace orvane::engine
