#include "host/shell/messages/DisplayWidth.h"
#include "host/shell/output/NumberText.h"
#include "host/shell/output/ResultWriter.h"
#include "support/TextBlocks.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <map>
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
    for (int i = 0; i < sqlite3_column_count(prepared); ++i) {
        columns.emplace_back(sqlite3_column_name(prepared, i));
    }
    TextOutput output;
    const auto writer = makeResultWriter(settings, output);
    const ResultRow row(prepared, nullptr);
    writer->begin(columns);
    while (sqlite3_step(prepared) == SQLITE_ROW) {
        writer->row(row);
    }
    writer->end();
    return output.text();
}

/// From the words before the colon of a block.
WriterSettings settingsOf(const QStringList& words) {
    static const std::map<QString, Format> formats{{QStringLiteral("csv"), Format::Csv},
                                                   {QStringLiteral("json"), Format::Json},
                                                   {QStringLiteral("geojson"), Format::GeoJson},
                                                   {QStringLiteral("table"), Format::Table}};
    WriterSettings settings{formats.at(words.front()), true, std::nullopt, 0};
    for (const QString& word : words.mid(1)) {
        const QString value = word.section(QLatin1Char('='), 1);
        if (word == QLatin1String("noheader")) {
            settings.header = false;
        } else if (word.startsWith(QLatin1String("null="))) {
            settings.nullText = value.toStdString();
        } else {
            settings.terminalWidth = value.toInt();
        }
    }
    return settings;
}

TEST(Writers, WriteEveryForm) {
    for (const tests::QuestionBlock& block : tests::readQuestions("shell/results.txt")) {
        EXPECT_EQ(written(settingsOf(block.words), block.question.c_str()), block.answer) << block.title;
    }
}

TEST(TableWriter, laterRowsThatAreWiderOnlyShiftTheirOwnLine) {
    const std::string table = written(settingsOf({QStringLiteral("table")}),
                                      "With Recursive n(i) As (Select 1 Union All Select i + 1 From n "
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
        if (!std::isfinite(value)) {
            continue;
        }
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
    for (const auto& [text, width] : cases) {
        EXPECT_EQ(displayWidth(text), width) << text;
    }
}

TEST(DisplayWidth, cutsBetweenCharacters) {
    EXPECT_EQ(prefixOfWidth("東京都", 5), 6U);
    EXPECT_EQ(prefixOfWidth("東京都", 6), 9U);
    EXPECT_EQ(prefixOfWidth("abc", 9), 3U);
    EXPECT_EQ(prefixOfWidth("abc", 0), 0U);
}

} // namespace
} // namespace orvane::shell
