#include "platform/sql/DialectCases.h"
#include "platform/sql/TreeGenerator.h"
#include "support/RandomText.h"

#include <orvane/engine/SqliteStringBuilder.h>

#include "platform/core/SqliteException.h"
#include "platform/dp/SqliteDatabaseAccess.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/parsing/SqlParser.h"

#include <gtest/gtest.h>

#include <sqlite3.h>

namespace orvane::tests {
namespace {

using engine::SqliteStringBuilder;

constexpr const char* schema = R"(
Create Table t (a, b, c, x, y, z, name, part, entire, "a b", "a ""quoted"" name", a1$2, Имя, "🚲", "x🚲",
    cd750f8a9a2b4fac9b9b05eb53795d97, d39f65c319974aa198a899a89b1240c7);
Create Table u (a, b, c);
Create Table v (a, b, c);
Create Table onecolumn (a);
Create Table wide (a, b, c, d, e, f, g, h, i, j, k, l, m);
Create Table cities (geonameid, name, country, feature, population, cd750f8a9a2b4fac9b9b05eb53795d97);
Create Table countries (iso_a2, name_long, continent, pop, area_km2, cd750f8a9a2b4fac9b9b05eb53795d97);
Create Table "odd table" ("a b", "a ""quoted"" name");
Create Table "1st table" (a1$2);
Create Table Города (Имя, "имя с пробелом");
Create Table words (Date, Time, Type, Part, Entire, Value, "First", "Last", "Row", "Rows", "Filter", "Over", "Key",
    "Desc", "order", "group", "from", objects, geometry, styles, "select", "Within", "update", "insert", "delete",
    "values");
)";

/// A database with the tables that the texts in tests/data/dialect name, the collation Locale, and functions
/// under all names that translated texts call. The functions do nothing: statements are prepared here, not
/// run.
class ScratchDatabase {
public:
    ScratchDatabase() {
        sqlite3_db_config(handle(), SQLITE_DBCONFIG_DQS_DML, 0, nullptr); // a quoted name is never a text
        for (const char* name : {"Locale", "my order"}) {
            const auto compare = [](void*, int, const void*, int, const void*) { return 0; };
            sqlite3_create_collation(handle(), name, SQLITE_UTF8, nullptr, compare);
        }
        for (const std::string& name :
             pieces("xor|concat|divide|quotient|involution|ContainsCentroid|CentroidWithin|ST_Within|ST_"
                    "Contains|ST_Intersects|ObjectArea|ObjectPerimeter|RoundTo|MakeValidGeo|GetDate|Left|"
                    "Right|Mod|"
                    "Contains|Buffer|Centroid|RegExp|ILike|Extract|Date_Part|String_Agg")) {
            const auto nothing = [](sqlite3_context*, int, sqlite3_value**) {};
            sqlite3_create_function(handle(), name.c_str(), -1, SQLITE_UTF8, nullptr, nothing, nullptr,
                                    nullptr);
        }
        series_.xConnect = [](sqlite3* database, void*, int, const char* const*, sqlite3_vtab** table,
                              char**) {
            *table = new sqlite3_vtab();
            return sqlite3_declare_vtab(database,
                                        "Create Table t(value, first Hidden, last Hidden, step Hidden)");
        };
        series_.xDisconnect = [](sqlite3_vtab* table) {
            delete table;
            return SQLITE_OK;
        };
        series_.xBestIndex = [](sqlite3_vtab*, sqlite3_index_info*) { return SQLITE_OK; };
        sqlite3_create_module(handle(), "Generate_Series", &series_, nullptr);
        EXPECT_EQ(sqlite3_exec(handle(), schema, nullptr, nullptr, nullptr), SQLITE_OK);
    }

    /// SQLite's opinion of a statement: empty when it accepts it.
    std::string prepareError(const std::string& text) {
        try {
            database_.query(QString::fromStdString(text));
            return {};
        } catch (const err::SqliteException& failure) {
            return failure.sqliteMessage().toStdString();
        }
    }

private:
    sqlite3* handle() const { return database_.handle(); }

    sqlite3_module series_{}; ///< planned, never read
    dp::SqliteDatabaseAccess database_{QStringLiteral(":memory:")};
};

std::string translate(const sql::ast::Node& tree) {
    return sql::toUtf8(SqliteStringBuilder(QStringLiteral("Locale"), nullptr).buildString(tree));
}

bool isStatement(const sql::ast::NodePtr& tree) {
    using sql::ast::NodeKind;
    return sql::ast::isQuery(tree) || tree->kind == NodeKind::InsertStatement ||
           tree->kind == NodeKind::UpdateStatement || tree->kind == NodeKind::DeleteStatement;
}

TEST(Translation, TextsOfTheFilesBecomeWhatSqliteAccepts) {
    ScratchDatabase database;
    for (const DialectCase& expected : readDialectCases()) {
        if (!expected.error.empty()) {
            continue;
        }
        sql::SqlParser parser(nullptr);
        ASSERT_TRUE(parser.parse(expected.input)) << expected;
        const std::string text = translate(*parser.result().node());
        EXPECT_EQ(text, expected.sqlite) << expected;
        const std::string statement = parser.result().isExpression() ? "Select " + text + " From t" : text;
        EXPECT_EQ(database.prepareError(statement), "") << expected << '\n' << statement;
    }
}

/// Statements made at random name tables and columns that are not there; but SQLite always understands the
/// grammar.
TEST(Translation, RandomStatementsAreGrammarToSqlite) {
    ScratchDatabase database;
    for (unsigned seed = 0; seed < 4000; ++seed) {
        const sql::ast::NodePtr tree = TreeGenerator(seed).statement();
        const std::string text = (isStatement(tree) ? "" : "Select ") + translate(*tree);
        const std::string error = database.prepareError(text);
        EXPECT_EQ(error.find("syntax error"), std::string::npos) << "seed " << seed << ": " << error << '\n'
                                                                 << text;
        EXPECT_EQ(error.find("unrecognized token"), std::string::npos)
            << "seed " << seed << ": " << error << '\n'
            << text;
    }
}

} // namespace
} // namespace orvane::tests
