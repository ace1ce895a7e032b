// Conditions on distances and relations, which scans look up in a tree of envelopes, find what the functions
// themselves find.

#include "AdaptorFixture.h"
#include "support/Wkt.h"

#include <gmock/gmock.h>

#include <random>

namespace orvane {

namespace {

using testing::attribute;
using testing::geometryAttribute;
using testing::MemoryTable;

/// A scan that looks a relation up.
constexpr const char* lookedUp = "INDEX 0:[0-9]+ [0-9]+ 0 [1-9]";

class SpatialConditions : public testing::AdaptorTest {
protected:
    /// Near the equator, the poles, the 180th meridian on both sides, and anywhere.
    std::string position() {
        static constexpr double places[][2] = {{0, 0},      {30, 60},    {179.95, 10}, {-179.95, 10},
                                               {90, 89.97}, {-90, 89.9}, {0, -89.99},  {-179.99, -60}};
        const auto& place = places[random_() % std::size(places)];
        const bool isAnywhere = random_() % 8 == 0;
        const double x = isAnywhere ? number(-180, 180) : place[0] + number(-0.6, 0.6);
        const double y = isAnywhere ? number(-90, 90) : place[1] + number(-0.3, 0.3);
        return text(std::clamp(x, -180.0, 180.0), std::clamp(y, -90.0, 90.0));
    }
    double number(double least, double most) { return std::uniform_real_distribution(least, most)(random_); }
    static std::string text(double x, double y) { return std::to_string(x) + ' ' + std::to_string(y); }

    std::string shape(bool isPoint) {
        switch (isPoint ? 0 : random_() % 6) {
        case 0: return "POINT(" + position() + ")";
        case 1: return "LINESTRING(" + position() + "," + position() + ")";
        case 2: return "MULTIPOINT((" + position() + "),(" + position() + "))";
        case 3: {
            const double x = number(-100, 100), y = number(-80, 70), side = number(0.1, 40);
            return "POLYGON((" + text(x, y) + "," + text(x + side, y) + "," + text(x + side, y + side / 4) +
                   "," + text(x, y + side / 4) + "," + text(x, y) + "))";
        }
        case 4: return "GEOMETRYCOLLECTION EMPTY";
        default:
            return "GEOMETRYCOLLECTION(POINT(" + position() + "),LINESTRING(" + position() + "," +
                   position() + "))";
        }
    }

    /// Rows of shapes in degrees, or of their images in another system.
    void openShapes(const char* name, int epsg, bool arePoints, std::size_t count) {
        const auto system =
            cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(epsg == 0 ? 4326 : epsg);
        std::vector<MemoryTable::Row> rows;
        for (qlonglong id = 0; rows.size() < count; ++id) {
            const auto made = tests::fromWkt(shape(arePoints), 4326);
            const auto placed = epsg == 0 ? made : made->isEmpty() ? made : made->transformed(system);
            if (placed) {
                rows.push_back({id, testing::wkb(*placed)});
            }
        }
        rows.push_back({qlonglong(-1), QVariant()});
        open(name, {attribute("id", QMetaType::LongLong), geometryAttribute(epsg)}, rows);
    }

    std::string pairs(const std::string& tables, const std::string& condition) {
        return ask(
            engine()
                .translate("Select a.id, b.id From " + tables + " Where " + condition + " Order By 1, 2")
                .toStdString());
    }

    std::mt19937 random_{15U + static_cast<unsigned>(::testing::UnitTest::GetInstance()->random_seed())};
};

TEST_F(SpatialConditions, FindWhatTheFunctionsFind) {
    openShapes("points", 4326, true, 40);
    openShapes("shapes", 4326, false, 30);
    openShapes("pulkovo", 4284, true, 30);
    openShapes("metres", 3857, true, 30);
    openShapes("areas", 3857, false, 20);
    openShapes("plain", 0, false, 20);
    std::size_t numFound = 0;
    const char* const tables[] = {"points", "shapes", "pulkovo", "metres", "areas", "plain"};
    const char* const functions[] = {"Distance(a.obj, b.obj%)", "ST_Distance(b.obj, a.obj%)",
                                     "SphericalObjectDistance(a.obj, b.obj%)",
                                     "CartesianObjectDistance(a.obj, b.obj%)"};
    const char* const terms[] = {"% < 20",  "% <= 300", "% = 0",  "7 >= %",  "% Between 10 And 2000",
                                 "% < '5'", "% < Null", "% < -1", "% < a.id"};
    const char* const units[] = {"", ", 'km'", ", Null", ", 'degrees'", ", 'furlongs'", ", 1"};
    for (int round = 0; round < 160; ++round) {
        const std::string both = std::string(tables[random_() % 6]) + " a, " + tables[random_() % 6] + " b";
        std::string call = functions[random_() % 4];
        call.replace(call.find('%'), 1, units[random_() % 6]);
        std::string condition = terms[random_() % std::size(terms)];
        condition.replace(condition.find('%'), 1, call);
        const std::string found = pairs(both, condition);
        // A wrapped condition is not looked up. One that fails for all rows need not meet any.
        const std::string expected = pairs(both, "(" + condition + ") = 1");
        if (expected.starts_with("error") ? !found.empty() : true) {
            ASSERT_EQ(found, expected) << both << ": " << condition;
        }
        numFound += found.size() > 20 ? 1 : 0;
    }
    EXPECT_GT(numFound, 30U);
}

TEST_F(SpatialConditions, AreLookedUpFromBothSidesAndInJoins) {
    openShapes("a", 4326, true, 50);
    openShapes("b", 4326, true, 50);
    for (const char* text :
         {"Select Count(*) From a, b Where WithinDistance(a.obj, b.obj, 30, 'km')",
          "Select Count(*) From a Left Join b On Distance(b.obj, a.obj, 'km') < 30",
          "Select Count(*) From a Where Exists (Select 1 From b Where PtDistWithin(a.obj, b.obj, 30000))",
          "Select Count(*) From a Where Distance(obj, MakePoint(30, 60, 4326), 'km') < 30 And id > 3",
          "Select Count(*) From a Where ST_DWithin(obj, MakePoint(30, 60, 4326), 30, 'km')",
          "Update a Set id = id Where Distance(obj, MakePoint(30, 60, 4326), 'km') < 30"}) {
        const std::string plan =
            ask("Explain Query Plan " + engine().translate(std::string(text)).toStdString());
        EXPECT_THAT(plan, ::testing::ContainsRegex(lookedUp)) << text;
        const std::string sql = engine().translate(std::string(text)).toStdString();
        EXPECT_THAT(sql, ::testing::HasSubstr("IsNear(")) << text;
    }
    // A nameless parameter cannot be written twice.
    EXPECT_THAT(engine().translate(std::string("Select 1 From a Where Distance(obj, ?) < 5")).toStdString(),
                ::testing::Not(::testing::HasSubstr("IsNear(")));
}

TEST_F(SpatialConditions, RelationsFindWhatTheFunctionsFind) {
    openShapes("points", 4326, true, 60);
    openShapes("shapes", 4326, false, 60);
    openShapes("metres", 3857, false, 40);
    openShapes("plain", 0, false, 40);
    std::size_t numFound = 0;
    const char* const tables[] = {"points", "shapes", "metres", "plain"};
    const char* const relations[] = {
        "a.obj Contains b.obj",        "a.obj Within b.obj",       "a.obj Contains Entire b.obj",
        "a.obj Entirely Within b.obj", "a.obj Intersects b.obj",   "Intersects(a.obj, b.obj)",
        "Touches(a.obj, b.obj)",       "ST_Crosses(a.obj, b.obj)", "Overlaps(a.obj, b.obj)",
        "ST_Equals(a.obj, b.obj)",     "Covers(a.obj, b.obj)",     "ST_CoveredBy(a.obj, b.obj)"};
    // Of both tables, of one and a value on either side, of an outer one.
    const char* const forms[] = {
        "Select a.id, b.id From % Where @ Order By 1, 2",
        "Select b.id From (Select id, MakeValid(obj) As object From %) a, $ b Where @ Order By 1",
        "Select a.id From % a, (Select id, MakeValid(obj) As object From $) b Where @ Order By 1",
        "Select a.id From % a Where Exists (Select 1 From $ b Where @) Order By 1",
        "Select b.id From $ b Where (Select Count(*) From % a Where @) > 0 Order By 1",
        "Select a.id From % a Where a.id > 5 And Exists (Select b.id From $ b Where b.id < 30 And @) Order "
        "By 1",
        "Select a.id From % a Where Not Exists (Select * From $ b Where @) And a.id <> 7 Order By 1",
        "Select a.id From % a Where Exists (Select 1 From $ b Where @) And Not Exists (Select 1 From $ b "
        "Where "
        "b.id = a.id + 1 And @) Order By 1",
        "Select a.id From % a Where Exists (Select 1 From points c, $ b Where c.id = b.id And @) Order By 1",
        "Select a.id, b.id From % a Left Join $ b On @ Order By 1, 2",
        "Select a.id, b.id From % a Left Join $ b On a.id < b.id Where @ Order By 1, 2",
        "Select a.id, b.id From % a Left Join $ b On a.id = b.id Where @ Or b.id < 9 Order By 1, 2",
        "Select a.id, b.id From % a Right Join $ b On @ Order By 1, 2",
        "Select a.id, b.id From % a Full Join $ b On @ And a.id > b.id Order By 1, 2",
        "Select a.id, b.id From % a, $ b Where @ And b.obj Intersects a.obj Order By 1, 2",
        "Select a.id, b.id, c.id From % a, $ b, points c Where @ And c.obj Intersects a.obj Order By 1, 2, 3",
        "Select a.id, b.id From % a, $ b Where @ And a.rowid = 7 Order By 1, 2",
        "Select a.id, b.id From % a, $ b Where @ Or b.id = a.id Or a.id = 3 And b.id < 9 Order By 1, 2",
        "Select a.id, b.id From % a, $ b Where (@ Or a.obj Intersects b.obj) And a.id < 30 Order By 1, 2",
        "Select a.id, b.id From % a, $ b Where @ And (a.id < 20 Or b.id = a.id) Order By 1, 2"};
    for (int round = 0; round < 240; ++round) {
        std::string form = forms[random_() % std::size(forms)];
        const std::string a = tables[random_() % 4], b = tables[random_() % 4];
        const std::string relation = relations[random_() % std::size(relations)];
        const auto fill = [&](const std::string& condition) {
            std::string text = form;
            for (const auto& [mark, value] : {std::pair<char, std::string>{'@', condition},
                                              {'%', text.find('$') == text.npos ? a + " a, " + b + " b" : a},
                                              {'$', b}}) {
                for (std::size_t at = text.find(mark); at != text.npos; at = text.find(mark)) {
                    text.replace(at, 1, value);
                }
            }
            return ask(engine().translate(text).toStdString());
        };
        const std::string found = fill(relation);
        ASSERT_EQ(found, fill("(" + relation + ") = 1"))
            << form << ": " << a << ", " << b << ": " << relation;
        numFound += found.size() > 20 ? 1 : 0;
    }
    EXPECT_GT(numFound, 30U);
    for (const char* condition : {"MakePoint(1, 2, 4326) Within obj", "Touches(MakePoint(1, 2, 4326), obj)",
                                  "BuildMbr(1, 2, 3, 4) Intersects obj", "ST_Covers(obj, MakePoint(1, 2))"}) {
        const std::string plan =
            ask("Explain Query Plan " +
                engine().translate("Select id From shapes Where " + std::string(condition)).toStdString());
        EXPECT_THAT(plan, ::testing::ContainsRegex(lookedUp)) << condition;
    }
}

TEST_F(SpatialConditions, TheNearestComeFirst) {
    openShapes("points", 4326, true, 700);
    openShapes("shapes", 4326, false, 400);
    openShapes("metres", 3857, true, 300);
    openShapes("plain", 0, true, 300);
    openShapes("few", 4326, true, 20);
    const char* const tables[] = {"points", "shapes", "metres", "plain", "few"};
    const char* const conditions[] = {"",
                                      "Where id > 20",
                                      "Where id In (1, 2, 3, 200)",
                                      "Where rowid < 50",
                                      "Where obj Is Not Null",
                                      "Where obj Intersects BuildMbr(0,0,60,60,4326)",
                                      "Where id < 0"};
    const char* const measures[] = {"Distance(obj, @)", "ST_Distance(@, t.obj, 'km')", "Distance(obj, @, 1)"};
    const char* const limits[] = {"Limit 1",   "Limit 10",   "Limit 5 Offset 30",
                                  "Limit 100", "Limit 1000", "Limit 0"};
    const auto answer = [this](const std::string& text) {
        return ask(engine().translate(text).toStdString());
    };
    std::size_t numRead = 0;
    for (int round = 0; round < 120; ++round) {
        const std::string table = tables[random_() % std::size(tables)];
        const bool isPlace = random_() % 12 != 0;
        const std::string place =
            isPlace ? "GeomFromText('" + shape(random_() % 3 != 0) + "', 4326)" : "Null";
        std::string measure = measures[random_() % std::size(measures)];
        measure.replace(measure.find('@'), 1, place);
        const std::string what = "Select " + measure + " As d From " + table + " t " +
                                 conditions[random_() % std::size(conditions)] + " Order By ";
        const std::string limit = std::string(" ") + limits[random_() % std::size(limits)];
        const std::string found = answer(what + (random_() % 2 == 0 ? "d" : measure) + limit);
        ASSERT_EQ(found, answer(what + "d + 0" + limit)) << what << limit;
        ASSERT_FALSE(found.starts_with("error")) << what << limit << found;
        numRead += engine().translate(what + "d" + limit).contains(QLatin1String("Nearness")) ? 1 : 0;
    }
    EXPECT_EQ(numRead, 120U);
    // In the place may stand what belongs to an outer row, or a query.
    for (const auto& [nearest, all] :
         {std::pair<const char*, const char*>{
              "Select id, (Select Distance(b.obj, a.obj) From points b Where b.id <> a.id And b.obj Is Not "
              "Null "
              "Order By Distance(b.obj, a.obj) Limit 1) From few a Order By 1",
              "Select id, (Select Min(Distance(b.obj, a.obj)) From points b Where b.id <> a.id) From few a "
              "Order By 1"},
          {"Select x, y From (Select a.id As x, b.id As y, Row_Number() Over (Partition By a.id Order By "
           "Distance(a.obj, b.obj, 'km')) As n From few a, points b Where a.id <> b.id And b.obj Is Not "
           "Null) q "
           "Where n <= 3 And x > 2 Order By 1, n",
           "Select x, y From (Select a.id As x, b.id As y, Row_Number() Over (Partition By a.id Order By "
           "Distance(a.obj, b.obj, 'km')) As n From few a, points b Where a.id <> b.id And b.obj Is Not "
           "Null) q "
           "Where n + 0 <= 3 And x > 2 Order By 1, n"},
          {"Select x, y From (Select a.id As x, b.id As y, Row_Number() Over (Partition By a.id % 3 Order By "
           "ST_Distance(b.obj, a.obj)) As n From few a Join points b On b.id > 5 Where b.obj Is Not Null) q "
           "Where 3 > n And y Is Not Null Order By 1, 2",
           "Select x, y From (Select a.id As x, b.id As y, Row_Number() Over (Partition By a.id % 3 Order By "
           "ST_Distance(b.obj, a.obj)) As n From few a Join points b On b.id > 5 Where b.obj Is Not Null) q "
           "Where 3 > n + 0 And y Is Not Null Order By 1, 2"},
          {"Select id From points Order By Distance(obj, (Select obj From few Where id = 3)) Limit 8",
           "Select points.id From points, few Where few.id = 3 Order By Distance(points.obj, few.obj) Limit "
           "8"}}) {
        EXPECT_THAT(engine().translate(std::string(nearest)).toStdString(), ::testing::HasSubstr("Nearness"));
        EXPECT_EQ(answer(nearest), answer(all));
    }
    // These are no queries for the nearest rows of a table.
    for (const char* other :
         {"Select id From points Order By Distance(obj, MakePoint(1, 2, 4326))",
          "Select id From points Order By Distance(obj, MakePoint(1, 2, 4326)) Desc Limit 3",
          "Select id From points Order By Distance(obj, Centroid(obj)) Limit 3",
          "Select a.id From points a, few b Order By Distance(a.obj, b.obj) Limit 3",
          "Select Count(*) From points Order By Distance(obj, MakePoint(1, 2, 4326)) Limit 3",
          "Select Distinct id From points Order By Distance(obj, MakePoint(1, 2, 4326)) Limit 3",
          "With points As (Select * From few) Select id From points Order By Distance(obj, MakePoint(1, 2, "
          "4326)) Limit 3"}) {
        EXPECT_THAT(engine().translate(std::string(other)).toStdString(),
                    ::testing::Not(::testing::HasSubstr("Nearness")))
            << other;
        EXPECT_FALSE(answer(other).starts_with("error")) << other;
    }
}

} // namespace

} // namespace orvane
