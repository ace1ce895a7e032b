#include "support/Gaia.h"
#include "support/Kinds.h"
#include "support/PlainCache.h"

#include "platform/decimal/QDecNumber.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include <orvane/engine/GeometryConversions.h>
#include <orvane/engine/SpatialiteBlob.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace orvane::tests {

namespace {

using engine::EngineCache;
using geometry::Dimensions;
using geometry::GeometryPtr;

dp::FeatureId id(const QVariant& value) {
    return dp::FeatureId(value);
}

std::shared_ptr<geometry::Geometry> pointIn(double x, int epsg) {
    auto point = std::make_shared<geometry::Point>(x, 2);
    point->setCoordSystem(cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(epsg));
    return point;
}

TEST(EngineCache, RowNumbersAreDense) {
    PlainCache cache;
    EXPECT_EQ(cache.assignIdToInt(id(100)), 0);
    EXPECT_EQ(cache.assignIdToInt(id(QStringLiteral("ключ"))), 1);
    EXPECT_EQ(cache.assignIdToInt(id(100)), 0);
    EXPECT_EQ(cache.idLimit(), 2);
    EXPECT_EQ(cache.intToId(1).value(), QVariant(QStringLiteral("ключ")));
    EXPECT_FALSE(cache.intToId(2).isValid());
    EXPECT_FALSE(cache.intToId(-1).isValid());
    EXPECT_EQ(cache.idToInt(id(7), -1), -1);
    EXPECT_EQ(cache.idLimit(), 2);
    cache.clear();
    EXPECT_EQ(cache.idToInt(id(100), -1), 0);
}

TEST(EngineCache, CoordinateSystemsAreShared) {
    PlainCache cache;
    EXPECT_EQ(cache.get(4326), cache.get(4326));
    EXPECT_EQ(cache.get(0), nullptr);
    EXPECT_EQ(cache.get(999999), nullptr);
    cache.save(999999, cache.get(4326)); // the remembered null stays
    EXPECT_EQ(cache.get(999999), nullptr);
    const auto local = cs::CoordSysFactory::defaultCoordSysFactory()->createFromTaggedString(
        QStringLiteral("proj:+proj=laea +lat_0=61"));
    cache.save(900001, local);
    cache.save(900001, cache.get(4326));
    EXPECT_EQ(cache.get(900001), local);
    const QByteArray nonsense("nonsense");
    EXPECT_EQ(cache.get(nonsense), nullptr);
    cache.save(nonsense, local);
    EXPECT_EQ(cache.get(nonsense), nullptr);
    const QByteArray longKey(1000, 'x');
    cache.save(longKey, local);
    EXPECT_EQ(cache.get(longKey), local);
}

struct MemoCase {
    EngineCache::GaiaCache mode;
    bool useMemo;
    bool remembers;
};

TEST(EngineCache, MemoModes) {
    const MemoCase cases[] = {
        {EngineCache::NoMemo, true, false},
        {EngineCache::NoMemo, false, false},
        {EngineCache::AlwaysMemo, true, true},
        {EngineCache::AlwaysMemo, false, true},
        {EngineCache::MemoOnRequest, true, true},
        {EngineCache::MemoOnRequest, false, false},
        {static_cast<EngineCache::GaiaCache>(7), false, true},
    };
    const QByteArray blob = engine::toGaia(pointIn(1, 4326), nullptr);
    for (const MemoCase& entry : cases) {
        PlainCache cache;
        EXPECT_EQ(cache.useGaiaCache(), EngineCache::MemoOnRequest);
        cache.setUseGaiaCache(entry.mode);
        const auto first = cache.geometryInfo(blob, entry.useMemo).geometry();
        EXPECT_EQ(cache.geometryInfo(blob, entry.useMemo).geometry() == first, entry.remembers) << entry.mode;
        cache.clear();
        EXPECT_NE(cache.geometryInfo(blob, entry.useMemo).geometry(), first);
        // What is saved under the bytes is found, unless nothing is remembered.
        PlainCache other;
        other.setUseGaiaCache(entry.mode);
        other.save(blob.constData(), static_cast<unsigned>(blob.size()), first);
        EXPECT_EQ(other.geometryInfo(blob, true).geometry() == first, entry.mode != EngineCache::NoMemo)
            << entry.mode;
    }
}

TEST(EngineGeometryMap, RemembersNulls) {
    engine::EngineGeometryMap map;
    int loads = 0;
    const auto nothing = [&](const void*, unsigned int) {
        ++loads;
        return GeometryPtr();
    };
    const char bytes[35] = {};
    EXPECT_EQ(map.get(bytes, 18, nothing), nullptr);
    EXPECT_EQ(map.get(bytes, 18, nothing), nullptr);
    EXPECT_EQ(loads, 1);
    const GeometryPtr point = std::make_shared<geometry::Point>(1, 2);
    map.set(bytes, 18, point);
    EXPECT_EQ(map.get(bytes, 18, nothing), nullptr);
    map.set(bytes, 35, point); // the same first bytes, another key
    EXPECT_EQ(map.get(bytes, 35, nothing), point);
    map.clearMap();
    EXPECT_EQ(map.get(bytes, 35, nothing), nullptr);
    EXPECT_EQ(loads, 2);
    EXPECT_THROW(map.get("x", 1, nullptr), std::bad_function_call);
}

class Resembling : public geometry::ResemblanceExtension {
public:
    Resembling(GeometryPtr answer, double tolerance) : answer_(std::move(answer)), tolerance_(tolerance) {}
    GeometryPtr resemblance(const GeometryPtr&, const Setup& setup) override {
        seenTolerance = setup.tolerance;
        return answer_;
    }
    void adjustSetup(Setup& setup) override { setup.tolerance += tolerance_; }
    double seenTolerance = -1;

private:
    GeometryPtr answer_;
    double tolerance_;
};

TEST(EngineCache, ResemblanceAsksInOrder) {
    PlainCache cache;
    const GeometryPtr point = pointIn(1, 3857);
    cache.addResemblanceExtension(nullptr);
    EXPECT_EQ(cache.tryResemblance(point), nullptr);
    const GeometryPtr copy = cache.resemblance(point);
    EXPECT_NE(copy, point);
    EXPECT_TRUE(copy->equals(*point));
    EXPECT_EQ(copy->coordSystem(), point->coordSystem());
    Resembling silent(nullptr, 1);
    Resembling first(pointIn(7, 3857), 2);
    Resembling second(pointIn(8, 3857), 4);
    for (Resembling* extension : {&silent, &first, &second}) {
        cache.addResemblanceExtension(extension);
    }
    EXPECT_EQ(toWkt(*cache.resemblance(point)), "POINT(7 2)");
    EXPECT_EQ(silent.seenTolerance, 7);
    EXPECT_EQ(second.seenTolerance, -1);
}

/// Every kind of blob comes back as what was put in, curves as their approximation.
/// A collection of collections as one of their parts.
GeometryPtr sideBySide(const geometry::Geometry& nested) {
    std::vector<GeometryPtr> parts;
    for (const GeometryPtr& part : static_cast<const geometry::GeometryCollection&>(nested).parts()) {
        for (const GeometryPtr& inner : static_cast<const geometry::GeometryCollection&>(*part).parts()) {
            parts.push_back(inner);
        }
    }
    return std::make_shared<geometry::GeometryCollection>(geometry::GeometryType::GeometryCollection,
                                                          nested.dimensions(), std::move(parts));
}

TEST(GeometryConversions, EveryKindOfBlob) {
    PlainCache cache;
    for (const Dimensions dimensions : {Dimensions::XY, Dimensions::XYZ, Dimensions::XYM, Dimensions::XYZM}) {
        const std::vector<GeometryPtr> kinds = allKinds(dimensions);
        for (const GeometryPtr& kind : kinds) {
            const std::shared_ptr<geometry::Geometry> geometry = kind->clone();
            geometry->setCoordSystem(cache.get(3857));
            const auto own = cache.geometryInfo(engine::toOrvGeo(geometry, &cache), true).geometry();
            ASSERT_TRUE(own);
            EXPECT_TRUE(own->equals(*geometry));
            EXPECT_EQ(own->coordSystem(), geometry->coordSystem());
            const auto gaia = cache.geometryInfo(engine::toGaia(geometry, &cache), true).geometry();
            // SpatiaLite has no blob for some empty kinds, and the parts of parts stand side by side in it.
            ASSERT_TRUE(gaia || kind->isEmpty()) << toWkt(*kind);
            if (gaia) {
                const GeometryPtr expected =
                    geometry::linearized(kind == kinds.back() ? sideBySide(*kind) : kind);
                EXPECT_TRUE(gaia->equals(*expected)) << toWkt(*kind);
                EXPECT_EQ(gaia->coordSystem(), geometry->coordSystem());
            }
        }
    }
    EXPECT_TRUE(engine::toGaia(nullptr, &cache).isEmpty());
}

TEST(GeometryConversions, OtherBinaryForms) {
    PlainCache cache;
    const GeometryPtr polygon = linearKinds(Dimensions::XYZ)[2];
    EXPECT_TRUE(cache.geometryInfo(geometry::GeometryFactory::toWkb(polygon, QSysInfo::BigEndian), true)
                    .geometry()
                    ->equals(*polygon));
    // FGF: kind 2, dimensions 1 (z), two positions.
    QByteArray fgf = QByteArray::fromHex("02000000 01000000 02000000");
    const double values[] = {1, 2, 3, 4, 5, 6};
    fgf.append(reinterpret_cast<const char*>(values), sizeof values);
    const auto line = cache.geometryInfo(fgf, true).geometry();
    ASSERT_TRUE(line);
    EXPECT_EQ(toWkt(*line), "LINESTRING Z(1 2 3,4 5 6)");
    // A multi: its kind, a count, whole parts.
    QByteArray points = QByteArray::fromHex("04000000 01000000 01000000 00000000");
    points.append(reinterpret_cast<const char*>(values), 2 * sizeof(double));
    const auto multi = cache.geometryInfo(points, true).geometry();
    ASSERT_TRUE(multi);
    EXPECT_EQ(toWkt(*multi), "MULTIPOINT((1 2))");
    // Collections of multi-parts and of collections
    for (const GeometryPtr& part : linearKinds(Dimensions::XYZ)) {
        const auto nested = std::make_shared<geometry::GeometryCollection>(
            geometry::GeometryType::GeometryCollection, Dimensions::XYZ, std::vector{part, polygon});
        for (const QSysInfo::Endian order : {QSysInfo::LittleEndian, QSysInfo::BigEndian}) {
            const auto back = cache.geometryInfo(geometry::GeometryFactory::toWkb(nested, order), true);
            ASSERT_TRUE(back) << toWkt(*nested);
            EXPECT_TRUE(back.geometry()->equals(*nested)) << toWkt(*nested);
        }
    }
    const auto nestedFgf = cache.geometryInfo(QByteArray::fromHex("07000000 01000000") + points, true);
    ASSERT_TRUE(nestedFgf);
    EXPECT_EQ(toWkt(*nestedFgf.geometry()), "GEOMETRYCOLLECTION(MULTIPOINT((1 2)))");
    // Compressed by SpatiaLite; coordinates that floats hold come back as they were.
    const QByteArray wkb = geometry::GeometryFactory::toWkb(polygon, QSysInfo::LittleEndian);
    const engine::GaiaBytes blob(gaiaFromWkb({wkb.constData(), static_cast<std::size_t>(wkb.size())}),
                                 gaiaToCompressedBlobWkb);
    const auto compressed =
        cache.geometryInfo(blob.view().data(), static_cast<unsigned>(blob.view().size()), true);
    EXPECT_TRUE(compressed.geometry()->equals(*polygon));
}

TEST(GeometryConversions, OtherBytesGiveNothing) {
    PlainCache cache;
    // A header of SpatiaLite, up to its mark.
    const std::string header =
        "0001 e6100000 000000000000f03f 0000000000000040 000000000000f03f 0000000000000040 7c";
    const std::string hostile[] = {
        "",
        "00",
        "0001",
        "01 02000000 ffffffff 000000000000f03f",
        "01 03000000 ffffffff ffffffff",
        "01 01000020 e6100000 000000000000f03f 0000000000000040", // the extended form of WKB
        "01 08000000 03000000 0000000000000000 0000000000000000 000000000000f03f 000000000000f03f "
        "0000000000000040 0000000000000000",              // arcs in WKB
        "02000000 00000000 ffffffff",                     // FGF with a count of four billion
        "04000000 ffffffff 01000000",                     // and of parts
        "01 07000000 01000000 01 07000000 01000000",      // nested and cut off
        header + "02000000 ffffff1f 000000000000f03f fe", // 16 times the count is small in 32 bits
        header + "42420f00 ffffff1f 000000000000f03f fe",
    };
    for (const std::string& digits : hostile) {
        const QByteArray bytes = QByteArray::fromHex(digits.c_str());
        EXPECT_FALSE(cache.geometryInfo(bytes, true)) << digits;
        EXPECT_EQ(engine::toGaia(reinterpret_cast<const unsigned char*>(bytes.constData()), bytes.size()),
                  nullptr);
    }
}

TEST(GeometryConversions, ColumnTexts) {
    using Simple = dp::SimpleAttributeDefinition;
    PlainCache cache;
    const std::pair<dp::AttributeDefinition*, const char*> cases[] = {
        {new dp::GeometryAttributeDefinition(QStringLiteral("obj"), cache.get(28404)),
         "cd750f8a9a2b4fac9b9b05eb53795d97 Blob Null "},
        {new dp::RenditionAttributeDefinition(QStringLiteral("style")),
         "d39f65c319974aa198a899a89b1240c7 Text Null "},
        {new Simple(QStringLiteral("На\"звание"), QMetaType::QString, {.length = 30}),
         "\"На\"\"звание\" Varchar(30) Collate Locale"},
        {new Simple(QStringLiteral("Price"), qMetaTypeId<QDecNumber>(),
                    {.length = 12, .precision = 2, .unique = true}),
         "\"Price\" Numeric(12, 2)  Unique "},
        {new Simple(QStringLiteral("Id"), QMetaType::LongLong, {.unique = true}), "\"Id\" Integer Unique "},
    };
    for (const auto& [attribute, expected] : cases) {
        const dp::AttributeDefinitionPointer owner(attribute);
        EXPECT_EQ(engine::toString(owner, &cache, '"').toStdString(), expected);
    }
}

/// Fit for the thread sanitizer: everything at once.
TEST(EngineCache, ManyThreads) {
    PlainCache cache;
    cache.setUseGaiaCache(EngineCache::AlwaysMemo);
    std::vector<QByteArray> blobs;
    for (int i = 0; i < 20; ++i) {
        blobs.push_back(engine::toGaia(pointIn(i, 32601 + i), nullptr));
        blobs.push_back(engine::toOrvGeo(pointIn(i, 32701 + i), &cache));
    }
    std::atomic<int> wrong{0};
    std::vector<std::jthread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&] {
            for (int round = 0; round < 50; ++round) {
                for (int i = 0; i < 20; ++i) {
                    const auto point = cache.geometryInfo(blobs[2 * i], true).geometry();
                    wrong += point && point->coordSystem() == cache.get(32601 + i) ? 0 : 1;
                    const auto own = cache.geometryInfo(blobs[2 * i + 1], true).geometry();
                    wrong += own && own->coordSystem() == cache.get(32701 + i) ? 0 : 1;
                    const qint64 row = cache.assignIdToInt(id(i));
                    wrong += cache.intToId(row) == id(i) && cache.idToInt(id(i), -1) == row ? 0 : 1;
                    engine::toOrvGeo(point, &cache);
                }
                if (round == 25) {
                    cache.clear();
                }
            }
        });
    }
    threads.clear();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(cache.idLimit(), 20);
}

} // namespace

} // namespace orvane::tests
