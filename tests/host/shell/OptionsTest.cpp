#include "host/shell/session/Options.h"
#include "host/shell/messages/Shell.h"

#include <gtest/gtest.h>

namespace orvane::shell {
namespace {

std::optional<Options> parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "orvane");
    return parseOptions(static_cast<int>(arguments.size()), arguments.data());
}

TEST(Options, keepTheOrderOfStatements) {
    const auto options =
        parse({"-c", "Select 1", "a.gpkg", "-f", "x.sql", "--command", "-- a comment", "b.shp", "-f", "y"});
    ASSERT_EQ(options->statements.size(), 4U);
    EXPECT_EQ(options->statements[0].value, "Select 1");
    EXPECT_EQ(options->statements[1].kind, StatementSource::Script);
    EXPECT_EQ(options->statements[1].value, "x.sql");
    EXPECT_EQ(options->statements[2].value, "-- a comment");
    EXPECT_EQ(options->statements[3].value, "y");
    EXPECT_EQ(options->files, (std::vector<QString>{QStringLiteral("a.gpkg"), QStringLiteral("b.shp")}));
}

TEST(Options, takeTablesApart) {
    const auto options =
        parse({"-t", "a=b=c.gpkg", "--table", "города=/данные/x.gpkg|слой 1", "-c", "Select 1"});
    ASSERT_EQ(options->tables.size(), 2U);
    EXPECT_EQ(options->tables[0].name, QStringLiteral("a"));
    EXPECT_EQ(options->tables[0].path, QStringLiteral("b=c.gpkg"));
    EXPECT_EQ(options->tables[0].layer, QString());
    EXPECT_EQ(options->tables[1].name, QStringLiteral("города"));
    EXPECT_EQ(options->tables[1].path, QStringLiteral("/данные/x.gpkg"));
    EXPECT_EQ(options->tables[1].layer, QStringLiteral("слой 1"));
}

TEST(Options, readTheSelection) {
    const auto options = parse({"--select", "a=b=1,-2,9223372036854775807"});
    EXPECT_EQ(options->selection->table, QStringLiteral("a=b"));
    EXPECT_EQ(options->selection->ids, (std::vector<qint64>{1, -2, 9223372036854775807}));
}

TEST(Options, takeTheRestAsGiven) {
    const auto options = parse(
        {"-F", "geojson", "--null", "", "--no-header", "--memo=request", "--log", "trace", "-o", "out"});
    EXPECT_EQ(options->format, Format::GeoJson);
    EXPECT_EQ(options->nullText, "");
    EXPECT_FALSE(options->header);
    EXPECT_EQ(options->memo, engine::EngineCache::MemoOnRequest);
    EXPECT_EQ(options->logLevel, LogLevel::Trace);
    EXPECT_EQ(options->outputPath, "out");
    EXPECT_FALSE(parse({"-o", "-"})->outputPath);
}

TEST(Options, refuseWhatTheyCannotRead) {
    const std::vector<const char*> cases[] = {{"--nothing"},
                                              {"-t", "a"},
                                              {"-t", "=file"},
                                              {"-t", "a="},
                                              {"-t", "a=|layer"},
                                              {"-F", "xml"},
                                              {"-F"},
                                              {"--memo", "maybe"},
                                              {"--log", "loud"},
                                              {"--select", "t"},
                                              {"--select", "t="},
                                              {"--select", "t=1,"},
                                              {"--select", "t=1,x"},
                                              {"--select", "=1"},
                                              {"--select", "t=9223372036854775808"}};
    for (const auto& arguments : cases) {
        EXPECT_THROW(parse(arguments), UsageError) << arguments.front() << ' ' << arguments.back();
    }
}

TEST(Options, findTheLocaleBeforehand) {
    const char* apart[] = {"orvane", "-c", "x", "--locale", "ru_RU"};
    const char* joined[] = {"orvane", "--locale=de_DE"};
    const char* none[] = {"orvane", "--locale"};
    EXPECT_EQ(localeOption(5, apart), QStringLiteral("ru_RU"));
    EXPECT_EQ(localeOption(2, joined), QStringLiteral("de_DE"));
    EXPECT_EQ(localeOption(2, none), QString());
}

} // namespace
} // namespace orvane::shell
