#include "support/Wkt.h"

#include "platform/geometry/making/Buffer.h"
#include "platform/geometry/measures/Measures.h"
#include "platform/geometry/relations/Relations.h"

#include <geodesic.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>
#include <string>
#include <vector>

namespace orvane::tests {

namespace {

using namespace geometry;

constexpr double degrees = 180.0 / std::numbers::pi;

std::string text(double x, double y) {
    return std::to_string(x) + ' ' + std::to_string(y);
}

/// Of the geodesic circle, from positions a tenth of a degree apart.
double circleArea(double longitude, double latitude, double radius) {
    geod_geodesic ellipsoid;
    geod_init(&ellipsoid, 6378137, 1 / 298.257223563);
    geod_polygon polygon;
    geod_polygon_init(&polygon, 0);
    for (int i = 0; i < 3600; ++i) {
        double x = 0.0;
        double y = 0.0;
        geod_direct(&ellipsoid, latitude, longitude, -0.1 * i, radius, &y, &x, nullptr);
        geod_polygon_addpoint(&ellipsoid, &polygon, y, x);
    }
    double area = 0.0;
    geod_polygon_compute(&ellipsoid, &polygon, 0, 1, &area, nullptr);
    return area;
}

void expectOnMap(const Geometry& area, const std::string& what) {
    const Envelope envelope = area.envelope();
    EXPECT_TRUE((Envelope{-180, -90, 180, 90}.contains(envelope))) << what;
    const auto shared = area.clone();
    EXPECT_EQ(normalizedGeometry(shared), shared) << what << " is not valid";
}

TEST(Buffers, GeodesicCircles) {
    for (const double latitude : {0.0, 60.0, 89.0, 90.0, -89.99}) {
        for (const double longitude : {0.0, 179.95, -180.0}) {
            for (const double radius : {10.0, 1e3, 1e5, 3e6, 9e6}) {
                const std::string what = text(longitude, latitude) + ", " + std::to_string(radius);
                const auto circle = buffer(*fromWkt("POINT(" + text(longitude, latitude) + ")", 4326), radius,
                                           QStringLiteral("m"));
                expectOnMap(*circle, what);
                EXPECT_NEAR(area(*circle, QString()) / circleArea(longitude, latitude, radius), 1.0, 1e-3)
                    << what;
            }
        }
    }
}

struct Case {
    const char* source;
    double distance;
    const char* border = nullptr; ///< of what shrinks
};

/// A position lies in the buffer just when its distance says so, but for two thousandths of the distance, by
/// which arcs are approximated.
TEST(Buffers, HoldWhatIsNear) {
    const Case cases[] = {
        {"LINESTRING(-120 45,-70 40,-70.1 40.1,-90 -30)", 100e3},
        {"LINESTRING(0 60,10 89.5,170 80)", 300e3},
        {"LINESTRING(0 80,180 80)", 50e3},
        {"LINESTRING(170 50,-160 60,-170 -20)", 200e3},
        {"LINESTRING(0 0,60 10)", 5000e3},
        {"MULTIPOINT(0 0,100 80,-179 10)", 1500e3},
        {"POLYGON((0 70,90 70,180 70,-90 70,0 70))", 100e3},
        {"POLYGON((0 60,90 60,0 90,0 60))", 100e3},
        {"POLYGON((170 10,-150 10,-150 50,170 50,170 10),(179 20,-170 20,-170 30,179 30,179 20))", 250e3},
        {"GEOMETRYCOLLECTION(POINT(10 10),LINESTRING(20 20,20.1 20.2),POLYGON((11 10,12 10,12 11,11 10)))",
         5e4},
        {"POLYGON((0 70,90 70,180 70,-90 70,0 70))", -100e3, "LINESTRING(0 70,90 70,180 70,-90 70,0 70)"},
        {"POLYGON((170 10,-150 10,-150 50,170 50,170 10),(179 20,-170 20,-170 30,179 30,179 20))", -250e3,
         "MULTILINESTRING((170 10,-150 10,-150 50,170 50,170 10),(179 20,-170 20,-170 30,179 30,179 20))"},
        {"MULTIPOLYGON(((170 10,180 10,180 20,170 20,170 10)),((-180 10,-170 10,-170 20,-180 20,-180 10)))",
         -200e3, "LINESTRING(170 10,180 10,-170 10,-170 20,180 20,170 20,170 10)"},
        {"POLYGON((-180 -80,-90 -75,0 -70,90 -75,180 -80,180 -90,-180 -90,-180 -80))", -300e3,
         "LINESTRING(-180 -80,-90 -75,0 -70,90 -75,180 -80)"},
        {"POLYGON((10 10,10.2 10,10.2 10.2,10 10.2,10 10))", -5e3,
         "LINESTRING(10 10,10.2 10,10.2 10.2,10 10.2,10 10)"}};
    std::mt19937 random(20);
    for (const auto& [wkt, distance, edges] : cases) {
        const auto source = fromWkt(wkt, 4326);
        const auto made = buffer(*source, distance, QString());
        expectOnMap(*made, wkt);
        const auto border = fromWkt(edges ? edges : wkt, 4326);
        Envelope around = made->envelope();
        around.add(source->envelope());
        int inside = 0;
        for (int i = 0; i < 600; ++i) {
            const double x = std::uniform_real_distribution(around.minX, around.maxX)(random);
            const double sine = std::uniform_real_distribution(std::sin(around.minY / degrees),
                                                               std::sin(around.maxY / degrees))(random);
            Point place(x, std::asin(sine) * degrees);
            const bool isInside = Intersects(*made, place);
            place.setCoordSystem(source->coordSystem());
            const double apart = geometry::distance(*border, place, QString());
            const bool isExpected =
                edges ? apart > -distance && geometry::distance(*source, place, QString()) == 0
                      : apart < distance;
            inside += isInside ? 1 : 0;
            if (std::abs(apart - std::abs(distance)) > 2e-3 * std::abs(distance)) {
                EXPECT_EQ(isInside, isExpected) << wkt << ' ' << text(place.x(), place.y()) << ' ' << apart;
            }
        }
        EXPECT_GT(inside, 5) << wkt;
        made->mapped([&, reach = std::abs(distance)](double* values, std::size_t count, Dimensions) {
            for (std::size_t i = 0; i < 2 * count; i += 2) {
                Point place(values[i], values[i + 1]);
                place.setCoordSystem(source->coordSystem());
                if (std::abs(place.x()) < 180 && std::abs(place.y()) < 90) { // no border of the map
                    EXPECT_NEAR(geometry::distance(*border, place, QString()), reach, 2e-3 * reach)
                        << wkt << ' ' << text(place.x(), place.y());
                }
            }
            return true;
        });
        EXPECT_LT(inside, 600) << wkt;
    }
}

} // namespace
} // namespace orvane::tests
