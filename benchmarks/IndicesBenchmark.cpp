// Attribute indices against SQLite's own, in one run: what it costs to index a million rows, and to find one
// of them. The argument "locale" of the store's benchmarks is the order of texts: by code, or by the letters
// of Russian.

#include <orvane/engine/EngineCache.h>
#include <orvane/engine/EngineIndicesFactory.h>

#include "platform/dp/SqliteDatabaseAccess.h"

#include <QLocale>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <random>

using namespace orvane;
using engine::EngineIndices;

namespace {

constexpr int numRows = 1'000'000;
constexpr int numLookups = 10'000;

class PlainCache : public engine::EngineCache {
public:
    std::shared_ptr<cs::CoordSystem> tableCS(const QString&) override { return nullptr; }
};

struct Rows {
    Rows() {
        std::mt19937 random(1);
        for (int i = 0; i < numRows; ++i) {
            names.push_back("Parcel " + std::to_string(random() % 10'000'000));
            numbers.push_back(static_cast<qint64>(random() % 1'000'000));
        }
    }
    dp::Cell cell(int column, std::size_t row) const {
        return column == 0 ? dp::Cell::ofText(names[row]) : dp::Cell::ofInteger(numbers[row]);
    }

    std::vector<std::string> names;
    std::vector<qint64> numbers;
};

const Rows& rows() {
    static const Rows rows;
    return rows;
}

/// The rows in a table of SQLite's own, in a file.
struct NativeTable {
    NativeTable() : database(directory.filePath(QStringLiteral("native.db"))) {
        database.exec(QStringLiteral("Pragma synchronous = Off"));
        database.exec(QStringLiteral("Create Table t(c0 Varchar(30), c1 Integer)"));
        auto work = database.open(QStringLiteral("fill"));
        auto insert =
            database.query(QStringLiteral("Insert Into t Values(?, ?)"), dp::SqliteStatement::Use::Repeated);
        for (std::size_t row = 0; row < numRows; ++row) {
            insert.bind(1, rows().cell(0, row));
            insert.bind(2, rows().cell(1, row));
            insert.run();
        }
        work.close();
    }

    QTemporaryDir directory;
    dp::SqliteDatabaseAccess database;
};

NativeTable& nativeTable() {
    static NativeTable table;
    return table;
}

/// A store with one index on one of the columns.
struct Store {
    explicit Store(int indexed) : column(indexed) {
        const engine::EngineIndicesSetup setup({{"Collate", QStringLiteral("Locale")}});
        indices = engine::EngineIndicesFactory::instance()->construct(setup, cache);
        indices->createStorage(
            dp::TableSchema({dp::AttributeDefinitionPointer(new dp::SimpleAttributeDefinition(
                                 QStringLiteral("name"), QMetaType::QString, {.length = 30})),
                             dp::AttributeDefinitionPointer(new dp::SimpleAttributeDefinition(
                                 QStringLiteral("number"), QMetaType::LongLong))}));
        index = indices->addIndex({{static_cast<quint32>(column), EngineIndices::Equal}});
    }
    void load() {
        const auto loader = indices->getLoader(index);
        for (std::size_t row = 0; row < numRows; ++row) {
            const dp::Cell cell = rows().cell(column, row);
            loader->addRow(static_cast<qint64>(row), {&cell, 1});
        }
        loader->finish();
    }

    int column;
    PlainCache cache;
    std::unique_ptr<EngineIndices> indices;
    int index = -1;
};

void setLocale(const benchmark::State& state) {
    QLocale::setDefault(QLocale(state.range(1) == 0 ? QLocale::C : QLocale::Russian));
}

void buildNative(benchmark::State& state) {
    auto& database = nativeTable().database;
    const QString column = QString::number(state.range(0));
    for ([[maybe_unused]] auto iteration : state) {
        database.exec(QStringLiteral("Create Index x%1 On t(c%1)").arg(column));
        state.PauseTiming();
        database.exec(QStringLiteral("Drop Index x%1").arg(column));
        state.ResumeTiming();
    }
}

void buildStore(benchmark::State& state) {
    setLocale(state);
    rows();
    for ([[maybe_unused]] auto iteration : state) {
        Store store(static_cast<int>(state.range(0)));
        store.load();
    }
}

void lookUpNative(benchmark::State& state) {
    auto& database = nativeTable().database;
    const QString column = QString::number(state.range(0));
    database.exec(QStringLiteral("Create Index If Not Exists x%1 On t(c%1)").arg(column));
    auto query = database.query(QStringLiteral("Select rowid From t Where c%1 = ?").arg(column),
                                dp::SqliteStatement::Use::Repeated);
    for ([[maybe_unused]] auto iteration : state) {
        for (std::size_t i = 0; i < numLookups; ++i) {
            query.reset();
            query.bind(1, rows().cell(static_cast<int>(state.range(0)), i * 97));
            while (query.next()) {
                benchmark::DoNotOptimize(query.integer(0));
            }
        }
    }
    state.SetItemsProcessed(state.iterations() * numLookups);
}

void lookUpStore(benchmark::State& state) {
    setLocale(state);
    Store store(static_cast<int>(state.range(0)));
    store.load();
    const EngineIndices::Column column{static_cast<quint32>(store.column), EngineIndices::Equal};
    const auto lookup = store.indices->getLookup(store.index, {&column, 1});
    for ([[maybe_unused]] auto iteration : state) {
        for (std::size_t i = 0; i < numLookups; ++i) {
            const dp::Cell cell = rows().cell(store.column, i * 97);
            lookup->start({&cell, 1});
            for (qint64 row = 0; lookup->next(row);) {
                benchmark::DoNotOptimize(row);
            }
        }
    }
    state.SetItemsProcessed(state.iterations() * numLookups);
}

void columns(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgName("column")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
}

void columnsAndLocales(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"column", "locale"})
        ->Args({0, 0})
        ->Args({0, 1})
        ->Args({1, 0})
        ->Unit(benchmark::kMillisecond);
}

BENCHMARK(buildNative)->Apply(columns);
BENCHMARK(buildStore)->Apply(columnsAndLocales);
BENCHMARK(lookUpNative)->Apply(columns);
BENCHMARK(lookUpStore)->Apply(columnsAndLocales);

} // namespace

BENCHMARK_MAIN();
