#include "host/maps/Shapes.h"

#include "host/maps/projection/GroundExtent.h"
#include "host/maps/projection/LayerProjection.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

namespace orvane::maps {
namespace {

/// Filled pixels, odd-even, of rings that do not cross each other.
double areaOf(const FlatShape& shape) {
    double sum = 0;
    for (const FlatShape::Part& part : shape.parts) {
        if (part.kind != PartKind::Ring && part.kind != PartKind::Area) {
            continue;
        }
        double twice = 0;
        for (std::uint32_t i = 0; i < part.count; ++i) {
            const double* a = shape.position(part.begin + i);
            const double* b = shape.position(part.begin + (i + 1) % part.count);
            twice += a[0] * b[1] - b[0] * a[1];
        }
        sum += std::abs(twice) / 2;
    }
    return sum;
}

double strokedLength(const FlatShape& shape) {
    double sum = 0;
    for (const FlatShape::Part& part : shape.parts) {
        const bool isRing = part.kind == PartKind::Ring;
        if (part.kind == PartKind::Area) {
            continue;
        }
        for (std::uint32_t i = 0; i + (isRing ? 0 : 1) < part.count; ++i) {
            const double* a = shape.position(part.begin + i);
            const double* b = shape.position(part.begin + (i + 1) % part.count);
            sum += std::hypot(a[0] - b[0], a[1] - b[1]);
        }
    }
    return sum;
}

constexpr double earth = 20'100'000; // metres: half a map of equal areas fits

View worldView() {
    return View::fitting({-earth, -earth / 2, earth, earth / 2}, {2000, 1000});
}

FlatShape drawn(const char* wkt, const char* system, const char* layer = "epsg:4326") {
    FlatShape shape;
    ShapeReader reader;
    EXPECT_TRUE(reader.read(Wkb(wkt).view(), 0, shape)) << wkt;
    LayerProjection(systemOf(layer), systemOf(system), worldView()).toPixels(shape);
    return shape;
}

/// Of the zone between two latitudes on a sphere of the ellipsoid's area, in pixels of the view.
double zoneArea(double south, double north, double width) {
    constexpr double radius = 6371007.2;
    constexpr double toRadians = std::numbers::pi / 180;
    const double scale = worldView().unitsPerPixel();
    return radius * radius * width * toRadians * (std::sin(north * toRadians) - std::sin(south * toRadians)) /
           (scale * scale);
}

TEST(Projection, keepsAreasWhereverTheGlobeIsCut) {
    struct Case {
        const char* wkt;
        double area;
    };
    const double box = zoneArea(-10, 10, 20);
    const double cap = zoneArea(60, 90, 360);
    const Case cases[] = {{"POLYGON((170 -10,190 -10,190 10,170 10,170 -10))", box},   // beyond 180
                          {"POLYGON((170 -10,-170 -10,-170 10,170 10,170 -10))", box}, // over it
                          {"MULTIPOLYGON(((170 -10,180 -10,180 10,170 10,170 -10)),((-180 -10,-170 -10,-170 "
                           "10,-180 10,-180 -10)))",
                           box},
                          {"POLYGON((-10 -10,10 -10,10 10,-10 10,-10 -10))", box},
                          {"POLYGON((350 -10,370 -10,370 10,350 10,350 -10))", box},
                          {"POLYGON((-180 60,180 60,180 90,-180 90,-180 60))", cap},        // as data are cut
                          {"POLYGON((0 60,60 60,120 60,180 60,-120 60,-60 60,0 60))", cap}, // around the pole
                          {"POLYGON((0 60,-60 60,-120 60,-180 60,120 60,60 60,0 60))", cap}, // the other way
                          {"POLYGON((-180 -89.9,179.99999 -89.9,179.99999 -60,-180 -60,-180 -89.9))",
                           zoneArea(-89.9, -60, 360)},
                          {"POLYGON((-180 -90,180 -90,180 90,-180 90,-180 -90))", zoneArea(-90, 90, 360)}};
    for (const char* system :
         {"proj:+proj=eqearth +lon_0=0", "proj:+proj=eqearth +lon_0=11", "proj:+proj=moll +lon_0=180",
          "proj:+proj=cea +lon_0=-100", "proj:+proj=sinu +lon_0=77.7"}) {
        for (const Case& each : cases) {
            EXPECT_NEAR(areaOf(drawn(each.wkt, system)), each.area, 0.01 * each.area)
                << each.wkt << ' ' << system;
        }
    }
    for (const Case& each : {cases[5], cases[6], cases[7]}) {
        EXPECT_NEAR(areaOf(drawn(each.wkt, "proj:+proj=laea +lat_0=90 +lon_0=33")), each.area,
                    0.01 * each.area);
    }
    EXPECT_NEAR(areaOf(drawn(cases[8].wkt, "proj:+proj=laea +lat_0=-90")), cases[8].area,
                0.01 * cases[8].area);
}

TEST(Projection, strokesNoBorderWhereDataOrTheGlobeAreCut) {
    const double side = strokedLength(drawn("LINESTRING(-10 -10,-10 10)", "proj:+proj=cea"));
    const double across = strokedLength(drawn("LINESTRING(-10 0,10 0)", "proj:+proj=cea"));
    const char* const cut = "MULTIPOLYGON(((170 -10,180 -10,180 10,170 10,170 -10)),((-180 -10,-170 -10,-170 "
                            "10,-180 10,-180 -10)))";
    for (const char* wkt : {cut, "POLYGON((170 -10,-170 -10,-170 10,170 10,170 -10))"}) {
        for (const char* system :
             {"proj:+proj=cea", "proj:+proj=cea +lon_0=180", "proj:+proj=cea +lon_0=5"}) {
            EXPECT_NEAR(strokedLength(drawn(wkt, system)), 2 * side + 2 * across, 1) << wkt << ' ' << system;
        }
    }
    const double parallel = 18 * strokedLength(drawn("LINESTRING(0 -60,20 -60)", "proj:+proj=cea"));
    EXPECT_NEAR(
        strokedLength(drawn("POLYGON((-180 -90,180 -90,180 -60,-180 -60,-180 -90))", "proj:+proj=cea")),
        parallel, 1);
    // A way over the antimeridian does not go back around the globe.
    EXPECT_NEAR(strokedLength(drawn("LINESTRING(170 0,-170 0)", "proj:+proj=cea")), across, 1);
    EXPECT_NEAR(strokedLength(drawn("LINESTRING(-100 0,100 0)", "proj:+proj=cea")), 10 * across, 1);
}

TEST(Projection, leavesOutWhatHasNoPlace) {
    for (const char* wkt : {"POINT(0 90)", "POLYGON((-180 -90,180 -90,180 90,-180 90,-180 -90))",
                            "LINESTRING(10 -95,10 95)", "POLYGON((0 -1e300,1e300 0,0 1e300,0 -1e300))"}) {
        for (const char* system : {"epsg:3857", "epsg:32637", "proj:+proj=lcc +lat_1=50 +lat_2=60 +lon_0=30",
                                   "proj:+proj=ortho +lat_0=50", "proj:+proj=gnom +lat_0=90", "epsg:4326"}) {
            const FlatShape shape = drawn(wkt, system);
            for (const double ordinate : shape.ordinates) {
                ASSERT_TRUE(std::abs(ordinate) <= 1e7) << wkt << ' ' << system;
            }
        }
    }
}

TEST(Projection, goesThereAndBack) {
    for (const char* system :
         {"proj:+proj=eqearth +lon_0=11", "epsg:3857", "proj:+proj=laea +lat_0=90", "epsg:4326"}) {
        for (const char* layer : {"epsg:4326", "epsg:3857"}) {
            const View view = View::fitting({-3e6, 4e6, 3e6, 6e6}, {800, 600});
            const LayerProjection projection(systemOf(layer), systemOf(system),
                                             QLatin1String(system) == QLatin1String("epsg:4326")
                                                 ? View::fitting({-30, 30, 30, 60}, {800, 600})
                                                 : view);
            const QPointF pixel(123, 456);
            const auto position = projection.toLayer(pixel);
            ASSERT_TRUE(position) << system;
            const auto again = projection.toPixel(*position);
            ASSERT_TRUE(again);
            EXPECT_NEAR(again->x(), pixel.x(), 1e-3);
            EXPECT_NEAR(again->y(), pixel.y(), 1e-3);
        }
    }
    const LayerProjection world(systemOf("epsg:4326"), systemOf("proj:+proj=eqearth"), worldView());
    EXPECT_FALSE(world.toLayer({2, 2})) << "beyond the globe";
}

TEST(Projection, isOffByLessThanATenthOfAPixelWhereManyPositionsCome) {
    struct Case {
        const char* map;
        geometry::Envelope extent; ///< in units of the map
        const char* layer = "epsg:4326";
    };
    const geometry::Envelope world{-earth, -earth / 2, earth, earth / 2};
    std::mt19937 random(20);
    std::uniform_real_distribution<double> any(0, 1);
    double largest = 0;
    for (const Case& each : {Case{"proj:+proj=tmerc +lat_0=55.5 +lon_0=37.5", {-3e4, -6e4, 3e4, 6e4}},
                             {"proj:+proj=tmerc +lon_0=180", {-1e6, -2e6, 1e6, 2e6}}, // the antimeridian
                             {"proj:+proj=laea +lat_0=90", {-3e6, -3e6, 3e6, 3e6}},   // a pole
                             {"proj:+proj=laea +lat_0=90", {-1e3, -1e3, 1e3, 1e3}},
                             {"proj:+proj=eqearth +lon_0=11", world},
                             {"proj:+proj=igh", world}, // cut in places
                             {"proj:+proj=ortho +lat_0=50", {-7e6, -7e6, 7e6, 7e6}},
                             {"epsg:3857", {-2e7, -2e7, 2e7, 2e7}},
                             {"epsg:32637", {2e5, 6e6, 8e5, 7e6}, "epsg:3857"}}) {
        LayerProjection projection(systemOf(each.layer), systemOf(each.map),
                                   View::fitting(each.extent, {1600, 1200}));
        FlatShape shape;
        for (int spot = 0; spot < 6; ++spot) { // an eighth of the view, so that its cells are made
            const QPointF corner(1400 * any(random), 1050 * any(random));
            for (int i = 0; i < 4000; ++i) {
                const auto position =
                    projection.toLayer(corner + QPointF(200 * any(random), 150 * any(random)));
                const auto exact = position ? projection.toPixel(*position) : std::nullopt;
                if (!exact) {
                    continue; // beyond the globe
                }
                shape.clear();
                shape.add(position->x(), position->y());
                shape.endPart(PartKind::Point, 0);
                projection.toPixels(shape);
                ASSERT_EQ(shape.size(), 1U) << each.map << ' ' << position->x() << ' ' << position->y();
                const double error =
                    std::hypot(shape.ordinates[0] - exact->x(), shape.ordinates[1] - exact->y());
                ASSERT_LT(error, 0.1) << each.map << ' ' << position->x() << ' ' << position->y();
                largest = std::max(largest, error);
            }
        }
    }
    EXPECT_GT(largest, 1e-3) << "nothing was interpolated";
}

TEST(Projection, suitsTheExtent) {
    struct Case {
        double west, south, east, north;
        const char* method;
    };
    for (const Case& each : {Case{-180, -90, 180, 84, "+proj=eqearth +lat_0=0 +lon_0=11"},
                             {19, 41, 191, 82, "+proj=aea +lat_0=61.5 +lon_0=105"},
                             {5, 47, 15, 55, "+proj=lcc +lat_0=51 +lon_0=10"},
                             {-76, -56, -66, -17, "+proj=tmerc +lat_0=-36.5 +lon_0=-71"},
                             {37, 55, 38, 56, "+proj=tmerc +lat_0=55.5 +lon_0=37.5"},
                             {177, -20, 182, -15, "+proj=tmerc +lat_0=-17.5 +lon_0=179.5"},
                             {-18, -35, 52, 38, "+proj=laea +lat_0=1.5 +lon_0=17"},
                             {-180, -90, 180, -63, "+proj=laea +lat_0=-90 +lon_0=0"},
                             {-180, 66, 180, 90, "+proj=laea +lat_0=90"},
                             {100, -50, 290, 50, "+proj=eqearth +lat_0=0 +lon_0=-165"}}) {
        GroundExtent extent;
        extent.add(each.west, each.south, each.east, each.north);
        EXPECT_TRUE(suitableSystem(extent)->taggedString().contains(QLatin1String(each.method)))
            << suitableSystem(extent)->taggedString().toStdString();
    }
    EXPECT_EQ(suitableSystem(GroundExtent())->epsg(), 4326);
}

TEST(GroundExtent, findsTheLongitudesAroundTheWidestGap) {
    struct Case {
        const char* wkt;
        double west, width;
    };
    for (const Case& each :
         {Case{"MULTIPOINT(179.5 0,-179.5 1)", 179, 2},
          {"LINESTRING(170 0,-170 0)", 170, 20},
          {"LINESTRING(-100 0,100 0)", -100, 200},
          {"POLYGON((170 0,190 0,190 1,170 0))", 170, 20},
          {"MULTIPOLYGON(((20 50,180 70,30 70,20 50)),((-180 66,-170 66,-180 70,-180 66)))", 20, 170},
          {"POINT(30 60)", 30, 1}}) {
        FlatShape shape;
        ShapeReader reader;
        ASSERT_TRUE(reader.read(Wkb(each.wkt).view(), 0, shape));
        GroundExtent extent;
        extent.add(shape);
        EXPECT_NEAR(extent.west(), each.west, 1) << each.wkt;
        EXPECT_NEAR(extent.width(), each.width, 1) << each.wkt;
    }
}

TEST(ViewOfAMap, isMovedAroundAFixedPixel) {
    const View view = View::fitting({0, 0, 400, 100}, {220, 120}, 10);
    EXPECT_EQ(view.toPixel({0, 0}), QPointF(10, 85));
    EXPECT_EQ(view.toPixel({400, 100}), QPointF(210, 35));
    const View zoomed = view.zoomed(4, {50, 60});
    EXPECT_EQ(zoomed.toPlane({50, 60}), view.toPlane({50, 60}));
    EXPECT_DOUBLE_EQ(zoomed.unitsPerPixel(), 0.5);
    EXPECT_EQ(view.panned({7, -3}).toPixel({200, 50}), view.toPixel({200, 50}) + QPointF(7, -3));
    View far = view;
    for (int i = 0; i < 2000; ++i) {
        far = far.zoomed(3, {1, 1});
    }
    EXPECT_NE(far.toPlane({100, 60}), far.toPlane({101, 60})) << "pixels stay apart";
    EXPECT_GT(View::fitting({5, 5, 5, 5}, {100, 100}).unitsPerPixel(), 0) << "one point";
}

} // namespace
} // namespace orvane::maps
