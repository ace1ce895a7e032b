#include "AdaptorFixture.h"

#include <orvane/engine/EngineCache.h>

#include <gmock/gmock.h>

#include <QDate>
#include <QSqlDriver>

namespace orvane {

namespace {

using testing::attribute;
using ::testing::HasSubstr;
using testing::MemoryTable;

class CatalogueTest : public testing::AdaptorTest {
protected:
    /// Opens a table of towns under a name.
    static std::shared_ptr<MemoryTable> openTowns(const char* name = "towns") {
        return open(
            name,
            {attribute("name", QMetaType::QString), attribute("people", QMetaType::LongLong),
             attribute("height", QMetaType::Double), attribute("founded", QMetaType::QDate)},
            std::vector<MemoryTable::Row>{{QStringLiteral("Paris"), 2148000LL, 35.0, QDate(508, 1, 1)},
                                          {QStringLiteral("МОСКВА"), 12655050LL, 156.0, QDate(1147, 4, 4)},
                                          {QStringLiteral("москва"), 3700LL, 180.5, QVariant()},
                                          {QVariant(), QVariant(), QVariant(), QVariant()},
                                          {QStringLiteral("O'Neill"), 3705LL, -1.5, QDate(1881, 5, 5)}});
    }
};

} // namespace

TEST_F(CatalogueTest, QueriesReadWhatTheTableHolds) {
    openTowns();
    const struct {
        const char* sql;
        const char* answer;
    } cases[] = {
        {"Select Count(*), Sum(people) From towns", "5|14810455"},
        {"Select name From towns Where people = 3700", "москва"},
        {"Select people From towns Where name = 'Москва' Order By 1", "3700\n12655050"},
        {"Select people From towns Where name = 'Москва' Collate Binary", ""},
        {"Select name From towns Where name <> 'москва' Order By name", "O'Neill\nParis"},
        {"Select name From towns Where height Between 0 And 160 Order By height", "Paris\nМОСКВА"},
        {"Select Count(*) From towns Where name Is Null And height Is Null", "1"},
        {"Select Count(*) From towns Where people In (3705, 3700, 'x', Null)", "2"},
        {"Select Count(*) From towns Where name In ('МОСКВА', 'paris')", "3"},
        {"Select Count(*) From towns Where people = Null", "0"},
        {"Select Count(*) From towns Where people Is Not 3700", "4"},
        {"Select Count(*) From towns Where people = '3700'", "1"},
        {"Select name From towns Where founded < '1200-01-01' Order By founded", "Paris\nМОСКВА"},
        {"Select name From towns Where name Like 'МОС%' And people > 5000", "МОСКВА"},
        {"Select Count(*) From (Select * From towns Limit 2 Offset 1)", "2"},
        {"Select Count(*) From (Select name From towns Where height > 0 Limit 3)", "3"},
        {"Select name From towns Where name Glob '*Neill' Limit 1", "O'Neill"},
        {"Select Count(*) From (Select name From towns Union All Select name From towns Limit 3 Offset 4)",
         "3"},
        {"Select a.name From towns a Join towns b On a.name = b.name Where b.people = 3700 Order By a.people",
         "москва\nМОСКВА"},
        {"Select Count(b.name) From towns a Left Join towns b On a.people = b.people And b.height > 100",
         "2"},
        {"Select cd750f8a9a2b4fac9b9b05eb53795d97 Is Null From towns Limit 1", "1"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(ask(test.sql), test.answer) << test.sql;
    }
}

TEST_F(CatalogueTest, OnlyTheColumnsOfTheStatementAreRead) {
    const auto table = openTowns();
    ask("Select people From towns Where height > 1");
    EXPECT_EQ(table->lastRequest.attributes, (std::vector<int>{1, 2}));
    ASSERT_EQ(table->lastRequest.terms.size(), 1u);
    EXPECT_EQ(table->lastRequest.terms[0].comparison, dp::Comparison::Greater);
    ask("Select 1 From towns Limit 2 Offset 1");
    EXPECT_EQ(table->lastRequest.limit, 3);
    ask("Select 1 From towns Where name Like 'x%' Limit 2"); // the pattern is for SQLite to match, so every
                                                             // row may be needed
    EXPECT_EQ(table->lastRequest.limit, -1);
}

TEST_F(CatalogueTest, RowNumbersFindTheirRows) {
    openTowns();
    EXPECT_EQ(ask("Select Count(*) From towns t Where Exists (Select 1 From towns u Where u.rowid = t.rowid "
                  "And u.name Is t.name)"),
              "5");
    EXPECT_EQ(ask("Select Count(*) From towns Where rowid In (Select rowid From towns Where people < 4000)"),
              "2");
    EXPECT_EQ(ask("Select Count(*) From towns Where rowid = 'x'"), "0");
    EXPECT_EQ(ask("Select Count(*) From towns Where rowid = -1"), "0");
}

/// Each time in a table none of whose rows has been read: %0 is the number of its fourth row, whatever asks.
TEST_F(CatalogueTest, RowNumbersFindRowsThatNobodyHasRead) {
    const struct {
        const char* sql;
        const char* answer;
        const char* left = "0\n1\n2\n3\n4\n5"; ///< in the table afterwards
    } cases[] = {
        {"Select place From fresh Where rowid = %0", "3"},
        {"Select place From fresh Where %0.0 Is rowid", "3"},
        {"Select place From fresh Where rowid = '%0'", "3"},
        {"Select place From fresh Where rowid + 0 = %0", "3"},
        {"Select place From fresh Where rowid In (%0, %0 + 1000)", "3"},
        {"Select place From fresh Where rowid In (Select %0)", "3"},
        {"Select place From fresh Where rowid Between %0 And %0", "3"},
        {"Select place From fresh Where rowid > %0 - 1 And rowid <= %0 And kind = 1", "3"},
        {"Select place From fresh Where kind = 1 And rowid Is Not %0 - 2 And rowid <> %0 + 2", "3"},
        {"Select place From fresh Where rowid = %0 Or rowid = -1", "3"},
        {"Select place From fresh Where rowid = (Select Min(u.rowid) + 3 From fresh u)", "3"},
        {"Select Count(*) From fresh a Where Exists (Select 1 From fresh b Where b.rowid = a.rowid + 1)",
         "5"},
        {"Select a.place, b.place From fresh a, fresh b Where a.kind = 1 And b.rowid < a.rowid And b.place = "
         "2",
         "3|2\n5|2"},
        {"Delete From fresh Where rowid In (%0, %0 + 1) And place > 0", "", "0\n1\n2\n5"},
        {"Update fresh Set place = 7 Where rowid >= %0 And kind = 1", "", "0\n1\n2\n7\n4\n7"},
        {"Update fresh Set place = rowid - %0 Where rowid = %0", "", "0\n1\n2\n0\n4\n5"},
    };
    qint64 firstId = 1'000'000'000;
    for (const auto& test : cases) {
        QString sql = QString::fromLatin1(test.sql);
        sql.replace(QLatin1String("%0"), QString::number(engine().cache()->idLimit() + 3));
        catalog().add(std::make_shared<MemoryTable>(
            QStringLiteral("fresh"),
            QVector<dp::AttributeDefinitionPointer>{attribute("place", QMetaType::Int),
                                                    attribute("kind", QMetaType::Int)},
            std::vector<MemoryTable::Row>{{0, 0}, {1, 1}, {2, 0}, {3, 1}, {4, 0}, {5, 1}}, firstId += 1000));
        QCoreApplication::processEvents();
        EXPECT_EQ(ask(sql.toStdString()), test.answer) << test.sql;
        EXPECT_EQ(ask("Select place From fresh"), test.left) << test.sql;
        catalog().close(QStringLiteral("fresh"));
        QCoreApplication::processEvents();
    }
}

/// Whatever a statement reads a table for: an error in the middle of it is the statement's.
TEST_F(CatalogueTest, AReadErrorEndsTheStatement) {
    struct Torn : MemoryTable {
        struct Rows : dp::Cursor {
            explicit Rows(std::unique_ptr<dp::Cursor> whole) : whole_(std::move(whole)) {}
            bool next() override {
                if (++row_ > 300) {
                    throw std::runtime_error("torn page");
                }
                return whole_->next();
            }
            dp::Cell cell(int attribute) override { return whole_->cell(attribute); }
            dp::FeatureId featureId() override { return whole_->featureId(); }

            std::unique_ptr<dp::Cursor> whole_;
            int row_ = 0;
        };
        using MemoryTable::MemoryTable;
        std::unique_ptr<dp::Cursor> openCursor(const dp::ScanRequest& request) override {
            return std::make_unique<Rows>(MemoryTable::openCursor(request));
        }
    };
    std::vector<MemoryTable::Row> rows;
    for (int i = 0; i < 600; ++i) {
        rows.push_back({i, i % 7, QByteArray()});
    }
    const auto geometry =
        dp::AttributeDefinitionPointer(new dp::GeometryAttributeDefinition(QStringLiteral("place"), nullptr));
    catalog().add(std::make_shared<Torn>(
        QStringLiteral("torn"),
        QVector{attribute("number", QMetaType::Int), attribute("kind", QMetaType::Int), geometry}, rows));
    openTowns();
    for (const char* sql :
         {"Select Count(number) From torn", "Select number From torn Where number = 599",
          "Select number From torn Order By kind", "Select kind, Count(*) From torn Group By kind",
          "Select Distinct kind From torn", "Select Max(number) From torn",
          "Select Count(number) From torn Where rowid > 100",
          "Select Count(number) From torn Where rowid = 1000000000",
          "Select Count(*) From towns a Left Join torn b On a.people = b.number",
          "Select Count(*) From towns Where Exists (Select 1 From torn Where number = people)",
          "Select Count(*) From towns Where people In (Select number From torn)",
          "Select Count(*) From torn Where "
          "ST_Intersects(cd750f8a9a2b4fac9b9b05eb53795d97, MakePoint(1, 2, 4326))",
          "Update torn Set kind = 1 Where number > 400", "Delete From torn Where number > 400"}) {
        EXPECT_THAT(ask(sql), HasSubstr("torn page")) << sql;
    }
}

TEST_F(CatalogueTest, TablesComeAndGoWithTheirObjects) {
    openTowns("Города 2024");
    EXPECT_EQ(ask("Select Count(*) From \"Города 2024\""), "5");
    catalog().close(QStringLiteral("Города 2024"));
    QCoreApplication::processEvents();
    EXPECT_THAT(ask("Select Count(*) From \"Города 2024\""), HasSubstr("no such table"));
    openTowns("Города 2024");
    EXPECT_EQ(ask("Select Count(*) From \"Города 2024\""), "5");
}

TEST_F(CatalogueTest, AnObjectThatIsGoneBeforeItsTurnIsLeftAlone) {
    auto table = std::make_shared<MemoryTable>(
        QStringLiteral("brief"), QVector<dp::AttributeDefinitionPointer>{attribute("a", QMetaType::Int)});
    catalog().add(table);
    catalog().close(QStringLiteral("brief"));
    table.reset();
    QCoreApplication::processEvents();
    EXPECT_THAT(ask("Select * From brief"), HasSubstr("no such table"));
}

TEST_F(CatalogueTest, RenamedObjectsAreFoundUnderTheNewName) {
    for (const bool renames : {false, true}) {
        SCOPED_TRACE(renames);
        link(renames);
        openTowns("before");
        ASSERT_TRUE(catalog().rename(QStringLiteral("before"), QStringLiteral("after")));
        QCoreApplication::processEvents();
        EXPECT_EQ(ask("Select Count(*) From after"), "5");
        EXPECT_THAT(ask("Select Count(*) From before"), HasSubstr("no such table"));
        EXPECT_NE(engine().findManagement(QStringLiteral("after")), nullptr);
        EXPECT_EQ(engine().findManagement(QStringLiteral("before")), nullptr);
        catalog().close(QStringLiteral("after"));
        define("Drop Table If Exists after");
        QCoreApplication::processEvents();
    }
}

TEST_F(CatalogueTest, TransactionsEndWithTheTablesOfTheCatalogue) {
    for (const bool renames : {false, true}) {
        link(renames);
        for (const std::vector<const char*>& end :
             {std::vector{"Commit"}, {"Rollback"}, {"Rollback To s"}, {"Rollback To s", "Rollback"}}) {
            SCOPED_TRACE(std::string(renames ? "with Alter: " : "made again: ") + end.back());
            openTowns("before");
            openTowns("closed");
            openTowns("read");
            ask("Begin");
            ask("Savepoint s");
            openTowns("opened");
            catalog().rename(QStringLiteral("before"), QStringLiteral("after"));
            QSqlQuery reader(engine().engineDatabase());
            ASSERT_TRUE(reader.exec(QStringLiteral("Select name From \"read\"")) && reader.next());
            catalog().close(QStringLiteral("closed"));
            catalog().close(QStringLiteral("read"));
            QCoreApplication::processEvents();
            EXPECT_EQ(ask("Select Count(*) From opened, after"), "25");
            reader.finish();
            for (const char* statement : end) {
                ask(statement);
                QCoreApplication::processEvents();
                EXPECT_EQ(ask("Select name From sqlite_master Where rootpage = 0 Order By name"),
                          "after\nopened");
                EXPECT_EQ(ask("Select Count(*) From opened, after"), "25");
            }
            ask("Commit");
            EXPECT_NE(engine().findManagement(QStringLiteral("after")), nullptr);
            catalog().close(QStringLiteral("after"));
            catalog().close(QStringLiteral("opened"));
            QCoreApplication::processEvents();
            EXPECT_EQ(ask("Select name From sqlite_master Where rootpage = 0"), "");
        }
    }
}

TEST_F(CatalogueTest, ARenameThatFailsLeavesTheTableAsItWas) {
    link(true);
    openTowns("before");
    define("Create Table after(own)");
    ask("Insert Into after Values('mine')");
    ASSERT_TRUE(catalog().rename(QStringLiteral("before"), QStringLiteral("after")));
    QCoreApplication::processEvents();
    EXPECT_EQ(ask("Select Count(*), own From before, after"), "5|mine");
    catalog().close(QStringLiteral("after"));
    QCoreApplication::processEvents();
    EXPECT_THAT(ask("Select Count(*) From before"), HasSubstr("no such table"));
    EXPECT_EQ(ask("Select own From after"), "mine");
    define("Drop Table after");
}

TEST_F(CatalogueTest, TablesOfAnotherExtensionAreLeftAlone) {
    openTowns("theirs");
    testing::MemoryExtension other(true); // has made no table, and so has none to rename
    other.rename(QStringLiteral("theirs"), QStringLiteral("mine"));
    EXPECT_EQ(ask("Select Count(*) From theirs"), "5");
    catalog().close(QStringLiteral("theirs"));
    QCoreApplication::processEvents();
    EXPECT_EQ(ask("Select name From sqlite_master Where rootpage = 0"), "");
}

TEST_F(CatalogueTest, ResetMakesTheTableAfresh) {
    const auto table = openTowns();
    engine().detachTable(QStringLiteral("towns"));
    EXPECT_THAT(ask("Select Count(*) From towns"), HasSubstr("Таблица towns закрыта"));
    extension_->deepReset(table);
    EXPECT_EQ(ask("Select Count(*) From towns"), "5");
}

TEST_F(CatalogueTest, EditsReachTheTableOrLeaveItAlone) {
    openTowns();
    const struct {
        const char* sql;
        const char* answer; ///< start of it
        const char* after;  ///< Count(*), Sum(people)
    } cases[] = {
        {"Insert Into towns(name, people, founded) Values('Ёлкино', 100, '2001-02-03')", "", "6|14810555"},
        {"Update towns Set people = people + 1 Where name = 'Ёлкино'", "", "6|14810556"},
        {"Select founded From towns Where name = 'Ёлкино'", "2001-02-03", "6|14810556"},
        {"Delete From towns Where name = 'Ёлкино'", "", "5|14810455"},
        {"Insert Into towns(people) Values(1), ('many')",
         "error: Таблица towns, столбец people: ожидается целое число", "5|14810455"},
        {"Update towns Set founded = 'long ago' Where people > 0",
         "error: Таблица towns, столбец founded: ожидается дата", "5|14810455"},
        {"Update towns Set name = x'00' Where people > 0",
         "error: Таблица towns, столбец name: ожидается текст", "5|14810455"},
        {"Insert Into towns(rowid, name) Values(7, 'x')", "error: Номера строк назначает таблица",
         "5|14810455"},
    };
    for (const auto& test : cases) {
        const std::string given = ask(test.sql);
        EXPECT_TRUE(*test.answer ? given.starts_with(test.answer) : given.empty())
            << test.sql << " -> " << given;
        EXPECT_EQ(ask("Select Count(*), Sum(people) From towns"), test.after) << test.sql;
    }
}

TEST_F(CatalogueTest, ATableMadeInATransactionIsEditedLikeAnyOther) {
    for (const char* end : {"Rollback", "Commit"}) {
        for (const bool isEdited : {false, true}) {
            ask("Begin");
            const auto table = open("made", {attribute("k", QMetaType::Int)}, {{1}, {2}, {3}, {4}, {5}});
            EXPECT_EQ(ask(isEdited ? "Delete From made Where k < 3" : "Select 1 Where 0"), "");
            EXPECT_EQ(ask("Select Count(*) From made"), isEdited ? "3" : "5");
            ask(end);
            EXPECT_EQ(table->featureCount(), isEdited && *end == 'C' ? 3 : 5) << end;
            TearDown();
        }
    }
}

TEST_F(CatalogueTest, RenameIgnoresEmptyNamesAndLetterCase) {
    openTowns("Roads");
    extension_->rename(QStringLiteral("Roads"), QStringLiteral("roads"));
    extension_->rename(QString(), QStringLiteral("x"));
    extension_->rename(QStringLiteral("Roads"), QString());
    EXPECT_EQ(ask("Select name From sqlite_master Where name Like 'roads'"), "Roads");
}

TEST_F(CatalogueTest, FailuresToMakeATableAreNested) {
    openTowns("taken");
    try {
        extension_->handleDataObject(catalog().dataObject(QStringLiteral("taken")).get());
        FAIL();
    } catch (const std::runtime_error& outer) {
        EXPECT_THAT(outer.what(), HasSubstr("Регистрация модуля базы данных: orvane::"));
        EXPECT_THROW(std::rethrow_if_nested(outer), std::runtime_error);
    }
}

TEST_F(CatalogueTest, ModuleArgumentsAreQuotedWhereTheyMustBe) {
    const QSqlDatabase database = engine().engineDatabase();
    const struct {
        QVariant value;
        const char* text;
    } cases[] = {
        {QStringLiteral("roads_2024.tab"), "roads_2024.tab"},
        {QStringLiteral("C:/data/roads.tab"), "'C:/data/roads.tab'"},
        {QStringLiteral("дороги"), "дороги"},
        {QStringLiteral("O'Neill"), "'O''Neill'"},
        {5, "5"},
        {2.5, "2.5"},
        {QVariant(QVariant::String), "NULL"},
    };
    QList<QVariant> values;
    QStringList texts;
    for (const auto& test : cases) {
        EXPECT_EQ(EngineExtension::formatArg(*database.driver(), test.value).toStdString(), test.text);
        values << test.value;
        texts << QString::fromUtf8(test.text);
    }
    EXPECT_EQ(EngineExtension::formatArgs(*database.driver(), values), texts.join(QLatin1Char(',')));
}

} // namespace orvane
