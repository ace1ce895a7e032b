#include "platform/cs/CoordSystem.h"
#include "platform/cs/Transformer.h"

#include "support/TextTable.h"

#include <gtest/gtest.h>

#include <cmath>
#include <thread>
#include <vector>

namespace orvane::tests {

namespace {

using namespace cs;

const CoordSysFactory& factory() {
    return *CoordSysFactory::defaultCoordSysFactory();
}

std::shared_ptr<CoordSystem> tagged(const char* text) {
    return factory().createFromTaggedString(QString::fromUtf8(text));
}

const char* const lambertWkt =
    R"(wkt:PROJCS["local",GEOGCS["WGS 84",DATUM["WGS_1984",SPHEROID["WGS 84",6378137,298.257223563]],)"
    R"(PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],PROJECTION["Lambert_Azimuthal_Equal_Area"],)"
    R"(PARAMETER["latitude_of_center",61],PARAMETER["longitude_of_center",31],PARAMETER["false_easting",0],)"
    R"(PARAMETER["false_northing",0],UNIT["metre",1]])";

TEST(CoordSysFactory, TaggedStringsComeBack) {
    for (const char* text :
         {"epsg:4326", "epsg:3857", "epsg:28404", "epsg:2263", "proj:+proj=laea +lat_0=61 +lon_0=31",
          "proj:+proj=longlat +ellps=krass +no_defs", lambertWkt}) {
        const auto system = tagged(text);
        ASSERT_TRUE(system) << text;
        EXPECT_EQ(system->taggedString().toStdString(), text);
        EXPECT_EQ(factory().createFromTaggedString(system->taggedString()), system);
    }
    EXPECT_EQ(tagged(" EPSG: 4326 ")->taggedString(), QStringLiteral("epsg:4326"));
}

TEST(CoordSysFactory, OtherTextsGiveNothing) {
    for (const char* text :
         {"", "4326", "epsg:", "epsg:abc", "epsg:-1", "epsg:0", "epsg:999999", "epsg:4326x",
          "epsg:99999999999", "proj:", "proj:+proj=nonsense", "proj:EPSG:4326", "wkt:", "wkt:PROJCS[",
          "wkt:epsg:4326", "epsg:5711", "wkt:GEOGCS"}) {
        EXPECT_EQ(tagged(text), nullptr) << text;
    }
    EXPECT_THROW(factory().createFromEpsg(999999), std::runtime_error);
    EXPECT_THROW(factory().createFromEpsg(0), std::runtime_error);
}

TEST(CoordSysFactory, CodesAreFoundInDefinitions) {
    // As an old shapefile says it: no code in the text.
    const char* const esri =
        R"(GEOGCS["GCS_WGS_1984",DATUM["D_WGS_1984",SPHEROID["WGS_1984",6378137.0,298.257223563]],)"
        R"(PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]])";
    const auto system = factory().createFromWkt(QString::fromUtf8(esri));
    ASSERT_TRUE(system);
    EXPECT_EQ(system->epsg(), 4326);
    EXPECT_EQ(system, factory().createFromEpsg(4326));
    EXPECT_EQ(tagged(lambertWkt)->epsg(), 0);
}

struct SystemCase {
    const char* text;
    const char* name;
    bool isGeographic;
    double unitFactor;
    double semiMajorAxis;
    double inverseFlattening;
};

TEST(CoordSystem, Facts) {
    const double degree = M_PI / 180;
    const SystemCase cases[] = {
        {"epsg:4326", "WGS 84", true, degree, 6378137, 298.257223563},
        {"epsg:3857", "WGS 84 / Pseudo-Mercator", false, 1, 6378137, 298.257223563},
        {"epsg:28404", "Pulkovo 1942 / Gauss-Kruger zone 4", false, 1, 6378245, 298.3},
        {"epsg:2263", "NAD83 / New York Long Island (ftUS)", false, 1200.0 / 3937.0, 6378137, 298.257222101},
        {"epsg:4807", "NTF (Paris)", true, M_PI / 200, 6378249.2, 293.466021293627},
        {"proj:+proj=longlat +a=6371000 +b=6371000", "unknown", true, degree, 6371000, 0},
        // The horizontal part of a compound system counts.
        {"epsg:7405", "OSGB36 / British National Grid + ODN height", false, 1, 6377563.396, 299.3249646},
    };
    for (const SystemCase& entry : cases) {
        const auto system = tagged(entry.text);
        ASSERT_TRUE(system) << entry.text;
        EXPECT_EQ(system->name().toStdString(), entry.name);
        EXPECT_EQ(system->isGeographic(), entry.isGeographic) << entry.text;
        EXPECT_NEAR(system->unitFactor(), entry.unitFactor, 1e-15) << entry.text;
        EXPECT_NEAR(system->semiMajorAxis(), entry.semiMajorAxis, 1e-6) << entry.text;
        EXPECT_NEAR(system->inverseFlattening(), entry.inverseFlattening, 1e-8) << entry.text;
    }
}

TEST(CoordSystem, Equality) {
    EXPECT_TRUE(tagged("epsg:4326")->equals(*factory().createFromEpsg(4326)));
    EXPECT_TRUE(tagged("epsg:32636")->equals(*tagged("proj:+proj=utm +zone=36 +datum=WGS84")));
    EXPECT_FALSE(tagged("epsg:32636")->equals(*tagged("epsg:32637")));
    EXPECT_FALSE(tagged("epsg:4326")->equals(*tagged("proj:+proj=longlat +ellps=krass")));
    // More pairs without a code than are kept, each of them twice.
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 12; ++i) {
            for (int j = 0; j < 12; ++j) {
                const auto meridian = [](int degrees) {
                    return "proj:+proj=tmerc +ellps=krass +lon_0=" + std::to_string(degrees);
                };
                EXPECT_EQ(tagged(meridian(i).c_str())->equals(*tagged((meridian(j) + " +k=1").c_str())),
                          i == j)
                    << i << ' ' << j;
            }
        }
    }
}

/// Known positions, there and back.
TEST(Transformer, KnownPositions) {
    constexpr double degreesInMetre = 360 / 40075016.7;
    std::shared_ptr<const Transformer> forward;
    std::shared_ptr<const Transformer> back;
    double tolerance = 0;
    int positions = 0;
    for (TableRow& row : readTable("geometry/projections.txt", QStringLiteral(" "))) {
        if (row.fields[0] == QLatin1String("@")) {
            const QString blankBefore = QStringLiteral(" +");
            const auto geographic =
                factory().createFromTaggedString(row.fields[1].replace(QLatin1Char('+'), blankBefore));
            const auto projected =
                factory().createFromTaggedString(row.fields[2].replace(QLatin1Char('+'), blankBefore));
            ASSERT_TRUE(geographic && projected) << row.place;
            forward = Transformer::between(*geographic, *projected);
            back = Transformer::between(*projected, *geographic);
            tolerance = row.number(3);
            continue;
        }
        const double longitude = row.number(0);
        const double latitude = row.number(1);
        double position[] = {longitude, latitude};
        EXPECT_TRUE(forward->transform(position, 1, 2, false));
        EXPECT_NEAR(position[0], row.number(2), tolerance) << row.place;
        EXPECT_NEAR(position[1], row.number(3), tolerance) << row.place;
        EXPECT_TRUE(back->transform(position, 1, 2, false));
        const double turns = std::round((longitude - position[0]) / 360);
        EXPECT_NEAR(position[0] + turns * 360, longitude, tolerance * degreesInMetre) << row.place;
        EXPECT_NEAR(position[1], latitude, tolerance * degreesInMetre) << row.place;
        ++positions;
    }
    EXPECT_GT(positions, 150);
}

TEST(Transformer, HeightsStayWhereSystemsHaveNone) {
    double position[] = {30, 60, 7};
    EXPECT_TRUE(
        Transformer::between(*tagged("epsg:4326"), *tagged("epsg:3857"))->transform(position, 1, 3, true));
    EXPECT_EQ(position[2], 7);
}

TEST(Transformer, PositionsWithoutImage) {
    const auto transformer = Transformer::between(*tagged("epsg:4326"), *tagged("epsg:32636"));
    double positions[] = {33, 60, /**/ 33, 1e30, /**/ 34, 61};
    EXPECT_FALSE(transformer->transform(positions, 3, 2, false));
    EXPECT_TRUE(std::isinf(positions[2]));
    EXPECT_NEAR(positions[0], 500000, 1e-6);
}

TEST(Transformer, GradsBecomeDegrees) {
    const auto transformer = Transformer::toGeographic(*tagged("epsg:27572"));
    ASSERT_TRUE(transformer);
    double position[] = {600000, 2200000}; // on the meridian of Paris, 46.8 degrees (52 grads) north
    EXPECT_TRUE(transformer->transform(position, 1, 2, false));
    EXPECT_NEAR(position[0], 0, 1e-9);
    EXPECT_NEAR(position[1], 46.8, 1e-9);
}

TEST(CoordSystem, ManyThreads) {
    std::vector<std::jthread> threads;
    std::atomic<int> wrong{0};
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&] {
            for (int zone = 1; zone <= 20; ++zone) {
                const auto system = factory().createFromEpsg(32600 + zone);
                wrong += system->isGeographic() ? 1 : 0;
                double position[] = {zone * 6.0 - 183, 0};
                const auto transformer = Transformer::between(*factory().createFromEpsg(4326), *system);
                wrong +=
                    transformer->transform(position, 1, 2, false) && std::abs(position[0] - 500000) < 1e-6
                        ? 0
                        : 1;
            }
        });
    }
    threads.clear();
    EXPECT_EQ(wrong, 0);
}

} // namespace

} // namespace orvane::tests
