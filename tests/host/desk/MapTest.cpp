#include "host/desk/map/MapFile.h"
#include "host/desk/map/MapPicking.h"
#include "host/desk/map/MapPicture.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/forms/TextReader.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace orvane::desk {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::shared_ptr<cs::CoordSystem> system(int epsg) {
    return cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(epsg);
}

/// A layer of geometries in well-known text, with the identifiers 10, 20, ...
MapLayer layerOf(quint64 table, const std::vector<const char*>& texts, int epsg = 0) {
    const auto features =
        std::make_shared<RowStore>(QStringList{QStringLiteral("id"), QStringLiteral("obj")});
    if (epsg != 0) {
        features->setCoordSystem(system(epsg));
    }
    std::int64_t id = 0;
    for (const char* text : texts) {
        const auto shape = geometry::fromWkt(text);
        const QByteArray wkb = geometry::GeometryFactory::toWkb(shape, QSysInfo::LittleEndian);
        features->append(id += 10);
        features->appendGeometry({wkb.constData(), static_cast<std::size_t>(wkb.size())}, shape->envelope());
        features->endRow();
    }
    features->publish();
    MapLayer layer;
    layer.table = table;
    layer.features = features;
    layer.style.fill = layer.style.point = layer.style.line = Qt::red;
    return layer;
}

/// One unit a pixel, 0, 0 in the middle.
MapPicture pictureOf(std::vector<MapLayer> layers) {
    MapPicture picture;
    picture.layers = std::move(layers);
    picture.view = maps::View::fitting({-50, -50, 50, 50}, {100, 100});
    return picture;
}

QImage draw(const MapPicture& picture) {
    QImage image(picture.view.size().toSize(), QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    drawMap(painter, picture, [] { return true; });
    return image;
}

TEST(Map, DrawsLayersAndMarksWhatIsSelected) {
    MapPicture picture = pictureOf({layerOf(1, {"Polygon((-40 -40, 0 -40, 0 40, -40 40, -40 -40))",
                                                "Polygon((10 -40, 40 -40, 40 40, 10 40, 10 -40))"})});
    const QImage plain = draw(picture);
    EXPECT_EQ(plain.pixelColor(20, 50), QColor(Qt::red));
    EXPECT_EQ(plain.pixelColor(75, 50), QColor(Qt::red));
    EXPECT_NE(plain.pixelColor(2, 2), QColor(Qt::red));
    picture.layers[0].selected = std::make_shared<const Numbers>(Numbers{20});
    const QImage marked = draw(picture);
    EXPECT_EQ(marked.pixelColor(20, 50), QColor(Qt::red));
    EXPECT_NE(marked.pixelColor(75, 50), QColor(Qt::red));
}

TEST(Map, PicksTheUppermostAndTheNearest) {
    const MapPicture picture = pictureOf({
        layerOf(1, {"Polygon((-40 -40, 40 -40, 40 40, -40 40, -40 -40))", "Polygon Empty"}),
        layerOf(2, {"Point(-20 0)", "Point(-16 0)", "LineString(10 -30, 10 30)"}),
    });
    struct Case {
        QPointF pixel;
        quint64 table;
        Numbers ids;
    };
    const Case cases[] = {
        {{29, 50}, 2, {10}}, {{33, 51}, 2, {20}}, {{63, 40}, 2, {30}}, {{80, 80}, 1, {10}}, {{98, 2}, 0, {}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.pixel.x());
        const PickedFeatures picked = pickAt(picture, each.pixel);
        EXPECT_EQ(picked.layer ? picked.layer->table : 0, each.table);
        EXPECT_EQ(picked.ids, each.ids);
    }
    EXPECT_THAT(pickWithin(picture, QRectF(25, 45, 15, 10)).ids, ElementsAre(10, 20));
    EXPECT_THAT(pickWithin(picture, QRectF(25, 45, 60, 10)).ids, ElementsAre(10, 20, 30));
    EXPECT_THAT(pickWithin(picture, QRectF(0, 0, 3, 3)).ids, IsEmpty());
}

TEST(Map, PicksInTheSystemOfTheMap) {
    const std::vector<MapLayer> layers{layerOf(1, {"Point(37.6 55.75)", "Point(82.9 55.03)"}, 4326)};
    MapPicture picture = pictureOf(layers);
    picture.system = suitableSystem(layers);
    ASSERT_TRUE(picture.system);
    EXPECT_FALSE(picture.system->isGeographic());
    picture.view = viewOf(layers, picture.system, {400, 300});
    EXPECT_THAT(pickWithin(picture, QRectF(0, 0, 200, 300)).ids, ElementsAre(10));
    EXPECT_THAT(pickWithin(picture, QRectF(200, 0, 200, 300)).ids, ElementsAre(20));
}

TEST(Map, AsksForTheLabelsItMisses) {
    MapPicture picture = pictureOf({layerOf(7, {"Point(-20 0)", "Point(20 0)", "Point(2000 0)"})});
    picture.layers[0].isLabelled = true;
    QImage image(100, 100, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    const auto goesOn = [] { return true; };
    MissedLabels missed = drawMap(painter, picture, goesOn);
    EXPECT_THAT(missed[7], ElementsAre(10, 20)); // what cannot be seen needs none
    picture.layers[0].labels = std::make_shared<const Labels>(Labels{{10, QStringLiteral("a")}, {20, {}}});
    missed = drawMap(painter, picture, goesOn);
    EXPECT_TRUE(missed[7].isEmpty());
}

TEST(Map, IsWrittenWholeOrNotAtAll) {
    const QTemporaryDir directory;
    const MapPicture picture = pictureOf({layerOf(1, {"Point(0 0)"})});
    const auto goesOn = [] { return true; };
    for (const auto& [ending, start] :
         {std::pair("png", "\x89PNG"), std::pair("svg", "<?xml"), std::pair("pdf", "%PDF")}) {
        const QString path = directory.filePath(QStringLiteral("map.") + QLatin1String(ending));
        EXPECT_TRUE(writeMap(path, picture, goesOn));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_TRUE(file.readAll().startsWith(start)) << ending;
    }
    const QString path = directory.filePath(QStringLiteral("other.png"));
    EXPECT_FALSE(writeMap(path, picture, [] { return false; }));
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_THROW(writeMap(directory.filePath(QStringLiteral("map.txt")), picture, goesOn),
                 std::runtime_error);
    EXPECT_THROW(writeMap(directory.filePath(QStringLiteral("no/map.png")), picture, goesOn),
                 std::runtime_error);
}

} // namespace
} // namespace orvane::desk
