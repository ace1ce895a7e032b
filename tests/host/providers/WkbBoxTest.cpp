#include "host/providers/columns/WkbBox.h"

#include <gtest/gtest.h>

#include <ogr_geometry.h>

#include <cmath>

namespace orvane::files {
namespace {

std::string wkbOf(const char* wkt, OGRwkbByteOrder order, OGRwkbVariant variant) {
    OGRGeometry* parsed = nullptr;
    OGRGeometryFactory::createFromWkt(wkt, nullptr, &parsed);
    const std::unique_ptr<OGRGeometry> geometry(parsed);
    std::string wkb(static_cast<std::size_t>(geometry->WkbSize()), '\0');
    geometry->exportToWkb(order, reinterpret_cast<unsigned char*>(wkb.data()), variant);
    return wkb;
}

constexpr const char* SHAPES[] = {
    "POINT (1 2)",
    "POINT Z (1 2 300)",
    "POINT ZM (1 2 300 400)",
    "LINESTRING (1 2, 3 -4)",
    "LINESTRING M (1 2 900, 3 -4 900)",
    "POLYGON ((0 0, 10 0, 10 5, 0 0), (1 1, 2 1, 2 2, 1 1))",
    "MULTIPOINT ((1 2), (5 6))",
    "MULTIPOLYGON (((0 0, 1 0, 1 1, 0 0)), ((9 9, 9 10, 10 9, 9 9)))",
    "GEOMETRYCOLLECTION (POINT (7 7), LINESTRING (0 0, 1 1))",
};

TEST(WkbBox, holdsEveryPoint) {
    for (const char* wkt : SHAPES) {
        for (const auto order : {wkbNDR, wkbXDR}) {
            for (const auto variant : {wkbVariantIso, wkbVariantOldOgc}) {
                const auto wkb = wkbOf(wkt, order, variant);
                OGRGeometry* parsed = nullptr;
                OGRGeometryFactory::createFromWkt(wkt, nullptr, &parsed);
                const std::unique_ptr<OGRGeometry> geometry(parsed);
                OGREnvelope expected;
                geometry->getEnvelope(&expected);
                const auto box = boxOfWkb(wkb);
                EXPECT_EQ(box.minX, expected.MinX) << wkt;
                EXPECT_EQ(box.minY, expected.MinY) << wkt;
                EXPECT_EQ(box.maxX, expected.MaxX) << wkt;
                EXPECT_EQ(box.maxY, expected.MaxY) << wkt;
            }
        }
    }
}

TEST(WkbBox, emptyGeometriesMeetNothing) {
    for (const char* wkt :
         {"POINT EMPTY", "LINESTRING EMPTY", "GEOMETRYCOLLECTION EMPTY", "MULTIPOINT EMPTY"})
        EXPECT_FALSE(boxOfWkb(wkbOf(wkt, wkbNDR, wkbVariantIso)).meets({-1e9, -1e9, 1e9, 1e9})) << wkt;
}

TEST(WkbBox, whatItCannotTellMeetsEverything) {
    const dp::ScanWindow farAway{1e6, 1e6, 1e6, 1e6};
    EXPECT_TRUE(boxOfWkb(wkbOf("CIRCULARSTRING (0 0, 1 1, 2 0)", wkbNDR, wkbVariantIso)).meets(farAway));
    EXPECT_TRUE(boxOfWkb({}).meets(farAway));
    for (const char* wkt : SHAPES) {
        const auto wkb = wkbOf(wkt, wkbNDR, wkbVariantIso);
        for (std::size_t size = 0; size < wkb.size(); ++size)
            EXPECT_TRUE(boxOfWkb(std::string_view(wkb).substr(0, size)).meets(farAway)) << wkt << size;
    }
    std::string manyRings("\x01\x03\x00\x00\x00\xff\xff\xff\xff", 9);
    EXPECT_TRUE(boxOfWkb(manyRings).meets(farAway));
    std::string nested;
    for (int depth = 0; depth < 100000; ++depth)
        nested += std::string("\x01\x07\x00\x00\x00\x01\x00\x00\x00", 9);
    EXPECT_TRUE(boxOfWkb(nested).meets(farAway));
}

} // namespace
} // namespace orvane::files
