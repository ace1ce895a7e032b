// What the program must withstand of the system and of others: few files that may be open, two that write one
// file.

#include "host/providers/TestLayers.h"
#include "host/shell/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

namespace orvane::shell {
namespace {

using files::Format;
using testing::HasSubstr;

TEST(Fault, ManyTablesNeedFewOpenFiles) {
    QStringList arguments;
    QStringList queries;
    for (int i = 0; i < 60; ++i) {
        const QString name = QStringLiteral("t%1").arg(i);
        arguments << QStringLiteral("-t") << name + QLatin1Char('=') + exampleFile("cities.shp");
        queries << QStringLiteral("Select name From %1 Where name = 'Paris' And country = 'FR'").arg(name);
    }
    arguments << QStringLiteral("-F") << QStringLiteral("csv") << QStringLiteral("--no-header")
              << QStringLiteral("-c") << queries.join(QStringLiteral(" Union All "));
    const Answer answer = RunningProgram(arguments, {}, {0, 48}).finish();
    EXPECT_EQ(answer.errors, "");
    EXPECT_EQ(QByteArray::fromStdString(answer.output).count("Paris\n"), 60);
    const Answer refused = RunningProgram(arguments, {}, {0, 16}).finish();
    EXPECT_NE(refused.status, 0);
    EXPECT_NE(refused.status, -1);
    EXPECT_NE(refused.errors, "");
}

TEST(Fault, AFullDiskCostsAnIndexAndNotTheAnswer) {
    const QTemporaryDir directory;
    QStringList arguments{exampleFile("cities.shp"), QStringLiteral("-F"), QStringLiteral("csv"),
                          QStringLiteral("--index-directory"), directory.path()};
    for (const char* query : {"Select Count(*) From cities Where name = 'Paris'", // asked again: an index
                              "Select Count(*) From cities Where name = 'London'",
                              "Select Count(*) From cities Where name = 'Rome'",
                              "Select Count(*) From cities a, cities b Where a.name = b.name",
                              "Select country, Count(*) From cities Group By country Order By 2 Desc, 1",
                              "Select name From cities Order By population Desc, name Limit 3"}) {
        arguments << QStringLiteral("-c") << QString::fromUtf8(query);
    }
    const Answer expected = runProgram(arguments);
    ASSERT_EQ(expected.status, 0) << expected.errors;
    const Answer answer = runWithFullDisk(arguments, 4096);
    EXPECT_EQ(answer.status, 0) << answer.errors;
    EXPECT_EQ(answer.output, expected.output);
    EXPECT_TRUE(
        QDir(directory.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).isEmpty());
}

class Writers : public testing::TestWithParam<Format> {};

TEST_P(Writers, WriteOneAfterTheOtherOrSayWhyNot) {
    GDALAllRegister();
    const QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("t.") + QLatin1String(GetParam().extension));
    files::addLayerOfNumbers(*files::createDataset(GetParam(), file), "t", 500);
    const auto run = [&file](const char* statement) {
        return QStringList{file,
                           QStringLiteral("-F"),
                           QStringLiteral("csv"),
                           QStringLiteral("--no-header"),
                           QStringLiteral("-c"),
                           QString::fromUtf8(statement)};
    };
    const auto number = [&run](const char* query) {
        return QByteArray::fromStdString(runProgram(run(query)).output).toInt();
    };
    const int rows = number("Select Count(n) From t");
    int expected = number("Select Sum(n) From t");
    for (int round = 0; round < 3; ++round) {
        RunningProgram first(run("Update t Set n = n + 1"));
        RunningProgram second(run("Update t Set n = n + 1"));
        for (RunningProgram* program : {&first, &second}) {
            const Answer answer = program->finish();
            if (answer.status == 0) {
                expected += rows;
            } else {
                EXPECT_EQ(answer.status, 1);
                EXPECT_THAT(answer.errors, HasSubstr(QFileInfo(file).fileName().toStdString()));
            }
        }
        ASSERT_EQ(number("Select Sum(n) From t"), expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, Writers,
                         testing::Values(Format{"GPKG", "gpkg"}, Format{"SQLite", "sqlite"},
                                         Format{"CSV", "csv"}, Format{"GeoJSON", "geojson"},
                                         Format{"ESRI Shapefile", "shp"}),
                         [](const auto& format) { return std::string(format.param.extension); });

} // namespace
} // namespace orvane::shell
