#include <orvane/engine/ColumnNames.h>
#include <orvane/engine/SqliteStringBuilder.h>

#include "support/PlainCache.h"

#include "platform/dp/DataCatalogWithSelection.h"
#include "platform/dp/Selection.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/parsing/SqlParser.h"

#include <gtest/gtest.h>

#include <regex>

namespace orvane::tests {
namespace {

using engine::SqliteStringBuilder;

class SqliteStringBuilderTest : public testing::Test {
protected:
    std::string build(const std::string& text) {
        sql::SqlParser parser(nullptr);
        EXPECT_TRUE(parser.parse(text)) << text;
        return sql::toUtf8(builder.buildString(*parser.result().node()));
    }

    /// Selects features of the table "cities"; the cache numbers its first ten identifiers 0 to 9.
    void select(const std::vector<int>& ids) {
        for (int i = 0; i < 10; ++i) {
            cache.assignIdToInt(dp::FeatureId(i));
        }
        std::vector<dp::FeatureId> features;
        for (const int id : ids) {
            features.emplace_back(QVariant(id));
        }
        builder.setSelection(dp::Selection(object, features), &cache);
    }

    static std::string names(const std::vector<engine::TableRef>& tables) {
        std::string result;
        for (const engine::TableRef& table : tables) {
            result += sql::toUtf8(table.name) + ' ' + sql::toUtf8(table.alias) + ';';
        }
        return result;
    }

    template<class Error>
    std::size_t errorCount() const {
        std::size_t count = 0;
        for (const auto& error : builder.errors()) {
            count += std::dynamic_pointer_cast<Error>(error) ? 1 : 0;
        }
        return count;
    }

    const std::string selection = dp::DataCatalogWithSelection::selectionTableName().toStdString();
    std::shared_ptr<dp::DataObject> object = std::make_shared<dp::DataObject>(QStringLiteral("cities"));
    PlainCache cache;
    SqliteStringBuilder builder{QString(), nullptr};
};

TEST_F(SqliteStringBuilderTest, SelectionWithoutAliasGetsAFreshOne) {
    select({7, 3, 3, 9});
    const std::string text = build("Select name, " + selection + ".obj From " + selection);
    const std::regex form(
        "Select name, (_[0-9a-f]{32})\\.cd750f8a9a2b4fac9b9b05eb53795d97 As obj From cities "
        "(_[0-9a-f]{32}) Where (_[0-9a-f]{32})\\.rowid In \\(3,7,9\\)");
    std::smatch match;
    ASSERT_TRUE(std::regex_match(text, match, form)) << text;
    EXPECT_EQ(match[1], match[2]);
    EXPECT_EQ(match[2], match[3]);
    EXPECT_NE(build("Select name From " + selection), build("Select name From " + selection));
    EXPECT_TRUE(builder.isIdUsed());
    EXPECT_TRUE(builder.errors().empty());
}

TEST_F(SqliteStringBuilderTest, SelectionFilterRestrictsTheWholeConditionOfItsOwnQuery) {
    select({1, 2});
    const std::string s = selection;
    const std::pair<std::string, std::string> texts[] = {
        {"Select s.a From " + s + " s Where a = 1 Or b = 2",
         "Select s.a From cities s Where (a = 1 Or b = 2) And s.rowid In (1,2)"},
        {"Select " + s + ".a From " + s + " b, " + s + " a",
         "Select a.a From cities b, cities a Where a.rowid In (1,2) And b.rowid In (1,2)"},
        {"Select a From t Where a In (Select a From " + s + " x) Group By a",
         "Select a From t Where (a In (Select a From cities x Where x.rowid In (1,2))) Group By a"},
        {"Select a From " + s + " x Where Exists (Select 1 From t Where b = 1) Order By a",
         "Select a From cities x Where (Exists (Select 1 From t Where (b = 1))) And x.rowid In (1,2) Order "
         "By a"},
        {"Select a From (Select a From " + s + " x) d, t",
         "Select a From (Select a From cities x Where x.rowid In (1,2)) d, t"},
        {"Select " + s + ".a From t", "Select " + s + ".a From t"},
        {"Select a From t \"" + s + " \"", "Select a From t \"" + s + " \""},
        {"Select " + s + ".*, (Select Max(b) From t Where t.c = " + s + ".c) From " + s + " x",
         "Select x.*, (Select Max(b) From t Where (t.c = x.c)) From cities x Where x.rowid In (1,2)"},
        {"Update " + s + " x Set a = 1 Where b = 2 Or c = 3",
         "Update cities As x Set a = 1 Where (b = 2 Or c = 3) And x.rowid In (1,2)"},
        {"Update t Set a = " + s + ".a From " + s + " x",
         "Update t Set a = x.a From cities x Where x.rowid In (1,2)"},
        {"Select a From t Where a In " + s + "x Or a In (Select x.a From " + s + " x Union Table t)",
         "Select a From t Where (a In (Select * From " + s +
             "x) Or a In (Select x.a From cities x Where x.rowid In (1,2) Union Select * From t))"},
        {"Delete From " + s + " x", "Delete From cities As x Where x.rowid In (1,2)"},
        {"Insert Into t Select * From " + s + " x",
         "Insert Into t Select * From cities x Where x.rowid In (1,2)"}};
    for (const auto& [input, expected] : texts) {
        EXPECT_EQ(build(input), expected) << input;
    }
    EXPECT_TRUE(std::regex_match(
        build("Table " + s), std::regex("Select \\* From cities (_\\w+) Where \\1\\.rowid In \\(1,2\\)")));
}

TEST_F(SqliteStringBuilderTest, SelectionThatIsAbsentIsAnErrorPerMention) {
    const std::string text = "Select a From " + selection + " x, " + selection + " y";
    const std::string untouched = "Select a From " + selection + " x, " + selection + " y";
    EXPECT_EQ(build(text), untouched);
    EXPECT_EQ(errorCount<sql::SelectionTableIsAbsent>(), 2u);
    select({});
    EXPECT_EQ(build(text), untouched);
    builder.setSelection(dp::Selection(object, {dp::FeatureId(1)}), nullptr);
    EXPECT_EQ(build(text), untouched);
    EXPECT_EQ(errorCount<sql::SelectionTableIsAbsent>(), 6u);
    EXPECT_FALSE(builder.hasErrors());
    build("Select a From " + QString::fromStdString(selection).toUpper().toStdString());
    EXPECT_EQ(errorCount<sql::SelectionTableIsAbsent>(), 6u) << "another letter case is another table";
}

TEST_F(SqliteStringBuilderTest, TablesAreListedByDepth) {
    builder.setNeedDependencies(true);
    select({1});
    build("Select (Select Max(a) From v) From t p Join " + selection +
          " s On p.a In (Select a From u) Where a = 1");
    EXPECT_EQ(names(builder.dependencies()), "t p;cities s;u ;v ;");
    EXPECT_EQ(names(builder.primaries()), "t p;cities s;");
    SqliteStringBuilder compound(QString(), nullptr);
    compound.setNeedDependencies(true);
    sql::SqlParser parser(nullptr);
    ASSERT_TRUE(
        parser.parse("With p As (Select a From t) Select a From u Group By a Union (Table v Limit 1)"));
    compound.buildString(*parser.result().node());
    EXPECT_EQ(names(compound.primaries()), "u ;v ;");
    EXPECT_TRUE(compound.isAggregate());
}

TEST_F(SqliteStringBuilderTest, ColumnsAreListedInTheOrderOfRendering) {
    builder.setNeedColumns(true);
    build("Select t.obj, a + b, c - d From t Where e Within f And rownum(g) = style");
    std::string columns;
    for (const engine::ColumnRef& column : builder.columns()) {
        columns += sql::toUtf8(column.qualifier) + '.' + sql::toUtf8(column.name) + ' ';
    }
    EXPECT_EQ(columns, "t." + sql::toUtf8(engine::geometryColumnName()) + " .b .a .c .d .f .e ." +
                           sql::toUtf8(engine::styleColumnName()) + ' ');
    EXPECT_FALSE(builder.isIdUsed());
    build("Select RowID From t");
    EXPECT_TRUE(builder.isIdUsed());
}

TEST_F(SqliteStringBuilderTest, OnlyTheOutermostGroupingCounts) {
    build("Select a From (Select a From t Group By a)");
    EXPECT_FALSE(builder.isAggregate());
    build("Select a From t Group By a");
    EXPECT_TRUE(builder.isAggregate());
}

TEST_F(SqliteStringBuilderTest, InsertOffsetStandsAfterTheOutermostColumns) {
    const char* texts[] = {
        "Select Distinct a, (Select b From u), obj From (Select a, b From t Where a = 1) Where b = 2",
        "With p As (Select a, b From t) Select a From p Order By 1"};
    for (const char* text : texts) {
        std::string translated = build(text);
        translated.insert(builder.insertOffset(), ", extra");
        EXPECT_NE(translated.find(", extra From "), std::string::npos) << translated;
    }
    SqliteStringBuilder another(QString(), nullptr);
    sql::SqlParser parser(nullptr);
    for (const char* text : {"Delete From t Where a In (Select a From u)",
                             "With p As (Select 1 As a) Select a From p Union Table u"}) {
        ASSERT_TRUE(parser.parse(text));
        another.buildString(*parser.result().node());
        EXPECT_EQ(another.insertOffset(), 0u) << text;
    }
}

TEST_F(SqliteStringBuilderTest, NaturalJoinsMatchTheColumnsThatBothSourcesShow) {
    builder.setTableColumns([](const std::wstring& table) -> std::vector<std::wstring> {
        return table == L"t" ? std::vector<std::wstring>{L"a", L"b"}
                             : std::vector<std::wstring>{L"A", L"c", L"b"};
    });
    const std::pair<const char*, const char*> texts[] = {
        {"Select * From t Natural Join u", "Select * From t Join u Using (A, b)"},
        {"With t As (Select 1 As x, c, obj From v) Select * From t Natural Left Join u",
         "With t As (Select 1 As x, c, cd750f8a9a2b4fac9b9b05eb53795d97 From v) Select * From t Left Join u "
         "Using "
         "(c)"},
        {"With U(b, z) As (Table v Union Table w) Select (Select 1 From t Natural Join u)",
         "With U(b, z) As (Select * From v Union Select * From w) Select (Select 1 From t Join u Using (b))"},
        {"Select * From t Natural Join (Select * From u) d",
         "Select * From t Join (Select * From u) d Using (A, b)"},
        {"Select * From t Natural Join (Select a + 1 From u)",
         "Select * From t Natural Join (Select concat((a),(1)) From u)"},
        {"With Recursive t As (Select * From t) Select * From t Natural Join u",
         "With Recursive t As (Select * From t) Select * From t Natural Join u"}};
    for (const auto& [input, expected] : texts) {
        EXPECT_EQ(build(input), expected) << input;
    }
}

TEST_F(SqliteStringBuilderTest, WhiteListNamesWhatItDoesNotAdmit) {
    build("Select Sum(a), Round(b) From t");
    EXPECT_FALSE(builder.hasErrors()) << "an empty list admits all";
    builder.setWhiteList({QStringLiteral("sum"), QStringLiteral("area")});
    EXPECT_EQ(build("Select Sum(a), Round(b), round(b), Area(obj), rownum, Имя(1) From t"),
              "Select Sum(a), RoundTo(b), roundTo(b), ObjectArea(cd750f8a9a2b4fac9b9b05eb53795d97), "
              "row_number() Over (Order By 1), Имя(1) From t");
    ASSERT_TRUE(builder.hasErrors());
    EXPECT_EQ(builder.unsupportedList().size(), 2u);
    builder.addTranslateErrors();
    ASSERT_EQ(errorCount<sql::UnknownFunction>(), 2u);
    const auto first = std::dynamic_pointer_cast<sql::UnknownFunction>(builder.errors().front());
    EXPECT_EQ(first->name(), L"Round");
    EXPECT_NE(std::string(first->what()).find("Round"), std::string::npos);
    EXPECT_TRUE(builder.hasErrors());
}

TEST_F(SqliteStringBuilderTest, ErrorsAreReplacedOrAppended) {
    const auto error = [](const wchar_t* text) { return std::make_shared<sql::SqlSyntaxError>(text); };
    builder.addError(error(L"1"));
    builder.addErrors({error(L"2"), error(L"3")});
    EXPECT_EQ(builder.errors().size(), 3u);
    builder.addErrors({});
    builder.setErrors({error(L"4"), error(L"5")});
    EXPECT_EQ(builder.errors().size(), 2u);
    builder.setError(error(L"6"));
    ASSERT_EQ(builder.errors().size(), 1u);
    EXPECT_STREQ(builder.errors().front()->what(), "6");
    EXPECT_FALSE(builder.hasErrors());
}

TEST_F(SqliteStringBuilderTest, CollationTakesExactlyTheComparisons) {
    builder.setCollate(QStringLiteral("My"));
    const auto a = std::make_shared<sql::ast::ColumnReference>(L"", L"a");
    for (int code = 1; code <= 43; ++code) {
        const sql::ast::Operation operation(static_cast<sql::OperationCode>(code), a, a);
        const bool collated = builder.buildString(operation).find(L" Collate My") != std::wstring::npos;
        const bool expected = (code >= 5 && code <= 8) || (code >= 15 && code <= 17) ||
                              (code >= 19 && code <= 24) || code == 10; // the form of Case that compares
        EXPECT_EQ(collated, expected) << code;
    }
    builder.setCollate(QString());
    EXPECT_EQ(build("a = b"), "a = b");
    const sql::ast::Operation unaryXor(sql::OperationCode::Xor, a);
    EXPECT_EQ(builder.buildString(unaryXor), L"a Xor");
}

TEST_F(SqliteStringBuilderTest, IntoIsTakenOutAndReported) {
    EXPECT_EQ(build("Select a Into \"new table\" From t"), "Select a From t");
    EXPECT_EQ(builder.intoTable(), L"new table");
}

TEST(ColumnNames, AreTheFixedIdentifiers) {
    EXPECT_EQ(engine::geometryColumnName(), L"cd750f8a9a2b4fac9b9b05eb53795d97");
    EXPECT_EQ(engine::styleColumnName(), L"d39f65c319974aa198a899a89b1240c7");
}

} // namespace
} // namespace orvane::tests
