// Runs the built program as a user does.

#include "host/shell/Program.h"
#include "support/TextBlocks.h"

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

void writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

TEST(Program, answersInTheFormThatIsAsked) {
    for (const tests::QuestionBlock& block : tests::readQuestions("shell/answers.txt")) {
        const std::string options = "-F " + block.words.front().toStdString();
        const Answer answer = ask(options.c_str(), block.question.c_str());
        EXPECT_EQ(answer.output, block.answer) << block.title;
        EXPECT_EQ(answer.errors, "") << block.title;
        EXPECT_EQ(answer.status, 0) << block.title;
    }
}

TEST(Program, obeysCommandsInScriptsAndPipesAndEndsAtTheFirstThatFails) {
    QTemporaryDir directory;
    const QString script = directory.filePath(QStringLiteral("часть.sql"));
    const QString endless = directory.filePath(QStringLiteral("endless.sql"));
    writeFile(script, "\xEF\xBB\xBF.mode markdown\nSelect 'a|b\\' As [x|y], Null As nothing, 2.5 As r");
    writeFile(endless, ".read " + endless.toUtf8());
    struct Case {
        QByteArray input;
        const char* output;
        const char* error = "";
        int status = 0;
    };
    const Case cases[] = {
        {".tables", "cities  4442  Point  epsg:4326  "},
        {".mode line\nSelect 1 As a, 'б' As long; Select 2 As a From cities Where False;",
         "   a: 1\nlong: б\n"},
        {"Select 1 As n, Null As e, MakePoint(1, 2, 4326) As obj Into t From cities Limit 2;\n.info t",
         "t\n  rows                 2\n  geometries           Point 2\n  coordinate system    epsg:4326\n"
         "  extent               1 2, 1 2\n    n    2  Integer\n    e    0  "},
        {"Select 1 As n Into t;\n.mode json\n.info t",
         "[\n{\"columns\":[{\"name\":\"n\",\"type\":\"Integer\",\"values\":1}],\"name\":\"t\",\"rows\":1}\n]"
         "\n"},
        {".read " + script.toUtf8(),
         "| x\\|y | nothing | r |\n| --- | --- | ---: |\n| a\\|b\\\\ |  | 2.5 |\n"},
        {".read " + endless.toUtf8(), "", "without end", 1},
        {".read /no/such", "", "/no/such", 1},
        {"Select 1 As a;\n.nothing\nSelect 2 As a;", "a\n-\n1\n", "there is no command .nothing", 1},
        {"Select 1 As a;\n.quit\nSelect 2 As a;", "a\n-\n1\n"},
        {".close nothing", "", "nothing", 1},
        {"Explain Select 5 As a", "a\n-\n5\n"},
        {".set Год=2024\n.set t='it''s; 5'\n.set n=null\n.set\nSelect :год + 1 As y, :T As t, :n Is Null As "
         "n",
         "mark=5\nn=NULL\nt='it''s; 5'\nгод=2024\n   y | t       | n\n-----+---------+--\n2025 | it's; 5 | "
         "1\n"},
        {"Select :nowhere", "", "parameter :nowhere has no value", 1},
        {"Select 1 As a, ?2 As b", "", "parameter ?2 has no value: --parameter 2=", 1},
    };
    for (const Case& each : cases) {
        const Answer answer = runProgram({exampleFile("cities.shp"), QStringLiteral("-pmark=5")}, each.input);
        EXPECT_THAT(answer.output, StartsWith(each.output)) << each.input.toStdString();
        EXPECT_THAT(answer.errors, HasSubstr(each.error)) << each.input.toStdString();
        EXPECT_EQ(answer.status, each.status) << each.input.toStdString();
    }
    const Answer given = ask("-F csv -p a=1.5 -p x -p :Б=NULL -p 7", "Select :A, ?, :б, ?, TypeOf(:a)");
    EXPECT_THAT(given.output, HasSubstr("\n1.5,x,,7,real\n"));
}

TEST(Program, printsNothingOfAStatementThatFailsLate) {
    const Answer answer = ask("-F csv", "Select 10 \\ (geonameid - 2950159) From cities");
    EXPECT_THAT(answer.errors, HasSubstr("division by zero"));
    EXPECT_EQ(answer.output, "");
    EXPECT_EQ(answer.status, 1);
}

TEST(Program, answersWrongUseWithStatus2) {
    QTemporaryDir directory;
    writeFile(directory.filePath(QStringLiteral("broken.gpkg")), "no database");
    const QString cities = exampleFile("cities.shp");
    const QString countries = exampleFile("countries.gpkg");
    const QString cases[] = {QStringLiteral("--nothing"),
                             countries + QStringLiteral("-absent"),
                             directory.filePath(QStringLiteral("broken.gpkg")),
                             QStringLiteral("-t a=%1|nothing").arg(countries),
                             QStringLiteral("%1 -t Cities=%1").arg(cities),
                             QStringLiteral("%1 --select citis=1").arg(cities),
                             QStringLiteral("-f ") + directory.filePath(QStringLiteral("no.sql")),
                             QStringLiteral("-f ") + directory.path(),
                             QStringLiteral("-o ") + directory.filePath(QStringLiteral("no/out.csv"))};
    for (const QString& words : cases) {
        const Answer answer = runProgram(words.split(QLatin1Char(' ')) + QStringList{QStringLiteral("-c1")});
        EXPECT_EQ(answer.status, 2) << words.toStdString() << '\n' << answer.errors;
        EXPECT_EQ(answer.output, "") << words.toStdString();
        EXPECT_THAT(answer.errors, MatchesRegex("orvane: [^\n]+\n")) << words.toStdString();
    }
}

TEST(Program, runsScriptsUpToTheFirstFailure) {
    QTemporaryDir directory;
    const QString script = directory.filePath(QStringLiteral("script.sql"));
    writeFile(
        script,
        "\xEF\xBB\xBF-- first; a comment\nSelect 1 As a;\n\n/* ; */ Select 'x;y' As b; Select 2 As\nc;\n"
        "  Select nothing From cities;\nSelect 3 As d;\n");
    const Answer answer = runProgram({exampleFile("cities.shp"), QStringLiteral("-F"), QStringLiteral("csv"),
                                      QStringLiteral("-f"), script});
    EXPECT_EQ(answer.output, "a\n1\nb\nx;y\nc\n2\n");
    EXPECT_THAT(answer.errors, StartsWith("orvane: " + script.toStdString() + ": line 6, column 10: "));
    EXPECT_EQ(answer.status, 1);
}

TEST(Program, runsPipedInput) {
    const Answer answer = runProgram({exampleFile("countries.gpkg"), QStringLiteral("-F"),
                                      QStringLiteral("csv"), QStringLiteral("--no-header")},
                                     "Select Count(*) From countries; Select 'конец'");
    EXPECT_EQ(answer.output, "177\nконец\n");
    EXPECT_EQ(answer.status, 0);
}

TEST(Program, writesAFileOnlyWhenAllSucceeds) {
    QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("ответ.csv"));
    const QByteArray options = "-F csv -o " + path.toUtf8();
    EXPECT_EQ(ask(options.constData(), "Select 1 As a; Select 2 As b").output, "");
    EXPECT_EQ(readFile(path), "a\n1\nb\n2\n");
    EXPECT_THAT(ask(options.constData(), "Select 3 As a").errors, HasSubstr("the file exists; --overwrite"));
    EXPECT_EQ(ask((options + " --overwrite").constData(), "Select 3 As a; Select nothing From cities").status,
              1);
    EXPECT_EQ(readFile(path), "a\n1\nb\n2\n");
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files).size(), 1);
}

TEST(Program, queriesTheSelection) {
    const char* const text = "Select Count(*) As n, Min(geonameid) As id From Selection";
    const Answer selected = ask("-F csv --select cities=0,1,2", text);
    EXPECT_THAT(selected.output, MatchesRegex("n,id\n3,[0-9]+\n")) << selected.errors;
    const Answer empty = ask("", text);
    EXPECT_EQ(empty.status, 1);
    EXPECT_THAT(empty.errors, StartsWith("orvane: line 1, column 49: "));
}

TEST(Program, opensOneLayerUnderAnotherName) {
    const QByteArray options = "-F csv -t страны=" + exampleFile("countries.gpkg").toUtf8() + "|countries";
    const Answer answer = ask(options.constData(), "Select Count(*) As n From \"страны\"");
    EXPECT_EQ(answer.output, "n\n177\n") << answer.errors;
}

TEST(Program, takesNamesOfTablesAndColumnsAsTheyAre) {
    const QTemporaryDir directory;
    QStringList arguments{QStringLiteral("-F"), QStringLiteral("csv"), QStringLiteral("--no-header")};
    QStringList statements;
    for (const char* text :
         {"roads.v2", "plan [2020]", "main.x", "[z]", "\"q\"", "o'k", "x]y", "Ключ.1", "100%1"}) {
        const QString name = QString::fromUtf8(text);
        const QString path = directory.filePath(name + QStringLiteral(".csv"));
        writeFile(path, "Area [m2],b.c\n40,2\n");
        arguments << path;
        statements << QStringLiteral("Select \"Area [m2]\" + \"b.c\" From \"%0\"")
                          .arg(QString(name).replace(QLatin1Char('"'), QLatin1String("\"\"")));
    }
    arguments << QStringLiteral("-t") << QStringLiteral("temp.cities=") + exampleFile("cities.shp");
    statements << QStringLiteral("Select Count(*) From \"temp.cities\"")
               << QStringLiteral("Select 42 As \"e.f\" Into \"c.d\"")
               << QStringLiteral("Select \"e.f\" From \"c.d\"");
    for (const QString& statement : statements) {
        arguments << QStringLiteral("-c") << statement;
    }
    const Answer answer = runProgram(arguments);
    EXPECT_THAT(answer.output, StartsWith("42\n42\n42\n42\n42\n42\n42\n42\n42\n4442\n"));
    EXPECT_THAT(answer.output, testing::EndsWith("42\n"));
    EXPECT_EQ(answer.errors, "");
}

TEST(Program, printsNothingThatATerminalWouldObey) {
    const QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("a\u202E.csv"));
    writeFile(file, "x\x1B[31m,\xC2\x9By\n\a1,\xE2\x80\xAE\n");
    const QString table = QStringLiteral("\"a\u202E\"");
    const QString harm = QStringLiteral("\x1B]0;\a\u009B\u202E");
    const QStringList cases[] = {
        {file, QStringLiteral("--explain"), QStringLiteral("-c"), QStringLiteral("Table ") + table},
        {file, QStringLiteral("--log"), QStringLiteral("trace"), QStringLiteral("-c"),
         QStringLiteral("Select Count(*) From %0 t, %0 u Where t.x = u.x").arg(table)},
        {file, QStringLiteral("-Fjson"), QStringLiteral("-c"), QStringLiteral("Table ") + table},
        {file, QStringLiteral("-c"), QStringLiteral("Select \"%0\" From %1").arg(harm, table)},
        {file, QStringLiteral("-c"), QStringLiteral("Select 1 From \"%0\"").arg(harm)},
        {file, QStringLiteral("-c"), QStringLiteral("Select %0").arg(harm)},
        {file, QStringLiteral("--sqlite"), QStringLiteral("-c"),
         QStringLiteral("Select \"%0\"(1)").arg(harm)},
        {QStringLiteral("-c"),
         QStringLiteral("Select 1 Into '%0.csv'").arg(directory.filePath(harm + QLatin1Char('/')))},
        {QStringLiteral("--overwrite"), QStringLiteral("-o"), directory.filePath(harm + QStringLiteral("/x")),
         QStringLiteral("-c1")},
        {file, QStringLiteral("--select"), harm + QStringLiteral("=1"), QStringLiteral("-c1")},
        {QStringLiteral("-f"), harm},
        {QStringLiteral("--help-function"), harm},
        {QStringLiteral("--log"), harm},
        {QStringLiteral("--") + harm},
        {harm}};
    for (const QStringList& arguments : cases) {
        const Answer answer = runProgram(arguments);
        const std::string printed = answer.output + answer.errors;
        EXPECT_NE(printed, "");
        for (const char* part : {"\x1B", "\a", "\u009B", "\u202E"}) {
            EXPECT_THAT(printed, testing::Not(HasSubstr(part)))
                << arguments.join(QLatin1Char(' ')).toStdString();
        }
    }
    EXPECT_EQ(runProgram({file, QStringLiteral("-Fcsv"), QStringLiteral("-c"),
                          QStringLiteral("Select y As \"\x1B\" From ") + table})
                  .output,
              "\x1B\n\u202E\n");
}

TEST(Program, timesEachStatementOnStandardError) {
    const Answer answer = ask("--timing -F csv", "Select name_long From countries; Select 1 Where 0");
    const std::string times =
        "translate_ms=[0-9]+\\.[0-9]+ prepare_ms=[0-9]+\\.[0-9]+ first_row_ms=[0-9]+\\.[0-9]+ "
        "total_ms=[0-9]+\\.[0-9]+ rows=";
    EXPECT_THAT(answer.errors, MatchesRegex(times + "177\n" + times + "0\n"));
}

TEST(Program, explainsInTheUsersLanguageHowEachStatementWasAnswered) {
    const char* const text = "Select Count(*) As n From countries k, cities c Where c.obj Within k.obj And "
                             "k.iso_a2 = 'DE'; Select 1 As one";
    const Answer english = ask("--explain -F csv", text);
    EXPECT_EQ(english.output, "n\n99\none\n1\n");
    EXPECT_THAT(english.errors, MatchesRegex("countries k: scan of the whole table\n"
                                             "  1 rows, [0-9]+ expected, 177 read\n"
                                             "  no index for iso_a2 =: the table is small\n"
                                             "cities c: R-tree of the geometry \\(made now in [0-9.]+ ms\\)\n"
                                             "  99 rows, [0-9]+ expected\n"
                                             "one row without a table\n"));
    const Answer russian = ask("--explain --locale ru_RU", text);
    EXPECT_THAT(russian.errors, HasSubstr("\ncities c: R-дерево по геометрии (сделан сейчас за "));
}

TEST(Program, endsWithinATenthOfASecondOfCtrlC) {
    RunningProgram program({exampleFile("cities.shp"), QStringLiteral("-c"),
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
