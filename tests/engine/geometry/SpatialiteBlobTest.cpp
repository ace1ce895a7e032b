#include "support/Gaia.h"
#include "support/Kinds.h"

#include "platform/cs/CoordSystem.h"
#include "platform/cs/Transformer.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include <orvane/engine/SpatialiteBlob.h>

#include <gtest/gtest.h>

#include <QDataStream>

namespace orvane::tests {

namespace {

using geometry::Dimensions;
using geometry::GeometryFactory;
using geometry::GeometryPtr;

constexpr Dimensions allDimensions[] = {Dimensions::XY, Dimensions::XYZ, Dimensions::XYM, Dimensions::XYZM};

std::string_view view(const QByteArray& bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

QByteArray wkbOf(const GeometryPtr& geometry, QSysInfo::Endian order = QSysInfo::LittleEndian) {
    return GeometryFactory::toWkb(geometry, order);
}

GeometryPtr decoded(const engine::SpatialiteHeader& header) {
    return GeometryFactory::fromSpatialite(header.kind, header.content, header.littleEndian, nullptr);
}

/// The linear kinds that SpatiaLite knows, each with its blob.
std::vector<std::pair<GeometryPtr, std::string>> linearBlobs(int srid) {
    std::vector<std::pair<GeometryPtr, std::string>> blobs;
    for (const Dimensions dimensions : allDimensions) {
        for (const GeometryPtr& geometry : linearKinds(dimensions)) {
            std::string blob;
            if (engine::appendSpatialiteBlob(view(wkbOf(geometry)), srid, blob)) {
                blobs.emplace_back(geometry, blob);
            }
        }
    }
    return blobs;
}

TEST(SpatialiteBlob, SameBytesAsSpatialite) {
    for (const Dimensions dimensions : allDimensions) {
        for (const GeometryPtr& geometry : linearKinds(dimensions)) {
            const engine::GaiaPtr gaia = gaiaFromWkb(view(wkbOf(geometry)));
            std::string expected;
            if (gaia) {
                gaia->Srid = 4326;
                expected = engine::GaiaBytes(gaia, gaiaToSpatiaLiteBlobWkb).view();
            }
            for (const QSysInfo::Endian order : {QSysInfo::LittleEndian, QSysInfo::BigEndian}) {
                std::string blob = "before";
                EXPECT_EQ(engine::appendSpatialiteBlob(view(wkbOf(geometry, order)), 4326, blob),
                          !expected.empty())
                    << toWkt(*geometry);
                EXPECT_EQ(QByteArray::fromStdString(blob).toHex(),
                          QByteArray::fromStdString("before" + expected).toHex())
                    << toWkt(*geometry);
            }
        }
    }
}

TEST(SpatialiteBlob, AnExtendedFormWithoutASystemIsThePlainOne) {
    const GeometryPtr point = std::make_shared<geometry::Point>(1, 2);
    const QByteArray plain = wkbOf(point);
    QByteArray extended = plain.left(5) + QByteArray(4, '\0') + plain.mid(5);
    extended[4] = '\x20';
    std::string expected, blob;
    ASSERT_TRUE(engine::appendSpatialiteBlob(view(plain), 4326, expected));
    ASSERT_TRUE(engine::appendSpatialiteBlob(view(extended), 4326, blob));
    EXPECT_EQ(blob, expected);
}

TEST(SpatialiteBlob, OtherBytesAreRefused) {
    std::vector<QByteArray> refused;
    for (const GeometryPtr& curve : curvedKinds(Dimensions::XY)) {
        refused.push_back(wkbOf(curve));
    }
    const GeometryPtr flat = std::make_shared<geometry::Point>(1, 2);
    const auto collection = [](Dimensions dimensions, std::vector<GeometryPtr> parts) -> GeometryPtr {
        return std::make_shared<geometry::GeometryCollection>(geometry::GeometryType::GeometryCollection,
                                                              dimensions, std::move(parts));
    };
    for (const GeometryPtr& geometry : {collection(Dimensions::XYZ, {flat}),
                                        collection(Dimensions::XY, {collection(Dimensions::XY, {flat})})}) {
        refused.push_back(wkbOf(geometry));
    }
    const QByteArray polygon = wkbOf(linearKinds(Dimensions::XYZ)[6]);
    for (int size = 0; size < polygon.size(); ++size) {
        refused.push_back(polygon.left(size));
    }
    refused.push_back(polygon + '\0');
    for (const char* digits : {"0102000000ffffffff", "0103000000ffffffff00000000", "0104000000ffffffff"}) {
        refused.push_back(QByteArray::fromHex(digits));
    }
    for (const QByteArray& bytes : refused) {
        std::string blob = "before";
        EXPECT_FALSE(engine::appendSpatialiteBlob(view(bytes), 0, blob)) << bytes.toHex().toStdString();
        EXPECT_EQ(blob, "before");
    }
}

TEST(SpatialiteBlob, HeaderAndBody) {
    for (const auto& [geometry, blob] : linearBlobs(-1)) {
        const auto header = engine::readSpatialiteHeader(blob);
        ASSERT_TRUE(header);
        EXPECT_EQ(header->srid, -1);
        EXPECT_TRUE(engine::isSoundSpatialiteBlob(*header));
        EXPECT_EQ(header->envelope.isEmpty(), geometry->isEmpty());
        if (!geometry->isEmpty()) {
            EXPECT_EQ(header->envelope, geometry->envelope());
        }
        EXPECT_TRUE(decoded(*header)->equals(*geometry));
        double x = 0;
        double y = 0;
        EXPECT_EQ(engine::spatialiteBlobPoint(*header, x, y),
                  geometry->type() == geometry::GeometryType::Point);
        for (std::size_t size = 0; size + 1 < blob.size(); ++size) {
            const std::string bytes = blob.substr(0, size) + '\xFE';
            const auto cut = engine::readSpatialiteHeader(bytes);
            EXPECT_TRUE(!cut || !engine::isSoundSpatialiteBlob(*cut)) << size;
        }
    }
    EXPECT_FALSE(engine::readSpatialiteHeader("no blob"));
}

/// SpatiaLite's compressed kinds are sound as it writes them, and not when cut short.
TEST(SpatialiteBlob, CompressedKinds) {
    for (const Dimensions dimensions : allDimensions) {
        for (const GeometryPtr& geometry : {linearKinds(dimensions)[1], linearKinds(dimensions)[2]}) {
            const std::string blob(
                engine::GaiaBytes(gaiaFromWkb(view(wkbOf(geometry))), gaiaToCompressedBlobWkb).view());
            ASSERT_TRUE(engine::readSpatialiteHeader(blob));
            EXPECT_TRUE(engine::isSoundSpatialiteBlob(*engine::readSpatialiteHeader(blob)));
            const std::string cut = blob.substr(0, blob.size() - 2) + '\xFE';
            EXPECT_FALSE(engine::isSoundSpatialiteBlob(*engine::readSpatialiteHeader(cut)));
        }
    }
}

TEST(SpatialiteBlob, TransformedInPlaceEqualsTransformedObjects) {
    const auto factory = cs::CoordSysFactory::defaultCoordSysFactory();
    const auto source = factory->createFromEpsg(4326);
    const auto target = factory->createFromEpsg(3857);
    const auto transformer = cs::Transformer::between(*source, *target);
    for (const auto& [geometry, blob] : linearBlobs(4326)) {
        const auto inSystem = geometry->clone();
        inSystem->setCoordSystem(source);
        std::string expected;
        ASSERT_TRUE(engine::appendSpatialiteBlob(view(wkbOf(inSystem->transformed(target))), 3857, expected));
        std::string transformed;
        EXPECT_EQ(engine::appendTransformedBlob(*engine::readSpatialiteHeader(blob), *transformer, 3857,
                                                transformed),
                  engine::BlobTransformation::Done);
        EXPECT_EQ(transformed, expected) << toWkt(*geometry);
    }
    std::string nowhere;
    ASSERT_TRUE(
        engine::appendSpatialiteBlob(view(wkbOf(std::make_shared<geometry::Point>(0, 1e30))), 4326, nowhere));
    std::string out = "before";
    EXPECT_EQ(engine::appendTransformedBlob(*engine::readSpatialiteHeader(nowhere), *transformer, 3857, out),
              engine::BlobTransformation::NoImage);
    EXPECT_EQ(out, "before");
}

/// SpatiaLite's short form of points: what reads blobs reads it like the long one.
TEST(SpatialiteBlob, TinyPoints) {
    for (const Dimensions dimensions : allDimensions) {
        const GeometryPtr point = linearKinds(dimensions)[0];
        std::string whole;
        ASSERT_TRUE(engine::appendSpatialiteBlob(view(wkbOf(point)), 4326, whole));
        const engine::GaiaPtr gaia = gaiaFromWkb(view(wkbOf(point)));
        gaia->Srid = 4326;
        unsigned char* bytes = nullptr;
        int size = 0;
        gaiaToSpatiaLiteBlobWkbEx2(gaia.get(), &bytes, &size, 0, 1);
        const std::string tiny(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
        std::free(bytes);
        ASSERT_LT(tiny.size(), whole.size());
        const auto header = engine::readSpatialiteHeader(tiny);
        const auto expected = engine::readSpatialiteHeader(whole);
        ASSERT_TRUE(header && expected);
        EXPECT_EQ(header->srid, 4326);
        EXPECT_EQ(header->kind, expected->kind);
        EXPECT_EQ(header->envelope, expected->envelope);
        EXPECT_EQ(header->content, expected->content);
        EXPECT_TRUE(engine::isSoundSpatialiteBlob(*header));
        EXPECT_FALSE(engine::readSpatialiteHeader(tiny.substr(0, tiny.size() - 2) + '\xFE'));
    }
}

/// Blobs of machines with the other byte order: SpatiaLite reads them, so do we, to the same geometry.
TEST(SpatialiteBlob, BigEndianBlobs) {
    for (const Dimensions dimensions : allDimensions) {
        const std::vector<GeometryPtr> kinds = linearKinds(dimensions);
        for (const GeometryPtr& geometry : {kinds[0], kinds[1], kinds[2]}) {
            // Behind the byte order the body of one part is as in well-known binary.
            const QByteArray body = wkbOf(geometry, QSysInfo::BigEndian).mid(1);
            const geometry::Envelope envelope = geometry->envelope();
            QByteArray bytes;
            QDataStream stream(&bytes, QIODevice::WriteOnly);
            stream << quint8(0x00) << quint8(0) << qint32(4326) << envelope.minX << envelope.minY
                   << envelope.maxX << envelope.maxY << quint8(0x7C);
            stream.writeRawData(body.constData(), body.size());
            stream << quint8(0xFE);
            std::string little;
            ASSERT_TRUE(engine::appendSpatialiteBlob(view(wkbOf(geometry)), 4326, little));

            const engine::GaiaPtr gaia(
                gaiaFromSpatiaLiteBlobWkb(reinterpret_cast<const unsigned char*>(bytes.constData()),
                                          static_cast<unsigned>(bytes.size())));
            ASSERT_TRUE(gaia);
            EXPECT_EQ(engine::GaiaBytes(gaia, gaiaToSpatiaLiteBlobWkb).view(), little);

            const auto header = engine::readSpatialiteHeader(view(bytes));
            ASSERT_TRUE(header);
            EXPECT_EQ(header->srid, 4326);
            EXPECT_EQ(header->envelope, envelope);
            EXPECT_TRUE(engine::isSoundSpatialiteBlob(*header));
            EXPECT_TRUE(decoded(*header)->equals(*geometry));
            double x = 0;
            double y = 0;
            EXPECT_EQ(engine::spatialiteBlobPoint(*header, x, y), geometry == kinds[0]);
            EXPECT_TRUE(geometry != kinds[0] || (x == -1.5 && y == 2.25));
        }
    }
}

} // namespace

} // namespace orvane::tests
