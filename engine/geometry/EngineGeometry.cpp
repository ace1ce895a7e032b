#include <orvane/engine/EngineGeometry.h>

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/shapes/Geometry.h"
#include "platform/serialization/BinaryArchive.h"
#include "platform/serialization/CoordSystemArchive.h"

#include <QDataStream>

#include <algorithm>
#include <new>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace orvane::engine {

namespace {

constexpr unsigned lengthBits = 0x03;
constexpr unsigned coordSystemBit = 0x04;
constexpr unsigned largestTag = 0x07;

using CoordSystemPtr = std::shared_ptr<cs::CoordSystem>;

template<typename Write>
QByteArray payloadOf(const Write& write) {
    QByteArray payload;
    {
        QDataStream stream(&payload, QIODevice::WriteOnly);
        serialization::BinaryOutputArchive archive(&stream);
        write(archive);
    }
    return payload;
}

/// The tag and the length with the fewest bytes that hold it.
void appendSectionHeader(QByteArray& blob, unsigned kind, int payloadSize) {
    const auto size = static_cast<quint32>(payloadSize);
    const unsigned lengthSize = size > 0xFFFFFF ? 4 : size > 0xFFFF ? 3 : size > 0xFF ? 2 : 1;
    blob.append(static_cast<char>((lengthSize - 1) | kind));
    for (unsigned i = 0; i < lengthSize; ++i) {
        blob.append(static_cast<char>(size >> (8 * i)));
    }
}

/// Whether a geometry can begin here. The class name stands in full before the first object of an archive, so
/// that the many chance sections in other kinds of blobs are told apart without reading them.
bool mayHoldGeometry(std::string_view payload) {
    constexpr std::size_t nameOffset = 2;
    return payload.size() > nameOffset &&
           payload.substr(nameOffset).substr(0, geometry::Geometry::archiveNamePrefix.size()) ==
               geometry::Geometry::archiveNamePrefix;
}

template<typename Read>
void readPayload(std::string_view payload, const Read& read) {
    QByteArray bytes = QByteArray::fromRawData(payload.data(), static_cast<int>(payload.size()));
    QDataStream stream(&bytes, QIODevice::ReadOnly);
    serialization::BinaryInputArchive archive(&stream);
    try {
        read(archive);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        // Bytes that no archive wrote: the section counts as absent.
    }
}

std::shared_ptr<geometry::Geometry> readGeometry(std::string_view payload) {
    std::shared_ptr<geometry::Geometry> geometry;
    if (mayHoldGeometry(payload)) {
        readPayload(payload, [&](serialization::BinaryInputArchive& archive) {
            geometry = std::dynamic_pointer_cast<geometry::Geometry>(archive.loadSerializable());
        });
    }
    return geometry;
}

CoordSystemPtr readCoordSystem(std::string_view payload) {
    CoordSystemPtr coordSystem;
    readPayload(payload, [&](serialization::BinaryInputArchive& archive) {
        const unsigned short version = archive.loadVersion();
        serialization::load(archive, coordSystem, version);
    });
    return coordSystem;
}

/// Reads section after section until there is a geometry with a coordinate system.
class SectionReader {
public:
    SectionReader(std::string_view bytes, const EngineGeometry::CoordSystemLookup& lookup)
        : rest_(bytes), lookup_(lookup) {}

    std::shared_ptr<geometry::Geometry> read() {
        while (!rest_.empty() && !(geometry_ && geometry_->coordSystem())) {
            const auto tag = static_cast<unsigned char>(rest_.front());
            rest_.remove_prefix(1);
            if (tag > largestTag) {
                continue; // no section starts here: the next byte may be a tag
            }
            if (const auto payload = takePayload((tag & lengthBits) + 1)) {
                (tag & coordSystemBit) != 0 ? useCoordSystem(*payload) : useGeometry(*payload);
            }
        }
        return geometry_;
    }

private:
    std::optional<std::string_view> takePayload(std::size_t lengthSize) {
        std::size_t length = 0;
        for (std::size_t i = 0; i < lengthSize && i < rest_.size(); ++i) {
            length |= static_cast<std::size_t>(static_cast<unsigned char>(rest_[i])) << (8 * i);
        }
        if (lengthSize > rest_.size() || length > rest_.size() - lengthSize) {
            rest_ = {};
            return std::nullopt;
        }
        const std::string_view payload = rest_.substr(lengthSize, length);
        rest_.remove_prefix(lengthSize + length);
        return payload;
    }

    void useGeometry(std::string_view payload) {
        if (geometry_) {
            return;
        }
        geometry_ = readGeometry(payload);
        if (geometry_ && !geometry_->coordSystem()) {
            geometry_->setCoordSystem(coordSystem_);
        }
    }

    void useCoordSystem(std::string_view payload) {
        if (coordSystem_) {
            return;
        }
        coordSystem_ = lookup_(payload.data(), static_cast<int>(payload.size()));
        if (!coordSystem_) {
            coordSystem_ = readCoordSystem(payload);
        }
        if (coordSystem_ && geometry_) {
            geometry_->setCoordSystem(coordSystem_);
        }
    }

    std::string_view rest_;
    const EngineGeometry::CoordSystemLookup& lookup_;
    std::shared_ptr<geometry::Geometry> geometry_;
    CoordSystemPtr coordSystem_;
};

} // namespace

EngineGeometry::EngineGeometry(std::shared_ptr<const geometry::Geometry> geometry)
    : geometry_(std::move(geometry)) {}

QByteArray EngineGeometry::serialize(const std::shared_ptr<geometry::Geometry>& geometry,
                                     const CoordSystemWritten& written) {
    return EngineGeometry(geometry).serialize(written);
}

QByteArray EngineGeometry::serialize(const CoordSystemWritten& written) const {
    const CoordSystemPtr coordSystem = geometry_->coordSystem();
    std::shared_ptr<const geometry::Geometry> bare = geometry_;
    if (coordSystem) {
        const std::shared_ptr<geometry::Geometry> copy = geometry_->clone();
        copy->setCoordSystem(nullptr);
        bare = copy;
    }
    const QByteArray shape = payloadOf([&](auto& archive) { archive.saveSerializable(bare.get()); });
    QByteArray blob;
    blob.reserve(shape.size() + 64);
    appendSectionHeader(blob, 0, shape.size());
    blob.append(shape);
    if (coordSystem) {
        const QByteArray payload = payloadOf([&](auto& archive) {
            archive.saveVersion(0);
            serialization::save(archive, coordSystem, 0);
        });
        appendSectionHeader(blob, coordSystemBit, payload.size());
        written(coordSystem, payload);
        blob.append(payload);
    }
    return blob;
}

EngineGeometry EngineGeometry::deserialize(const QByteArray& blob, const CoordSystemLookup& lookup) {
    const std::string_view bytes(blob.constData(), static_cast<std::size_t>(blob.size()));
    // Without a geometry's name in it there is nothing to find; looking for it is faster than walking.
    if (bytes.find(geometry::Geometry::archiveNamePrefix) == std::string_view::npos) {
        return EngineGeometry(nullptr);
    }
    return EngineGeometry(SectionReader(bytes, lookup).read());
}

} // namespace orvane::engine
