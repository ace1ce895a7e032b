#include "platform/dp/SqliteDatabaseAccess.h"
#include "platform/core/SqliteException.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sqlite3.h>

#include <optional>

namespace {

using orvane::dp::SqliteDatabaseAccess;
using orvane::dp::SqliteStatement;
using orvane::err::SqliteException;

class SqliteDatabaseAccessTest : public testing::Test {
protected:
    qint64 count(const char* table) {
        SqliteStatement query = access_.query(QStringLiteral("Select Count(*) From ") + QLatin1String(table));
        return query.next() ? query.integer(0) : -1;
    }

    QTemporaryDir directory_;
    SqliteDatabaseAccess access_{directory_.filePath(QStringLiteral("база.db"))};
};

TEST_F(SqliteDatabaseAccessTest, ReadsBackEveryKindOfValue) {
    access_.exec(QStringLiteral("Create Table t(a, b, c, d, e)"));
    const QString text = QString::fromUtf8("O'Нил 🎄");
    SqliteStatement insert = access_.query(QStringLiteral("Insert Into t Values(?, ?, ?, ?, x'00ff')"),
                                           SqliteStatement::Use::Repeated);
    for (int row = 0; row < 2; ++row) {
        insert.bind(1, qint64(1) << 62);
        insert.bind(2, 0.1);
        insert.bind(3, row == 0
                           ? std::u16string_view(reinterpret_cast<const char16_t*>(text.utf16()), text.size())
                           : std::u16string_view());
        row == 0 ? insert.bindNull(4) : insert.bind(4, std::string_view("ы"));
        insert.run();
    }
    SqliteStatement query = access_.query(QStringLiteral("Select * From t"));
    ASSERT_TRUE(query.next());
    EXPECT_EQ(query.value(0), QVariant(qint64(1) << 62));
    EXPECT_EQ(query.value(1), QVariant(0.1));
    EXPECT_EQ(query.value(2), QVariant(text));
    EXPECT_FALSE(query.value(3).isValid());
    EXPECT_TRUE(query.isNull(3));
    EXPECT_EQ(query.value(4), QVariant(QByteArray("\0\xff", 2)));
    ASSERT_TRUE(query.next());
    EXPECT_FALSE(query.isNull(2)); // an empty text is no NULL
    EXPECT_EQ(query.text(3), QStringLiteral("ы"));
    EXPECT_FALSE(query.next());
}

TEST_F(SqliteDatabaseAccessTest, UndoesAUnitOfWorkThatWasNotClosed) {
    access_.exec(QStringLiteral("Create Table t(a Unique)"));
    const auto insertTwice = [this](const char* operation, int value) {
        auto work = access_.open(QLatin1String(operation));
        access_.exec(QStringLiteral("Insert Into t Values(%1)").arg(value));
        access_.exec(QStringLiteral("Insert Into t Values(%1)").arg(value));
        work.close();
    };
    try {
        insertTwice("addRows", 1);
        FAIL() << "the second row was taken";
    } catch (const SqliteException& failure) {
        EXPECT_EQ(failure.message(),
                  QStringLiteral("addRows: Insert Into t Values(1): UNIQUE constraint failed: t.a"));
        EXPECT_EQ(failure.code(), SQLITE_CONSTRAINT_UNIQUE);
    }
    EXPECT_EQ(count("t"), 0);

    auto outer = access_.open(QStringLiteral("outer"));
    access_.exec(QStringLiteral("Insert Into t Values(5)"));
    EXPECT_THROW(insertTwice("inner", 6), SqliteException);
    outer.close();
    EXPECT_EQ(count("t"), 1); // what the outer unit did itself stays
    EXPECT_NE(sqlite3_get_autocommit(access_.handle()), 0);
}

TEST_F(SqliteDatabaseAccessTest, KeepsALongStatementOutOfTheMessage) {
    const QString values = QStringLiteral("('%1')").arg(QString(100'000, QLatin1Char('x')));
    try {
        access_.exec(QStringLiteral("Insert Into nowhere Values") + values);
        FAIL() << "the table does not exist";
    } catch (const SqliteException& failure) {
        EXPECT_LT(failure.message().size(), 1000);
        EXPECT_TRUE(failure.message().endsWith(QStringLiteral("no such table: nowhere")));
    }
}

TEST_F(SqliteDatabaseAccessTest, PutsTemporaryTablesBesideTheDatabaseAndLeavesNothing) {
    access_.exec(QStringLiteral("Create Temporary Table t(a)"));
    // More than the page cache holds, so that the pages have to go somewhere.
    access_.exec(QStringLiteral("With n(i) As (Select 1 Union All Select i + 1 From n Where i < 40000) "
                                "Insert Into t Select randomblob(1000) From n"));
    bool found = false;
    const auto descriptors = QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::Files | QDir::System);
    for (const QFileInfo& descriptor : descriptors) {
        found =
            found || descriptor.symLinkTarget().startsWith(directory_.path() + QStringLiteral("/orvane-"));
    }
    EXPECT_TRUE(found);
    EXPECT_EQ(QDir(directory_.path()).entryList(QDir::Files), QStringList{QStringLiteral("база.db")});
}

TEST(SqliteDatabaseAccess, SaysWhichFileItCannotOpen) {
    const QTemporaryDir directory;
    try {
        const SqliteDatabaseAccess access(directory.filePath(QStringLiteral("нет/база.db")));
        FAIL() << "the directory does not exist";
    } catch (const SqliteException& failure) {
        EXPECT_TRUE(failure.message().startsWith(directory.path())) << failure.what();
        EXPECT_EQ(failure.code() & 0xff, SQLITE_CANTOPEN);
    }
}

} // namespace
