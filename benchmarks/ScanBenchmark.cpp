/// How fast rows come out of a file, and out of memory: a table of a million points with a number, a price
/// and a text, made anew as a GeoPackage. `allocations_per_row` counts every block taken with operator new,
/// GDAL's own included, in all threads.

#include "host/providers/FileSource.h"
#include "host/providers/reading/BatchCache.h"

#include <benchmark/benchmark.h>
#include <ogrsf_frmts.h>

#include <QTemporaryDir>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::uint64_t> allocations = 0;

} // namespace

void* operator new(std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* memory = std::malloc(size ? size : 1)) {
        return memory;
    }
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace orvane::files {
namespace {

constexpr int rowCount = 1'000'000;
constexpr std::size_t cacheRoom = std::size_t{256} << 20;
enum Attribute { ID = 1, PRICE, OWNER };

QString makeLayer(const QString& path, int rows) {
    GDALAllRegister();
    auto* driver = GetGDALDriverManager()->GetDriverByName("GPKG");
    const std::unique_ptr<GDALDataset> dataset(
        driver->Create(path.toUtf8().constData(), 0, 0, 0, GDT_Unknown, nullptr));
    auto* layer = dataset->CreateLayer("rows", nullptr, wkbPoint, nullptr);
    for (const auto& [name, type] :
         {std::pair{"id", OFTInteger64}, {"price", OFTReal}, {"owner", OFTString}}) {
        OGRFieldDefn field(name, type);
        layer->CreateField(&field);
    }
    dataset->StartTransaction();
    for (int row = 0; row < rows; ++row) {
        OGRFeature feature(layer->GetLayerDefn());
        feature.SetField("id", row);
        feature.SetField("price", static_cast<double>(row * 7919LL % rows));
        feature.SetField("owner", ("Owner № " + std::to_string(row % 1000)).c_str());
        const OGRPoint point(row % 1000, row / 1000);
        feature.SetGeometry(&point);
        if (layer->CreateFeature(&feature) != OGRERR_NONE) {
            std::abort();
        }
    }
    dataset->CommitTransaction();
    return path;
}

const QTemporaryDir& directory() {
    static const QTemporaryDir temporary;
    return temporary;
}

dp::Table& million() {
    static const auto table =
        openFile(makeLayer(directory().filePath(QStringLiteral("rows.gpkg")), rowCount)).front();
    return *table;
}

dp::Table& small() {
    static const auto table =
        openFile(makeLayer(directory().filePath(QStringLiteral("small.gpkg")), 177)).front();
    return *table;
}

struct Totals {
    std::int64_t rows = 0;
    double sum = 0;
    std::size_t characters = 0;
};

Totals read(dp::Table& table, const dp::ScanRequest& request) {
    Totals totals;
    const auto cursor = table.openCursor(request);
    for (; cursor->next(); ++totals.rows) {
        totals.sum += cursor->cell(PRICE).real();
        if (request.attributes.size() > 1) {
            totals.characters += cursor->cell(OWNER).view().size();
        }
    }
    return totals;
}

dp::ScanRequest pricesFrom(double price) {
    dp::ScanRequest request;
    request.attributes = {PRICE, OWNER};
    request.terms.push_back({PRICE, dp::Comparison::GreaterOrEqual, dp::TextCollation::Binary, {price}});
    return request;
}

void run(benchmark::State& state, dp::Table& table, const dp::ScanRequest& request, std::size_t cacheBytes) {
    BatchCache::instance().setCapacity(cacheBytes);
    read(table, request);
    read(table, request);
    const auto before = allocations.load();
    std::int64_t rows = 0;
    for (auto _ : state) {
        const auto totals = read(table, request);
        benchmark::DoNotOptimize(totals);
        rows += totals.rows;
    }
    state.SetItemsProcessed(rows);
    state.counters["allocations_per_row"] =
        static_cast<double>(allocations.load() - before) / static_cast<double>(rows);
}

void fullScan(benchmark::State& state) {
    dp::ScanRequest request;
    request.attributes = {PRICE, OWNER};
    run(state, million(), request, static_cast<std::size_t>(state.range(0)));
}
BENCHMARK(fullScan)->ArgName("cache")->Arg(0)->Arg(cacheRoom)->Unit(benchmark::kMillisecond);

/// One row in a thousand passes.
void filteredScan(benchmark::State& state) {
    run(state, million(), pricesFrom(rowCount - 1000), static_cast<std::size_t>(state.range(0)));
}
BENCHMARK(filteredScan)->ArgName("cache")->Arg(0)->Arg(cacheRoom)->Unit(benchmark::kMillisecond);

void window(benchmark::State& state) {
    dp::ScanRequest request;
    request.attributes = {PRICE, OWNER};
    request.window = geometry::Envelope{500, 500, 510, 510};
    run(state, million(), request, static_cast<std::size_t>(state.range(0)));
}
BENCHMARK(window)->ArgName("cache")->Arg(0)->Arg(cacheRoom)->Unit(benchmark::kMicrosecond);

void smallTable(benchmark::State& state) {
    dp::ScanRequest request;
    request.attributes = {PRICE};
    run(state, small(), request, cacheRoom);
}
BENCHMARK(smallTable)->Unit(benchmark::kMicrosecond);

void rowById(benchmark::State& state) {
    dp::ScanRequest request;
    request.attributes = {PRICE, OWNER};
    request.ids = {dp::FeatureId(QVariant(123456))};
    run(state, million(), request, static_cast<std::size_t>(state.range(0)));
}
BENCHMARK(rowById)->ArgName("cache")->Arg(0)->Arg(cacheRoom)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace orvane::files

BENCHMARK_MAIN();
