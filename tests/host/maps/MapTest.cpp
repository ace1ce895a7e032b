#include "host/maps/Shapes.h"

#include "host/maps/Map.h"
#include "host/maps/projection/LayerProjection.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QImage>
#include <QPainter>

#include <cmath>

namespace orvane::maps {
namespace {

const QColor fill(10, 200, 30);

LayerSettings layerIn(const char* system) {
    LayerSettings settings;
    settings.system = systemOf(system);
    settings.style.fill = fill;
    settings.style.line = fill;
    settings.style.point = fill;
    return settings;
}

MapSettings pictureOf(int width, int height) {
    MapSettings settings;
    settings.size = QSizeF(width, height);
    settings.hasScaleBar = false;
    return settings;
}

QImage drawn(Map& map, int width = 200, int height = 200) {
    QImage image(width, height, QImage::Format_RGB32);
    QPainter painter(&image);
    map.draw(painter);
    return image;
}

/// The share of pixels of the layers' colour.
double filled(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            count += std::abs(colour.red() - fill.red()) + std::abs(colour.green() - fill.green()) +
                                 std::abs(colour.blue() - fill.blue()) <
                             60
                         ? 1
                         : 0;
        }
    }
    return static_cast<double>(count) / (image.width() * image.height());
}

TEST(Map, drawsEveryKindOfGeometry) {
    struct Case {
        const char* wkt;
        double least, most; // of the picture
    };
    constexpr double circle = 0.25 * 3.14159 * 0.9;
    for (const Case& each :
         {Case{"POLYGON((0 0,10 0,10 10,0 10,0 0))", 0.85, 0.92},
          {"POLYGON((0 0,10 0,10 10,0 10,0 0),(1 1,9 1,9 9,1 9,1 1))", 0.25, 0.4},
          {"POLYGON((0 0,10 10,10 0,0 10,0 0))", 0.40, 0.47}, // crosses itself
          {"GEOMETRYCOLLECTION(POINT(0 0),GEOMETRYCOLLECTION(POLYGON((0 0,10 0,10 10,0 10,0 0)),POINT "
           "EMPTY))",
           0.75, 0.92},
          {"CURVEPOLYGON(CIRCULARSTRING(0 5,10 5,0 5))", circle - 0.03, circle + 0.03},
          {"CURVEPOLYGON(COMPOUNDCURVE(CIRCULARSTRING(0 5,5 10,10 5),(10 5,10 0,0 0,0 5)))", 0.76, 0.85},
          {"COMPOUNDCURVE(CIRCULARSTRING(0 0,5 5,10 0),(10 0,10 10))", 0.01, 0.1},
          {"MULTIPOINT((0 0),(10 10))", 1e-4, 0.01},
          {"POINT(3 4)", 1e-4, 0.01},
          {"LINESTRING(0 0,10 0)", 1e-3, 0.05},
          {"POLYGON((0 0,0 0,0 0,0 0))", 0, 0.001}, // nothing but a speck
          {"POLYGON Z((0 0 5,10 0 5,10 10 5,0 10 5,0 0 5))", 0.85, 0.92}}) {
        Map map(pictureOf(200, 200));
        map.beginLayer(layerIn("epsg:3857"));
        EXPECT_TRUE(map.add(Wkb(each.wkt).view()));
        const double share = filled(drawn(map));
        EXPECT_GE(share, each.least) << each.wkt;
        EXPECT_LE(share, each.most) << each.wkt;
    }
}

TEST(Map, showsNothingOfWhatIsNothing) {
    Map map(pictureOf(100, 80));
    EXPECT_TRUE(map.isEmpty());
    map.beginLayer(layerIn("epsg:4326"));
    EXPECT_TRUE(map.add(Wkb("POLYGON EMPTY").view()));
    EXPECT_FALSE(map.add(ShapeView::ofWkb("no geometry")));
    EXPECT_TRUE(map.isEmpty());
    EXPECT_EQ(filled(drawn(map, 100, 80)), 0);
}

TEST(Map, bringsLayersAndFeaturesOfDifferentSystemsTogether) {
    const char* const degrees = "POLYGON((10 50,11 50,11 51,10 51,10 50))";
    const char* const metres =
        "POLYGON((1113194.9 6446275.8,1224514.4 6446275.8,1224514.4 6621293.7,1113194.9 "
        "6621293.7,1113194.9 6446275.8))";
    const auto draw = [&](bool isLayer) {
        Map map(pictureOf(200, 200));
        map.beginLayer(layerIn("epsg:4326"));
        EXPECT_TRUE(map.add(Wkb(degrees).view()));
        if (isLayer) {
            map.beginLayer(layerIn("epsg:3857"));
        }
        EXPECT_TRUE(map.add(Wkb(metres).view(), {}, {}, systemOf("epsg:3857")));
        return filled(drawn(map));
    };
    Map alone(pictureOf(200, 200));
    alone.beginLayer(layerIn("epsg:4326"));
    alone.add(Wkb(degrees).view());
    const double expected = filled(drawn(alone));
    EXPECT_NEAR(draw(true), expected, 0.01);
    EXPECT_NEAR(draw(false), expected, 0.01);
    // Without a system it is taken to be in that of the others; with none known at all the plane is as it is.
    for (const bool isKnown : {true, false}) {
        Map map(pictureOf(200, 200));
        if (isKnown) {
            map.beginLayer(layerIn("epsg:4326"));
            map.add(Wkb(degrees).view());
        }
        LayerSettings unknown = layerIn("epsg:4326");
        unknown.system = nullptr;
        map.beginLayer(unknown);
        map.add(Wkb(degrees).view());
        EXPECT_EQ(map.system() != nullptr, isKnown);
        EXPECT_NEAR(filled(drawn(map)), isKnown ? expected : 0.9, 0.03);
    }
}

TEST(Map, putsPlacesWhereTheyAre) {
    Map map(pictureOf(400, 300));
    map.beginLayer(layerIn("epsg:4326"));
    map.add(Wkb("POLYGON((-180 -90,180 -90,180 -60,-180 -60,-180 -90))").view());
    map.add(Wkb("POLYGON((170 60,-170 60,-170 70,170 70,170 60))").view());
    map.add(Wkb("POLYGON((-5 -5,5 -5,5 5,-5 5,-5 -5))").view());
    const QImage image = drawn(map, 400, 300);
    const LayerProjection projection(systemOf("epsg:4326"), map.system(), map.view());
    struct Case {
        double longitude, latitude;
        bool isFilled;
    };
    for (const Case& each : {Case{0, 0, true},
                             {175, 65, true},
                             {-175, 65, true},
                             {0, 65, false},
                             {100, -75, true},
                             {-150, -75, true},
                             {100, 0, false},
                             {-160, 65, false}}) {
        const auto pixel = projection.toPixel({each.longitude, each.latitude});
        ASSERT_TRUE(pixel);
        ASSERT_TRUE(image.rect().contains(pixel->toPoint())) << each.longitude;
        EXPECT_EQ(image.pixelColor(pixel->toPoint()) == fill, each.isFilled)
            << each.longitude << ' ' << each.latitude;
    }
}

TEST(Map, keepsTheExtentOfTheResultAboveItsBackground) {
    Map map(pictureOf(200, 200));
    map.beginLayer(layerIn("epsg:4326"));
    map.add(Wkb("MULTIPOINT((30 50),(40 60))").view());
    const auto extent = map.extent();
    LayerSettings background = layerIn("epsg:4326");
    background.system = nullptr; // its features tell
    background.isBackground = true;
    map.beginLayer(background);
    for (const char* wkt : {"POLYGON((-180 -90,180 -90,180 -60,-180 -60,-180 -90))",
                            "POLYGON((-180 40,180 40,180 55,-180 55,-180 40))"}) {
        EXPECT_TRUE(map.add(Wkb(wkt).view(), {}, {}, systemOf("epsg:4326")));
    }
    EXPECT_EQ(map.extent(), extent);
    EXPECT_NEAR(filled(drawn(map)), 0.5, 0.1) << "the near band, not what is around the pole";
}

TEST(Map, leavesOutWhatTheSystemOfTheUserCannotShow) {
    MapSettings settings = pictureOf(200, 200);
    settings.system = systemOf("epsg:32637"); // around 39 degrees east
    Map map(settings);
    map.beginLayer(layerIn("epsg:4326"));
    for (const char* wkt :
         {"POLYGON((37 55,41 55,41 57,37 57,37 55))", "POLYGON((179 65,180 65,180 66,179 65))",
          "POLYGON((-140 -90,-141 -90,-141 -80,-140 -80,-140 -90))"}) {
        EXPECT_TRUE(map.add(Wkb(wkt).view()));
    }
    EXPECT_GT(filled(drawn(map)), 0.6);
}

TEST(Map, holdsMoreThanMemoryTakes) {
    Map map(pictureOf(100, 100));
    map.beginLayer(layerIn("epsg:3857"));
    const std::string label(100'000, 'x');
    constexpr int side = 40;
    for (int i = 0; i < side * side; ++i) { // 160 MB of labels
        const QByteArray wkt = QStringLiteral("POLYGON((%0 %1,%2 %1,%2 %3,%0 %3,%0 %1))")
                                   .arg(i % side)
                                   .arg(i / side)
                                   .arg(i % side + 1)
                                   .arg(i / side + 1)
                                   .toLatin1();
        ASSERT_TRUE(map.add(Wkb(wkt.constData()).view(), {}, label));
    }
    EXPECT_GT(filled(drawn(map, 100, 100)), 0.8);
}

TEST(Map, endsWhenItIsCancelled) {
    MapSettings settings = pictureOf(200, 200);
    bool isCancelled = false;
    settings.isCancelled = [&isCancelled] { return isCancelled; };
    Map map(settings);
    map.beginLayer(layerIn("epsg:3857"));
    for (int i = 0; i < 1000; ++i) {
        map.add(Wkb("POLYGON((0 0,10 0,10 10,0 10,0 0))").view());
    }
    isCancelled = true;
    EXPECT_GT(filled(drawn(map)), 0.8) << "of the features before the first look";
}

} // namespace
} // namespace orvane::maps
