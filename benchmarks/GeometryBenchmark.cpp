// What a row costs in the geometry functions: blobs beside SpatiaLite's own codec, relations of many
// positions with one area, transformation. Compare the lines of one run.

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/measures/Measures.h"
#include "platform/geometry/shapes/Shapes.h"
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/GeometryConversions.h>
#include <orvane/engine/SpatialiteBlob.h>
#include <orvane/engine/functions/Geometry.h>

#include <sqlite3.h>

#include <spatialite.h>
#include <spatialite/gaiageo.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <numbers>

namespace {

using namespace orvane;

/// A ring of that many vertices around (30, 60), radius 10, with a ripple.
geometry::GeometryPtr area(std::size_t vertices) {
    const geometry::CoordinateSequence ring(geometry::Dimensions::XY, vertices + 1, [&](double* target) {
        for (std::size_t i = 0; i <= vertices; ++i) {
            const double angle =
                2 * std::numbers::pi * static_cast<double>(i % vertices) / static_cast<double>(vertices);
            const double radius = 10 + std::cos(angle * 17) / 3;
            target[2 * i] = 30 + radius * std::cos(angle);
            target[2 * i + 1] = 60 + radius * std::sin(angle);
        }
    });
    return std::make_shared<geometry::Polygon>(geometry::Dimensions::XY,
                                               std::vector<geometry::CoordinateSequence>{ring});
}

struct Cache : engine::EngineCache {
    Cache() { setUseGaiaCache(NoMemo); }
    std::shared_ptr<cs::CoordSystem> tableCS(const QString&) override { return nullptr; }
};

void engineBlob(benchmark::State& state) {
    Cache cache;
    const auto polygon = area(100);
    for (auto _ : state) {
        const QByteArray blob = engine::toOrvGeo(polygon, &cache);
        benchmark::DoNotOptimize(cache.geometryInfo(blob, false));
    }
}
BENCHMARK(engineBlob);

void gaiaBlob(benchmark::State& state) {
    const QByteArray wkb = geometry::GeometryFactory::toWkb(area(100), QSysInfo::LittleEndian);
    gaiaGeomCollPtr collection = gaiaFromWkb(reinterpret_cast<const unsigned char*>(wkb.constData()),
                                             static_cast<unsigned>(wkb.size()));
    for (auto _ : state) {
        unsigned char* blob = nullptr;
        int size = 0;
        gaiaToSpatiaLiteBlobWkb(collection, &blob, &size);
        gaiaGeomCollPtr decoded = gaiaFromSpatiaLiteBlobWkb(blob, static_cast<unsigned>(size));
        gaiaFreeGeomColl(decoded);
        std::free(blob);
    }
    gaiaFreeGeomColl(collection);
}
BENCHMARK(gaiaBlob);

void wkbToBlob(benchmark::State& state) {
    const QByteArray wkb = geometry::GeometryFactory::toWkb(area(static_cast<std::size_t>(state.range(0))),
                                                            QSysInfo::LittleEndian);
    const std::string_view bytes(wkb.constData(), static_cast<std::size_t>(wkb.size()));
    std::string blob;
    for (auto _ : state) {
        blob.clear();
        benchmark::DoNotOptimize(engine::appendSpatialiteBlob(bytes, 4326, blob));
    }
}
BENCHMARK(wkbToBlob)->Arg(10)->Arg(100)->Arg(10000);

void wkbToBlobByGaia(benchmark::State& state) {
    const QByteArray wkb = geometry::GeometryFactory::toWkb(area(static_cast<std::size_t>(state.range(0))),
                                                            QSysInfo::LittleEndian);
    for (auto _ : state) {
        gaiaGeomCollPtr collection = gaiaFromWkb(reinterpret_cast<const unsigned char*>(wkb.constData()),
                                                 static_cast<unsigned>(wkb.size()));
        unsigned char* blob = nullptr;
        int size = 0;
        gaiaToSpatiaLiteBlobWkb(collection, &blob, &size);
        gaiaFreeGeomColl(collection);
        std::free(blob);
    }
}
BENCHMARK(wkbToBlobByGaia)->Arg(10)->Arg(100)->Arg(10000);

void geodesicArea(benchmark::State& state) {
    const auto polygon = area(1000)->clone();
    polygon->setCoordSystem(cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(4326));
    for (auto _ : state) {
        benchmark::DoNotOptimize(geometry::area(*polygon, QString()));
    }
}
BENCHMARK(geodesicArea);

/// 100,000 positions around the area, and a statement over them.
class Positions : public benchmark::Fixture {
public:
    void SetUp(const benchmark::State&) override {
        sqlite3_open(":memory:", &database_);
        constexpr int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
        sqlite3_create_function(database_, "ST_Contains", 2, flags, &cache_, engine::containsEntirely,
                                nullptr, nullptr);
        sqlite3_create_function(database_, "TransformToSLGeo", 2, flags, &cache_, engine::transformToSLGeo,
                                nullptr, nullptr);
        sqlite3_exec(database_, "Create Table p(g Blob); Create Table a(g Blob);", nullptr, nullptr, nullptr);
        insert("Insert Into a Values(?)", *area(2000));
        sqlite3_exec(database_, "Begin", nullptr, nullptr, nullptr);
        for (int i = 0; i < 100000; ++i) {
            insert("Insert Into p Values(?)", geometry::Point(18 + i % 317 * 0.075, 48 + i / 317 * 0.075));
        }
        sqlite3_exec(database_, "Commit", nullptr, nullptr, nullptr);
    }
    void TearDown(const benchmark::State&) override { sqlite3_close(database_); }

    void run(benchmark::State& state, const char* sql) {
        for (auto _ : state) {
            sqlite3_exec(database_, sql, nullptr, nullptr, nullptr);
        }
        state.SetItemsProcessed(state.iterations() * 100000);
    }

private:
    void insert(const char* sql, const geometry::Geometry& shape) {
        const auto copy = shape.clone();
        copy->setCoordSystem(cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(4326));
        const QByteArray blob = engine::toGaia(copy, &cache_);
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(database_, sql, -1, &statement, nullptr);
        sqlite3_bind_blob(statement, 1, blob.constData(), blob.size(), SQLITE_TRANSIENT);
        sqlite3_step(statement);
        sqlite3_finalize(statement);
    }

    Cache cache_;
    sqlite3* database_ = nullptr;
};

BENCHMARK_F(Positions, inArea)
(benchmark::State& state) {
    run(state, "Select Count(*) From a, p Where ST_Contains(a.g, p.g)");
}

BENCHMARK_F(Positions, transform)
(benchmark::State& state) {
    run(state, "Select Sum(Length(TransformToSLGeo(g, 'epsg:3857'))) From p");
}

} // namespace

BENCHMARK_MAIN();
