#include "support/Kinds.h"

#include "platform/cs/CoordSystem.h"
#include "platform/serialization/BinaryArchive.h"
#include "platform/serialization/CoordSystemArchive.h"

#include <gtest/gtest.h>

#include <QDataStream>

namespace orvane::tests {

namespace {

using namespace serialization;
using geometry::Dimensions;
using geometry::GeometryPtr;

template<typename Write>
QByteArray written(const Write& write) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    BinaryOutputArchive archive(&stream);
    write(archive);
    return bytes;
}

template<typename Read>
auto readFrom(const QByteArray& bytes, const Read& read) {
    QDataStream stream(bytes);
    BinaryInputArchive archive(&stream);
    return read(archive);
}

std::shared_ptr<Serializable> load(const QByteArray& bytes) {
    return readFrom(bytes, [](BinaryInputArchive& archive) { return archive.loadSerializable(); });
}

QByteArray saved(const Serializable& object) {
    return written([&](BinaryOutputArchive& archive) { archive.saveSerializable(&object); });
}

TEST(Archive, NumbersAndTextsAreLittleEndian) {
    const QByteArray bytes = written([](BinaryOutputArchive& archive) {
        archive.saveVersion(0x0102);
        archive.saveUInt8(7);
        archive.saveUInt32(0x01020304);
        archive.saveDouble(1.0);
        archive.saveString(QStringLiteral("я"));
    });
    EXPECT_EQ(bytes.toHex(), "0201070403020100000000000"
                             "0f03f02000000d18f");
    readFrom(bytes, [](BinaryInputArchive& archive) {
        EXPECT_EQ(archive.loadVersion(), 0x0102);
        EXPECT_EQ(archive.loadUInt8(), 7);
        EXPECT_EQ(archive.loadUInt32(), 0x01020304U);
        EXPECT_EQ(archive.loadDouble(), 1.0);
        EXPECT_EQ(archive.loadString(), QStringLiteral("я"));
        EXPECT_THROW(archive.loadUInt8(), ArchiveError);
        return 0;
    });
}

TEST(Archive, EveryGeometryComesBack) {
    for (const Dimensions dimensions : {Dimensions::XY, Dimensions::XYZM}) {
        std::vector<GeometryPtr> all = allKinds(dimensions);
        all.push_back(std::make_shared<geometry::Ellipse>(1, 2, 3, 4, 5));
        all.push_back(
            std::make_shared<geometry::RoundedRectangle>(geometry::Envelope{0, 1, 2, 3}, 0.5, 0.25));
        all.push_back(std::make_shared<geometry::GeometryCollection>(
            geometry::GeometryType::GeometryCollection, dimensions, all));
        for (const GeometryPtr& geometry : all) {
            const std::shared_ptr<geometry::Geometry> copy = geometry->clone();
            copy->setCoordSystem(cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(3857));
            const auto back = std::dynamic_pointer_cast<geometry::Geometry>(load(saved(*copy)));
            ASSERT_TRUE(back);
            EXPECT_TRUE(back->equals(*geometry));
            EXPECT_EQ(back->coordSystem(), copy->coordSystem());
        }
    }
}

/// A collection that holds one object twice, the second time by reference, as no geometry writes itself.
class TwiceByReference final : public Serializable {
public:
    explicit TwiceByReference(std::shared_ptr<const Serializable> part) : part_(std::move(part)) {}

    std::string_view archiveName() const override {
        return geometry::GeometryCollection(geometry::GeometryType::GeometryCollection, Dimensions::XY, {})
            .archiveName();
    }
    void save(TrackingOutputArchive& archive) const override {
        archive.saveUInt8(static_cast<std::uint8_t>(geometry::GeometryType::GeometryCollection));
        archive.saveUInt8(static_cast<std::uint8_t>(Dimensions::XY));
        archive.saveUInt32(2);
        archive.saveSerializable(part_.get());
        archive.saveSerializable(part_.get());
        archive.saveUInt8(0); // no coordinate system
    }

private:
    std::shared_ptr<const Serializable> part_;
};

TEST(Archive, ObjectsMetTwiceAreWrittenOnce) {
    const GeometryPtr line = std::make_shared<geometry::LineString>(positions(Dimensions::XY, 1000, 0));
    const QByteArray bytes = saved(TwiceByReference(line));
    EXPECT_LT(bytes.size(), 17000);
    const auto back = std::dynamic_pointer_cast<geometry::GeometryCollection>(load(bytes));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->parts()[0], back->parts()[1]);
    const geometry::GeometryCollection twice(geometry::GeometryType::GeometryCollection, Dimensions::XY,
                                             {line, line});
    EXPECT_TRUE(back->equals(twice));
    const auto whole = std::dynamic_pointer_cast<geometry::Geometry>(load(saved(twice)));
    ASSERT_TRUE(whole);
    EXPECT_TRUE(whole->equals(twice));
    EXPECT_EQ(load(written([](BinaryOutputArchive& archive) { archive.saveSerializable(nullptr); })),
              nullptr);
}

TEST(Archive, BrokenBytesRaise) {
    const geometry::GeometryCollection all(geometry::GeometryType::GeometryCollection, Dimensions::XYZ,
                                           curvedKinds(Dimensions::XYZ));
    const QByteArray bytes = saved(all);
    for (int size = 0; size < bytes.size(); ++size) {
        EXPECT_THROW(load(bytes.left(size)), std::exception) << size;
    }
    for (int at = 0; at < bytes.size(); ++at) { // any byte may lie: an object, an exception, never a crash
        QByteArray lie = bytes;
        lie[at] = static_cast<char>(0xFF);
        try {
            load(lie);
        } catch (const std::exception&) {
        }
    }
    EXPECT_THROW(load(QByteArray("\1\4Nope\0\0", 8)), ArchiveError);
    EXPECT_THROW(load(QByteArray("\3\0\0\0\0", 5)), ArchiveError);
    EXPECT_THROW(load(QByteArray("\2\0\0\0\0\0\0", 7)), ArchiveError);
}

/// A collection of two references to a collection of two references ... stands for more than memory holds.
TEST(Archive, ReferencesDoNotMultiply) {
    std::shared_ptr<const Serializable> references = std::make_shared<geometry::Point>(1, 2);
    GeometryPtr whole = std::make_shared<geometry::Point>(1, 2);
    GeometryPtr nested = whole;
    for (int level = 0; level < 50; ++level) {
        references = std::make_shared<TwiceByReference>(references);
        whole = std::make_shared<geometry::GeometryCollection>(geometry::GeometryType::GeometryCollection,
                                                               Dimensions::XY, std::vector{whole, whole});
    }
    EXPECT_THROW(load(saved(*references)), ArchiveError);
    EXPECT_THROW(saved(*whole), std::length_error);
    for (int level = 0; level < 100; ++level) {
        nested = std::make_shared<geometry::GeometryCollection>(geometry::GeometryType::GeometryCollection,
                                                                Dimensions::XY, std::vector{nested});
    }
    EXPECT_THROW(saved(*nested), ArchiveError);
}

TEST(CoordSystemArchive, TaggedStrings) {
    const auto system = cs::CoordSysFactory::defaultCoordSysFactory()->createFromTaggedString(
        QStringLiteral("proj:+proj=sinu"));
    for (const std::shared_ptr<cs::CoordSystem>& source : {system, std::shared_ptr<cs::CoordSystem>()}) {
        const QByteArray bytes = written([&](BinaryOutputArchive& archive) { save(archive, source, 0); });
        std::shared_ptr<cs::CoordSystem> back;
        readFrom(bytes,
                 [&](BinaryInputArchive& archive) { return serialization::load(archive, back, 0), 0; });
        EXPECT_EQ(back, source);
    }
    std::shared_ptr<cs::CoordSystem> none;
    const QByteArray nonsense =
        written([](BinaryOutputArchive& archive) { archive.saveString(QStringLiteral("x")); });
    EXPECT_THROW(readFrom(nonsense, [&](auto& archive) { return serialization::load(archive, none, 0), 0; }),
                 ArchiveError);
    EXPECT_THROW(readFrom(nonsense, [&](auto& archive) { return serialization::load(archive, none, 9), 0; }),
                 ArchiveError);
}

} // namespace

} // namespace orvane::tests
