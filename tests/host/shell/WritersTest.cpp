#include "host/shell/DisplayWidth.h"
#include "host/shell/NumberText.h"
#include "host/shell/ResultWriter.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>

namespace orvane::shell {
namespace {

/// Collects what is committed.
class TextOutput : public Output {
public:
    TextOutput() : Output(std::size_t(-1)) {}
    void commit() override {}
    void discard() override {}

protected:
    void takeText() override {}
};

struct DatabaseCloser {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};
struct StatementFinalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

/// The result of a query as a writer shows it. No engine is at hand: blobs are bytes.
std::string written(const WriterSettings& settings, const char* query) {
    sqlite3* opened = nullptr;
    sqlite3_open(":memory:", &opened);
    const std::unique_ptr<sqlite3, DatabaseCloser> database(opened);
    sqlite3_stmt* prepared = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(opened, query, -1, &prepared, nullptr), SQLITE_OK) << query;
    const std::unique_ptr<sqlite3_stmt, StatementFinalizer> statement(prepared);
    std::vector<std::string> columns;
    for (int i = 0; i < sqlite3_column_count(prepared); ++i)
        columns.emplace_back(sqlite3_column_name(prepared, i));
    TextOutput output;
    const auto writer = makeResultWriter(settings, output);
    const ResultRow row(prepared, nullptr);
    writer->begin(columns);
    while (sqlite3_step(prepared) == SQLITE_ROW)
        writer->row(row);
    writer->end();
    return output.text();
}

struct WriterCase {
    const char* name;
    WriterSettings settings;
    const char* query;
    const char* expected;
};

void PrintTo(const WriterCase& writerCase, std::ostream* stream) {
    *stream << writerCase.name;
}

class Writers : public testing::TestWithParam<WriterCase> {};

TEST_P(Writers, write) {
    EXPECT_EQ(written(GetParam().settings, GetParam().query), GetParam().expected);
}

WriterSettings format(Format format) {
    return {format, true, std::nullopt, 0};
}

INSTANTIATE_TEST_SUITE_P(
    Csv, Writers,
    testing::Values(
        WriterCase{"quotes where it must", format(Format::Csv),
                   "Select 'a,b' As \"x,y\", 'say \"no\"' As q, 'two\nlines' As l, 'plain' As p",
                   "\"x,y\",q,l,p\n\"a,b\",\"say \"\"no\"\"\",\"two\nlines\",plain\n"},
        WriterCase{"keeps NULL and the empty text apart", format(Format::Csv),
                   "Select Null As n, '' As e, 0 As z", "n,e,z\n,\"\",0\n"},
        WriterCase{"quotes a text that looks like NULL",
                   {Format::Csv, true, "-", 0},
                   "Select Null As n, '-' As t",
                   "n,t\n-,\"-\"\n"},
        WriterCase{"leaves the header out", {Format::Csv, false, std::nullopt, 0}, "Select 1", "1\n"},
        WriterCase{"has a header without rows", format(Format::Csv), "Select 1 As a Where 0", "a\n"},
        WriterCase{"writes every type", format(Format::Csv),
                   "Select 9223372036854775807 As i, -9223372036854775808 As j, 0.1 As r, X'00FFab' As b, "
                   "'Жуков 🗺' As t",
                   "i,j,r,b,t\n9223372036854775807,-9223372036854775808,0.1,X'00FFAB',Жуков 🗺\n"}));

INSTANTIATE_TEST_SUITE_P(
    Json, Writers,
    testing::Values(
        WriterCase{"writes every type", format(Format::Json),
                   "Select 9223372036854775807 As i, 2.5e-7 As r, 1e999 As inf, X'0aFF' As b, Null As n, "
                   "'Ж🗺' As t",
                   "[\n{\"i\":9223372036854775807,\"r\":2.5e-07,\"inf\":1e999,\"b\":\"0AFF\",\"n\":null,"
                   "\"t\":\"Ж🗺\"}\n]\n"},
        WriterCase{"escapes", format(Format::Json), "Select 'a\"b\\c' || char(10, 13, 9, 1) As \"k\"\"\"",
                   "[\n{\"k\\\"\":\"a\\\"b\\\\c\\n\\r\\t\\u0001\"}\n]\n"},
        WriterCase{"replaces bytes that are no UTF-8", format(Format::Json),
                   "Select Cast(X'61FF62C3' As Text) As t", "[\n{\"t\":\"a\uFFFDb\uFFFD\"}\n]\n"},
        WriterCase{"gives every column a key", format(Format::Json),
                   "Select 1 As a, 2 As a, 3 As a_2, 4 As a",
                   "[\n{\"a\":1,\"a_3\":2,\"a_2\":3,\"a_4\":4}\n]\n"},
        WriterCase{"separates rows", format(Format::Json), "Select 1 As a Union All Select 2",
                   "[\n{\"a\":1},\n{\"a\":2}\n]\n"},
        WriterCase{"is an array without rows", format(Format::Json), "Select 1 As a Where 0", "[]\n"},
        WriterCase{"is a collection without geometry", format(Format::GeoJson), "Select 1 As a",
                   "{\"type\":\"FeatureCollection\",\"features\":[\n{\"type\":\"Feature\",\"geometry\":null,"
                   "\"properties\":{\"a\":1}}\n]}\n"},
        WriterCase{"is a collection without rows", format(Format::GeoJson), "Select 1 As a Where 0",
                   "{\"type\":\"FeatureCollection\",\"features\":[]}\n"}));

INSTANTIATE_TEST_SUITE_P(
    Table, Writers,
    testing::Values(
        WriterCase{"puts numbers to the right", format(Format::Table),
                   "Select 'a' As name, 5 As number Union All Select 'longer', 12345678",
                   "name   |   number\n-------+---------\na      |        5\nlonger | 12345678\n"},
        WriterCase{"shows NULL", format(Format::Table),
                   "Select Null As a, 7 As number Union All Select 'x', Null",
                   "a    | number\n-----+-------\nNULL |      7\nx    |   NULL\n"},
        WriterCase{
            "shows NULL as the user wants", {Format::Table, true, "?", 0}, "Select Null As a", "a\n-\n?\n"},
        WriterCase{"counts wide characters", format(Format::Table),
                   "Select '東京' As city, 'Japan' As c Union All Select 'Рим', 'Italy' Union All Select "
                   "'👨‍👩‍👧', '-'",
                   "city | c\n-----+------\n東京 | Japan\nРим  | Italy\n👨‍👩‍👧   | -\n"},
        WriterCase{"keeps a row on its line", format(Format::Table),
                   "Select 'a' || char(10, 9, 127) || 'b' As t, 1 As n", "t     | n\n------+--\na␊␉␡b | 1\n"},
        WriterCase{"cuts to the terminal",
                   {Format::Table, true, std::nullopt, 24},
                   "Select 'abcdefghijklmnopqrstuvwxyz' As letters, 12 As number",
                   "letters         | number\n----------------+-------\nabcdefghijklmn… |     12\n"},
        WriterCase{"has no rule without header",
                   {Format::Table, false, std::nullopt, 0},
                   "Select 'a' As long_name, 5 As number",
                   "a | 5\n"}));

TEST(TableWriter, laterRowsThatAreWiderOnlyShiftTheirOwnLine) {
    const std::string table =
        written(format(Format::Table), "With Recursive n(i) As (Select 1 Union All Select i + 1 From n "
                                       "Where i < 1002) Select Case i When 1001 Then 'wide wide' "
                                       "Else 'ab' End As t, i From n");
    EXPECT_NE(table.find("\nab | 1000\nwide wide | 1001\nab | 1002\n"), std::string::npos);
}

TEST(NumberText, isPlainInTheUsualRangeAndTheSameEverywhere) {
    const std::pair<double, const char*> cases[] = {{0.0, "0"},
                                                    {-0.0, "0"},
                                                    {1.0, "1"},
                                                    {-2138551.0, "-2138551"},
                                                    {0.1, "0.1"},
                                                    {1e5, "100000"},
                                                    {123456789012345.6, "123456789012345.6"},
                                                    {9007199254740993.0, "9007199254740992"},
                                                    {1e16, "1e+16"},
                                                    {1e-5, "0.00001"},
                                                    {9.9e-6, "9.9e-06"},
                                                    {1.5e300, "1.5e+300"},
                                                    {5e-324, "5e-324"},
                                                    {HUGE_VAL, "Infinity"},
                                                    {-HUGE_VAL, "-Infinity"}};
    for (const auto& [value, expected] : cases) {
        std::string text;
        appendReal(text, value);
        EXPECT_EQ(text, expected);
    }
}

TEST(NumberText, readsBackEqual) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 100000; ++i) {
        const std::uint64_t bits = random();
        double value = 0;
        static_assert(sizeof value == sizeof bits);
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value))
            continue;
        std::string text;
        appendReal(text, value);
        double back = 0;
        std::from_chars(text.data(), text.data() + text.size(), back);
        ASSERT_EQ(back, value) << text;
    }
}

TEST(DisplayWidth, countsColumns) {
    const std::pair<const char*, int> cases[] = {{"", 0},         {"abc", 3},       {"Москва", 6},
                                                 {"São", 3},      {"Sa\u0303o", 3}, {"東京", 4},
                                                 {"ｶﾅ", 2},       {"한국", 4},      {"🗺", 1},
                                                 {"🚀", 2},        {"👍🏽", 2},  {"👨‍👩‍👧", 2},
                                                 {"\xFF\xC3", 2}, {"a\u200Bb", 2}};
    for (const auto& [text, width] : cases)
        EXPECT_EQ(displayWidth(text), width) << text;
}

TEST(DisplayWidth, cutsBetweenCharacters) {
    EXPECT_EQ(prefixOfWidth("東京都", 5), 6U);
    EXPECT_EQ(prefixOfWidth("東京都", 6), 9U);
    EXPECT_EQ(prefixOfWidth("abc", 9), 3U);
    EXPECT_EQ(prefixOfWidth("abc", 0), 0U);
}

} // namespace
} // namespace orvane::shell
