#include "support/Wkt.h"

#include "platform/geometry/making/LinePath.h"
#include "platform/geometry/measures/Extremes.h"
#include "platform/geometry/measures/Measures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

namespace orvane::tests {

namespace {

using namespace geometry;

class RandomLines {
public:
    double number(double least, double most) { return std::uniform_real_distribution(least, most)(engine_); }
    std::string line() {
        std::string text = "LINESTRING(";
        for (int count = std::uniform_int_distribution(2, 9)(engine_); count > 0; --count) {
            text += std::to_string(number(-180, 180)) + ' ' + std::to_string(number(-80, 80)) +
                    (count > 1 ? "," : ")");
        }
        return text;
    }
    Point point(const Geometry& line) {
        Point made(number(-180, 180), number(-80, 80));
        made.setCoordSystem(line.coordSystem());
        return made;
    }

private:
    std::mt19937 engine_{5};
};

TEST(LinePaths, AgreeWithGeosInThePlane) {
    RandomLines random;
    const GeosContext geos(GEOS_init_r());
    for (int i = 0; i < 1000; ++i) {
        const std::string text = random.line();
        const std::string otherText = random.line();
        const auto line = fromWkt(text);
        const GeosGeometry form = geosFromWkt(geos, text);
        const LinePath path(line);
        const double along = random.number(0, path.length());
        const GeosGeometry expected(GEOSInterpolate_r(geos.get(), form.get(), along), {geos.get()});
        double x = 0.0;
        double y = 0.0;
        GEOSGeomGetX_r(geos.get(), expected.get(), &x);
        GEOSGeomGetY_r(geos.get(), expected.get(), &y);
        const auto made = path.at(along);
        EXPECT_NEAR(std::hypot(made[0] - x, made[1] - y), 0, 1e-9);
        const Point place = random.point(*line);
        const GeosGeometry point(GEOSGeom_createPointFromXY_r(geos.get(), place.x(), place.y()),
                                 {geos.get()});
        EXPECT_NEAR(path.nearestTo(place), GEOSProject_r(geos.get(), form.get(), point.get()), 1e-9);
        double distance = 0.0;
        GEOSFrechetDistance_r(geos.get(), form.get(), geosFromWkt(geos, otherText).get(), &distance);
        EXPECT_DOUBLE_EQ(frechetDistance(*line, *fromWkt(otherText)), distance);
    }
}

TEST(LinePaths, FollowGeodesics) {
    RandomLines random;
    for (int i = 0; i < 300; ++i) {
        const auto line = fromWkt(random.line(), 4326);
        const LinePath path(line);
        EXPECT_NEAR(path.length(), length(*line, QString()), 1e-6);
        const double from = random.number(0, path.length() / 2);
        const double to = random.number(from, path.length());
        EXPECT_NEAR(length(*path.between(from, to), QString()), to - from, 1e-6);
        EXPECT_NEAR(distance(*path.pointAt(from), *line, QString()), 0, 1e-6);
        const Point place = random.point(*line);
        EXPECT_NEAR(distance(*path.pointAt(path.nearestTo(place)), place, QString()),
                    distance(*line, place, QString()), 1e-5);
    }
}

TEST(SpaceDistances, AgreeWithSamples) {
    RandomLines random;
    const auto line = [&random] {
        std::string text = "LINESTRING Z(";
        for (int i = 0; i < 3; ++i) {
            for (int k = 0; k < 3; ++k) {
                text += std::to_string(random.number(0, 9)) + ' ';
            }
            text.back() = i < 2 ? ',' : ')';
        }
        return fromWkt(text);
    };
    const auto at = [](const CoordinateSequence& positions, int sample) {
        constexpr int perEdge = 100;
        const std::size_t edge = std::min<std::size_t>(static_cast<std::size_t>(sample / perEdge), 1);
        const double part = (sample - static_cast<int>(edge) * perEdge) / double(perEdge);
        std::array<double, 3> position{};
        for (std::size_t k = 0; k < 3; ++k) {
            position[k] = positions.position(edge)[k] +
                          part * (positions.position(edge + 1)[k] - positions.position(edge)[k]);
        }
        return position;
    };
    for (int i = 0; i < 60; ++i) {
        const auto a = line();
        const auto b = line();
        double least = INFINITY;
        double most = 0.0;
        for (int j = 0; j <= 200; ++j) {
            for (int k = 0; k <= 200; ++k) {
                const auto p = at(static_cast<const LineString&>(*a).coordinates(), j);
                const auto q = at(static_cast<const LineString&>(*b).coordinates(), k);
                const double apart = std::hypot(p[0] - q[0], p[1] - q[1], p[2] - q[2]);
                least = std::min(least, apart);
                most = std::max(most, apart);
            }
        }
        EXPECT_LE(distanceInSpace(*a, *b), least + 1e-12);
        EXPECT_NEAR(distanceInSpace(*a, *b), least, 0.1);
        EXPECT_NEAR(maxDistanceInSpace(*a, *b), most, 1e-9);
    }
}

} // namespace
} // namespace orvane::tests
