#include "support/Kinds.h"
#include "support/TextTable.h"
#include "support/Wkt.h"

#include "platform/geometry/relations/Relations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
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

/// A geometry and the simple ones that it consists of. On a small grid shapes touch, overlap and repeat
/// vertices all the time.
struct RandomShape {
    std::string text;
    std::vector<std::string> parts;
    bool isCollection = false;
};

class RandomShapes {
public:
    RandomShape next() {
        RandomShape shape;
        shape.isCollection = number(2) == 0;
        if (shape.isCollection) {
            shape.text = collection(shape.parts, 2);
            return shape;
        }
        const int kind = number(3);
        const int count = number(3) == 0 ? 1 + number(3) : 1;
        std::string contents;
        for (int i = 0; i < count; ++i) {
            contents += (i > 0 ? "," : "") + simple(kind, shape.parts);
        }
        const char* const kinds[] = {"POINT", "LINESTRING", "POLYGON"};
        shape.text = (count > 1 ? "MULTI" : "") + std::string(kinds[kind]) +
                     (count > 1 ? "(" + contents + ")" : contents);
        return shape;
    }

private:
    int number(int most) { return static_cast<int>(random_() % static_cast<unsigned>(most)); }
    std::string position() { return std::to_string(number(7)) + ' ' + std::to_string(number(7)); }

    std::string square(int least) {
        const int x = number(5), y = number(5), size = least + number(3);
        const auto corner = [](int cornerX, int cornerY) {
            return std::to_string(cornerX) + ' ' + std::to_string(cornerY);
        };
        return "(" + corner(x, y) + "," + corner(x + size, y) + "," + corner(x + size, y + size) + "," +
               corner(x, y + size) + "," + corner(x, y) + ")";
    }

    /// What stands behind the name of the kind. A line of no length is the point that it lies on.
    std::string simple(int kind, std::vector<std::string>& parts) {
        const std::string first = position();
        if (kind == 0) {
            parts.push_back("POINT(" + first + ")");
            return "(" + first + ")";
        }
        if (kind == 1) {
            const bool hasLength = number(6) > 0;
            const std::string text =
                "(" + first + "," + (hasLength ? position() + "," + position() : first) + ")";
            const bool isPoint = text == "(" + first + "," + first + "," + first + ")" || !hasLength;
            parts.push_back(isPoint ? "POINT(" + first + ")" : "LINESTRING" + text);
            return text;
        }
        std::string text =
            "((" + first + "," + position() + "," + position() + "," + position() + "," + first + "))";
        if (number(2) == 0) {
            text = "(" + square(2) + (number(3) == 0 ? "," + square(1) : "") + ")";
        }
        parts.push_back("POLYGON" + text);
        return text;
    }

    std::string collection(std::vector<std::string>& parts, int levels) {
        const char* const kinds[] = {"POINT", "LINESTRING", "POLYGON"};
        std::string text = "GEOMETRYCOLLECTION(";
        const int count = 1 + number(3);
        for (int i = 0; i < count; ++i) {
            const int kind = number(levels > 0 ? 4 : 3);
            text += i > 0 ? "," : "";
            text += kind == 3 ? collection(parts, levels - 1) : kinds[kind] + simple(kind, parts);
        }
        return text + ")";
    }

    std::mt19937 random_{20261122};
};

/// Every answer twice over: in both orders, and again with what was prepared for the first.
TEST(Relations, OfRandomPairsAreThoseOfTheirParts) {
    const QByteArray given = qgetenv("ORVANE_TEST_RELATIONS");
    const int rounds = given.isEmpty() ? 4000 : given.toInt();
    const GeosContext context(GEOS_init_r());
    using Predicate = char (*)(GEOSContextHandle_t, const GEOSGeometry*, const GEOSGeometry*);
    const auto partsOf = [&](const RandomShape& shape, bool& areValid) {
        std::vector<GeosGeometry> parts;
        for (const std::string& text : shape.parts) {
            parts.push_back(geosFromWkt(context, text));
            areValid = areValid && GEOSisValid_r(context.get(), parts.back().get()) == 1;
        }
        return parts;
    };
    const auto any = [&](const std::vector<GeosGeometry>& some, const GeosGeometry& other,
                         Predicate predicate) {
        return std::any_of(some.begin(), some.end(), [&](const GeosGeometry& one) {
            return predicate(context.get(), one.get(), other.get()) == 1;
        });
    };
    RandomShapes shapes;
    int compared = 0;
    for (int round = 0; round < rounds; ++round) {
        const RandomShape shapeA = shapes.next();
        const RandomShape shapeB = shapes.next();
        const std::string place = shapeA.text + ' ' + shapeB.text;
        const auto a = fromWkt(shapeA.text);
        const auto b = fromWkt(shapeB.text);
        const bool meet = Intersects(*a, *b);
        const bool contains = Contains(*a, *b);
        for (int again = 0; again < 4; ++again) {
            ASSERT_EQ(Intersects(*a, *b), meet) << place;
            ASSERT_EQ(Intersects(*b, *a), meet) << place;
            ASSERT_EQ(Contains(*a, *b), contains) << place;
        }
        ASSERT_EQ(relates(Relation::Touches, *a, *b), relates(Relation::Touches, *b, *a)) << place;
        ASSERT_EQ(relates(Relation::Overlaps, *a, *b), relates(Relation::Overlaps, *b, *a)) << place;
        ASSERT_EQ(relates(Relation::Crosses, *a, *b), relates(Relation::Crosses, *b, *a)) << place;
        bool areValid = true;
        const auto partsA = partsOf(shapeA, areValid);
        const auto partsB = partsOf(shapeB, areValid);
        if (!areValid) {
            continue;
        }
        ++compared;
        ASSERT_EQ(meet,
                  std::any_of(partsB.begin(), partsB.end(),
                              [&](const GeosGeometry& part) { return any(partsA, part, GEOSIntersects_r); }))
            << place;
        bool allContained = true;
        bool allMet = true;
        for (const GeosGeometry& part : partsB) {
            allContained = allContained && any(partsA, part, GEOSContains_r);
            allMet = allMet && any(partsA, part, GEOSIntersects_r);
        }
        ASSERT_TRUE((contains || !allContained) && (!contains || allMet)) << place;
        ASSERT_TRUE(!contains || relates(Relation::Covers, *a, *b)) << place;
        if (partsA.size() == 1 && partsB.size() == 1) {
            const std::pair<Relation, Predicate> relations[] = {
                {Relation::Contains, GEOSContains_r}, {Relation::Covers, GEOSCovers_r},
                {Relation::Equals, GEOSEquals_r},     {Relation::Touches, GEOSTouches_r},
                {Relation::Crosses, GEOSCrosses_r},   {Relation::Overlaps, GEOSOverlaps_r}};
            for (const auto& [relation, predicate] : relations) {
                ASSERT_EQ(relates(relation, *a, *b),
                          predicate(context.get(), partsA[0].get(), partsB[0].get()) == 1)
                    << static_cast<int>(relation) << ' ' << place;
            }
        }
    }
    EXPECT_GT(compared, rounds / 4);
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
