#include "host/providers/FileSource.h"
#include "host/providers/TestLayers.h"
#include "host/providers/reading/BatchCache.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTemporaryDir>

namespace orvane::files {
namespace {

constexpr Format geoPackage{"GPKG", "gpkg"};

class EveryFormat : public testing::TestWithParam<Format> {
protected:
    void TearDown() override { BatchCache::instance().setCapacity(std::size_t{256} << 20); }

    QString path() const {
        return directory_.filePath(QLatin1String("types.") + QLatin1String(GetParam().extension));
    }

    QTemporaryDir directory_;
};

/// Expected rows straight from the features; the identifier first where the layer names it, the geometry
/// last.
std::vector<std::vector<std::string>> rowsOfFeatures(const QString& path) {
    const auto dataset = openDataset(path);
    auto* layer = dataset->GetLayer(0);
    const bool hasFid = *layer->GetFIDColumn() != '\0';
    const bool isCsv = path.endsWith(QLatin1String(".csv"));
    std::vector<std::vector<std::string>> rows;
    for (const auto& feature : layer) {
        auto& row = rows.emplace_back();
        if (hasFid) {
            row.push_back("i:" + std::to_string(feature->GetFID()));
        }
        for (int i = 0; i < feature->GetFieldCount(); ++i) {
            const auto cell = describeField(*feature, i);
            row.push_back(isCsv && cell == "t:" ? "NULL" : cell); // nothing between separators
        }
        if (layer->GetGeomType() != wkbNone) {
            row.push_back(describeGeometry(*feature));
        }
    }
    return rows;
}

TEST_P(EveryFormat, cellsEqualTheFeatures) {
    addLayerOfEveryType(*createDataset(GetParam(), path()), "types", GetParam());
    const auto expected = rowsOfFeatures(path());
    for (const std::size_t cacheBytes : {0, 1 << 20}) {
        BatchCache::instance().setCapacity(cacheBytes);
        const auto tables = openFile(path());
        ASSERT_EQ(tables.size(), 1U);
        EXPECT_EQ(tables[0]->name(), QStringLiteral("types"));
        const auto rows = readRows(*tables[0], everything(*tables[0]));
        EXPECT_THAT(rows, testing::SizeIs(testing::Ge(4U)));
        EXPECT_EQ(rows, expected);
    }
}

TEST_P(EveryFormat, everyColumnAloneAndInAnyOrder) {
    addLayerOfEveryType(*createDataset(GetParam(), path()), "types", GetParam());
    BatchCache::instance().setCapacity(0);
    const auto table = openFile(path()).front();
    const auto expected = readRows(*table, everything(*table));
    const int width = table->schema()->numAttributes();
    for (int first = 0; first < width; ++first) {
        auto request = requestOf({first, (first * 5 + 3) % width});
        const auto rows = readRows(*table, request);
        ASSERT_EQ(rows.size(), expected.size());
        for (std::size_t row = 0; row < rows.size(); ++row) {
            for (std::size_t i = 0; i < 2; ++i) {
                EXPECT_EQ(rows[row][i], expected[row][static_cast<std::size_t>(request.attributes[i])]);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Drivers, EveryFormat,
                         testing::Values(geoPackage, Format{"ESRI Shapefile", "shp"},
                                         Format{"GeoJSON", "geojson"}, Format{"CSV", "csv"},
                                         Format{"SQLite", "sqlite"}, Format{"FlatGeobuf", "fgb"},
                                         Format{"MapInfo File", "tab"}),
                         [](const auto& format) { return std::string(format.param.extension); });

class Geopackage : public testing::Test {
protected:
    QString path() const { return directory_.filePath(QStringLiteral("data.gpkg")); }

    QTemporaryDir directory_;
};

TEST_F(Geopackage, manyBatches) {
    constexpr int rows = 20000;
    addLayerOfNumbers(*createDataset(geoPackage, path()), "numbers", rows);
    const auto table = openFile(path()).front();
    EXPECT_EQ(table->featureCount(), rows);
    const auto cursor = table->openCursor(everything(*table));
    const int n = table->schema()->indexOf(QStringLiteral("N"));
    for (int row = 0; row < rows; ++row) {
        ASSERT_TRUE(cursor->next());
        EXPECT_EQ(cursor->featureId().value(), QVariant(row + 1));
        EXPECT_EQ(describeCell(cursor->cell(n)), row % 7 == 3 ? "NULL" : "i:" + std::to_string(row));
    }
    EXPECT_FALSE(cursor->next());
}

TEST_F(Geopackage, rowsAreCountedWithoutReadingThemAndStillHaveTheirIdentifiers) {
    constexpr int rows = 20000;
    addLayerOfNumbers(*createDataset(geoPackage, path()), "numbers", rows);
    const auto table = openFile(path()).front();
    const auto cursor = table->openCursor({});
    for (int row = 0; row < rows; ++row) {
        ASSERT_TRUE(cursor->next());
        if (row >= 12000 && row % 3 == 0) {
            ASSERT_EQ(cursor->featureId().value(), QVariant(row + 1));
        }
    }
    EXPECT_FALSE(cursor->next());
    dp::Feature feature(table->schema(), {});
    table->insertFeature(feature);
    table->deleteFeature(dp::FeatureId(QVariant(1)));
    auto changed = table->openCursor({});
    ASSERT_TRUE(changed->next());
    EXPECT_EQ(changed->featureId().value(), QVariant(2));
    changed.reset(); // half read, it would keep the file locked
    table->deleteFeature(dp::FeatureId(QVariant(2)));
    EXPECT_EQ(readRows(*table, {}).size(), rows - 1);
}

TEST_F(Geopackage, identifiersAreReadOnceAndMissingOnesLeftOut) {
    addLayerOfNumbers(*createDataset(geoPackage, path()), "numbers", 10);
    const auto table = openFile(path()).front();
    auto request = requestOf({0, 1});
    request.ids.emplace();
    for (const auto& id :
         {QVariant(7), QVariant(7), QVariant(999), QVariant(QStringLiteral("x")), QVariant(2)}) {
        request.ids->emplace_back(id);
    }
    const std::vector<std::vector<std::string>> expected{{"i:2", "i:1"}, {"i:7", "i:6"}};
    EXPECT_THAT(readRows(*table, request), testing::UnorderedElementsAreArray(expected));
}

TEST_F(Geopackage, nestedCursors) {
    addLayerOfNumbers(*createDataset(geoPackage, path()), "numbers", 40);
    const auto table = openFile(path()).front();
    auto request = requestOf({1});
    int pairs = 0;
    const auto outer = table->openCursor(request);
    while (outer->next()) {
        const auto inner = table->openCursor(request);
        while (inner->next()) {
            pairs += describeCell(outer->cell(1)) == describeCell(inner->cell(1));
        }
    }
    EXPECT_EQ(pairs, 34 + 6 * 6);
}

} // namespace
} // namespace orvane::files
