#include <orvane/engine/GeometryConversions.h>

#include "platform/cs/CoordSystem.h"
#include "platform/decimal/QDecNumber.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/shapes/Curves.h"
#include "platform/utils/MetaTypes.h"
#include <orvane/engine/ColumnNames.h>
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/SpatialiteBlob.h>
#include <orvane/engine/functions/Converters.h>

#include "engine/geometry/GaiaPtr.h"

#include <QtEndian>

namespace orvane::engine {

namespace {

bool isSoundWkb(std::string_view bytes) {
    try {
        geometry::GeometryFactory::fromWkb(bytes, nullptr);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

/// Null also for the kinds that SpatiaLite does not know (curves, the extended form), of which it makes
/// collections without parts.
GaiaPtr collectionFromWkb(std::string_view bytes) {
    GaiaPtr collection = isSoundWkb(bytes) ? gaiaFromWkb(bytes) : nullptr;
    if (collection && !collection->FirstPoint && !collection->FirstLinestring && !collection->FirstPolygon) {
        collection.reset();
    }
    return collection;
}

/// Rewrites FGF (little-endian: kind, dimensions, counts, doubles; parts whole) as well-known binary.
/// SpatiaLite's own reader of it does not check counts and reads lines with heights beyond the end of the
/// bytes.
class FgfReader {
public:
    explicit FgfReader(std::string_view bytes) : bytes_(bytes) {}

    /// Empty when the bytes are no FGF.
    QByteArray toWkb() { return readGeometry(true) && bytes_.empty() ? wkb_ : QByteArray(); }

private:
    bool take(std::size_t size, const char*& data) {
        if (size > bytes_.size()) {
            return false;
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
        value = qFromLittleEndian<quint32>(data);
        return true;
    }

    void put(std::uint32_t value) {
        char bytes[4];
        qToLittleEndian<quint32>(value, bytes);
        wkb_.append(bytes, sizeof bytes);
    }

    bool copyCount(std::uint32_t& count) {
        const bool taken = takeUInt32(count);
        put(count);
        return taken;
    }

    bool copyPositions(std::size_t count, std::size_t positionSize) {
        const char* data = nullptr;
        if (count > bytes_.size() / positionSize || !take(count * positionSize, data)) {
            return false;
        }
        wkb_.append(data, static_cast<int>(count * positionSize));
        return true;
    }

    bool copySequence(std::size_t positionSize) {
        std::uint32_t count = 0;
        return copyCount(count) && copyPositions(count, positionSize);
    }

    bool readGeometry(bool mayHaveParts) {
        std::uint32_t kind = 0;
        std::uint32_t count = 0;
        if (!takeUInt32(kind) || kind < 1 || kind > 7) {
            return false;
        }
        const bool hasParts = kind >= 4;
        std::uint32_t dimensions = 0;
        if ((hasParts && !mayHaveParts) || (!hasParts && (!takeUInt32(dimensions) || dimensions > 3))) {
            return false;
        }
        wkb_.append(1);
        put(kind + 1000 * dimensions);
        if (hasParts) {
            bool complete = copyCount(count);
            for (std::uint32_t i = 0; complete && i < count; ++i) {
                complete = readGeometry(false);
            }
            return complete;
        }
        const std::size_t size =
            geometry::strideOf(static_cast<geometry::Dimensions>(dimensions)) * sizeof(double);
        if (kind < 3) {
            return kind == 1 ? copyPositions(1, size) : copySequence(size);
        }
        bool complete = copyCount(count);
        for (std::uint32_t i = 0; complete && i < count; ++i) {
            complete = copySequence(size);
        }
        return complete;
    }

    std::string_view bytes_;
    QByteArray wkb_;
};

std::string_view view(const QByteArray& bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

QByteArray toByteArray(std::string_view bytes) {
    return {bytes.data(), static_cast<int>(bytes.size())};
}

/// The blob through SpatiaLite's own reader and writer; empty when they fail.
QByteArray gaiaBlob(const QByteArray& wkb, int srid) {
    const GaiaPtr collection = gaiaFromWkb(view(wkb));
    if (!collection) {
        return QByteArray();
    }
    collection->Srid = srid;
    return toByteArray(GaiaBytes(collection, gaiaToSpatiaLiteBlobWkb).view());
}

void resultBlob(sqlite3_context* context, const QByteArray& blob) {
    sqlite3_result_blob(context, blob.constData(), blob.size(), SQLITE_TRANSIENT);
}

QString columnName(const QUuid& uuid) {
    return uuid.toString(QUuid::Id128);
}

} // namespace

gaiaGeomCollStruct* toGaia(const unsigned char* blob, int size) {
    if (!blob || size <= 0) {
        return nullptr;
    }
    const auto count = static_cast<unsigned int>(size);
    const std::string_view bytes(reinterpret_cast<const char*>(blob), count);
    GaiaPtr collection;
    if (const auto header = readSpatialiteHeader(bytes); header && isSoundSpatialiteBody(*header)) {
        collection.reset(gaiaFromSpatiaLiteBlobWkb(blob, count));
        if (!collection) {
            collection.reset(gaiaFromSpatiaLiteBlobWkbEx(blob, count, 0, 0));
        }
    }
    if (!collection) {
        collection = collectionFromWkb(bytes);
    }
    if (!collection) {
        collection = collectionFromWkb(view(FgfReader(bytes).toWkb()));
    }
    return collection.release();
}

QByteArray toGaia(const std::shared_ptr<const geometry::Geometry>& geometry, EngineCache* cache) {
    const QByteArray wkb =
        geometry::GeometryFactory::toWkb(geometry::linearized(geometry), QSysInfo::LittleEndian);
    if (wkb.isEmpty()) {
        return QByteArray();
    }
    const std::shared_ptr<cs::CoordSystem> coordSystem = geometry->coordSystem();
    const int srid = coordSystem ? coordSystem->epsg() : 0;
    if (cache && srid != 0) {
        cache->save(srid, coordSystem);
    }
    std::string blob;
    if (appendSpatialiteBlob(view(wkb), srid, blob)) {
        return toByteArray(blob);
    }
    return gaiaBlob(wkb, srid);
}

void toGaia(const std::shared_ptr<const geometry::Geometry>& geometry, sqlite3_context* context,
            EngineCache* cache) {
    const QByteArray blob = toGaia(geometry, cache);
    if (blob.isEmpty()) {
        sqlite3_result_null(context);
        return;
    }
    resultBlob(context, blob);
    if (cache) {
        cache->save(blob.constData(), static_cast<unsigned int>(blob.size()), geometry);
    }
}

QByteArray toOrvGeo(const std::shared_ptr<const geometry::Geometry>& geometry, EngineCache* cache) {
    return EngineGeometry(geometry).serialize(
        [cache](const std::shared_ptr<cs::CoordSystem>& coordSystem, const QByteArray& payload) {
            cache->save(payload, coordSystem);
        });
}

void toOrvGeo(const std::shared_ptr<const geometry::Geometry>& geometry, sqlite3_context* context,
              EngineCache* cache, bool remember) {
    const QByteArray blob = geometry ? toOrvGeo(geometry, cache) : QByteArray();
    if (blob.isEmpty()) {
        sqlite3_result_null(context);
        return;
    }
    resultBlob(context, blob);
    if (cache && remember) {
        cache->save(blob.constData(), static_cast<unsigned int>(blob.size()), geometry);
    }
}

std::shared_ptr<const geometry::Geometry> toGeometry(sqlite3_context* context, sqlite3_value* value,
                                                     bool useMemo) {
    if (sqlite3_value_type(value) != SQLITE_BLOB) {
        return nullptr;
    }
    auto* cache = static_cast<EngineCache*>(sqlite3_user_data(context));
    const void* data = sqlite3_value_blob(value);
    return cache->geometryInfo(data, static_cast<unsigned int>(sqlite3_value_bytes(value)), useMemo)
        .geometry();
}

std::shared_ptr<cs::CoordSystem> toCS(sqlite3_value* value) {
    return cs::CoordSysFactory::defaultCoordSysFactory()->createFromTaggedString(toQString(value));
}

QString toString(const dp::AttributeDefinitionPointer& attribute, EngineCache* cache, char quote) {
    const dp::AttributeDefinition* definition = attribute.constData();
    if (const auto* geometry = dynamic_cast<const dp::GeometryAttributeDefinition*>(definition)) {
        // Without a code there is nothing to remember it by: 0 stands for no coordinate system.
        if (const auto& coordSystem = geometry->coordSystem(); coordSystem && coordSystem->epsg() != 0) {
            cache->save(coordSystem->epsg(), coordSystem);
        }
        return columnName(GeometryColumnUuid) + QLatin1String(" Blob Null ");
    }
    if (dynamic_cast<const dp::RenditionAttributeDefinition*>(definition)) {
        return columnName(StyleColumnUuid) + QLatin1String(" Text Null ");
    }
    QString text = escapeString(definition->name(), quote) + QLatin1Char(' ') + sqlName(definition->type());
    if (const auto* simple = dynamic_cast<const dp::SimpleAttributeDefinition*>(definition)) {
        if (simple->type() == QMetaType::QString) {
            text += QStringLiteral("(%1) Collate Locale").arg(simple->length());
        } else if (simple->type() == qMetaTypeId<QDecNumber>()) {
            text += QStringLiteral("(%1, %2) ").arg(simple->length()).arg(simple->precision());
        }
        if (simple->isUnique()) {
            text += QLatin1String(" Unique ");
        }
    }
    return text;
}

} // namespace orvane::engine
