/// What a label costs: one expression for each of 138,000 features, by Select over the table, and by the
/// evaluator for features that the application holds, as a map holds those that it draws: all of a block, and
/// one by one. `items_per_second` are features. The table is made anew as a
/// GeoPackage of points, with the columns of a gazetteer; a file named by ORVANE_BENCHMARK_TABLE, with
/// columns name and population, takes its place.

#include "support/Host.h"

#include "host/adaptor/FeatureExpression.h"
#include "host/providers/FileSource.h"

#include <benchmark/benchmark.h>
#include <ogrsf_frmts.h>

#include <QSqlQuery>

#include <algorithm>
#include <cstdlib>

namespace orvane {
namespace {

using testing::Host;

constexpr int rowCount = 138'000;
const QString label = QStringLiteral("name & ' ' & Round(population / 1000, 1) & 'k'");
const QString geometryExpression = QStringLiteral("Round(ST_X(Centroid(obj)), 2)");

QString makeTable(const QString& path) {
    GDALAllRegister();
    auto* driver = GetGDALDriverManager()->GetDriverByName("GPKG");
    const std::unique_ptr<GDALDataset> dataset(
        driver->Create(path.toUtf8().constData(), 0, 0, 0, GDT_Unknown, nullptr));
    OGRSpatialReference wgs84;
    wgs84.importFromEPSG(4326);
    auto* layer = dataset->CreateLayer("towns", &wgs84, wkbPoint, nullptr);
    for (const auto& [name, type] : {std::pair{"name", OFTString},
                                     {"country", OFTString},
                                     {"population", OFTInteger},
                                     {"elevation", OFTReal},
                                     {"founded", OFTDate}}) {
        OGRFieldDefn field(name, type);
        layer->CreateField(&field);
    }
    dataset->StartTransaction();
    for (int row = 0; row < rowCount; ++row) {
        OGRFeature feature(layer->GetLayerDefn());
        feature.SetField("name", ("Посёлок Nº " + std::to_string(row)).c_str());
        feature.SetField("country", row % 2 ? "DE" : "RU");
        feature.SetField("population", static_cast<int>(row * 7919LL % 3'000'000));
        feature.SetField("elevation", row % 3000 / 2.0);
        feature.SetField("founded", 1000 + row % 1000, 1 + row % 12, 1 + row % 28);
        const OGRPoint point(row % 360 - 180, row / 360 % 180 - 90);
        feature.SetGeometry(&point);
        if (layer->CreateFeature(&feature) != OGRERR_NONE) {
            std::abort();
        }
    }
    dataset->CommitTransaction();
    return path;
}

/// The one table, in the catalogue of the host, and its features.
struct Towns {
    static Towns& instance() {
        static Towns towns;
        return towns;
    }

    std::shared_ptr<dp::Table> table;
    std::vector<dp::FeaturePtr> features;

private:
    Towns() {
        Host& host = Host::instance();
        const QString given = qEnvironmentVariable("ORVANE_BENCHMARK_TABLE");
        table = files::openFile(given.isEmpty() ? makeTable(host.path(QStringLiteral("towns.gpkg"))) : given)
                    .front();
        table->setName(QStringLiteral("towns"));
        host.catalog.add(table);
        Host::deliverSignals();
        features = Host::features(*table);
    }
};

void select(benchmark::State& state, const QString& expression) {
    Towns::instance();
    Host& host = Host::instance();
    const QString sql = host.engine->translate(QStringLiteral("Select %0 From towns").arg(expression));
    std::int64_t rows = 0;
    for (auto _ : state) {
        QSqlQuery query(host.engine->engineDatabase());
        query.setForwardOnly(true);
        if (!query.exec(sql)) {
            state.SkipWithError("the query fails");
        }
        for (; query.next(); ++rows) {
            benchmark::DoNotOptimize(query.value(0));
        }
    }
    state.SetItemsProcessed(rows);
}

std::unique_ptr<adaptor::FeatureExpression> makeEvaluator(benchmark::State& state,
                                                          const QString& expression) {
    auto evaluator = std::make_unique<adaptor::FeatureExpression>(*Host::instance().engine,
                                                                  *Towns::instance().table->schema());
    if (!evaluator->setText(expression)) {
        state.SkipWithError(evaluator->lastError().toUtf8().constData());
    }
    return evaluator;
}

void evaluateEach(benchmark::State& state, const QString& expression) {
    const auto& features = Towns::instance().features;
    for (auto _ : state) {
        const auto evaluator = makeEvaluator(state, expression);
        for (const dp::FeaturePtr& feature : features) {
            benchmark::DoNotOptimize(evaluator->value(feature));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(features.size()));
}

/// In blocks of a thousand, as a map draws them.
void evaluateAll(benchmark::State& state, const QString& expression) {
    constexpr std::size_t blockSize = 1000;
    const auto& features = Towns::instance().features;
    for (auto _ : state) {
        const auto evaluator = makeEvaluator(state, expression);
        for (std::size_t i = 0; i < features.size(); i += blockSize) {
            const auto begin = features.begin() + static_cast<std::ptrdiff_t>(i);
            const auto size = std::min(blockSize, features.size() - i);
            benchmark::DoNotOptimize(evaluator->values({begin, begin + static_cast<std::ptrdiff_t>(size)}));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(features.size()));
}

void readFeatures(benchmark::State& state) {
    std::size_t rows = 0;
    for (auto _ : state) {
        rows += Host::features(*Towns::instance().table).size();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(rows));
}

BENCHMARK_CAPTURE(select, label, label)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(evaluateAll, label, label)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(evaluateEach, label, label)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(select, geometry, geometryExpression)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(evaluateAll, geometry, geometryExpression)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(evaluateEach, geometry, geometryExpression)->Unit(benchmark::kMillisecond);
BENCHMARK(readFeatures)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace orvane

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
