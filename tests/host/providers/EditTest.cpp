#include "host/providers/FileSource.h"
#include "host/providers/TestLayers.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/shapes/Geometry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>

#include <functional>

namespace orvane::files {
namespace {

class Edits : public testing::Test {
protected:
    std::shared_ptr<LayerTable> tableOf(const Format& format) {
        const auto path = directory_.filePath(QLatin1String("types.") + QLatin1String(format.extension));
        addLayerOfEveryType(*createDataset(format, path), "types", format);
        return openFile(path).front();
    }
    static std::shared_ptr<dp::Feature> firstFeature(LayerTable& table) {
        dp::ScanRequest request;
        const auto cursor = table.openCursor(request);
        return cursor->next() && cursor->next() ? table.feature(cursor->featureId()) : nullptr;
    }
    /// A request for all attributes but the identifier.
    static dp::ScanRequest withoutId(const LayerTable& table) {
        dp::ScanRequest request = everything(table);
        const QString first = table.schema()->at(0)->name();
        if (first == QLatin1String("fid") || first == QLatin1String("ogc_fid")) {
            request.attributes.erase(request.attributes.begin());
        }
        return request;
    }
    static std::size_t rowCount(LayerTable& table) { return readRows(table, everything(table)).size(); }

    QTemporaryDir directory_;
};

constexpr Format geoPackage{"GPKG", "gpkg"};

class EditsInFormat : public Edits, public testing::WithParamInterface<Format> {};

TEST_P(EditsInFormat, aCopiedFeatureEqualsItsOriginal) {
    const auto table = tableOf(GetParam());
    ASSERT_FALSE(table->isReadOnly());
    const auto before = rowCount(*table);
    const auto revision = table->revision();
    const auto original = firstFeature(*table);
    ASSERT_TRUE(original);
    dp::Feature copy(*original);
    copy.setId({});
    const auto id = table->insertFeature(copy);
    EXPECT_NE(table->revision(), revision);
    const auto rows = readRows(*table, withoutId(*table));
    ASSERT_EQ(rows.size(), before + 1);
    EXPECT_EQ(rows[1], rows.back());
    EXPECT_TRUE(table->feature(id));
    table->deleteFeature(id);
    EXPECT_EQ(rowCount(*table), before);
    EXPECT_FALSE(table->feature(id));
}

TEST_P(EditsInFormat, attributesAreWrittenOneByOne) {
    const auto table = tableOf(GetParam());
    const auto cursor = table->openCursor({});
    std::vector<dp::FeatureId> ids;
    while (cursor->next()) {
        ids.push_back(cursor->featureId());
    }
    ASSERT_EQ(ids.size(), 5u);
    for (std::size_t source = 1; source < ids.size(); ++source) {
        dp::Feature changes(*table->feature(ids[source]));
        changes.setId(ids.front());
        for (const int position : withoutId(*table).attributes) {
            table->updateAttributes(changes, {position});
        }
        const auto rows = readRows(*table, withoutId(*table));
        EXPECT_EQ(rows.front(), rows[source]);
    }
}

INSTANTIATE_TEST_SUITE_P(Drivers, EditsInFormat,
                         testing::Values(geoPackage, Format{"SQLite", "sqlite"},
                                         Format{"ESRI Shapefile", "shp"}),
                         [](const auto& format) { return std::string(format.param.extension); });

TEST_P(EditsInFormat, aGroupIsWrittenWholeOrNotAtAll) {
    const auto table = tableOf(GetParam());
    const auto before = readRows(*table, everything(*table));
    const auto feature = firstFeature(*table);
    const int text = table->schema()->indexOf(QStringLiteral("text"));
    dp::ScanRequest request;
    const auto openMeanwhile = table->openCursor(request);
    ASSERT_TRUE(openMeanwhile->next());
    const auto first = openMeanwhile->featureId();

    table->beginEdits();
    feature->setAttribute(text, QStringLiteral("изменено"));
    table->updateFeature(*feature);
    table->deleteFeature(first);
    table->rollbackEdits();
    EXPECT_EQ(readRows(*table, everything(*table)), before);

    table->beginEdits();
    table->updateFeature(*feature);
    table->deleteFeature(first);
    table->prepareEdits();
    table->commitEdits();
    const auto after = readRows(*table, everything(*table));
    ASSERT_EQ(after.size(), before.size() - 1);
    EXPECT_EQ(after[0][static_cast<std::size_t>(text)], "t:изменено");
}

TEST_F(Edits, geometriesComeIntoTheSystemOfTheLayer) {
    const auto table = tableOf(geoPackage);
    const auto feature = firstFeature(*table);
    const auto mercator = cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(3857);
    const std::string_view wkb("\1\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 21); // POINT (0 0)
    const std::shared_ptr<const geometry::Geometry> origin =
        geometry::GeometryFactory::fromWkb(wkb, mercator);
    const int geometry = table->schema()->geometryIndex();
    feature->setAttribute(geometry, QVariant::fromValue(origin));
    table->updateFeature(*feature);
    auto request = requestOf({geometry});
    request.ids.emplace({feature->id()});
    EXPECT_THAT(readRows(*table, request).front().front(), testing::StartsWith("w:0101000000"));
    EXPECT_NE(table->feature(feature->id())->getAttribute(geometry), QVariant());
}

TEST_F(Edits, valuesThatDoNotFitAreRefused) {
    const auto table = tableOf(geoPackage);
    const auto before = readRows(*table, everything(*table));
    const std::pair<const char*, QVariant> unfit[] = {
        {"whole", QStringLiteral("много")},
        {"whole", 1LL << 40},
        {"whole", 1.5},
        {"real", QStringLiteral("x")},
        {"day", QStringLiteral("вчера")},
    };
    for (const auto& [name, value] : unfit) {
        const auto feature = firstFeature(*table);
        feature->setAttribute(table->schema()->indexOf(QLatin1String(name)), value);
        try {
            table->updateFeature(*feature);
            ADD_FAILURE() << name << " took " << value.toString().toStdString();
        } catch (const dp::EditError& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr(name));
        }
    }
    const int text = table->schema()->indexOf(QStringLiteral("text"));
    for (const QVariant& absent : {QVariant(999), QVariant(QStringLiteral("x"))}) {
        const dp::Feature changes(table->schema(), dp::FeatureId(absent));
        EXPECT_THROW(table->deleteFeature(changes.id()), dp::EditError);
        EXPECT_THROW(table->updateAttributes(changes, {text}), dp::EditError);
        EXPECT_THROW(table->updateAttributes(changes, {table->schema()->geometryIndex()}), dp::EditError);
    }
    EXPECT_EQ(readRows(*table, everything(*table)), before);
}

TEST_F(Edits, aShapefileWithShapesOfTwoKindsCanOnlyBeRead) {
    auto table = tableOf({"ESRI Shapefile", "shp"});
    const auto before = rowCount(*table);
    QFile file(directory_.filePath(QStringLiteral("types.shp")));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.seek(100 + 8); // the kind of the first shape, behind the header and that of the record
    file.write("\x63", 1);
    file.close();
    table = openFile(file.fileName()).front();
    const auto feature = firstFeature(*table);
    for (const std::function<void()>& edit : std::vector<std::function<void()>>{
             [&] { table->deleteFeature(feature->id()); }, [&] { table->updateFeature(*feature); },
             [&] { table->insertFeature(*feature); }}) {
        try {
            edit();
            ADD_FAILURE();
        } catch (const std::runtime_error& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr("types.shp»: файл повреждён: фигура 0"));
        }
    }
    EXPECT_EQ(rowCount(*table), before);
}

TEST_F(Edits, aTextTableKeepsTheTextsOfItsOtherValues) {
    const auto path = directory_.filePath(QStringLiteral("codes.csv"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("zip,n,x,day\n01234,5,1.50,2020-01-02\n00501,6,2.50,2021-12-31\n");
    file.close();
    const auto table = openFile(path).front();
    const auto feature = firstFeature(*table); // the second
    feature->setAttribute(1, 7);
    table->updateAttributes(*feature, {1});
    EXPECT_THAT(readRows(*table, everything(*table)),
                testing::ElementsAre(testing::ElementsAre("t:01234", "i:5", "r:1.5", "t:2020-01-02"),
                                     testing::ElementsAre("t:00501", "i:7", "r:2.5", "t:2021-12-31")));
    QFile written(path); // a new one in the old one's place
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    const QByteArray text = written.readAll().replace('"', "");
    EXPECT_THAT(text.toStdString(), testing::HasSubstr("01234,5,1.50,2020-01-02\n00501,7,2.50,"));
}

} // namespace
} // namespace orvane::files
