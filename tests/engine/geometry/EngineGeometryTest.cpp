#include "support/Kinds.h"

#include "platform/cs/CoordSystem.h"
#include <orvane/engine/EngineGeometry.h>

#include <gtest/gtest.h>

namespace orvane::tests {

namespace {

using engine::EngineGeometry;
using geometry::Dimensions;
using geometry::GeometryPtr;
using CoordSystemPtr = std::shared_ptr<cs::CoordSystem>;

CoordSystemPtr epsg(int code) {
    return cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(code);
}

CoordSystemPtr noLookup(const void*, int) {
    return nullptr;
}
void notWritten(const CoordSystemPtr&, const QByteArray&) {
    FAIL() << "there is no coordinate system";
}

/// A section as the format says it: tag, little-endian length of `lengthSize` bytes, payload.
QByteArray section(unsigned kind, unsigned lengthSize, const QByteArray& payload) {
    QByteArray bytes(1, static_cast<char>((lengthSize - 1) | (kind << 2)));
    for (unsigned i = 0; i < lengthSize; ++i) {
        bytes.append(static_cast<char>(static_cast<unsigned>(payload.size()) >> (8 * i)));
    }
    return bytes + payload;
}

struct Blob {
    QByteArray geometryPayload;
    QByteArray systemPayload;
    QByteArray whole;
};

/// Writes a point and takes the payloads out by hand.
Blob pointBlob(double x) {
    geometry::Point point(x, 2);
    point.setCoordSystem(epsg(3857));
    Blob blob;
    blob.whole =
        EngineGeometry(point.clone()).serialize([&](const CoordSystemPtr& system, const QByteArray& payload) {
            EXPECT_EQ(system, epsg(3857));
            blob.systemPayload = payload;
        });
    const int size = static_cast<unsigned char>(blob.whole[1]);
    blob.geometryPayload = blob.whole.mid(2, size);
    return blob;
}

std::string wktOf(const QByteArray& bytes, const EngineGeometry::CoordSystemLookup& lookup = noLookup) {
    const GeometryPtr geometry = EngineGeometry::deserialize(bytes, lookup).geometry();
    if (!geometry) {
        return "none";
    }
    const auto system = geometry->coordSystem();
    return toWkt(*geometry) + (system ? " " + system->taggedString().toStdString() : "");
}

TEST(EngineGeometry, Framing) {
    const Blob blob = pointBlob(1);
    EXPECT_EQ(blob.whole, section(0, 1, blob.geometryPayload) + section(1, 1, blob.systemPayload));
    // The payloads: the archived point, and a version with the tagged string.
    EXPECT_EQ(blob.geometryPayload.toHex(), "010e" + QByteArray("geometry.Point").toHex() + "0000" +
                                                "15000000" + "0101000000000000000000f03f0000000000000040" +
                                                "00");
    EXPECT_EQ(blob.systemPayload.toHex(), "0000"
                                          "09000000" +
                                              QByteArray("epsg:3857").toHex());
    EXPECT_EQ(wktOf(blob.whole), "POINT(1 2) epsg:3857");
    const QByteArray bare = EngineGeometry(std::make_shared<geometry::Point>(1, 2)).serialize(notWritten);
    EXPECT_EQ(bare, section(0, 1, blob.geometryPayload));
    EXPECT_EQ(wktOf(bare), "POINT(1 2)");
}

/// The smallest line whose payload is larger than the limit, and the length field it gets.
TEST(EngineGeometry, LengthFields) {
    const std::size_t counts[] = {1, 12, 14, 4092, 4100, 1048600};
    const char tags[] = {0, 0, 1, 1, 2, 3};
    for (std::size_t i = 0; i < std::size(counts); ++i) {
        const auto line = std::make_shared<geometry::LineString>(positions(Dimensions::XY, counts[i], 5));
        const QByteArray bytes = EngineGeometry(line).serialize(notWritten);
        EXPECT_EQ(bytes[0], tags[i]) << counts[i];
        int length = 0;
        for (int byte = bytes[0]; byte >= 0; --byte) {
            length = length * 256 + static_cast<unsigned char>(bytes[1 + byte]);
        }
        EXPECT_EQ(length, bytes.size() - 2 - bytes[0]);
        EXPECT_TRUE(EngineGeometry::deserialize(bytes, noLookup).geometry()->equals(*line));
    }
}

TEST(EngineGeometry, SectionsInAnyOrder) {
    const Blob first = pointBlob(1);
    const Blob second = pointBlob(9);
    const QByteArray g1 = section(0, 1, first.geometryPayload);
    const QByteArray g2 = section(0, 2, second.geometryPayload);
    const QByteArray system = section(1, 4, first.systemPayload);
    const QByteArray junk("\x08\xFF\x69", 3); // no tags: skipped byte by byte
    struct Case {
        QByteArray bytes;
        const char* expected;
    };
    const Case cases[] = {
        {system + g1, "POINT(1 2) epsg:3857"},
        {g1 + g2, "POINT(1 2)"},
        {g1 + g2 + system, "POINT(1 2) epsg:3857"},
        {junk + g1 + junk + system, "POINT(1 2) epsg:3857"},
        {section(0, 1, "geometry.") + g1, "POINT(1 2)"}, // a section that holds nothing readable
        {section(1, 1, "nonsense") + g1 + system, "POINT(1 2) epsg:3857"},
        {g1 + system.left(system.size() - 1), "POINT(1 2)"}, // the last section is cut off
        {g1.left(g1.size() - 1), "none"},
        {g1 + system + g2, "POINT(1 2) epsg:3857"}, // nothing behind is looked at
        {QByteArray(), "none"},
        {QByteArray("\x00\x01\x00\x00", 4), "none"},
    };
    for (const Case& entry : cases) {
        EXPECT_EQ(wktOf(entry.bytes), entry.expected) << entry.bytes.toHex().toStdString();
    }
}

TEST(EngineGeometry, LookupComesBeforeDecoding) {
    const Blob blob = pointBlob(1);
    int calls = 0;
    const auto lookup = [&](const void* data, int size) {
        ++calls;
        EXPECT_EQ(QByteArray(static_cast<const char*>(data), size), blob.systemPayload);
        return epsg(4326);
    };
    EXPECT_EQ(wktOf(blob.whole, lookup), "POINT(1 2) epsg:4326");
    EXPECT_EQ(calls, 1);
    EXPECT_THROW(EngineGeometry::deserialize(blob.whole, nullptr), std::bad_function_call);
}

TEST(EngineGeometry, WritingLeavesTheGeometryAlone) {
    const auto point = std::make_shared<geometry::Point>(1, 2);
    point->setCoordSystem(epsg(3857));
    EXPECT_THROW(EngineGeometry::serialize(point, nullptr), std::bad_function_call);
    EXPECT_EQ(point->coordSystem(), epsg(3857));
}

/// What stands for more than its bytes is not read, so that nothing is written like that.
TEST(EngineGeometry, RepeatedPartsComeBack) {
    const auto part = std::make_shared<geometry::LineString>(positions(geometry::Dimensions::XY, 500, 0));
    const auto nested = std::make_shared<geometry::GeometryCollection>(
        geometry::GeometryType::GeometryCollection, geometry::Dimensions::XY,
        std::vector<geometry::GeometryPtr>(20, part));
    const auto collection = std::make_shared<geometry::GeometryCollection>(
        geometry::GeometryType::GeometryCollection, geometry::Dimensions::XY,
        std::vector<geometry::GeometryPtr>(30, nested));
    const QByteArray blob = EngineGeometry::serialize(collection, {});
    const auto back = EngineGeometry::deserialize(blob, {}).geometry();
    ASSERT_TRUE(back);
    EXPECT_TRUE(back->equals(*collection));
}

} // namespace

} // namespace orvane::tests
