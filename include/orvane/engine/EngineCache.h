#pragma once

#include "platform/dp/FeatureId.h"
#include <orvane/engine/EngineGeometry.h>
#include <orvane/engine/EngineGeometryMap.h>
#include <orvane/engine/Export.h>

#include "platform/geometry/relations/ResemblanceExtension.h"

#include <QReadWriteLock>
#include <QVarLengthArray>

#include <array>
#include <map>
#include <vector>

namespace orvane::engine {

/// The shared memory of the SQL functions: decoded geometries, coordinate systems, row numbers of features,
/// and the resemblance extensions. One per engine; the user data of every SQL function. All operations may be
/// called from any thread, but the memo mode and the extensions are set while no statement runs.
class ORVANE_ENGINE_EXPORT EngineCache {
public:
    enum GaiaCache : int {
        NoMemo = 0,       ///< SpatiaLite blobs are decoded afresh each time
        AlwaysMemo = 1,   ///< every decoded SpatiaLite blob is remembered
        MemoOnRequest = 2 ///< remembered when the caller asks for it
    };

    EngineCache();
    virtual ~EngineCache();
    EngineCache(const EngineCache&) = delete;
    EngineCache& operator=(const EngineCache&) = delete;

    /// The coordinate system of the table of that name; null for an unknown table or one without.
    virtual std::shared_ptr<cs::CoordSystem> tableCS(const QString& tableName) = 0;

    /// The coordinate system of an EPSG code, made on first request; null (remembered) for an unknown code.
    std::shared_ptr<cs::CoordSystem> get(int code);
    /// Records a coordinate system unless the code already has an entry, even a null one.
    void save(int code, const std::shared_ptr<cs::CoordSystem>& coordSystem);
    /// The coordinate system of a serialised payload, decoded on first request; null (remembered) when it
    /// cannot be.
    std::shared_ptr<cs::CoordSystem> get(const QByteArray& payload);
    /// Records a coordinate system unless the payload already has an entry, even a null one.
    void save(const QByteArray& payload, const std::shared_ptr<cs::CoordSystem>& coordSystem);

    /// The geometry in a blob: the engine's own, SpatiaLite's, WKB or FGF; empty when it is none of them.
    EngineGeometry geometryInfo(const void* data, unsigned int size, bool useMemo);
    EngineGeometry geometryInfo(const QByteArray& blob, bool useMemo);
    /// Remembers the geometry of a blob unless the bytes are already known; nothing with NoMemo.
    void save(const void* data, unsigned int size, const std::shared_ptr<const geometry::Geometry>& geometry);
    /// Forgets decoded geometries. Coordinate systems, row numbers and extensions stay.
    void clear();

    /// The memo mode; MemoOnRequest in the beginning.
    GaiaCache useGaiaCache() const { return gaiaCache_; }
    void setUseGaiaCache(GaiaCache mode) { gaiaCache_ = mode; }

    /// The row number of a feature identifier, the next free one (0, 1, 2, ...) on first request.
    qint64 assignIdToInt(dp::FeatureId id);
    /// The row number, or `defaultValue` when the identifier has none. Never assigns.
    qint64 idToInt(dp::FeatureId id, qint64 defaultValue);
    /// The identifier that holds a row number; invalid when none does.
    dp::FeatureId intToId(qint64 number);
    /// How many numbers are assigned: the next one.
    qint64 idLimit();

    /// Registers an extension, not owned, after it has adjusted the setup. Null is ignored.
    void addResemblanceExtension(geometry::ResemblanceExtension* extension);
    /// The first resemblance that an extension offers, in order of registration; null when none does.
    std::shared_ptr<const geometry::Geometry>
    tryResemblance(const std::shared_ptr<const geometry::Geometry>& geometry);
    /// The same, or a copy of the geometry when no extension answers.
    std::shared_ptr<const geometry::Geometry>
    resemblance(const std::shared_ptr<const geometry::Geometry>& geometry);

private:
    using PayloadKey = QVarLengthArray<char, 256>;
    struct PayloadLess {
        bool operator()(const PayloadKey& a, const PayloadKey& b) const;
    };
    struct IdLess {
        bool operator()(const dp::FeatureId& a, const dp::FeatureId& b) const;
    };
    using IntById = std::map<dp::FeatureId, qint64, IdLess>;

    static constexpr unsigned geometryMapCount = 17;

    std::shared_ptr<const geometry::Geometry> decodeSpatialite(const void* data, unsigned int size);

    std::array<EngineGeometryMap, geometryMapCount> geometryMaps_;
    std::map<int, std::shared_ptr<cs::CoordSystem>> csByCode_;
    std::map<PayloadKey, std::shared_ptr<cs::CoordSystem>, PayloadLess> csByPayload_;
    IntById intById_;
    std::vector<IntById::const_iterator> idByInt_; ///< by number: they are given without gaps
    std::vector<geometry::ResemblanceExtension*> resemblanceExtensions_;
    geometry::ResemblanceExtension::Setup resemblanceSetup_{0.0};
    QReadWriteLock csByCodeLock_;
    QReadWriteLock csByPayloadLock_;
    QReadWriteLock idLock_;
    GaiaCache gaiaCache_ = MemoOnRequest;
};

} // namespace orvane::engine
