#include "AdaptorFixture.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/shapes/Shapes.h"

#include <QDate>
#include <QSqlQuery>

#include <random>

namespace orvane {

namespace {

using testing::attribute;
using testing::geometryAttribute;
using testing::MemoryTable;
using testing::wkb;

class IndexingTest : public testing::AdaptorTest {
protected:
    /// 4,000 rows: a number with gaps and NULL, a text in two letter cases with NULL, a real, a date.
    static std::shared_ptr<MemoryTable> openItems(const char* name = "items") {
        static const char* const words[] = {"Alpha", "ALPHA", "beta", "Вода", "ВОДА", "gamma", "Ёж", "delta"};
        std::vector<MemoryTable::Row> rows;
        for (int i = 0; i < 4000; ++i) {
            rows.push_back({i % 97 == 0 ? QVariant() : QVariant(static_cast<qlonglong>(i / 2)),
                            i % 89 == 0
                                ? QVariant()
                                : QVariant(QString::fromUtf8(words[i % 8]) + QString::number(i % 500)),
                            i * 0.25, QDate(2021, 1, 1).addDays(i % 365)});
        }
        return open(name,
                    {attribute("number", QMetaType::LongLong), attribute("word", QMetaType::QString),
                     attribute("size", QMetaType::Double), attribute("day", QMetaType::QDate)},
                    std::move(rows));
    }

    /// Asks until an index answers; every answer on the way has to be the same.
    static std::string askUntilIndexed(MemoryTable& table, const std::string& sql) {
        const std::string first = ask(sql);
        for (int round = 0; round < 3000 && !table.lastRequest.ids; ++round) {
            EXPECT_EQ(ask(sql), first) << sql << ", round " << round;
        }
        if (table.lastRequest.ids) {
            return first;
        }
        ADD_FAILURE() << "no index for " << sql;
        return first;
    }
};

QByteArray box(double x, double y, double width, double height) {
    const double ring[] = {x, y, x + width, y, x + width, y + height, x, y + height, x, y};
    return wkb(geometry::Polygon(geometry::Dimensions::XY,
                                 {geometry::CoordinateSequence(geometry::Dimensions::XY, ring)}));
}

} // namespace

TEST_F(IndexingTest, RepeatedTermsAreAnsweredByAnIndexWithTheSameRows) {
    const auto table = openItems();
    for (const char* where :
         {"number = 1500", "number In (3, 700, 700, 1999, -1)", "word = 'alpha8' Collate Locale",
          "word In ('ВОДА3', 'вода4', 'none')", "number = 43 And word = 'DELTA87'", "number > 1990",
          "number Between 100 And 105", "size = 10.0 And number Is Not Null",
          "word >= 'Ёж2' And word < 'Ёж22'", "word Like 'вода3%'", "word Like 'БЕТА_' Or word Like 'Beta1%2'",
          "word Glob 'ёж*' And number < 500", "day Between '2021-02-01' And '2021-02-03'",
          "day = '2021-03-07' Or day In ('2021-04-01', 'never')"}) {
        askUntilIndexed(*table,
                        std::string("Select Count(*), Sum(number), Max(word) From items Where ") + where);
    }
}

TEST_F(IndexingTest, AnIndexServesWhateverItBeginsWith) {
    const auto table = openItems("wide");
    const std::string ask1 = "Select Count(*), Sum(size) From wide Where ";
    askUntilIndexed(*table, ask1 + "number = 43 And word = 'DELTA87'");
    for (const auto& [sql, answer] : {std::pair(ask1 + "number = 1500", "2|1500.25"),
                                      std::pair(ask1 + "number Between 100 And 102", "6|303.75"),
                                      std::pair(std::string("Select Max(number) From wide"), "1999")}) {
        EXPECT_EQ(ask(sql), answer) << sql;
        EXPECT_TRUE(table->lastRequest.ids) << sql;
    }
    const std::string byWord = ask1 + "word = 'delta87'"; // stands second there
    ask(byWord);
    EXPECT_FALSE(table->lastRequest.ids);
    askUntilIndexed(*table, byWord);
}

TEST_F(IndexingTest, TermsThatFindMuchOfTheTableAreScanned) {
    const auto table = openItems();
    for (int round = 0; round < 700; ++round) {
        ask("Select Count(*) From items Where number > 10");
    }
    EXPECT_FALSE(table->lastRequest.ids);
    EXPECT_EQ(ask("Select Count(*) From items Where number > 10"), "3937");
}

TEST_F(IndexingTest, EditsAreSeenAtOnce) {
    const auto table = openItems();
    const std::string sql = "Select Count(*) From items Where number = 1500";
    EXPECT_EQ(askUntilIndexed(*table, sql), "2");
    ask("Insert Into items(number) Values(1500)");
    EXPECT_EQ(ask(sql), "3");
    EXPECT_FALSE(table->lastRequest.ids);
    ask("Delete From items Where number = 1500");
    EXPECT_EQ(ask(sql), "0");
}

TEST_F(IndexingTest, FirstRowsInOrderComeFromAnIndex) {
    const auto table = openItems();
    for (const char* query : {"Select word From items Order By word Limit 60",
                              "Select word From items Order By word Desc Limit 9 Offset 4",
                              "Select number From items Order By number Limit 500",
                              "Select size, size * 2 From items Order By size Desc Limit 5",
                              "Select number From items Order By number Limit 9000",
                              "Select day From items Order By day Desc Limit 3",
                              "Select number, size From items Order By number Desc, size Desc Limit 30",
                              "Select word, size From items Order By word, number Desc, size Limit 300"}) {
        askUntilIndexed(*table, query);
    }
    EXPECT_EQ(ask("Select Max(number) From items"), "1999");
    EXPECT_EQ(table->lastRequest.ids->size(), 16);
    const std::string last = ask("Select word From items Order By word Desc Limit 1");
    ask("Insert Into items(word) Values('" + last + "я')");
    EXPECT_EQ(ask("Select word From items Order By word Desc Limit 1"), last + "я");
}

TEST_F(IndexingTest, OrderThatWasPromisedHoldsWhenTheIndexIsGone) {
    const auto table = openItems();
    const std::string sql = "Select size From items Order By size Desc Limit 4";
    askUntilIndexed(*table, sql);
    QSqlQuery prepared(engine().engineDatabase());
    ASSERT_TRUE(prepared.prepare(QString::fromStdString(sql)));
    engine().clearIndices(table);
    ASSERT_TRUE(prepared.exec() && prepared.next());
    EXPECT_EQ(prepared.value(0).toDouble(), 999.75);
    ASSERT_TRUE(prepared.next());
    EXPECT_EQ(prepared.value(0).toDouble(), 999.5);
}

TEST_F(IndexingTest, ClearedIndicesAreMadeAgain) {
    const auto table = openItems();
    const std::string sql = "Select Count(*) From items Where number = 77";
    askUntilIndexed(*table, sql);
    engine().clearIndices(table);
    EXPECT_EQ(ask(sql), "2");
    EXPECT_FALSE(table->lastRequest.ids);
}

TEST_F(IndexingTest, JoinsGetTheirIndexOnTheWay) {
    const auto items = openItems();
    openItems("others");
    EXPECT_EQ(ask("Select Count(*) From items a Join others b On a.number = b.number And a.size = b.size"),
              "3958");
}

TEST_F(IndexingTest, JoinsThatScanATableOftenGetAnIndexAndAnotherOrder) {
    const auto items = openItems();
    std::vector<MemoryTable::Row> rows;
    for (int i = 0; i < 100; ++i) {
        rows.push_back({i * 7});
    }
    open("few", {attribute("number", QMetaType::LongLong)}, std::move(rows));
    EXPECT_EQ(
        askUntilIndexed(*items, "Select Count(*), Sum(size) From items i, few f Where i.number = f.number"),
        "197|34020.25");
}

TEST_F(IndexingTest, RelationsByIndexAreThoseOfTheFunctions) {
    std::mt19937 random(7);
    const auto coordinate = [&random] { return static_cast<double>(random() % 100) / 4; };
    std::vector<MemoryTable::Row> areas, places;
    for (qlonglong i = 0; i < 60; ++i) {
        areas.push_back({i, box(coordinate(), coordinate(), 1 + coordinate() / 5, 1 + coordinate() / 5)});
        places.push_back({i, i % 3 ? QVariant(wkb(geometry::Point(coordinate(), coordinate())))
                                   : QVariant(box(coordinate(), coordinate(), 0.5, 0.5))});
    }
    areas.push_back({60LL, QVariant()});
    places.push_back({60LL, QVariant()});
    places.push_back({61LL, QByteArray("no geometry")});
    open("areas", {attribute("id", QMetaType::LongLong), geometryAttribute(4326)}, areas);
    open("places", {attribute("id", QMetaType::LongLong), geometryAttribute(4326)}, places);
    open("plain", {attribute("id", QMetaType::LongLong), geometryAttribute(0)}, places);
    open("metres", {attribute("id", QMetaType::LongLong), geometryAttribute(3857)}, areas);

    const std::string geometry = "cd750f8a9a2b4fac9b9b05eb53795d97";
    const std::string a = "a." + geometry, b = "b." + geometry;
    int related = 0;
    for (const char* tables :
         {"areas a, places b", "places a, areas b", "areas a, plain b", "areas a, metres b"}) {
        for (const char* function :
             {"ST_Intersects", "ST_Contains", "ST_Within", "ContainsCentroid", "CentroidWithin"}) {
            const std::string call = std::string(function) + "(" + a + "," + b + ")";
            const auto pairsWhere = [&](const std::string& condition) {
                return ask(std::string("Select a.id, b.id From ") + tables + " Where " + condition +
                           " Order By 1, 2");
            };
            const std::string byIndex = pairsWhere(call);
            EXPECT_EQ(byIndex, pairsWhere(call + " + 0"))
                << tables << " " << function; // a wrapped call is no constraint
            related += !byIndex.empty();
        }
    }
    EXPECT_GE(related, 9);
}

} // namespace orvane
