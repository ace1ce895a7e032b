#include <orvane/engine/EngineCache.h>

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/serialization/BinaryArchive.h"
#include "platform/serialization/CoordSystemArchive.h"
#include "platform/utils/Compare.h"
#include <orvane/engine/GeometryConversions.h>
#include <orvane/engine/SpatialiteBlob.h>

#include "engine/geometry/GaiaPtr.h"
#include "engine/geometry/Locking.h"
#include "engine/geometry/PlainBinary.h"
#include "engine/geometry/SpatialiteLayout.h"

#include <QDataStream>

#include <cstring>
#include <new>

namespace orvane::engine {

namespace {

using CoordSystemPtr = std::shared_ptr<cs::CoordSystem>;

/// The value of a key: looked up under the read lock, made with no lock held, stored unless another thread
/// was faster. A value that cannot be made is stored as null.
template<typename Map, typename Key, typename Make>
CoordSystemPtr findOrMake(Map& map, QReadWriteLock& lock, const Key& key, const Make& make) {
    {
        const ReadLocked reading(&lock);
        if (const auto found = map.find(key); found != map.end()) {
            return found->second;
        }
    }
    CoordSystemPtr made;
    try {
        made = make();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        // Remembered as null.
    }
    const WriteLocked writing(&lock);
    return map.emplace(key, std::move(made)).first->second;
}

/// A payload as the key of a map, without a heap block up to 256 bytes.
template<typename PayloadKey>
PayloadKey keyOf(const QByteArray& payload) {
    PayloadKey key;
    key.append(payload.constData(), payload.size());
    return key;
}

/// Through SpatiaLite's own reader.
std::shared_ptr<const geometry::Geometry> decompressed(EngineCache& cache, std::string_view blob) {
    const GaiaPtr collection(
        toGaia(reinterpret_cast<const unsigned char*>(blob.data()), static_cast<int>(blob.size())));
    return collection ? geometry::GeometryFactory::fromWkb(GaiaBytes(collection, gaiaToWkb).view(),
                                                           cache.get(collection->Srid))
                      : nullptr;
}

} // namespace

EngineCache::EngineCache() = default;
EngineCache::~EngineCache() = default;

bool EngineCache::PayloadLess::operator()(const PayloadKey& a, const PayloadKey& b) const {
    if (a.size() != b.size()) {
        return a.size() < b.size();
    }
    return std::memcmp(a.constData(), b.constData(), static_cast<std::size_t>(a.size())) < 0;
}

bool EngineCache::IdLess::operator()(const dp::FeatureId& a, const dp::FeatureId& b) const {
    constexpr int usual = QMetaType::LongLong;
    if (a.value().userType() == usual && b.value().userType() == usual) {
        return *static_cast<const qint64*>(a.value().constData()) <
               *static_cast<const qint64*>(b.value().constData());
    }
    return utils::compare(a.value(), b.value()) < 0;
}

CoordSystemPtr EngineCache::get(int code) {
    return findOrMake(csByCode_, csByCodeLock_, code,
                      [code] { return cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(code); });
}

void EngineCache::save(int code, const CoordSystemPtr& coordSystem) {
    const WriteLocked lock(&csByCodeLock_);
    csByCode_.emplace(code, coordSystem);
}

CoordSystemPtr EngineCache::get(const QByteArray& payload) {
    return findOrMake(csByPayload_, csByPayloadLock_, keyOf<PayloadKey>(payload), [&payload] {
        QDataStream stream(payload);
        serialization::BinaryInputArchive archive(&stream);
        CoordSystemPtr coordSystem;
        const unsigned short version = archive.loadVersion();
        serialization::load(archive, coordSystem, version);
        return coordSystem;
    });
}

void EngineCache::save(const QByteArray& payload, const CoordSystemPtr& coordSystem) {
    PayloadKey key = keyOf<PayloadKey>(payload);
    {
        const ReadLocked lock(&csByPayloadLock_);
        if (csByPayload_.find(key) != csByPayload_.end()) {
            return;
        }
    }
    const WriteLocked lock(&csByPayloadLock_);
    csByPayload_.emplace(std::move(key), coordSystem);
}

EngineGeometry EngineCache::geometryInfo(const void* data, unsigned int size, bool useMemo) {
    if (!data || size == 0) {
        return EngineGeometry(nullptr);
    }
    const QByteArray blob = QByteArray::fromRawData(static_cast<const char*>(data), static_cast<int>(size));
    EngineGeometry geometry = EngineGeometry::deserialize(blob, [this](const void* payload, int payloadSize) {
        return get(QByteArray::fromRawData(static_cast<const char*>(payload), payloadSize));
    });
    if (geometry) {
        return geometry;
    }
    const bool remembers = gaiaCache_ == MemoOnRequest ? useMemo : gaiaCache_ != NoMemo;
    if (!remembers) {
        return EngineGeometry(decodeSpatialite(data, size));
    }
    return EngineGeometry(
        geometryMaps_[size % geometryMapCount].get(data, size, [this](const void* bytes, unsigned int count) {
            return decodeSpatialite(bytes, count);
        }));
}

EngineGeometry EngineCache::geometryInfo(const QByteArray& blob, bool useMemo) {
    return geometryInfo(blob.constData(), static_cast<unsigned int>(blob.size()), useMemo);
}

void EngineCache::save(const void* data, unsigned int size,
                       const std::shared_ptr<const geometry::Geometry>& geometry) {
    if (gaiaCache_ != NoMemo) {
        geometryMaps_[size % geometryMapCount].set(data, size, geometry);
    }
}

void EngineCache::clear() {
    for (EngineGeometryMap& map : geometryMaps_) {
        map.clearMap();
    }
}

std::shared_ptr<const geometry::Geometry> EngineCache::decodeSpatialite(const void* data, unsigned int size) {
    const std::string_view bytes(static_cast<const char*>(data), size);
    try {
        const auto header = readSpatialiteHeader(bytes);
        if (!header) {
            return fromPlainBinary(bytes);
        }
        if (header->kind >= spatialite::compressedKinds) {
            return decompressed(*this, bytes);
        }
        return geometry::GeometryFactory::fromSpatialite(header->kind, header->content, header->littleEndian,
                                                         get(header->srid));
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        return nullptr;
    }
}

qint64 EngineCache::assignIdToInt(dp::FeatureId id) {
    {
        const ReadLocked lock(&idLock_);
        if (const auto found = intById_.find(id); found != intById_.end()) {
            return found->second;
        }
    }
    const WriteLocked lock(&idLock_);
    const auto number = static_cast<qint64>(intById_.size());
    // Providers deliver identifiers in ascending order, so the place behind the last one is the likely one.
    const auto position = intById_.emplace_hint(intById_.end(), std::move(id), number);
    if (position->second == number) {
        idByInt_.push_back(position);
    }
    return position->second;
}

qint64 EngineCache::idToInt(dp::FeatureId id, qint64 defaultValue) {
    const ReadLocked lock(&idLock_);
    const auto found = intById_.find(id);
    return found == intById_.end() ? defaultValue : found->second;
}

dp::FeatureId EngineCache::intToId(qint64 number) {
    const ReadLocked lock(&idLock_);
    const bool isAssigned = number >= 0 && number < static_cast<qint64>(idByInt_.size());
    return isAssigned ? idByInt_[static_cast<std::size_t>(number)]->first : dp::FeatureId();
}

qint64 EngineCache::idLimit() {
    const ReadLocked lock(&idLock_);
    return static_cast<qint64>(intById_.size());
}

void EngineCache::addResemblanceExtension(geometry::ResemblanceExtension* extension) {
    if (extension) {
        extension->adjustSetup(resemblanceSetup_);
        resemblanceExtensions_.push_back(extension);
    }
}

std::shared_ptr<const geometry::Geometry>
EngineCache::tryResemblance(const std::shared_ptr<const geometry::Geometry>& geometry) {
    for (geometry::ResemblanceExtension* extension : resemblanceExtensions_) {
        if (auto found = extension->resemblance(geometry, resemblanceSetup_)) {
            return found;
        }
    }
    return nullptr;
}

std::shared_ptr<const geometry::Geometry>
EngineCache::resemblance(const std::shared_ptr<const geometry::Geometry>& geometry) {
    auto found = tryResemblance(geometry);
    return found ? found : geometry->clone();
}

} // namespace orvane::engine
