#include "platform/utils/MetaTypes.h"

#include "platform/decimal/QDecNumber.h"

#include <QVariant>

#include <gtest/gtest.h>
#include <sqlite3.h>

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
        {QMetaType::UnknownType, "", "x'00'", "blob "},
    };
    sqlite3* database = nullptr;
    ASSERT_EQ(SQLITE_OK, sqlite3_open(":memory:", &database));
    for (const Case& c : cases) {
        const QByteArray sql = "Create Table t(v " + orvane::sqlName(c.type).toUtf8() + c.suffix +
                               "); Insert Into t Values(" + c.literal + ");";
        ASSERT_EQ(SQLITE_OK, sqlite3_exec(database, sql.constData(), nullptr, nullptr, nullptr))
            << sql.constData();
        QByteArray stored;
        const auto keep = [](void* target, int, char** values, char**) {
            *static_cast<QByteArray*>(target) = values[0];
            return 0;
        };
        sqlite3_exec(database, "Select typeof(v) || ' ' || v From t", keep, &stored, nullptr);
        EXPECT_STREQ(c.stored, stored.constData()) << sql.constData();
        sqlite3_exec(database, "Drop Table t", nullptr, nullptr, nullptr);
    }
    sqlite3_close(database);
}
