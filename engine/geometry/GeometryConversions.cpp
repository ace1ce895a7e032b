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
#include "engine/geometry/GatheredParts.h"
#include "engine/geometry/PlainBinary.h"
#include "engine/geometry/SpatialiteLayout.h"

#include <stdexcept>

namespace orvane::engine {

namespace {

std::string_view view(const QByteArray& bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

QByteArray toByteArray(std::string_view bytes) {
    return {bytes.data(), static_cast<int>(bytes.size())};
}

/// Whether the kind is a linear one of well-known binary, not of its extended form.
bool isPlainWkb(std::string_view bytes) {
    constexpr std::size_t kindOffset = 1;
    if (bytes.size() < kindOffset + spatialite::kindSize || static_cast<unsigned char>(bytes[0]) > 1) {
        return false;
    }
    const auto kind = spatialite::readNumber<quint32>(bytes.data() + kindOffset, bytes[0] == 1);
    return kind < 4000 && kind % 1000 >= spatialite::Point && kind % 1000 <= spatialite::GeometryCollection;
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
    if (const auto header = readSpatialiteHeader(bytes)) {
        if (!isSoundSpatialiteBlob(*header)) {
            return nullptr;
        }
        gaiaGeomCollPtr collection = gaiaFromSpatiaLiteBlobWkb(blob, count);
        return collection ? collection : gaiaFromSpatiaLiteBlobWkbEx(blob, count, 0, 0);
    }
    const QByteArray own = toGaia(fromPlainBinary(bytes), nullptr);
    return gaiaFromSpatiaLiteBlobWkb(reinterpret_cast<const unsigned char*>(own.constData()),
                                     static_cast<unsigned int>(own.size()));
}

std::shared_ptr<const geometry::Geometry> fromPlainBinary(std::string_view bytes) {
    try {
        std::shared_ptr<geometry::Geometry> geometry =
            isPlainWkb(bytes) ? geometry::GeometryFactory::fromWkb(bytes, nullptr)
                              : geometry::GeometryFactory::fromFgf(bytes);
        return geometry::isCurved(*geometry) ? nullptr : geometry;
    } catch (const std::runtime_error&) {
        return nullptr;
    }
}

namespace {

/// `isWhole`: the blob says of the geometry all there is, in the same words.
QByteArray gaiaBlob(const std::shared_ptr<const geometry::Geometry>& geometry, EngineCache* cache,
                    bool& isWhole) {
    const std::shared_ptr<const geometry::Geometry> linear = geometry::linearized(geometry);
    if (!linear) {
        return QByteArray();
    }
    const QByteArray wkb = geometry::GeometryFactory::toWkb(linear, QSysInfo::LittleEndian);
    const std::shared_ptr<cs::CoordSystem> coordSystem = geometry->coordSystem();
    const int srid = coordSystem ? coordSystem->epsg() : 0;
    if (cache && srid != 0) {
        cache->save(srid, coordSystem);
    }
    std::string blob;
    isWhole = linear == geometry && linear->type() != geometry::GeometryType::GeometryCollection &&
              (!coordSystem || srid != 0);
    if (!appendSpatialiteBlob(view(wkb), srid, blob)) {
        isWhole = false;
        // Parts with parts or of other dimensions than the whole: the parts side by side, none that is empty.
        GatheredParts parts;
        parts.add(*linear);
        blob = parts.collected(srid, work::Cancellation());
    }
    return toByteArray(blob);
}

} // namespace

QByteArray toGaia(const std::shared_ptr<const geometry::Geometry>& geometry, EngineCache* cache) {
    bool isWhole = false;
    return gaiaBlob(geometry, cache, isWhole);
}

void toGaia(const std::shared_ptr<const geometry::Geometry>& geometry, sqlite3_context* context,
            EngineCache* cache) {
    bool isWhole = false;
    const QByteArray blob = gaiaBlob(geometry, cache, isWhole);
    if (blob.isEmpty()) {
        sqlite3_result_null(context);
        return;
    }
    resultBlob(context, blob);
    if (cache && isWhole) {
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
