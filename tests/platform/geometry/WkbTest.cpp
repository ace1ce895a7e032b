#include "support/Kinds.h"
#include "support/TextTable.h"
#include "support/Wkt.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/forms/TextFormats.h"

#include <gtest/gtest.h>

namespace orvane::tests {

namespace {

using namespace geometry;

QByteArray hex(const char* digits) {
    return QByteArray::fromHex(digits);
}

TEST(Wkb, EveryKindComesBackInBothByteOrders) {
    for (const Dimensions dimensions : {Dimensions::XY, Dimensions::XYZ, Dimensions::XYM, Dimensions::XYZM}) {
        for (const GeometryPtr& geometry : allKinds(dimensions)) {
            for (const QSysInfo::Endian order : {QSysInfo::LittleEndian, QSysInfo::BigEndian}) {
                const QByteArray wkb = GeometryFactory::toWkb(geometry, order);
                const auto back = GeometryFactory::fromWkb(wkb, nullptr);
                EXPECT_TRUE(back->equals(*geometry)) << toWkt(*geometry);
                EXPECT_EQ(GeometryFactory::toWkb(back, order), wkb);
            }
        }
    }
}

TEST(Wkb, EnvelopeWithoutObjects) {
    for (const Dimensions dimensions : {Dimensions::XY, Dimensions::XYZ, Dimensions::XYM, Dimensions::XYZM}) {
        for (const GeometryPtr& geometry : allKinds(dimensions)) {
            for (const QSysInfo::Endian order : {QSysInfo::LittleEndian, QSysInfo::BigEndian}) {
                const QByteArray wkb = GeometryFactory::toWkb(geometry, order);
                const std::string_view bytes(wkb.constData(), static_cast<std::size_t>(wkb.size()));
                const auto envelope = envelopeOfWkb(bytes);
                ASSERT_EQ(envelope.has_value(), !isCurved(*geometry)) << toWkt(*geometry);
                EXPECT_TRUE(!envelope || *envelope == geometry->envelope()) << toWkt(*geometry);
                for (std::size_t size = 0; size < bytes.size(); ++size) {
                    EXPECT_FALSE(envelopeOfWkb(bytes.substr(0, size)));
                }
            }
        }
    }
}

TEST(Wkb, EnvelopeOnlyOfWhatCanBeRead) {
    const QString point = QStringLiteral("01 01000000 000000000000f03f 0000000000000040");
    const char* const line = "01 02000000 02000000 000000000000f03f 0000000000000040 0000000000000040 %0";
    const auto told = [](const QString& digits) {
        const QByteArray wkb = QByteArray::fromHex(digits.toLatin1());
        return envelopeOfWkb({wkb.constData(), static_cast<std::size_t>(wkb.size())}).has_value();
    };
    const QString whole = QString::fromLatin1(line).arg(QStringLiteral("0000000000000840"));
    const QString gone = QString::fromLatin1(line).arg(QStringLiteral("000000000000f87f")); // not a number
    const QString ofPoints = QStringLiteral("01 04000000 01000000 ");
    const QString collection = QStringLiteral("01 07000000 02000000 ");
    EXPECT_TRUE(told(whole));
    EXPECT_FALSE(told(gone));
    EXPECT_TRUE(told(ofPoints + point));
    EXPECT_FALSE(told(ofPoints + whole)) << "a line among points";
    EXPECT_TRUE(told(collection + ofPoints + point + whole));
    EXPECT_FALSE(told(collection + whole + ofPoints + whole));
}

TEST(Wkb, GoldenBytes) {
    EXPECT_EQ(GeometryFactory::toWkb(std::make_shared<Point>(1, 2), QSysInfo::BigEndian),
              hex("00 00000001 3ff0000000000000 4000000000000000"));
    EXPECT_TRUE(GeometryFactory::toWkb(nullptr, QSysInfo::LittleEndian).isEmpty());
    // Parts may have byte orders of their own.
    const auto mixed = GeometryFactory::fromWkb(
        hex("00 00000004 00000002 01 01000000 000000000000f03f 0000000000000040 00 00000001 3ff0000000000000 "
            "4000000000000000"),
        nullptr);
    EXPECT_EQ(toWkt(*mixed), "MULTIPOINT((1 2),(1 2))");
    // A network of one triangle
    const auto network = GeometryFactory::fromWkb(
        hex("01 10000000 01000000 01 11000000 01000000 04000000 0000000000000000 0000000000000000"
            "000000000000f03f 0000000000000000 000000000000f03f 000000000000f03f 0000000000000000"
            "0000000000000000"),
        nullptr);
    EXPECT_EQ(toWkt(*network), "MULTIPOLYGON(((0 0,1 0,1 1,0 0)))");
}

TEST(Wkb, ExtendedFormIsUnderstood) {
    const auto point = GeometryFactory::fromWkb(
        hex("01 010000a0 e6100000 000000000000f03f 0000000000000040 0000000000000840"), nullptr);
    EXPECT_EQ(toWkt(*point), "POINT Z(1 2 3)");
    ASSERT_TRUE(point->coordSystem());
    EXPECT_EQ(point->coordSystem()->epsg(), 4326);
}

TEST(Wkb, BrokenBytesRaise) {
    const char* const broken[] = {
        "",
        "02 01000000 000000000000f03f 0000000000000040",    // byte order
        "01 63000000 000000000000f03f 0000000000000040",    // kind
        "01 01000000 000000000000f03f 00000000000040",      // one byte short
        "01 01000000 000000000000f03f 0000000000000040 00", // one byte left
        "01 02000000 ffffffff 000000000000f03f",            // count beyond the end
        "01 03000000 ffffff7f 00000000", "01 07000000 ffffffff",
        // Half an arc.
        "01 08000000 02000000 000000000000f03f 0000000000000040 000000000000f03f 0000000000000040",
        "01 04000000 01000000 01 02000000 00000000", // a line among points
    };
    for (const char* digits : broken) {
        EXPECT_THROW(GeometryFactory::fromWkb(hex(digits), nullptr), std::runtime_error) << digits;
    }
    QByteArray nested;
    for (int level = 0; level < 100000; ++level) {
        nested += hex("01 07000000 01000000");
    }
    EXPECT_THROW(GeometryFactory::fromWkb(nested, nullptr), std::runtime_error);
}

TEST(Wkb, EveryPrefixRaises) {
    for (const GeometryPtr& geometry : curvedKinds(Dimensions::XYZ)) {
        const QByteArray wkb = GeometryFactory::toWkb(geometry, QSysInfo::LittleEndian);
        for (int size = 0; size < wkb.size(); ++size) {
            EXPECT_THROW(GeometryFactory::fromWkb(wkb.left(size), nullptr), std::runtime_error);
        }
    }
}

TEST(TextFormats, WktAndGeoJson) {
    for (const TableRow& row : readTable("geometry/textformats.txt")) {
        const auto geometry = fromWkt(row.text(0));
        EXPECT_EQ(toWkt(*geometry), row.text(0)) << row.place;
        std::string geoJson;
        appendGeoJson(*geometry, geoJson);
        EXPECT_EQ(geoJson, row.text(1)) << row.place;
    }
    const Polygon withEmptyHole(Dimensions::XY, {ring(Dimensions::XY, 0, 0, 2), CoordinateSequence()});
    EXPECT_EQ(toWkt(withEmptyHole), "POLYGON((0 0,2 0,2 2,0 2,0 0),EMPTY)");
    EXPECT_EQ(toWkt(RoundedRectangle(Envelope{0, 0, 2, 1}, 0, 0)), "POLYGON((0 0,2 0,2 1,0 1,0 0))");
}

} // namespace

} // namespace orvane::tests
