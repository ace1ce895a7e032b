#include "support/Kinds.h"
#include "support/RandomText.h"
#include "support/TextTable.h"
#include "support/Wkt.h"

#include "platform/geometry/measures/Extremes.h"
#include "platform/geometry/measures/Measures.h"
#include "platform/geometry/measures/Neighbourhood.h"
#include "platform/geometry/measures/Units.h"

#include <geodesic.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
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
    const std::pair<double, const char*> areas[] = {
        {1e6, "кв. КМ|кв.км|квкм|кв км|км кв.|км.кв.|км2|км^2|км²|квадратных километров|sq. km|sqkm|Sq Km|"
              "km2|km^2|km²|km ^ 2|sq.km.|square kilometres|km sq"},
        {1.0, "м2|кв.м.|кв м|м.кв|sqm|sq.m|m²|m^2|квадратный метр"},
        {1609.344 * 1609.344, "Square Miles|sqmi|mi2|кв.мили"},
        {0.3048 * 0.3048, "sqft|sq. ft.|ft²|кв.фут"},
        {1852.0 * 1852.0, "sq nautical mi|кв. морских миль"},
        {100, "соток|ар"},
        {1e4, "га.|HA|гектаров"}};
    for (const auto& [factor, names] : areas) {
        for (const std::string& name : pieces(names)) {
            EXPECT_EQ(areaUnit(QString::fromStdString(name)).factor, factor) << name;
        }
    }
    EXPECT_EQ(lengthUnit(QStringLiteral("м.")).factor, 1);
    for (const char* const unknown : {"", "2", "km22", "sq", "кв", "sq km2 m", "2km", "km", "км", "h a x"}) {
        EXPECT_THROW(areaUnit(QString::fromUtf8(unknown)), std::runtime_error) << unknown;
    }
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
        if (epsgA != epsgB) {
            continue;
        }
        // The line between the nearest positions is as long, and its ends lie on the two.
        const auto line = shortestLine(*a, *b);
        const double general = geometry::distance(*a, *b, QString());
        EXPECT_NEAR(length(*line, QString()), general, 1e-9 * (1 + general)) << row.place;
        for (const auto& [end, other] : {std::pair(0U, a), std::pair(1U, b)}) {
            Point place(line->coordinates().x(end), line->coordinates().y(end));
            place.setCoordSystem(a->coordSystem());
            EXPECT_NEAR(geometry::distance(place, *other, QString()), 0, 1e-5) << row.place;
        }
        EXPECT_GE(maxDistance(*a, *b), general * (1 - 1e-12)) << row.place;
        EXPECT_GE(hausdorffDistance(*a, *b, 1), general * (1 - 1e-12)) << row.place;
    }
    EXPECT_THROW(
        sphericalObjectDistance(*fromWkt("POINT(0 0)", 4326), *fromWkt("POINT EMPTY", 4326), QString()),
        std::runtime_error);
}

/// Positions on the geodesics of a ring or line, found one by one.
class SampledLine {
public:
    static constexpr std::size_t perEdge = 150;

    explicit SampledLine(const CoordinateSequence& vertices) {
        geod_init(&ellipsoid_, 6378137, 1 / 298.257223563);
        for (std::size_t i = 0; i + 1 < std::max<std::size_t>(vertices.size(), 2); ++i) {
            const std::size_t next = std::min(i + 1, vertices.size() - 1);
            geod_inverseline(&edges_.emplace_back(), &ellipsoid_, vertices.y(i), vertices.x(i),
                             vertices.y(next), vertices.x(next), 0);
            step_ = std::max(step_, edges_.back().s13 / perEdge);
        }
    }

    struct At {
        double latitude, longitude;
    };
    std::size_t size() const { return edges_.size() * perEdge; }
    double step() const { return step_; }
    /// `where` counts samples, fractions lie between them.
    At at(double where) const {
        const auto edge =
            std::min(static_cast<std::size_t>(std::max(where, 0.0)) / perEdge, edges_.size() - 1);
        const double along = std::clamp(where / perEdge - static_cast<double>(edge), 0.0, 1.0);
        At position{};
        geod_position(&edges_[edge], along * edges_[edge].s13, &position.latitude, &position.longitude,
                      nullptr);
        return position;
    }
    double distance(const At& a, const At& b) const {
        double metres = 0;
        geod_inverse(&ellipsoid_, a.latitude, a.longitude, b.latitude, b.longitude, &metres, nullptr,
                     nullptr);
        return metres;
    }
    /// Whether the line goes around a position rather than past it.
    bool goesAround(const At& position) const {
        double turned = 0;
        double before = NAN;
        for (std::size_t i = 0; i <= size(); ++i) {
            const At here = at(static_cast<double>(i));
            double azimuth = 0;
            geod_inverse(&ellipsoid_, position.latitude, position.longitude, here.latitude, here.longitude,
                         nullptr, &azimuth, nullptr);
            turned += i > 0 ? std::remainder(azimuth - before, 360.0) : 0.0;
            before = azimuth;
        }
        return std::abs(turned) > 180;
    }

private:
    geod_geodesic ellipsoid_{};
    std::vector<geod_geodesicline> edges_;
    double step_ = 0;
};

/// The least distance of samples, and what is found near by with finer and finer ones.
double sampledDistance(const SampledLine& a, const SampledLine& b, double& coarse) {
    const auto inSpace = [](const SampledLine& line) {
        std::vector<std::array<double, 3>> vectors;
        for (std::size_t i = 0; i <= line.size(); ++i) {
            const SampledLine::At at = line.at(static_cast<double>(i));
            const double latitude = at.latitude * M_PI / 180, longitude = at.longitude * M_PI / 180;
            vectors.push_back({std::cos(latitude) * std::cos(longitude),
                               std::cos(latitude) * std::sin(longitude), std::sin(latitude)});
        }
        return vectors;
    };
    const auto vectorsA = inSpace(a), vectorsB = inSpace(b);
    double bestA = 0, bestB = 0, nearest = INFINITY;
    for (std::size_t i = 0; i < vectorsA.size(); ++i) {
        for (std::size_t j = 0; j < vectorsB.size(); ++j) {
            const double x = vectorsA[i][0] - vectorsB[j][0], y = vectorsA[i][1] - vectorsB[j][1],
                         z = vectorsA[i][2] - vectorsB[j][2];
            if (const double square = x * x + y * y + z * z; square < nearest) {
                nearest = square;
                bestA = static_cast<double>(i);
                bestB = static_cast<double>(j);
            }
        }
    }
    double best = coarse = a.distance(a.at(bestA), b.at(bestB));
    for (double width = 1; width > 1e-8; width /= 2) {
        const double centreA = bestA, centreB = bestB;
        for (int i = -2; i <= 2; ++i) {
            for (int j = -2; j <= 2; ++j) {
                const double whereA = centreA + i * width / 2, whereB = centreB + j * width / 2;
                if (const double metres = a.distance(a.at(whereA), b.at(whereB)); metres < best) {
                    best = metres;
                    bestA = whereA;
                    bestB = whereB;
                }
            }
        }
    }
    return best;
}

/// Anywhere on the globe, over the poles and the antimeridian, with edges of thousands of kilometres.
TEST(Distances, AgreeWithSamples) {
    const QByteArray given = qgetenv("ORVANE_TEST_DISTANCES");
    const int rounds = given.isEmpty() ? 120 : given.toInt();
    std::mt19937 random(7);
    const auto number = [&](double least, double most) {
        return std::uniform_real_distribution<double>(least, most)(random);
    };
    geod_geodesic ellipsoid;
    geod_init(&ellipsoid, 6378137, 1 / 298.257223563);
    // Around one place, so that many meet.
    const auto shape = [&](double latitude, double longitude, bool isArea) {
        const auto count = isArea ? 3 + random() % 3 : 1 + random() % 4;
        const double size = number(2e5, 5e6);
        std::vector<double> azimuths(count);
        std::generate(azimuths.begin(), azimuths.end(), [&] { return number(-180, 180); });
        std::sort(azimuths.begin(), azimuths.end());
        std::vector<double> positions;
        for (const double azimuth : azimuths) {
            double y = 0, x = 0;
            geod_direct(&ellipsoid, latitude, longitude, azimuth, number(0.3, 1) * size, &y, &x, nullptr);
            positions.insert(positions.end(), {x, y});
        }
        if (isArea) {
            positions.insert(positions.end(), {positions[0], positions[1]});
        }
        return CoordinateSequence(Dimensions::XY, positions);
    };
    const auto geometryOf = [](const CoordinateSequence& positions,
                               bool isArea) -> std::shared_ptr<Geometry> {
        std::shared_ptr<Geometry> geometry;
        if (isArea) {
            geometry = std::make_shared<Polygon>(Dimensions::XY, std::vector{positions});
        } else if (positions.size() == 1) {
            geometry = std::make_shared<Point>(positions.x(0), positions.y(0));
        } else {
            geometry = std::make_shared<LineString>(positions);
        }
        geometry->setCoordSystem(cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(4326));
        return geometry;
    };
    int apart = 0, inside = 0, crossing = 0;
    for (int round = 0; round < rounds; ++round) {
        const double shift = round % 3 == 0 ? 5 : 40; // degrees: near ones hold each other now and then
        const double latitude = round % 5 == 0 ? 89 : number(-90, 90);
        const double longitude = round % 7 == 0 ? 179 : number(-180, 180);
        const bool isAreaA = random() % 2 == 0, isAreaB = random() % 2 == 0;
        const CoordinateSequence positionsA = shape(latitude, longitude, isAreaA);
        const CoordinateSequence positionsB = shape(latitude - std::copysign(number(0, shift), latitude),
                                                    longitude + number(-shift, shift), isAreaB);
        const auto a = geometryOf(positionsA, isAreaA), b = geometryOf(positionsB, isAreaB);
        const std::string place = toWkt(*a) + ' ' + toWkt(*b);
        const double found = sphericalObjectDistance(*a, *b, QString());
        ASSERT_NEAR(found, sphericalObjectDistance(*b, *a, QString()), 1e-6) << place;
        const SampledLine linesA(positionsA), linesB(positionsB);
        double coarse = 0;
        const double sampled = sampledDistance(linesA, linesB, coarse);
        // Whatever goes around a place of nearly half the globe, goes around what is opposite as well.
        const auto holds = [&](const SampledLine& ring, const SampledLine& other) {
            return ring.goesAround(other.at(0)) && ring.distance(ring.at(0), other.at(0)) < 1e7;
        };
        if (coarse > linesA.step() + linesB.step() &&
            ((isAreaA && holds(linesA, linesB)) || (isAreaB && holds(linesB, linesA)))) {
            ASSERT_EQ(found, 0) << place;
            ++inside;
        } else if (found == 0) {
            ASSERT_LE(coarse, linesA.step() + linesB.step()) << place;
            ++crossing;
        } else {
            ASSERT_LE(found, sampled + 1e-6) << place;
            ASSERT_GE(found, std::min(sampled - 0.5, coarse - (linesA.step() + linesB.step()) / 2)) << place;
            ASSERT_NEAR(found, sampled, std::max(0.5, sampled / 100)) << place;
            ++apart;
        }
    }
    EXPECT_GT(apart, rounds / 5);
    EXPECT_GT(crossing, rounds / 10);
    EXPECT_GT(inside, rounds / 60);
}

/// Every pair of their edges would be hundreds of millions.
TEST(Distances, OfLongLines) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> step(-0.01, 0.01);
    const auto wander = [&](double x, double y) {
        return geographicLine(CoordinateSequence(Dimensions::XY, 20000, [&](double* target) {
            for (std::size_t i = 0; i < 20000; ++i) {
                target[2 * i] = x += step(random);
                target[2 * i + 1] = y += step(random);
            }
        }));
    };
    const LineString a = wander(20, 50), b = wander(60, 20), c = wander(20.5, 50.5);
    EXPECT_NEAR(sphericalObjectDistance(a, b, QString()), sphericalObjectDistance(b, a, QString()), 1e-6);
    EXPECT_EQ(sphericalObjectDistance(a, c, QString()), sphericalObjectDistance(c, a, QString()));
}

TEST(Measures, EnvelopesBoundTheBulgeOfGeodesics) {
    std::mt19937 random(static_cast<unsigned>(::testing::UnitTest::GetInstance()->random_seed()));
    for (int i = 0; i < 3000; ++i) {
        const double size = std::pow(10.0, std::uniform_real_distribution(-4.0, 2.2)(random));
        std::uniform_real_distribution aside(-size, size);
        const double latitude = std::uniform_real_distribution(-90.0, 90.0)(random);
        const LineString line(CoordinateSequence(Dimensions::XY, 4, [&](double* target) {
            for (int j = 0; j < 4; ++j) {
                target[2 * j] = aside(random);
                target[2 * j + 1] = std::clamp(latitude + aside(random), -90.0, 90.0);
            }
        }));
        constexpr double rounding = 1e-12; // degrees
        if (const double bulge = geodesicBulge(line); bulge > rounding) {
            EXPECT_TRUE(mayBulgeBeyond(bulge * (1.0 - 1e-6) - rounding, line.envelope())) << toWkt(line);
        }
        EXPECT_TRUE(size > 80.0 || !mayBulgeBeyond(46.0, line.envelope()));
    }
    EXPECT_FALSE(mayBulgeBeyond(1e-9, Envelope{37.0, 55.0, 37.0008, 55.0008}));
    EXPECT_TRUE(mayBulgeBeyond(1e300, Envelope{-170.0, 0.0, 170.0, 1.0}));
}

} // namespace

} // namespace orvane::tests
