#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
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

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
