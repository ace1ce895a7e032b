#include "support/Kinds.h"
#include "support/TextTable.h"
#include "support/Wkt.h"

#include "platform/geometry/measures/Measures.h"
#include "platform/geometry/measures/Units.h"

#include <geodesic.h>
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>
#include <vector>

namespace orvane::tests {

namespace {

using namespace geometry;

LineString geographicLine(CoordinateSequence positions) {
    LineString line(std::move(positions));
    line.setCoordSystem(cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(4326));
    return line;
}

TEST(Geodesics, PublishedLengthsAndAreas) {
    int areas = 0;
    const auto geodesics = readTable("geometry/geodesics.txt", QStringLiteral(" "));
    for (const TableRow& row : geodesics) {
        const double latitude1 = row.number(0);
        const double longitude1 = row.number(1);
        const double latitude2 = row.number(2);
        const double longitude2 = row.number(3);
        const double length = row.number(4);
        const double ends[] = {longitude1, latitude1, longitude2, latitude2};
        const LineString line = geographicLine(CoordinateSequence(Dimensions::XY, ends));
        EXPECT_NEAR(geometry::length(line, QString()), length, 3e-8) << row.place;
        // Nearly antipodal ends do not hold the digits on which the area hangs, and beyond 179 degrees the
        // equator itself may be no shortest way any more.
        if (row.fields.size() < 6 || length > 19.9e6 || longitude2 > 179) {
            continue;
        }
        const double corners[] = {longitude1, latitude1,  longitude2, latitude2,  longitude2,
                                  0,          longitude1, 0,          longitude1, latitude1};
        Polygon below(Dimensions::XY, {CoordinateSequence(Dimensions::XY, corners)});
        below.setCoordSystem(line.coordSystem());
        EXPECT_NEAR(area(below, QString()), std::abs(row.number(5)), 1) << row.place;
        ++areas;
    }
    EXPECT_GT(geodesics.size(), 280U);
    EXPECT_GT(areas, 130);
}

TEST(Measures, KnownValues) {
    const std::map<QString, double (*)(const Geometry&, const QString&)> measures = {
        {QStringLiteral("area"), area},
        {QStringLiteral("cartesianArea"), cartesianArea},
        {QStringLiteral("perimeter"), perimeter},
        {QStringLiteral("sphericalPerimeter"), sphericalPerimeter},
        {QStringLiteral("cartesianPerimeter"), cartesianPerimeter},
        {QStringLiteral("length"), length},
        {QStringLiteral("sphericalLength"), sphericalLength},
        {QStringLiteral("cartesianLength"), cartesianLength}};
    for (const TableRow& row : readTable("geometry/measures.txt")) {
        const auto& [measure, epsg, unit, value, tolerance, wkt] = row.columns<6>();
        EXPECT_NEAR(measures.at(measure)(*fromWkt(wkt.toStdString(), epsg.toInt()), unit), value.toDouble(),
                    tolerance.toDouble())
            << row.place;
    }
}

TEST(Measures, MeaninglessUnitsAreErrors) {
    const auto geographic = fromWkt("POLYGON((0 0,1 0,1 1,0 1,0 0))", 4326);
    const auto planar = fromWkt("POLYGON((0 0,1 0,1 1,0 1,0 0))", 32636);
    EXPECT_THROW(cartesianArea(*geographic, QStringLiteral("sq m")), std::runtime_error);
    EXPECT_THROW(sphericalArea(*geographic, QStringLiteral("sq deg")), std::runtime_error);
    EXPECT_THROW(area(*planar, QStringLiteral("sq degrees")), std::runtime_error);
    EXPECT_THROW(sphericalArea(*fromWkt("POLYGON((0 0,1 0,1 1,0 1,0 0))"), QString()), std::runtime_error);
    EXPECT_THROW(area(*geographic, QStringLiteral("km")), std::runtime_error);
    try {
        area(*geographic, QStringLiteral("parsecs"));
        FAIL();
    } catch (const std::runtime_error& failure) {
        for (const char* expected : {"parsecs", "sq km", "ha", "acre"}) {
            EXPECT_NE(std::string(failure.what()).find(expected), std::string::npos) << failure.what();
        }
    }
}

TEST(Units, NamesInBothLanguages) {
    EXPECT_EQ(lengthUnit(QStringLiteral(" Nautical  MILES ")).factor, 1852);
    EXPECT_EQ(lengthUnit(QStringLiteral("морских миль")).factor, 1852);
    EXPECT_EQ(lengthUnit(QStringLiteral("US survey feet")).factor, 1200.0 / 3937.0);
    EXPECT_EQ(areaUnit(QStringLiteral("кв. КМ")).factor, 1e6);
    EXPECT_EQ(areaUnit(QStringLiteral("km²")).factor, 1e6);
    EXPECT_EQ(areaUnit(QStringLiteral("Square Miles")).factor, 1609.344 * 1609.344);
    EXPECT_EQ(areaUnit(QStringLiteral("соток")).factor, 100);
    for (const QString& name : lengthUnitNames()) {
        EXPECT_NO_THROW(lengthUnit(name)) << name.toStdString();
    }
    for (const QString& name : areaUnitNames()) {
        EXPECT_NO_THROW(areaUnit(name)) << name.toStdString();
    }
}

TEST(Distances, KnownValues) {
    for (const TableRow& row : readTable("geometry/distances.txt")) {
        const auto& [kind, epsgA, wktA, epsgB, wktB, expected, tolerance] = row.columns<7>();
        const auto a = fromWkt(wktA.toStdString(), epsgA.toInt());
        const auto b = fromWkt(wktB.toStdString(), epsgB.toInt());
        const double distance = kind == QLatin1String("spherical")
                                    ? sphericalObjectDistance(*a, *b, QStringLiteral("m"))
                                    : cartesianObjectDistance(*a, *b, QString());
        EXPECT_NEAR(distance, expected.toDouble(), tolerance.toDouble()) << row.place;
    }
    EXPECT_THROW(
        sphericalObjectDistance(*fromWkt("POINT(0 0)", 4326), *fromWkt("POINT EMPTY", 4326), QString()),
        std::runtime_error);
}

/// The search with blocks and bounds finds what trying everything finds.
TEST(Distances, NearestOfRandomLines) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> step(-0.8, 0.8);
    const auto wander = [&](double x, double y, std::size_t count) {
        return CoordinateSequence(Dimensions::XY, count, [&](double* target) {
            for (std::size_t i = 0; i < count; ++i) {
                target[2 * i] = x += step(random);
                target[2 * i + 1] = y += step(random);
            }
        });
    };
    geod_geodesic ellipsoid;
    geod_init(&ellipsoid, 6378137, 1 / 298.257223563);
    for (int round = 0; round < 20; ++round) {
        const LineString a = geographicLine(wander(20, 50, 70));
        const LineString b = geographicLine(wander(60, 20 + round, 45));
        double nearest = INFINITY;
        const auto tryAll = [&](const CoordinateSequence& ends, const CoordinateSequence& edges) {
            for (std::size_t i = 1; i < edges.size(); ++i) {
                geod_geodesicline line;
                geod_inverseline(&line, &ellipsoid, edges.y(i - 1), edges.x(i - 1), edges.y(i), edges.x(i),
                                 0);
                for (std::size_t part = 0; part <= 4; ++part) {
                    double latitude = 0;
                    double longitude = 0;
                    geod_position(&line, line.s13 * static_cast<double>(part) / 4, &latitude, &longitude,
                                  nullptr);
                    for (std::size_t k = 0; k < ends.size(); ++k) {
                        double distance = 0;
                        geod_inverse(&ellipsoid, latitude, longitude, ends.y(k), ends.x(k), &distance,
                                     nullptr, nullptr);
                        nearest = std::min(nearest, distance);
                    }
                }
            }
        };
        tryAll(a.coordinates(), b.coordinates());
        tryAll(b.coordinates(), a.coordinates());
        const double found = sphericalObjectDistance(a, b, QString());
        EXPECT_LE(found, nearest + 1e-6);
        EXPECT_GT(found, nearest - 100); // samples are up to 16 km beside the foot, 2000 km away
    }
}

} // namespace

} // namespace orvane::tests
