#include "platform/dp/Table.h"
#include "platform/dp/CellConversion.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "support/MemoryTable.h"

#include <QDateTime>

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace orvane::dp;

using orvane::testing::attribute;

TEST(Table, ReadsASingleFeatureThroughACursor) {
    orvane::testing::MemoryTable table(
        QStringLiteral("Города"),
        {attribute("name", QMetaType::QString), attribute("founded", QMetaType::QDate)},
        {{QStringLiteral("Тверь"), QDate(1135, 2, 28)}, {QStringLiteral("🏙"), QVariant()}});
    const FeaturePtr tver = table.feature(FeatureId(100));
    ASSERT_NE(tver, nullptr);
    EXPECT_EQ(table.lastRequest.attributes, (std::vector<int>{0, 1}));
    EXPECT_EQ(tver->getAttribute(0), QVariant(QStringLiteral("Тверь")));
    EXPECT_EQ(tver->getAttribute(1), QVariant(QDate(1135, 2, 28)));

    QVariant value = 5;
    EXPECT_FALSE(table.feature(FeatureId(101))->tryGetAttribute(1, value)); // NULL
    EXPECT_FALSE(tver->tryGetAttribute(2, value));
    EXPECT_FALSE(tver->tryGetAttribute(-1, value));
    EXPECT_EQ(value, QVariant(5));
    EXPECT_TRUE(tver->tryGetAttribute(0, value));
    EXPECT_EQ(table.feature(FeatureId(102)), nullptr);
}

TEST(Table, RefusesEditsByItself) {
    orvane::testing::MemoryTable table(QStringLiteral("Города"), {});
    const Feature feature(table.schema(), FeatureId(10));
    const std::vector<std::function<void()>> edits = {
        [&] { table.Table::beginEdits(); },
        [&] { table.Table::insertFeature(feature); },
        [&] { table.Table::updateFeature(feature); },
        [&] { table.Table::deleteFeature(feature.id()); },
    };
    for (const auto& edit : edits) {
        try {
            edit();
            ADD_FAILURE() << "the edit was not refused";
        } catch (const EditError& error) {
            EXPECT_STREQ(error.what(), "таблица Города открыта только для чтения");
        }
    }
}

TEST(TableSchema, FindsColumnsByNameAndKind) {
    const TableSchema schema(
        {attribute("Имя", QMetaType::QString),
         AttributeDefinitionPointer(new RenditionAttributeDefinition(QStringLiteral("style"))),
         AttributeDefinitionPointer(new GeometryAttributeDefinition(QStringLiteral("obj"), {})),
         attribute("obj2", QMetaType::Int)});
    EXPECT_EQ(schema.indexOf(QStringLiteral("имя")), 0);
    EXPECT_EQ(schema.indexOf(QStringLiteral("OBJ")), 2);
    EXPECT_EQ(schema.indexOf(QStringLiteral("none")), -1);
    EXPECT_EQ(schema.styleIndex(), 1);
    EXPECT_EQ(schema.geometryIndex(), 2);
    EXPECT_EQ(TableSchema().geometryIndex(), -1);
    EXPECT_EQ(TableSchema().styleIndex(), -1);
}

TEST(AttributeDefinition, IsCopiedWithItsKindWhenASharedOneIsDetached) {
    AttributeDefinitionPointer shared(
        new SimpleAttributeDefinition(QStringLiteral("code"), QMetaType::QString, {30, 2, true, true}));
    AttributeDefinitionPointer copy = shared;
    copy.detach();
    ASSERT_NE(copy.constData(), shared.constData());
    const auto* simple = dynamic_cast<const SimpleAttributeDefinition*>(copy.constData());
    ASSERT_NE(simple, nullptr);
    EXPECT_EQ(simple->name(), QStringLiteral("code"));
    EXPECT_EQ(simple->length(), 30);
    EXPECT_EQ(simple->precision(), 2);
    EXPECT_TRUE(simple->isUnique());
    EXPECT_TRUE(simple->isNotNull());
}

TEST(CellConversion, GivesTheTypeOfTheAttributeWhereItCanHoldTheValue) {
    constexpr qint64 large = 5'000'000'000;
    struct Case {
        Cell cell;
        int type;
        QVariant expected;
    };
    const std::vector<Case> cases = {
        {Cell(), QMetaType::Int, QVariant()},
        {Cell::ofInteger(1), QMetaType::Bool, true},
        {Cell::ofInteger(-7), QMetaType::Int, -7},
        {Cell::ofInteger(large), QMetaType::Int, large},
        {Cell::ofInteger(std::numeric_limits<qint64>::min()), QMetaType::LongLong,
         std::numeric_limits<qint64>::min()},
        {Cell::ofInteger(3), QMetaType::Double, 3.0},
        {Cell::ofReal(0.1), QMetaType::Double, 0.1},
        {Cell::ofText(""), QMetaType::QString, QString::fromLatin1("")},
        {Cell::ofText("Ёлка 🎄"), QMetaType::QString, QStringLiteral("Ёлка 🎄")},
        {Cell::ofText("1969-12-31"), QMetaType::QDate, QDate(1969, 12, 31)},
        {Cell::ofText("31.12.1969"), QMetaType::QDate, QStringLiteral("31.12.1969")},
        {Cell::ofText("23:59:58.125"), QMetaType::QTime, QTime(23, 59, 58, 125)},
        {Cell::ofText("2024-02-29 06:07:08.009"), QMetaType::QDateTime,
         QDateTime(QDate(2024, 2, 29), QTime(6, 7, 8, 9), Qt::UTC)},
        {Cell::ofText("2024-03-31 02:30:00"), QMetaType::QDateTime, // an hour that summer time skips
         QDateTime(QDate(2024, 3, 31), QTime(2, 30), Qt::UTC)},
        {Cell::ofBytes(std::string_view("\0\xff", 2)), QMetaType::QByteArray, QByteArray("\0\xff", 2)},
    };
    for (const Case& test : cases) {
        const SimpleAttributeDefinition attribute(QStringLiteral("c"), test.type);
        const QVariant value = toVariant(test.cell, attribute);
        EXPECT_EQ(value, test.expected) << qPrintable(test.expected.toString());
        EXPECT_EQ(value.userType(), test.expected.userType()) << qPrintable(test.expected.toString());
    }
}

TEST(CellConversion, MakesGeometriesOfWellKnownBinary) {
    const GeometryAttributeDefinition attribute(QStringLiteral("obj"), nullptr);
    const std::string point("\1\1\0\0\0\0\0\0\0\0\0\xf0\x3f\0\0\0\0\0\0\0\x40", 21); // POINT(1 2)
    const QVariant value = toVariant(Cell::ofWkb(point), attribute);
    ASSERT_EQ(value.userType(), attribute.type());
    const auto geometry = value.value<std::shared_ptr<const orvane::geometry::Geometry>>();
    EXPECT_EQ(orvane::geometry::GeometryFactory::toWkb(geometry, QSysInfo::LittleEndian),
              QByteArray::fromStdString(point));
    EXPECT_FALSE(toVariant(Cell::ofWkb(std::string_view(point).substr(0, 20)), attribute).isValid());
    const std::string lineAmongPoints("\1\4\0\0\0\1\0\0\0\1\2\0\0\0\0\0\0\0", 18);
    EXPECT_FALSE(toVariant(Cell::ofWkb(lineAmongPoints), attribute).isValid());
}

} // namespace
