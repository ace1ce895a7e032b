#include "support/Kinds.h"
#include "support/Wkt.h"

#include "platform/geometry/Measures.h"
#include "platform/geometry/Units.h"

#include <geodesic.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <QFile>

#include <cmath>
#include <optional>
#include <random>
#include <vector>

namespace orvane::tests {

namespace {

using namespace geometry;

struct PublishedGeodesic {
    int line; ///< of the file
    double latitude1, longitude1, latitude2, longitude2;
    double length;
    std::optional<double> areaToEquator;
};

std::vector<PublishedGeodesic> publishedGeodesics() {
    QFile file(QStringLiteral(ORVANE_TEST_DATA "/geometry/geodesics.txt"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    std::vector<PublishedGeodesic> geodesics;
    for (int number = 1; !file.atEnd(); ++number) {
        const QList<QByteArray> fields = file.readLine().simplified().split(' ');
        if (fields[0] != "#") {
            geodesics.push_back({number, fields[0].toDouble(), fields[1].toDouble(), fields[2].toDouble(),
                                 fields[3].toDouble(), fields[4].toDouble(),
                                 fields.size() > 5 ? std::optional(fields[5].toDouble()) : std::nullopt});
        }
    }
    return geodesics;
}

TEST(Geodesics, PublishedLengthsAndAreas) {
    const auto wgs84 = cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(4326);
    int lengths = 0;
    int areas = 0;
    for (const PublishedGeodesic& entry : publishedGeodesics()) {
        const double ends[] = {entry.longitude1, entry.latitude1, entry.longitude2, entry.latitude2};
        LineString line(CoordinateSequence(Dimensions::XY, ends));
        line.setCoordSystem(wgs84);
        EXPECT_NEAR(length(line, QString()), entry.length, 3e-8) << "geodesics.txt:" << entry.line;
        ++lengths;
        // Nearly antipodal ends do not hold the digits on which the area hangs, and beyond 179 degrees the
        // equator itself may be no shortest way any more.
        if (!entry.areaToEquator || entry.length > 19.9e6 || entry.longitude2 > 179) {
            continue;
        }
        const double corners[] = {entry.longitude1, entry.latitude1,
                                  entry.longitude2, entry.latitude2,
                                  entry.longitude2, 0,
                                  entry.longitude1, 0,
                                  entry.longitude1, entry.latitude1};
        Polygon below(Dimensions::XY, {CoordinateSequence(Dimensions::XY, corners)});
        below.setCoordSystem(wgs84);
        EXPECT_NEAR(area(below, QString()), std::abs(*entry.areaToEquator), 1)
            << "geodesics.txt:" << entry.line;
        ++areas;
    }
    EXPECT_GT(lengths, 280);
    EXPECT_GT(areas, 130);
}

struct MeasureCase {
    const char* wkt;
    int epsg;
    double (*measure)(const Geometry&, const QString&);
    const char* units;
    double expected;
    double tolerance;
};

TEST(Measures, KnownValues) {
    const char* const square =
        "POLYGON((0 0,1000 0,1000 1000,0 1000,0 0),(100 100,200 100,200 200,100 200,100 100))";
    const char* const cell = "POLYGON((0 0,1 0,1 1,0 1,0 0))";
    const MeasureCase cases[] = {
        // Areas and perimeters of C. F. F. Karney's planimeter tests: a polar cap, a rhombus, an octant.
        {"POLYGON((0 89,90 89,180 89,270 89,0 89))", 4326, area, "", 24952305678.0, 1},
        {"POLYGON((0 89,90 89,180 89,270 89,0 89))", 4326, perimeter, "", 631819.8745, 1e-4},
        {"POLYGON((0 -89,90 -89,180 -89,270 -89,0 -89))", 4326, area, "", 24952305678.0, 1},
        {"POLYGON((-1 0,0 -1,1 0,0 1,-1 0))", 4326, area, "", 24619419146.0, 1},
        {"POLYGON((-1 0,0 -1,1 0,0 1,-1 0))", 4326, perimeter, "", 627598.2731, 1e-4},
        {"POLYGON((0 90,0 0,90 0,0 90))", 4326, area, "", 63758202715511.0, 1},
        {"POLYGON((0 90,0 0,90 0,0 90))", 4326, sphericalPerimeter, "km", 30022.685, 1e-3},
        // The direction of rings does not matter.
        {"POLYGON((0 0,0 1,1 1,1 0,0 0))", 4326, area, "sq km", 12308.778361, 1e-6},
        {cell, 4326, area, "га", 1230877.8361, 1e-4},
        {cell, 4326, cartesianArea, "", 1, 0},
        {cell, 4326, cartesianPerimeter, "degrees", 4, 0},
        {"MULTILINESTRING((0 0,0 1),(0 0,1 0))", 4326, length, "m", 110574.388557799 + 111319.490793274,
         1e-8},
        {square, 32636, area, "", 990000, 0},
        {square, 32636, cartesianArea, "ha", 99, 1e-12},
        {square, 32636, perimeter, "Километров", 4.4, 1e-12},
        {square, 0, area, "acres", 990000 / 4046.8564224, 1e-9},
        {square, 0, length, "", 0, 0},
        {"LINESTRING(0 0,3 4)", 0, perimeter, "", 0, 0},
        {"LINESTRING(0 0,3 4)", 32636, length, "ft", 5 / 0.3048, 1e-12},
        {"LINESTRING(0 0,3 4)", 2263, length, "m", 5 * 1200.0 / 3937.0, 1e-12}, // a system in survey feet
        {"LINESTRING(0 0,3 4)", 2263, cartesianLength, "", 5, 0},
        {"POINT(1 2)", 4326, length, "", 0, 0},
        {"POLYGON EMPTY", 4326, area, "", 0, 0},
        // Web Mercator stretches by 1 / cos(latitude); the ellipsoid does not.
        {"LINESTRING(0 8399737.889818,111319.490793 8399737.889818)", 3857, sphericalLength, "", 55799.98,
         10},
    };
    for (const MeasureCase& entry : cases) {
        EXPECT_NEAR(entry.measure(*fromWkt(entry.wkt, entry.epsg), QString::fromUtf8(entry.units)),
                    entry.expected, entry.tolerance)
            << entry.wkt << ' ' << entry.epsg << ' ' << entry.units;
    }
}

/// The geometries of a GeoPackage's layer. A value is a header, whose flags tell the size of the envelope in
/// it, and well-known binary.
std::vector<std::shared_ptr<Geometry>> geometriesOfGeoPackage(const char* file, const char* sql) {
    constexpr int envelopeSizes[] = {0, 32, 48, 48, 64};
    std::vector<std::shared_ptr<Geometry>> geometries;
    sqlite3* database = nullptr;
    sqlite3_stmt* statement = nullptr;
    sqlite3_open_v2(file, &database, SQLITE_OPEN_READONLY, nullptr);
    sqlite3_prepare_v2(database, sql, -1, &statement, nullptr);
    while (sqlite3_step(statement) == SQLITE_ROW) {
        const std::string_view blob(static_cast<const char*>(sqlite3_column_blob(statement, 0)),
                                    static_cast<std::size_t>(sqlite3_column_bytes(statement, 0)));
        const auto header = static_cast<std::size_t>(8 + envelopeSizes[blob[3] >> 1 & 7]);
        geometries.push_back(GeometryFactory::fromWkb(
            blob.substr(header), cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(4326)));
    }
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return geometries;
}

/// The area inside one ring by PROJ's planimeter.
double planimeterArea(const CoordinateSequence& ring) {
    geod_geodesic ellipsoid;
    geod_init(&ellipsoid, 6378137, 1 / 298.257223563);
    geod_polygon polygon;
    geod_polygon_init(&polygon, 0);
    for (std::size_t i = 0; i + 1 < ring.size(); ++i) {
        geod_polygon_addpoint(&ellipsoid, &polygon, ring.y(i), ring.x(i));
    }
    double area = 0;
    geod_polygon_compute(&ellipsoid, &polygon, 0, 1, &area, nullptr);
    return std::abs(area);
}

TEST(Measures, AreasOfTheCountries) {
    const auto countries =
        geometriesOfGeoPackage(ORVANE_EXAMPLE_DATA "/countries.gpkg", "Select geom From countries");
    EXPECT_GT(countries.size(), 150U);
    for (const auto& country : countries) {
        double expected = 0;
        const auto addPolygon = [&expected](const Geometry& part) {
            const auto& rings = dynamic_cast<const Polygon&>(part).rings();
            for (std::size_t i = 0; i < rings.size(); ++i) {
                expected += i == 0 ? planimeterArea(rings[i]) : -planimeterArea(rings[i]);
            }
        };
        if (const auto* collection = dynamic_cast<const GeometryCollection*>(country.get())) {
            for (const GeometryPtr& part : collection->parts()) {
                addPolygon(*part);
            }
        } else {
            addPolygon(*country);
        }
        EXPECT_NEAR(area(*country, QString()), expected, expected * 1e-12);
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
    const QString metres = QStringLiteral("m");
    const auto moscow = fromWkt("POINT(37.62 55.75)", 4326);
    // geod -I +ellps=WGS84 for 55.75 37.62 59.94 30.31
    EXPECT_NEAR(sphericalObjectDistance(*moscow, *fromWkt("POINT(30.31 59.94)", 4326), metres), 636657.266,
                5e-4);
    // The foot of the way to a meridian that both ends see far off.
    const auto meridian = fromWkt("LINESTRING(0 -60,0 60)", 4326);
    EXPECT_NEAR(sphericalObjectDistance(*meridian, *fromWkt("POINT(1 0)", 4326), metres), 111319.490793,
                1e-5);
    // Across the antimeridian, and inside.
    EXPECT_NEAR(
        sphericalObjectDistance(*fromWkt("POINT(179.5 0)", 4326), *fromWkt("POINT(-179.5 0)", 4326), metres),
        111319.490793, 1e-5);
    EXPECT_EQ(sphericalObjectDistance(*fromWkt("POLYGON((170 -10,190 -10,190 10,170 10,170 -10))", 4326),
                                      *fromWkt("POINT(-175 0)", 4326), metres),
              0);
    EXPECT_EQ(cartesianObjectDistance(*fromWkt("LINESTRING(0 0,10 0)"), *fromWkt("POINT(5 3)"), QString()),
              3);
    // Different systems meet in the first one's.
    EXPECT_NEAR(
        cartesianObjectDistance(*fromWkt("POINT(0 0)", 3857), *fromWkt("POINT(1 0)", 4326), QString()),
        111319.490793, 1e-5);
    EXPECT_THROW(sphericalObjectDistance(*moscow, *fromWkt("POINT EMPTY", 4326), metres), std::runtime_error);
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
        LineString a(wander(20, 50, 70));
        LineString b(wander(60, 20 + round, 45));
        a.setCoordSystem(cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(4326));
        b.setCoordSystem(a.coordSystem());
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
