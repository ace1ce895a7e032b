#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/shapes/Curves.h"

#include <QtEndian>

#include <limits>
#include <optional>
#include <stdexcept>

namespace orvane::geometry {

namespace {

/// Two passes over one walk: the first counts the bytes, the second writes them.
class Writer {
public:
    /// `srid`: of the extended form; none for the standard's.
    explicit Writer(QSysInfo::Endian byteOrder, std::optional<int> srid = std::nullopt)
        : srid_(srid), littleEndian_(byteOrder == QSysInfo::LittleEndian) {}

    QByteArray write(const Geometry& geometry) {
        writeGeometry(geometry, srid_.value_or(0));
        if (size_ > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
            throw std::length_error("a geometry of more than 2 GiB");
        }
        QByteArray bytes(static_cast<int>(size_), Qt::Uninitialized);
        target_ = bytes.data();
        writeGeometry(geometry, srid_.value_or(0));
        return bytes;
    }

private:
    void writeByte(char value) {
        if (target_) {
            *target_++ = value;
        }
        ++size_;
    }

    void writeUInt32(std::size_t value) {
        if (value > std::numeric_limits<quint32>::max()) {
            throw std::length_error("more parts or positions than well-known binary can count");
        }
        if (target_) {
            littleEndian_ ? qToLittleEndian<quint32>(static_cast<quint32>(value), target_)
                          : qToBigEndian<quint32>(static_cast<quint32>(value), target_);
            target_ += sizeof(quint32);
        }
        size_ += sizeof(quint32);
    }

    void writeDoubles(const double* values, std::size_t count) {
        const std::size_t size = count * sizeof(double);
        if (target_ && count > 0) {
            littleEndian_ ? qToLittleEndian<double>(values, static_cast<qsizetype>(count), target_)
                          : qToBigEndian<double>(values, static_cast<qsizetype>(count), target_);
            target_ += size;
        }
        size_ += size;
    }

    void writePositions(const CoordinateSequence& positions) {
        writeUInt32(positions.size());
        writeDoubles(positions.data(), positions.values().size());
    }

    void writeParts(const std::vector<GeometryPtr>& parts) {
        writeUInt32(parts.size());
        for (const GeometryPtr& part : parts) {
            writeGeometry(*part);
        }
    }

    /// Only a whole has an SRID.
    void writeGeometry(const Geometry& geometry, int srid = 0) {
        writeByte(littleEndian_ ? 1 : 0);
        const auto type = static_cast<std::size_t>(geometry.type());
        if (srid_) {
            writeUInt32(type | (hasZ(geometry.dimensions()) ? 0x80000000U : 0U) |
                        (hasM(geometry.dimensions()) ? 0x40000000U : 0U) | (srid != 0 ? 0x20000000U : 0U));
            if (srid != 0) {
                writeUInt32(static_cast<std::size_t>(srid));
            }
        } else {
            writeUInt32(type + 1000U * static_cast<std::size_t>(geometry.dimensions()));
        }
        switch (geometry.type()) {
        case GeometryType::Point:
            writeDoubles(static_cast<const Point&>(geometry).ordinates(), strideOf(geometry.dimensions()));
            break;
        case GeometryType::LineString:
            writePositions(static_cast<const LineString&>(geometry).coordinates());
            break;
        case GeometryType::CircularString:
            writePositions(static_cast<const CircularString&>(geometry).coordinates());
            break;
        case GeometryType::Polygon: {
            const auto& rings = static_cast<const Polygon&>(geometry).rings();
            writeUInt32(rings.size());
            for (const CoordinateSequence& ring : rings) {
                writePositions(ring);
            }
            break;
        }
        case GeometryType::CompoundCurve:
            writeParts(static_cast<const CompoundCurve&>(geometry).parts());
            break;
        case GeometryType::CurvePolygon:
            writeParts(static_cast<const CurvePolygon&>(geometry).rings());
            break;
        default: writeParts(static_cast<const GeometryCollection&>(geometry).parts()); break;
        }
    }

    std::optional<int> srid_;
    bool littleEndian_;
    char* target_ = nullptr;
    std::size_t size_ = 0;
};

} // namespace

QByteArray GeometryFactory::toWkb(const std::shared_ptr<const Geometry>& geometry,
                                  QSysInfo::Endian byteOrder) {
    const GeometryPtr standard = inStandardKinds(geometry);
    return standard ? Writer(byteOrder).write(*standard) : QByteArray();
}

QByteArray GeometryFactory::toExtendedWkb(const std::shared_ptr<const Geometry>& geometry, int srid) {
    const GeometryPtr standard = inStandardKinds(geometry);
    return standard ? Writer(QSysInfo::LittleEndian, srid).write(*standard) : QByteArray();
}

} // namespace orvane::geometry
