#include "host/providers/FileSource.h"
#include "host/providers/TestLayers.h"
#include "host/providers/reading/BatchCache.h"
#include "platform/dp/Feature.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <set>

namespace orvane::files {
namespace {

constexpr int tableRows = 30'000;
constexpr std::int64_t wantedRows = 2'000;

struct Sampled {
    std::vector<std::int64_t> numbers; ///< of the column "n", in the order of the sample
    std::map<std::int64_t, std::vector<std::int64_t>> runs;
};

class SampleTest : public testing::Test {
protected:
    void SetUp() override { BatchCache::instance().setCapacity(0); }
    void TearDown() override { BatchCache::instance().setCapacity(std::size_t{256} << 20); }

    std::shared_ptr<LayerTable> tableOf(const Format& format, int rows, std::int64_t (*idOf)(int) = nullptr) {
        const auto path =
            directory_.filePath(QStringLiteral("numbers%1.").arg(++files_) + QLatin1String(format.extension));
        {
            const auto dataset = createDataset(format, path);
            auto* layer = dataset->CreateLayer("numbers", nullptr, wkbPoint, nullptr);
            OGRFieldDefn field("n", OFTInteger64);
            layer->CreateField(&field);
            dataset->StartTransaction();
            for (int n = 0; n < rows; ++n) {
                OGRFeature feature(layer->GetLayerDefn());
                feature.SetField("n", n);
                feature.SetFID(idOf ? idOf(n) : OGRNullFID);
                const OGRPoint point(n, n);
                feature.SetGeometry(&point);
                EXPECT_EQ(layer->CreateFeature(&feature), OGRERR_NONE);
            }
            dataset->CommitTransaction();
        }
        return openFile(path).front();
    }

    static Sampled sample(dp::Table& table, std::int64_t rows = wantedRows) {
        const auto schema = table.schema();
        const int number = schema->indexOf(QStringLiteral("n"));
        const int geometry = schema->geometryIndex();
        std::vector<int> attributes{number};
        if (geometry >= 0) {
            attributes.push_back(geometry);
        }
        const auto cursor = table.openSample(attributes, rows);
        Sampled sampled;
        while (cursor->next()) {
            const auto n = cursor->cell(number).integer();
            if (sampled.numbers.empty()) {
                EXPECT_EQ(table.feature(cursor->featureId())->getAttribute(number), QVariant(qlonglong{n}));
            }
            EXPECT_TRUE(geometry < 0 || cursor->cell(geometry).type() == dp::CellType::Wkb);
            sampled.numbers.push_back(n);
            sampled.runs[cursor->run()].push_back(n);
        }
        return sampled;
    }

    /// That the sample is of about the size, and every tenth of the table has its share of it.
    static void expectSpread(const Sampled& sampled, double leastShare = 0.8) {
        EXPECT_GE(static_cast<double>(sampled.numbers.size()), leastShare * wantedRows);
        EXPECT_LE(sampled.numbers.size(), std::size_t{wantedRows} * 5 / 4);
        EXPECT_TRUE(std::is_sorted(sampled.numbers.begin(), sampled.numbers.end()));
        EXPECT_EQ(std::set(sampled.numbers.begin(), sampled.numbers.end()).size(), sampled.numbers.size());
        std::array<std::size_t, 10> tenths{};
        for (const auto n : sampled.numbers) {
            ++tenths[static_cast<std::size_t>(n * 10 / tableRows)];
        }
        for (const auto rows : tenths) {
            EXPECT_GT(rows, sampled.numbers.size() / 30);
        }
        for (const auto& [run, numbers] : sampled.runs) {
            EXPECT_EQ(numbers.back() - numbers.front(), static_cast<std::int64_t>(numbers.size()) - 1)
                << "rows of a run follow each other";
        }
    }

    QTemporaryDir directory_;
    int files_ = 0;
};

TEST_F(SampleTest, comesFromAllOverTheTable) {
    struct Case {
        const char* name;
        Format format;
        std::int64_t (*idOf)(int) = nullptr;
    };
    const Case cases[] = {
        {"GeoPackage", {"GPKG", "gpkg"}},
        {"SpatiaLite", {"SQLite", "sqlite"}},
        {"Shapefile", {"ESRI Shapefile", "shp"}},
        {"FlatGeobuf", {"FlatGeobuf", "fgb"}},
        {"CSV", {"CSV", "csv"}},
        {"every third identifier", {"GPKG", "gpkg"}, [](int n) { return std::int64_t{n} * 3 + 1; }},
        {"identifiers in two far places",
         {"GPKG", "gpkg"},
         [](int n) { return n < tableRows / 2 ? std::int64_t{n} : (std::int64_t{1} << 60) + n; }},
        {"negative ones, and a stray one at either end",
         {"GPKG", "gpkg"},
         [](int n) {
             constexpr auto ends = std::numeric_limits<std::int64_t>::max();
             return n == 0 ? -ends : n == tableRows - 1 ? ends : std::int64_t{n} - tableRows;
         }},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        const auto table = tableOf(each.format, tableRows, each.idOf);
        const auto sampled = sample(*table);
        if (std::string_view(each.name) != "FlatGeobuf") { // has its rows in the order of its index
            expectSpread(sampled);
        }
        EXPECT_GT(sampled.runs.size(), 100U);
        EXPECT_EQ(sample(*table).numbers, sampled.numbers) << "the same as long as the table is the same";
    }
}

TEST_F(SampleTest, ofTextsBeginsEveryRowWhereItBegins) {
    const auto path = directory_.filePath(QStringLiteral("quoted.csv"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("\xef\xbb\xbfn,text\r\n");
    for (int n = 0; n < tableRows; ++n) {
        const QByteArray ends = n % 5 == 0 ? "\r\n\r\n" : "\n";
        file.write(QByteArray::number(n) + ",\"две\nстроки, \"\"" + QByteArray(n % 300, 'x') + "\"\"\"" +
                   ends);
    }
    file.close();
    const auto table = openFile(path).front();
    expectSpread(sample(*table));
    const auto rows = table->openSample({0, 1}, wantedRows);
    while (rows->next()) {
        const auto n = rows->cell(0).integer();
        ASSERT_EQ(rows->featureId().value().toLongLong(), n + 1);
        ASSERT_EQ(rows->cell(1).view(),
                  "две\nстроки, \"" + std::string(static_cast<std::size_t>(n % 300), 'x') + "\"");
    }
}

TEST_F(SampleTest, ofColumnsInMemoryHasSingleRows) {
    BatchCache::instance().setCapacity(std::size_t{256} << 20);
    const auto table = tableOf({"GPKG", "gpkg"}, tableRows);
    readRows(*table, everything(*table));
    const auto sampled = sample(*table);
    expectSpread(sampled);
    EXPECT_EQ(sampled.runs.size(), sampled.numbers.size());
}

TEST_F(SampleTest, ofFormatsWithoutRowNumbersHasTheFirstRows) {
    const auto numbers = sample(*tableOf({"GeoJSON", "geojson"}, tableRows)).numbers;
    ASSERT_EQ(numbers.size(), std::size_t{wantedRows});
    EXPECT_EQ(numbers.back(), wantedRows - 1);
}

TEST_F(SampleTest, ofSmallTablesHasAllRows) {
    for (const Format& format :
         {Format{"GPKG", "gpkg"}, Format{"ESRI Shapefile", "shp"}, Format{"CSV", "csv"}}) {
        for (const int rows : {0, 1, static_cast<int>(wantedRows)}) {
            const auto table = tableOf(format, rows);
            EXPECT_EQ(sample(*table).numbers.size(), static_cast<std::size_t>(rows)) << format.driver;
            BatchCache::instance().setCapacity(std::size_t{256} << 20);
            EXPECT_EQ(sample(*table).numbers.size(), static_cast<std::size_t>(rows)) << format.driver;
            BatchCache::instance().setCapacity(0);
        }
    }
}

TEST_F(SampleTest, showsTheEditsOfATransaction) {
    for (const Format& format :
         {Format{"GPKG", "gpkg"}, Format{"ESRI Shapefile", "shp"}, Format{"CSV", "csv"}}) {
        SCOPED_TRACE(format.driver);
        const auto table = tableOf(format, tableRows);
        const auto before = sample(*table).numbers;
        const auto revision = table->revision();
        table->beginEdits();
        const int number = table->schema()->indexOf(QStringLiteral("n"));
        const auto cursor = table->openCursor(requestOf({number}));
        std::vector<dp::FeatureId> lower;
        for (int n = 0; n < tableRows / 2 && cursor->next(); ++n) {
            lower.push_back(cursor->featureId());
        }
        for (const auto& id : lower) {
            table->deleteFeature(id);
        }
        EXPECT_NE(table->revision(), revision);
        const auto within = sample(*table).numbers;
        EXPECT_GT(within.size(), std::size_t{wantedRows} / 3);
        EXPECT_GE(within.front(), tableRows / 2);
        table->rollbackEdits();
        EXPECT_EQ(sample(*table).numbers, before);
    }
}

} // namespace
} // namespace orvane::files
