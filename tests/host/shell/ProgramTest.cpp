// Runs the built program as a user does.

#include "host/shell/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <csignal>

namespace orvane::shell {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

QString data(const char* name) {
    return QStringLiteral(ORVANE_EXAMPLE_DATA "/") + QString::fromUtf8(name);
}

/// The program over the three example files.
Answer ask(const QStringList& arguments) {
    return runProgram(QStringList{data("countries.gpkg"), data("cities.shp"), data("indicators.csv")} +
                      arguments);
}

Answer query(const char* text, const char* format = "csv") {
    return ask(
        {QStringLiteral("-F"), QString::fromUtf8(format), QStringLiteral("-c"), QString::fromUtf8(text)});
}

void writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

TEST(Program, answersOverThreeFormats) {
    EXPECT_EQ(query("Select Count(*) As n From countries").output, "n\n177\n");
    EXPECT_EQ(query("Select Count(*) As n From cities").output, "n\n4442\n");
    EXPECT_EQ(query("Select Count(*) As n From indicators").output, "n\n177\n");
}

struct AnswerCase {
    const char* name;
    const char* format;
    const char* query;
    const char* expected;
};

void PrintTo(const AnswerCase& answerCase, std::ostream* stream) {
    *stream << answerCase.name;
}

class Answers : public testing::TestWithParam<AnswerCase> {};

TEST_P(Answers, areWritten) {
    const Answer answer = query(GetParam().query, GetParam().format);
    EXPECT_EQ(answer.output, GetParam().expected);
    EXPECT_EQ(answer.errors, "");
    EXPECT_EQ(answer.status, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Program, Answers,
    testing::Values(
        AnswerCase{"geometry as WKT", "csv", "Select obj, name From cities Where geonameid = 2950159",
                   "obj,name\n\"POINT(13.41053 52.52437)\",Berlin\n"},
        AnswerCase{"geometry as GeoJSON", "json", "Select obj From cities Where geonameid = 2950159",
                   "[\n{\"obj\":{\"type\":\"Point\",\"coordinates\":[13.41053,52.52437]}}\n]\n"},
        AnswerCase{
            "features", "geojson", "Select name, obj, population From cities Where geonameid = 2950159",
            "{\"type\":\"FeatureCollection\",\"features\":[\n"
            "{\"type\":\"Feature\",\"geometry\":{\"type\":\"Point\",\"coordinates\":[13.41053,52.52437]},"
            "\"properties\":{\"name\":\"Berlin\",\"population\":3426354}}\n]}\n"},
        AnswerCase{
            "features in another system come out in WGS 84", "geojson",
            "Select RoundBy(CentroidX(g), 3) As x, g From (Select TransformToSLGeo(obj, 'epsg:3857') As g "
            "From "
            "cities "
            "Where geonameid = 2950159) t",
            "{\"type\":\"FeatureCollection\",\"features\":[\n"
            "{\"type\":\"Feature\",\"geometry\":{\"type\":\"Point\",\"coordinates\":[13.41053,52.52437]},"
            "\"properties\":{\"x\":1492853.371}}\n]}\n"},
        AnswerCase{"a lone expression", "csv", "'Жуков' & ' 🗺 ' & (6 * 7)",
                   "'Жуков' & ' 🗺 ' & (6 * 7)\nЖуков 🗺 42\n"},
        AnswerCase{"columns under the user's words", "csv",
                   "Select Round(Area(obj, 'sq km'), 1)   > 300000 , pop As \"люди\", Count(*) Over () From "
                   "countries "
                   "Where name_long = 'Germany'",
                   "\"Round(Area(obj, 'sq km'), 1) > 300000\",люди,Count(*) Over ()\n1,80982500,1\n"},
        AnswerCase{"columns under the user's words behind With", "csv",
                   "With n(i) As (Select 1 Union Select 2) Select i ^ 2, Max(i) From n Group By i",
                   "i ^ 2,Max(i)\n1,1\n4,2\n"},
        AnswerCase{"a natural join matches neither geometry nor hidden columns", "csv",
                   "Select Count(*) As n From cities Natural Join countries Where population > 10000000",
                   "n\n2655\n"},
        AnswerCase{"a statement without rows", "table",
                   "Select name, population From cities Where population < 0",
                   "name | population\n-----+-----------\n"}));

struct FaultCase {
    const char* query;
    const char* message; ///< the English text on standard error, whole
};

void PrintTo(const FaultCase& faultCase, std::ostream* stream) {
    *stream << faultCase.query;
}

class Faults : public testing::TestWithParam<FaultCase> {};

TEST_P(Faults, areToldWithTheirPlace) {
    const Answer answer = query(GetParam().query);
    EXPECT_EQ(answer.errors, std::string("orvane: ") + GetParam().message);
    EXPECT_EQ(answer.output, "");
    EXPECT_EQ(answer.status, 1);
}

INSTANTIATE_TEST_SUITE_P(
    Program, Faults,
    testing::Values(
        FaultCase{"Select name From citees",
                  "line 1, column 18: there is no table \"citees\"; did you mean \"cities\"?\n"
                  "  Select name From citees\n"
                  "                   ^^^^^^\n"},
        FaultCase{"Select name,\n  poplation From cities Where name = 'poplation'",
                  "line 2, column 3: there is no column \"poplation\"; did you mean \"population\"?\n"
                  "    poplation From cities Where name = 'poplation'\n"
                  "    ^^^^^^^^^\n"},
        FaultCase{
            "Select c.name, k.nam From cities c, countries k",
            "line 1, column 16: the table \"countries\" has no column \"nam\"; did you mean \"name_long\"?\n"
            "  Select c.name, k.nam From cities c, countries k\n"
            "                 ^^^^^\n"},
        FaultCase{"Select c.name, t.x From cities c",
                  "line 1, column 16: there is no table \"t\" to take the column \"x\" from\n"
                  "  Select c.name, t.x From cities c\n"
                  "                 ^^^\n"},
        FaultCase{"Select Uper(name) From cities",
                  "line 1, column 8: there is no function \"Uper\"; did you mean \"upper\"?\n"
                  "  Select Uper(name) From cities\n"
                  "         ^^^^\n"},
        FaultCase{
            "Select 1 From cities Where name = \"Berlin\"",
            "line 1, column 35: there is no column \"Berlin\"; texts are written in apostrophes: 'Berlin'\n"
            "  Select 1 From cities Where name = \"Berlin\"\n"
            "                                    ^^^^^^^^\n"},
        FaultCase{"Insert Into cities (nmae) Values ('x')",
                  "line 1, column 21: the table \"cities\" has no column \"nmae\"; did you mean \"name\"?\n"
                  "  Insert Into cities (nmae) Values ('x')\n"
                  "                      ^^^^\n"},
        FaultCase{"Select a.name, b.name From cities a, cities b Where a.populaton > b.population",
                  "line 1, column 53: the table \"cities\" has no column \"populaton\"; did you mean "
                  "\"population\"?\n"
                  "  Select a.name, b.name From cities a, cities b Where a.populaton > b.population\n"
                  "                                                      ^^^^^^^^^^^\n"},
        FaultCase{"Select iso_a2 From countries, indicators",
                  "line 1, column 8: several tables have a column \"iso_a2\": put the table before it\n"
                  "  Select iso_a2 From countries, indicators\n"
                  "         ^^^^^^\n"},
        FaultCase{"Select 1 From cities Where Sum(population) > 1",
                  "line 1, column 28: the function Sum cannot be used here: it is calculated over many rows\n"
                  "  Select 1 From cities Where Sum(population) > 1\n"
                  "                             ^^^\n"}));

TEST(Program, tellsSyntaxErrorsWithTheirPlace) {
    const Answer answer = query("Select name Form cities");
    EXPECT_THAT(answer.errors, StartsWith("orvane: line 1, column 13: "));
    EXPECT_THAT(answer.errors, HasSubstr("From"));
    EXPECT_THAT(answer.errors, HasSubstr("\n  Select name Form cities\n              ^^^^\n"));
    EXPECT_EQ(answer.output, "");
    EXPECT_EQ(answer.status, 1);
}

TEST(Program, tellsWhichArgumentsAFunctionTakes) {
    const Answer answer = query("Select 1 + Mid('abc') From cities");
    EXPECT_THAT(answer.errors, StartsWith("orvane: line 1, column 12: "));
    EXPECT_THAT(answer.errors, HasSubstr("Mid("));
    EXPECT_EQ(answer.status, 1);
}

TEST(Program, printsNothingOfAStatementThatFailsLate) {
    const Answer answer = query("Select 10 \\ (geonameid - 2950159) From cities");
    EXPECT_THAT(answer.errors, HasSubstr("division by zero"));
    EXPECT_EQ(answer.output, "");
    EXPECT_EQ(answer.status, 1);
}

TEST(Program, speaksTheUsersLanguage) {
    const Answer answer = ask({QStringLiteral("--locale"), QStringLiteral("ru_RU"), QStringLiteral("-c"),
                               QStringLiteral("Select x From citees")});
    EXPECT_THAT(answer.errors,
                StartsWith("orvane: строка 1, столбец 15: нет таблицы «citees»; возможно, имелось в виду "
                           "«cities»\n"));
}

TEST(Program, answersWrongUseWithStatus2) {
    QTemporaryDir directory;
    writeFile(directory.filePath(QStringLiteral("broken.gpkg")), "no database");
    const QStringList cases[] = {
        {QStringLiteral("--nothing")},
        {data("no-such-file.gpkg"), QStringLiteral("-c"), QStringLiteral("1")},
        {directory.filePath(QStringLiteral("broken.gpkg")), QStringLiteral("-c"), QStringLiteral("1")},
        {QStringLiteral("-t"), QStringLiteral("a=") + data("countries.gpkg") + QStringLiteral("|nothing"),
         QStringLiteral("-c"), QStringLiteral("1")},
        {data("cities.shp"), QStringLiteral("-t"), QStringLiteral("Cities=") + data("cities.shp"),
         QStringLiteral("-c"), QStringLiteral("1")},
        {data("cities.shp"), QStringLiteral("--select"), QStringLiteral("citis=1"), QStringLiteral("-c"),
         QStringLiteral("1")},
        {QStringLiteral("-f"), directory.filePath(QStringLiteral("no.sql"))},
        {QStringLiteral("-o"), directory.filePath(QStringLiteral("no/out.csv")), QStringLiteral("-c"),
         QStringLiteral("1")}};
    for (const QStringList& arguments : cases) {
        const Answer answer = runProgram(arguments);
        const std::string line = arguments.join(QLatin1Char(' ')).toStdString();
        EXPECT_EQ(answer.status, 2) << line << '\n' << answer.errors;
        EXPECT_EQ(answer.output, "") << line;
        EXPECT_THAT(answer.errors, MatchesRegex("orvane: [^\n]+\n")) << line;
    }
}

TEST(Program, runsScriptsUpToTheFirstFailure) {
    QTemporaryDir directory;
    const QString script = directory.filePath(QStringLiteral("script.sql"));
    writeFile(
        script,
        "\xEF\xBB\xBF-- first; a comment\nSelect 1 As a;\n\n/* ; */ Select 'x;y' As b; Select 2 As\nc;\n"
        "  Select nothing From cities;\nSelect 3 As d;\n");
    const Answer answer = ask({QStringLiteral("-F"), QStringLiteral("csv"), QStringLiteral("-f"), script});
    EXPECT_EQ(answer.output, "a\n1\nb\nx;y\nc\n2\n");
    EXPECT_THAT(answer.errors, StartsWith("orvane: " + script.toStdString() + ": line 6, column 10: "));
    EXPECT_EQ(answer.status, 1);
}

TEST(Program, runsPipedInput) {
    const Answer answer = runProgram(
        {data("countries.gpkg"), QStringLiteral("-F"), QStringLiteral("csv"), QStringLiteral("--no-header")},
        "Select Count(*) From countries; Select 'конец'");
    EXPECT_EQ(answer.output, "177\nконец\n");
    EXPECT_EQ(answer.status, 0);
}

TEST(Program, writesAFileOnlyWhenAllSucceeds) {
    QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("ответ.csv"));
    const QStringList common{QStringLiteral("-F"), QStringLiteral("csv"), QStringLiteral("-o"), path};
    const Answer written = ask(common + QStringList{QStringLiteral("-c"), QStringLiteral("Select 1 As a"),
                                                    QStringLiteral("-c"), QStringLiteral("Select 2 As b")});
    EXPECT_EQ(written.output, "");
    EXPECT_EQ(readFile(path), "a\n1\nb\n2\n");
    const Answer failed =
        ask(common + QStringList{QStringLiteral("-c"), QStringLiteral("Select 3 As a"), QStringLiteral("-c"),
                                 QStringLiteral("Select nothing From cities")});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(readFile(path), "a\n1\nb\n2\n");
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files).size(), 1);
}

TEST(Program, queriesTheSelection) {
    const QString text = QStringLiteral("Select Count(*) As n, Min(geonameid) As id From Selection");
    const Answer selected = ask({QStringLiteral("-F"), QStringLiteral("csv"), QStringLiteral("--select"),
                                 QStringLiteral("cities=0,1,2"), QStringLiteral("-c"), text});
    EXPECT_THAT(selected.output, MatchesRegex("n,id\n3,[0-9]+\n")) << selected.errors;
    const Answer empty = ask({QStringLiteral("-c"), text});
    EXPECT_EQ(empty.status, 1);
    EXPECT_THAT(empty.errors, StartsWith("orvane: line 1, column 49: "));
}

TEST(Program, opensOneLayerUnderAnotherName) {
    const Answer answer =
        runProgram({QStringLiteral("-F"), QStringLiteral("csv"), QStringLiteral("-t"),
                    QStringLiteral("страны мира=") + data("countries.gpkg") + QStringLiteral("|countries"),
                    QStringLiteral("-c"), QStringLiteral("Select Count(*) As n From \"страны мира\"")});
    EXPECT_EQ(answer.output, "n\n177\n") << answer.errors;
}

TEST(Program, timesEachStatementOnStandardError) {
    const Answer answer =
        ask({QStringLiteral("--timing"), QStringLiteral("-F"), QStringLiteral("csv"), QStringLiteral("-c"),
             QStringLiteral("Select name_long From countries; Select 1 Where 0")});
    const std::string times =
        "translate_ms=[0-9]+\\.[0-9]+ prepare_ms=[0-9]+\\.[0-9]+ first_row_ms=[0-9]+\\.[0-9]+ "
        "total_ms=[0-9]+\\.[0-9]+ rows=";
    EXPECT_THAT(answer.errors, MatchesRegex(times + "177\n" + times + "0\n"));
}

TEST(Program, explainsInTheUsersLanguageHowEachStatementWasAnswered) {
    const QStringList question{QStringLiteral("--explain"), QStringLiteral("-F"), QStringLiteral("csv"),
                               QStringLiteral("-c"),
                               QStringLiteral("Select Count(*) As n From countries k, cities c Where c.obj "
                                              "Within k.obj And k.iso_a2 = 'DE'; Select 1 As one")};
    const Answer english = ask(question);
    EXPECT_EQ(english.output, "n\n99\none\n1\n");
    EXPECT_THAT(english.errors, MatchesRegex("countries k: scan of the whole table\n"
                                             "  1 rows, [0-9]+ expected, 177 read\n"
                                             "  no index for iso_a2 =: the table is small\n"
                                             "cities c: R-tree of the geometry \\(made now in [0-9.]+ ms\\)\n"
                                             "  99 rows, [0-9]+ expected\n"
                                             "one row without a table\n"));
    const Answer russian = ask(question + QStringList{QStringLiteral("--locale"), QStringLiteral("ru_RU")});
    EXPECT_THAT(russian.errors, HasSubstr("\ncities c: R-дерево по геометрии (сделан сейчас за "));
}

TEST(Program, endsWithinATenthOfASecondOfCtrlC) {
    RunningProgram program({data("cities.shp"), QStringLiteral("-c"),
                            QStringLiteral("Select Count(*) From cities a, cities b, cities c Where "
                                           "a.population + b.population + c.population = -1")});
    program.waitFor(700);
    ASSERT_TRUE(program.isRunning());
    QElapsedTimer timer;
    timer.start();
    program.signal(SIGINT);
    const Answer answer = program.finish();
    EXPECT_LT(timer.elapsed(), 100 * slowdown());
    EXPECT_EQ(answer.status, 130);
    EXPECT_EQ(answer.output, "");
}

} // namespace
} // namespace orvane::shell
