#include "platform/utils/MetaTypes.h"

#include "platform/decimal/QDecNumber.h"
#include "platform/dp/SqliteDatabaseAccess.h"

#include <QVariant>

#include <gtest/gtest.h>

TEST(MetaTypes, PlainIntegersAreTheIntegerWidthsOnly) {
    for (const int type : {QMetaType::Char, QMetaType::SChar, QMetaType::UChar, QMetaType::Short,
                           QMetaType::UShort, QMetaType::Int, QMetaType::UInt, QMetaType::Long,
                           QMetaType::ULong, QMetaType::LongLong, QMetaType::ULongLong}) {
        EXPECT_TRUE(orvane::isPlainInt(type)) << type;
    }
    for (const int type : std::initializer_list<int>{
             QMetaType::UnknownType, QMetaType::Bool, QMetaType::Double, QMetaType::Float, QMetaType::QChar,
             QMetaType::QString, QMetaType::QDate, qMetaTypeId<QDecNumber>()}) {
        EXPECT_FALSE(orvane::isPlainInt(type)) << type;
    }
}

// What counts is that SQLite keeps what is written: a date must not become a number, nor a digit text lose
// its zeros.
TEST(MetaTypes, ColumnsDeclaredUnderTheNamesKeepTheirValues) {
    struct Case {
        int type;
        const char* suffix;
        const char* literal;
        const char* stored; // typeof and text
    };
    const Case cases[] = {
        {QMetaType::Int, "", "'12'", "integer 12"},
        {QMetaType::LongLong, "", "9223372036854775807", "integer 9223372036854775807"},
        {QMetaType::Bool, "", "1", "integer 1"},
        {QMetaType::Double, "", "3", "real 3.0"},
        {QMetaType::QString, "(30) Collate NoCase", "'007'", "text 007"},
        {QMetaType::QChar, "", "'7'", "text 7"},
        {QMetaType::QUuid, "", "'1'", "text 1"},
        {QMetaType::QDate, "", "'20210304'", "text 20210304"},
        {QMetaType::QTime, "", "'1e3'", "text 1e3"},
        {QMetaType::QDateTime, "", "'2021'", "text 2021"},
        {QMetaType::QByteArray, "", "'12'", "text 12"},
        {qMetaTypeId<QDecNumber>(), "(12, 2) ", "'1.5'", "real 1.5"},
        {QMetaType::UnknownType, "", "x''", "blob "},
    };
    orvane::dp::SqliteDatabaseAccess database(QStringLiteral(":memory:"));
    for (const Case& c : cases) {
        const QString declaration = orvane::sqlName(c.type) + QLatin1String(c.suffix);
        database.exec(QStringLiteral("Create Table t(v %1)").arg(declaration));
        database.exec(QStringLiteral("Insert Into t Values(%1)").arg(QLatin1String(c.literal)));
        auto stored = database.query(QStringLiteral("Select typeof(v) || ' ' || v From t"));
        ASSERT_TRUE(stored.next());
        EXPECT_EQ(stored.text(0), QLatin1String(c.stored)) << declaration.toStdString();
        stored.reset();
        database.exec(QStringLiteral("Drop Table t"));
    }
}
