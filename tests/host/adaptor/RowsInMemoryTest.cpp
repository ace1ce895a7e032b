#include "AdaptorFixture.h"

#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/shapes/Shapes.h"

#include <algorithm>
#include <random>
#include <sstream>

namespace orvane {

namespace {

using testing::attribute;
using testing::MemoryTable;

/// Tables whose rows are arranged in memory - for Group By and Distinct, or as the inner side of a join -
/// against native tables of SQLite with the same rows.
class RowsInMemoryTest : public testing::AdaptorTest {
protected:
    static MemoryTable::Row anyRow(std::mt19937& random) {
        static const char* const words[] = {"Alpha",
                                            "ALPHA",
                                            "alpha",
                                            "beta",
                                            "Вода",
                                            "ВОДА",
                                            "вода",
                                            "Ёж",
                                            "ёж",
                                            "еж",
                                            "Ель",
                                            "résumé",
                                            "😀",
                                            "",
                                            "Й",
                                            "И",
                                            "и\u0306",
                                            "a b",
                                            "\u0001Alpha",
                                            "Žena",
                                            "fourteen bytes",
                                            "fifteen bytes!!"};
        const auto orNull = [&random](QVariant value) { return random() % 9 == 0 ? QVariant() : value; };
        const auto number = static_cast<qlonglong>(random() % 12) - 4;
        const double size = static_cast<double>(random() % 16) / 2 - 2;
        return {orNull(number), orNull(QString::fromUtf8(words[random() % std::size(words)])), orNull(size),
                orNull(QStringLiteral("2020-01-0%1").arg(1 + random() % 5))};
    }

    static void openPair(const std::string& name, int count, unsigned seed) {
        std::mt19937 random(seed);
        std::vector<MemoryTable::Row> rows;
        for (int i = 0; i < count; ++i) {
            rows.push_back(anyRow(random));
        }
        open(name.c_str(),
             {attribute("number", QMetaType::LongLong), attribute("word", QMetaType::QString),
              attribute("size", QMetaType::Double), attribute("day", QMetaType::QDate)},
             std::move(rows));
        define("Drop Table If Exists temp.native_" + name);
        define("Create Temp Table native_" + name +
               "(number Integer, word Text Collate Locale, size Real, day Text)");
        ask("Insert Into temp.native_" + name + " Select number, word, size, day From " + name);
    }

    /// The rows of the answer, sorted.
    static std::vector<std::string> rows(const std::string& sql) {
        std::istringstream text(ask(sql));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);) {
            lines.push_back(line);
        }
        std::sort(lines.begin(), lines.end());
        return lines;
    }

    /// Both answers to a query in which "@" stands before the names of tables.
    static void expectSame(std::string sql) {
        std::string native = sql;
        for (std::size_t at = 0; (at = native.find('@', at)) != std::string::npos;) {
            native.replace(at, 1, "temp.native_");
        }
        sql.erase(std::remove(sql.begin(), sql.end(), '@'), sql.end());
        EXPECT_EQ(rows(sql), rows(native)) << sql;
    }

    static bool isSorted(const std::string& sql) {
        return ask("Explain Query Plan " + sql).find("TEMP B-TREE") != std::string::npos;
    }
};

} // namespace

TEST_F(RowsInMemoryTest, GroupsAreThoseOfSqlite) {
    openPair("things", 3000, 1);
    const std::string sums = "Count(*), Sum(number), Min(size), Max(day), Sum(Length(word)), "
                             "Sum(word = 'fourteen bytes'), Sum(word = 'fifteen bytes!!')";
    for (const char* keys :
         {"word", "number", "size", "day", "word, number", "day Desc, word", "number, size, word"}) {
        for (const char* where : {"", " Where number > 1", " Where word = 'ВОДА'", " Where word Is Null",
                                  " Where number In (1, 3, 5) And size <> 2", " Where number > 99"}) {
            expectSame("Select " + sums + " From @things" + where + " Group By " + keys);
        }
        const std::string plain = std::string(keys).substr(0, std::string(keys).find(" Desc"));
        expectSame("Select Count(*) From (Select Distinct Lower(word), " + plain + " From @things)");
    }
    expectSame("Select Count(*) From (Select Distinct word From @things)");
    expectSame("Select Count(Distinct word), Sum(Distinct size) From @things");
    expectSame("Select number, Count(*) From @things Group By word, number Having Count(*) > 3");
    EXPECT_FALSE(isSorted("Select Count(*) From things Group By word, number"));
    EXPECT_TRUE(isSorted("Select Count(*) From things Group By word Collate NoCase"));
}

TEST_F(RowsInMemoryTest, GeometriesGoAlongWithTheirRows) {
    std::mt19937 random(5);
    std::vector<MemoryTable::Row> places;
    for (int i = 0; i < 2000; ++i) {
        const geometry::Point point(i, static_cast<double>(random() % 100));
        const QVariant wkb = geometry::GeometryFactory::toWkb(point.clone(), QSysInfo::LittleEndian);
        places.push_back({QStringLiteral("word %1").arg(random() % 50), i % 7 ? wkb : QVariant()});
    }
    open("places",
         {attribute("word", QMetaType::QString),
          dp::AttributeDefinitionPointer(
              new dp::GeometryAttributeDefinition(QStringLiteral("shape"), nullptr))},
         std::move(places));
    const std::string query = "Select word, Count(*), Sum(ST_X(g)), Max(ST_Y(g)) From "
                              "(Select word, \"cd750f8a9a2b4fac9b9b05eb53795d97\" g From places) Group By ";
    EXPECT_FALSE(isSorted(query + "word"));
    EXPECT_EQ(rows(query + "word"), rows(query + "word Collate NoCase"));
}

TEST_F(RowsInMemoryTest, GroupsComeInTheOrderOfTheirKeys) {
    openPair("things", 500, 2);
    for (const char* order : {"word", "word Desc", "number Desc", "size, day"}) {
        const std::string keys = std::string(order).substr(0, std::string(order).find(" Desc"));
        const auto query = [&](const char* table) {
            return ask(std::string("Select Count(*) From ") + table + " Group By " + keys + " Order By " +
                       order);
        };
        EXPECT_EQ(query("things"), query("temp.native_things")) << order;
    }
}

TEST_F(RowsInMemoryTest, JoinsFindTheRowsThatSqliteFinds) {
    openPair("a", 300, 3);
    openPair("b", 400, 4);
    for (const char* condition :
         {"a.word = b.word", "a.number = b.number", "a.size = b.size", "a.number = b.size", "a.day = b.day",
          "a.word Is b.word", "a.number Is b.size", "a.word = b.word And a.number = b.number",
          "a.word = b.word Collate NoCase", "a.word = b.word Collate Binary", "a.number = b.word",
          "a.word = b.word And a.size > b.size", "a.day = b.word", "a.word = b.number"}) {
        const std::string on = std::string(" @b b On ") + condition;
        expectSame("Select Count(*), Sum(a.number), Sum(b.size), Count(b.word) From @a a Join" + on);
        expectSame("Select Count(*), Sum(a.number), Sum(b.size), Count(b.word) From @a a Left Join" + on);
        expectSame("Select a.day, Count(*), Max(b.day) From @a a Cross Join" + on + " Group By a.day");
        expectSame("Select b.day, Count(*), Max(a.day) From @a a Cross Join" + on + " Group By b.day");
    }
    expectSame(
        "Select Count(*) From @a a Where Exists (Select 1 From @b b Where b.word = a.word And b.size = 1)");
}

} // namespace orvane
