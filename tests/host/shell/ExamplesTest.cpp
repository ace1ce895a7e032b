// Every example query gives the answer that other tools gave, as tests/data/examples/README.md tells.

#include "host/shell/Program.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <algorithm>
#include <cmath>

namespace orvane::shell {
namespace {

/// Values of the last digit shown may differ by how a number was rounded.
constexpr double relativeTolerance = 1e-9;

QStringList exampleNames() {
    QStringList names;
    for (const QFileInfo& file :
         QDir(QStringLiteral(ORVANE_EXAMPLE_QUERIES)).entryInfoList({QStringLiteral("*.sql")})) {
        names += file.completeBaseName();
    }
    return names;
}

QString pathOf(const QString& name) {
    return QStringLiteral(ORVANE_EXAMPLE_QUERIES "/") + name + QStringLiteral(".sql");
}

Answer runExample(const QStringList& arguments) {
    QStringList files;
    for (const char* file : {"countries.gpkg", "cities.shp", "indicators.csv"}) {
        files += QStringLiteral(ORVANE_EXAMPLE_DATA "/") + QString::fromLatin1(file);
    }
    return runProgram(files + QStringList{QStringLiteral("-F"), QStringLiteral("csv")} + arguments);
}

/// The fields of a text without quoted commas, which the examples do not need.
QVector<QStringList> fields(const QString& csv) {
    QVector<QStringList> rows;
    for (const QString& line : csv.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        rows += line.split(QLatin1Char(','));
    }
    return rows;
}

bool agree(const QString& a, const QString& b) {
    bool isNumber = false;
    const double expected = a.toDouble(&isNumber);
    return isNumber ? std::fabs(expected - b.toDouble()) <= relativeTolerance * std::fabs(expected) : a == b;
}

void expectAnswer(const Answer& answer, const QString& name) {
    ASSERT_EQ(answer.status, 0) << answer.errors;
    QFile file(QStringLiteral(ORVANE_TEST_DATA "/examples/") + name + QStringLiteral(".csv"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << "no expected answer";
    const auto expected = fields(QString::fromUtf8(file.readAll()));
    const auto actual = fields(QString::fromStdString(answer.output));
    ASSERT_EQ(actual.size(), expected.size()) << answer.output;
    for (int row = 0; row < expected.size(); ++row) {
        EXPECT_TRUE(std::equal(expected[row].begin(), expected[row].end(), actual[row].begin(),
                               actual[row].end(), agree))
            << "expected " << expected[row].join(QLatin1Char(',')).toStdString() << ", got "
            << actual[row].join(QLatin1Char(',')).toStdString();
    }
}

TEST(Examples, giveTheAnswersOfOtherTools) {
    ASSERT_GE(exampleNames().size(), 8);
    for (const QString& name : exampleNames()) {
        SCOPED_TRACE(name.toStdString());
        expectAnswer(runExample({QStringLiteral("-f"), pathOf(name)}), name);
    }
}

TEST(Examples, giveTheSameAnswersAsTranslatedText) {
    for (const QString& name : exampleNames()) {
        SCOPED_TRACE(name.toStdString());
        const Answer translated =
            runExample({QStringLiteral("--translate"), QStringLiteral("-f"), pathOf(name)});
        ASSERT_EQ(translated.status, 0) << translated.errors;
        Answer answer = runExample({QStringLiteral("--sqlite"), QStringLiteral("--no-header"),
                                    QStringLiteral("-c"), QString::fromStdString(translated.output)});
        // Without the user's text the columns have other names.
        const Answer header = runExample({QStringLiteral("-f"), pathOf(name)});
        answer.output.insert(0, header.output.substr(0, header.output.find('\n') + 1));
        expectAnswer(answer, name);
    }
}

} // namespace
} // namespace orvane::shell
