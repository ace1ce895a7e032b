#include "support/Kinds.h"
#include "support/TextTable.h"
#include "support/Wkt.h"

#include "platform/geometry/relations/Relations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <thread>

namespace orvane::tests {

namespace {

using namespace geometry;

const char* const square = "POLYGON((0 0,4 0,4 4,0 4,0 0))";

TEST(Relations, Table) {
    for (const TableRow& row : readTable("geometry/relations.txt")) {
        const auto& [wktA, wktB, intersects, contains, containsCentroid] = row.columns<5>();
        const auto a = fromWkt(wktA.toStdString());
        const auto b = fromWkt(wktB.toStdString());
        for (int round = 0; round < 3; ++round) { // plain first, prepared from the second time on
            const auto place = row.place + ", round " + std::to_string(round);
            EXPECT_EQ(Intersects(*a, *b), intersects.toInt() == 1) << place;
            EXPECT_EQ(Intersects(*b, *a), intersects.toInt() == 1) << place;
            EXPECT_EQ(Contains(*a, *b), contains.toInt() == 1) << place;
            EXPECT_EQ(ContainsCentroid(*a, *b), containsCentroid.toInt() == 1) << place;
        }
    }
}

TEST(Relations, MixedSystems) {
    const auto area = fromWkt(
        "POLYGON((3300000 8200000,3500000 8200000,3500000 8500000,3300000 8500000,3300000 8200000))", 3857);
    const auto inside = fromWkt("POINT(30.5 60)", 4326);
    EXPECT_TRUE(Contains(*area, *inside));
    EXPECT_TRUE(Intersects(*inside, *area));
    EXPECT_FALSE(Contains(*area, *fromWkt("POINT(30.5 60)")));
    // A position without a place in the system of the other.
    EXPECT_FALSE(Intersects(*fromWkt("POLYGON((0 0,1 0,1 1,0 0))", 3857), *fromWkt("POINT(0 1e30)", 4326)));
}

TEST(Relations, NothingIsRelatedToNowhere) {
    const auto area = fromWkt(square);
    const Point nowhere(1, INFINITY);
    EXPECT_FALSE(Intersects(*area, nowhere));
    EXPECT_FALSE(Contains(*area, nowhere));
    EXPECT_FALSE(containsPosition(*area, NAN, 1));
    EXPECT_EQ(centroid(nowhere), nullptr);
    EXPECT_THROW(normalizedGeometry(std::make_shared<Point>(nowhere)), std::runtime_error);
}

/// Random and degenerate pairs: on a small grid shapes touch, overlap and repeat vertices all the time.
TEST(Relations, AgreeWithGeosOnRandomPairs) {
    std::mt19937 random(20261122);
    const auto number = [&](int most) { return static_cast<int>(random() % static_cast<unsigned>(most)); };
    const auto position = [&] { return std::to_string(number(6)) + ' ' + std::to_string(number(6)); };
    const auto shape = [&]() -> std::string {
        const std::string first = position();
        switch (number(4)) {
        case 0: return "POINT(" + first + ")";
        case 1: return "LINESTRING(" + first + "," + position() + "," + position() + ")";
        case 2: return "MULTIPOINT((" + first + "),(" + position() + "))";
        default:
            return "POLYGON((" + first + "," + position() + "," + position() + "," + position() + "," +
                   first + "))";
        }
    };
    const GeosContext context(GEOS_init_r());
    int compared = 0;
    for (int round = 0; round < 3000; ++round) {
        const std::string textA = shape();
        const std::string textB = shape();
        const auto a = fromWkt(textA);
        const auto b = fromWkt(textB);
        const GeosGeometry geosA = geosFromWkt(context, textA);
        const GeosGeometry geosB = geosFromWkt(context, textB);
        const bool areValid =
            GEOSisValid_r(context.get(), geosA.get()) == 1 && GEOSisValid_r(context.get(), geosB.get()) == 1;
        for (int again = 0; again < 2;
             ++again) { // what is not valid has an answer as well, but none to compare
            const bool intersects = Intersects(*a, *b);
            const bool contains = Contains(*a, *b);
            if (areValid) {
                EXPECT_EQ(intersects, GEOSIntersects_r(context.get(), geosA.get(), geosB.get()) == 1)
                    << textA << ' ' << textB;
                EXPECT_EQ(contains, GEOSContains_r(context.get(), geosA.get(), geosB.get()) == 1)
                    << textA << ' ' << textB;
            }
        }
        compared += areValid;
    }
    EXPECT_GT(compared, 1000);
}

TEST(Relations, OneGeometryForManyThreads) {
    const auto area = fromWkt(square);
    const auto other = fromWkt("POLYGON((1 1,2 1,2 2,1 2,1 1))");
    std::vector<std::jthread> threads;
    std::atomic<int> wrong{0};
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&, number] {
            for (int i = 0; i < 300; ++i) {
                wrong += containsPosition(*area, 0.5 + i % 3, 1.5) ? 0 : 1;
                wrong += number % 2 == 0 ? !Contains(*area, *other) : Contains(*other, *area);
            }
        });
    }
    threads.clear();
    EXPECT_EQ(wrong, 0);
}

TEST(Normalized, Table) {
    const std::pair<const char*, const char*> cases[] = {
        {"POLYGON((0 0,2 2,2 0,0 2,0 0))", "MULTIPOLYGON(((0 2,1 1,0 0,0 2)),((2 0,1 1,2 2,2 0)))"},
        {"POLYGON((0 0,1 0,2 0,0 0))", "MULTILINESTRING((0 0,1 0),(1 0,2 0))"},
        {"LINESTRING(1 1,1 1)", "POINT(1 1)"},
        {square, square},
    };
    for (const auto& [source, expected] : cases) {
        EXPECT_EQ(toWkt(*normalizedGeometry(fromWkt(source))), expected) << source;
    }
    const GeometryPtr valid = fromWkt(square);
    EXPECT_EQ(normalizedGeometry(valid), valid);
    // A ring that is not closed is closed.
    const double open[] = {0, 0, 2, 0, 2, 2};
    const auto triangle =
        std::make_shared<Polygon>(Dimensions::XY, std::vector{CoordinateSequence(Dimensions::XY, open)});
    EXPECT_EQ(toWkt(*normalizedGeometry(triangle)), "POLYGON((0 0,2 0,2 2,0 0))");
}

TEST(Points, CentroidAndPointOnSurface) {
    const auto ring = fromWkt("POLYGON((0 0,10 0,10 10,0 10,0 0),(1 1,9 1,9 9,1 9,1 1))", 4326);
    EXPECT_EQ(toWkt(*centroid(*ring)), "POINT(5 5)");
    EXPECT_TRUE(Contains(*ring, *PointOnSurface(*ring)));
    EXPECT_EQ(PointOnSurface(*ring)->coordSystem(), ring->coordSystem());
    EXPECT_EQ(centroid(*fromWkt("MULTIPOINT EMPTY")), nullptr);
    EXPECT_EQ(PointOnSurface(*fromWkt("POLYGON EMPTY")), nullptr);
}

} // namespace

} // namespace orvane::tests
