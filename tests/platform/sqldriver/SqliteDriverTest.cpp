#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlIndex>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

#include <gtest/gtest.h>

#include <sqlite3.h>

namespace {

const QString driverName = QStringLiteral("QTSQLITE");

class SqliteDriverTest : public testing::Test {
protected:
    ~SqliteDriverTest() override {
        database_ = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("driver test"));
    }

    QSqlDatabase database_ = QSqlDatabase::addDatabase(driverName, QStringLiteral("driver test"));
};

TEST_F(SqliteDriverTest, WorksOnTheLibraryThatThisProgramIsLinkedTo) {
    ASSERT_TRUE(database_.isValid());
    database_.setDatabaseName(QStringLiteral(":memory:"));
    ASSERT_TRUE(database_.open()) << qPrintable(database_.lastError().text());
    const QVariant handle = database_.driver()->handle();
    ASSERT_STREQ(handle.typeName(), "sqlite3*");
    auto* sqlite = *static_cast<sqlite3* const*>(handle.constData());

    // A function registered through the handle is called by the driver's statements.
    ASSERT_EQ(sqlite3_create_function(
                  sqlite, "library", 0, SQLITE_UTF8, nullptr,
                  [](sqlite3_context* context, int, sqlite3_value**) {
                      sqlite3_result_text(context, sqlite3_sourceid(), -1, SQLITE_STATIC);
                  },
                  nullptr, nullptr),
              SQLITE_OK);
    QSqlQuery query(QStringLiteral("Select library(), sqlite_source_id(), 'Ёж'"), database_);
    ASSERT_TRUE(query.next()) << qPrintable(query.lastError().text());
    EXPECT_EQ(query.value(0), query.value(1));
    EXPECT_EQ(query.value(2).toString(), QString::fromUtf8("Ёж"));
}

TEST_F(SqliteDriverTest, NamesAreWhatSqliteReads) {
    database_.setDatabaseName(QStringLiteral(":memory:"));
    ASSERT_TRUE(database_.open());
    QSqlQuery query(database_);
    for (const char* text :
         {"roads", "roads.v2", "plan [2020]", "[z]", "\"q\"", "x]y", "it's", "main.x", "Ключ"}) {
        const QString name = QString::fromUtf8(text);
        const QString table = database_.driver()->escapeIdentifier(name, QSqlDriver::TableName);
        const QString column = database_.driver()->escapeIdentifier(name, QSqlDriver::FieldName);
        ASSERT_TRUE(query.exec(QStringLiteral("Create Table %0(%1 Integer, \"x\"\"y\" Text, Primary Key(%1))")
                                   .arg(table, column)))
            << text << ": " << qPrintable(query.lastError().text());
        EXPECT_TRUE(database_.tables().contains(name)) << text;
        const QSqlRecord record = database_.record(name);
        ASSERT_EQ(record.count(), 2) << text;
        EXPECT_EQ(record.fieldName(0), name);
        EXPECT_EQ(record.field(0).type(), QVariant::Int);
        EXPECT_EQ(record.fieldName(1), QStringLiteral("x\"y"));
        ASSERT_EQ(database_.primaryIndex(name).count(), 1) << text;
        EXPECT_EQ(database_.primaryIndex(name).fieldName(0), name);
    }
    EXPECT_TRUE(database_.record(QStringLiteral("z")).isEmpty());
    ASSERT_TRUE(database_.transaction());
    EXPECT_FALSE(database_.transaction());
    EXPECT_TRUE(database_.lastError().isValid());
    EXPECT_TRUE(database_.rollback());
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
