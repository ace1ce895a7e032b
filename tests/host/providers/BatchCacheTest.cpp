#include "host/providers/reading/BatchCache.h"
#include "host/providers/FileSource.h"
#include "host/providers/TestLayers.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <chrono>
#include <thread>

namespace orvane::files {
namespace {

class Cache : public testing::Test {
protected:
    void TearDown() override { cache().setCapacity(std::size_t{256} << 20); }

    static BatchCache& cache() { return BatchCache::instance(); }

    std::shared_ptr<LayerTable> tableOf(const char* name, int rows) {
        const auto path = directory_.filePath(QLatin1String(name));
        addLayerOfNumbers(*createDataset({"GPKG", "gpkg"}, path), "numbers", rows);
        return openFile(path).front();
    }
    static qint64 sum(dp::Table& table, int attribute) {
        auto request = requestOf({attribute});
        const auto cursor = table.openCursor(request);
        qint64 total = 0;
        while (cursor->next()) {
            total += cursor->cell(attribute).isNull() ? 0 : cursor->cell(attribute).integer();
        }
        return total;
    }

    QTemporaryDir directory_;
};

TEST_F(Cache, staysWithinItsBoundAndGivesItsMemoryBack) {
    cache().setCapacity(0);
    const auto before = cache().bytes();
    EXPECT_EQ(before, 0U);
    cache().setCapacity(1 << 20);
    {
        std::vector<std::shared_ptr<LayerTable>> tables;
        for (const char* name : {"a.gpkg", "b.gpkg", "c.gpkg", "d.gpkg"}) {
            tables.push_back(tableOf(name, 7000));
            const auto first = sum(*tables.back(), 1);
            EXPECT_EQ(sum(*tables.back(), 1), first);
            EXPECT_GT(cache().bytes(), 0U);
            EXPECT_LE(cache().bytes(), 1U << 20);
        }
        EXPECT_EQ(sum(*tables[0], 1), sum(*tables[3], 1));
    }
    EXPECT_EQ(cache().bytes(), 0U);
}

TEST_F(Cache, anUnfinishedScanHoldsNoBytes) {
    const auto table = tableOf("part.gpkg", 50000);
    const auto before = cache().bytes();
    {
        auto request = requestOf({1, 2, 3});
        const auto cursor = table->openCursor(request);
        for (int row = 0; row < 20000; ++row) {
            ASSERT_TRUE(cursor->next());
        }
    }
    EXPECT_EQ(cache().bytes(), before);
}

TEST_F(Cache, columnsOfSeveralScansBelongToTheSameRows) {
    cache().setCapacity(0);
    const auto table = tableOf("wide.gpkg", 30000);
    auto request = requestOf({1});
    EXPECT_EQ(readRows(*table, request).size(), 30000U); // past the whole-table read of small files
    cache().setCapacity(std::size_t{64} << 20);
    for (const int attribute : {1, 3, 2}) {
        request.attributes = {attribute};
        readRows(*table, request);
    }
    request.attributes = {1, 2, 3};
    const auto cached = cache().find(table->revision(), request.attributes);
    ASSERT_TRUE(cached);
    const auto rows = readRows(*table, request);
    for (const int n : {0, 1, 8191, 8192, 29999}) {
        EXPECT_EQ(rows[static_cast<std::size_t>(n)],
                  (std::vector<std::string>{"i:" + std::to_string(n), describeCell(dp::Cell::ofReal(n / 4.0)),
                                            "t:text " + std::to_string(n)}));
    }
}

TEST_F(Cache, aChangedFileIsReadAnew) {
    const auto table = tableOf("change.gpkg", 10);
    const auto revision = table->revision();
    EXPECT_EQ(sum(*table, 1), 45 - 3);
    auto request = requestOf({1});
    const auto older = table->openCursor(request);
    ASSERT_TRUE(older->next());
    {
        const auto dataset = openDataset(directory_.filePath(QStringLiteral("change.gpkg")), GDAL_OF_UPDATE);
        auto* layer = dataset->GetLayer(0);
        OGRFeature feature(layer->GetLayerDefn());
        feature.SetField("n", 1000);
        ASSERT_EQ(layer->CreateFeature(&feature), OGRERR_NONE);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(110));
    EXPECT_EQ(sum(*table, 1), 42 + 1000);
    EXPECT_NE(table->revision(), revision);
    EXPECT_EQ(table->featureCount(), 11);
    int rows = 1;
    while (older->next()) {
        ++rows;
    }
    EXPECT_EQ(rows, 10) << "a cursor keeps what it began to read";
}

TEST_F(Cache, manyLookUpsMoveToMemory) {
    cache().setCapacity(0);
    const auto table = tableOf("lookups.gpkg", 9000);
    auto request = requestOf({3, 1});
    request.ids.emplace({dp::FeatureId(QVariant(1))});
    readRows(*table, request);
    cache().setCapacity(std::size_t{64} << 20);
    for (int n = 0; n < 400; ++n) {
        const int id = 1 + n * 7919 % 9000;
        *request.ids = {dp::FeatureId(QVariant(id)), dp::FeatureId(QVariant(-5)),
                        dp::FeatureId(QVariant(9001))};
        const auto rows = readRows(*table, request);
        ASSERT_EQ(rows.size(), 1U);
        const bool isNull = (id - 1) % 7 == 3;
        EXPECT_EQ(rows[0][1], isNull ? "NULL" : "i:" + std::to_string(id - 1));
        EXPECT_EQ(rows[0][0], isNull ? "NULL" : "t:text " + std::to_string(id - 1));
    }
    EXPECT_TRUE(cache().find(table->revision(), request.attributes));
}

TEST_F(Cache, aCursorOutlivesItsTable) {
    auto table = tableOf("outlive.gpkg", 20000);
    auto request = requestOf({1});
    const auto cursor = table->openCursor(request);
    ASSERT_TRUE(cursor->next());
    table.reset();
    int rows = 1;
    while (cursor->next()) {
        ++rows;
    }
    EXPECT_EQ(rows, 20000);
    EXPECT_EQ(cache().bytes(), 0U);
}

TEST_F(Cache, cursorsInSeveralThreads) {
    cache().setCapacity(2 << 20); // some scans are kept, some are not
    const auto table = tableOf("threads.gpkg", 30000);
    std::vector<std::thread> threads;
    std::vector<qint64> sums(4);
    for (std::size_t i = 0; i < sums.size(); ++i) {
        auto request = requestOf({1});
        threads.emplace_back([cursor = std::shared_ptr(table->openCursor(request)), &result = sums[i]] {
            while (cursor->next()) {
                result += cursor->cell(1).isNull() ? 0 : cursor->cell(1).integer();
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(sums, std::vector<qint64>(4, sum(*table, 1)));
}

} // namespace
} // namespace orvane::files
