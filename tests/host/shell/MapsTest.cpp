// Results as maps: pictures, maps in the terminal, and what is refused.

#include "host/shell/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

#include <cmath>

namespace orvane::shell {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Maps : public testing::Test {
protected:
    QString pathOf(const char* name) const { return directory_.filePath(QString::fromUtf8(name)); }

    QByteArray drawn(const char* name, const QStringList& options, const char* statement) const {
        const Answer answer = runProgram(QStringList{exampleFile("countries.gpkg"), exampleFile("cities.shp"),
                                                     QStringLiteral("-o"), pathOf(name), QStringLiteral("-c"),
                                                     QString::fromUtf8(statement)} +
                                         options);
        EXPECT_EQ(answer.status, 0);
        EXPECT_EQ(answer.errors, "");
        QFile file(pathOf(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        return file.readAll();
    }

    QTemporaryDir directory_;
};

TEST_F(Maps, areWrittenInEachFormat) {
    const char* const query = "Select * From countries Where continent = 'Africa'";
    const QStringList options{QStringLiteral("--map-size"), QStringLiteral("640x480")};
    EXPECT_EQ(QImage::fromData(drawn("a.PNG", options, query)).size(), QSize(640, 480));
    EXPECT_TRUE(drawn("a.pdf", options, query).startsWith("%PDF-1"));
    EXPECT_TRUE(drawn("a.svg", options, query).contains("viewBox=\"0 0 640 480\""));
}

/// Of a vector picture, what is drawn rather than how.
TEST_F(Maps, showFillsLabelsAndTitles) {
    const QString svg = QString::fromUtf8(
        drawn("a.svg",
              {QStringLiteral("--map-size"), QStringLiteral("900x700"), QStringLiteral("--map-title"),
               QStringLiteral("Африка & others"), QStringLiteral("--map-fill"),
               QStringLiteral("pop / area_km2"), QStringLiteral("--map-label"),
               QStringLiteral("Upper(name_long) & '!'"), QStringLiteral("--map-classes"),
               QStringLiteral("equal:4"), QStringLiteral("--map-background"), QStringLiteral("countries")},
              "Select * From countries Where continent = 'Africa'"));
    for (const char* text : {"ALGERIA!", "CHAD!", "Африка", "&amp;", "pop / area_km2", "km"}) {
        EXPECT_TRUE(svg.contains(QString::fromUtf8(text))) << text;
    }
    EXPECT_FALSE(svg.contains(QStringLiteral("LUXEMBOURG"))) << "the background has no labels";
    const QRegularExpression fill(QStringLiteral("fill=\"(#[0-9a-f]{6})\""));
    QSet<QString> colours;
    for (auto match = fill.globalMatch(svg); match.hasNext();) {
        colours.insert(match.next().captured(1));
    }
    EXPECT_TRUE(colours.contains(QStringLiteral("#eceae6"))) << "the background";
    EXPECT_GE(colours.size(), 6) << "four classes";
    EXPECT_GT(svg.count(QStringLiteral("<path")) + svg.count(QStringLiteral("<polygon")), 50);
}

TEST_F(Maps, refuseWhatCannotBeDrawn) {
    struct Case {
        const char* options;
        const char* statement;
        int status;
        const char* message;
    };
    const char* const all = "Select * From countries";
    for (const Case& each :
         {Case{"", "Select name_long From countries", 1, "the result has no geometry"},
          {"", "Select * From countries Where pop < 0", 1, "the result is empty"},
          {"", "Select Null As obj", 1, "no geometry"},
          {"", "Select 1; Select 2", 1, "no geometry"},
          {"", "Select * From countries; Select * From countries", 1, "a map shows only one result"},
          {"--map-fill nme", all, 1, "--map-fill: no such column: nme; columns of the result: fid"},
          {"--map-label Upper(", all, 1, "--map-label: "},
          {"--map-background citys", all, 2, "did you mean \"cities\"?"},
          {"--map-background indicators", all, 1, "has no geometry"},
          {"--map-crs epsg:1", all, 2, "unknown coordinate system \"epsg:1\""},
          {"--map-crs 3857", all, 2, "expected epsg:CODE"},
          {"--map-size 0x0", all, 2, "--map-size: expected WIDTHxHEIGHT"},
          {"--map-size 1600", all, 2, "--map-size"},
          {"--map-size 20000x20000", all, 2, "100 million"},
          {"--map-classes quartiles", all, 2, "--map-classes"},
          {"--map-classes equal:1", all, 2, "--map-classes"}}) {
        const QString path = pathOf("refused.png");
        const Answer answer =
            ask((QStringLiteral("-o %0 ").arg(path) + QString::fromUtf8(each.options)).toUtf8().constData(),
                each.statement);
        EXPECT_EQ(answer.status, each.status) << each.options << ' ' << each.statement;
        EXPECT_THAT(answer.errors, HasSubstr(each.message));
        EXPECT_FALSE(QFile::exists(path));
    }
    EXPECT_THAT(ask("--map-fill pop", all).errors, HasSubstr("--map-fill is for maps"));
    // What exists stays.
    const QByteArray before = drawn("kept.svg", {}, all);
    EXPECT_EQ(ask(QStringLiteral("-o %0").arg(pathOf("kept.svg")).toUtf8().constData(), all).status, 2);
}

TEST_F(Maps, areLinesOfCharactersElsewhere) {
    const char* const query = "Select obj, pop, name_long From countries Where continent = 'Africa'";
    const std::string plain = ask("-F map --map-fill pop --map-classes quantiles:3", query).output;
    EXPECT_THAT(plain, Not(HasSubstr("\033"))) << "no colours but on terminals";
    EXPECT_THAT(plain, HasSubstr("\npop\n"));
    EXPECT_THAT(plain, HasSubstr(" < "));
    const QString text = QString::fromStdString(plain);
    int dots = 0;
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        EXPECT_LE(line.size(), 80);
        for (const QChar character : line) {
            dots += character.unicode() >= 0x2800 && character.unicode() < 0x2900 ? 1 : 0;
        }
    }
    EXPECT_GT(dots, 500);
    // One point is a dot in the middle, a line goes from corner to corner.
    EXPECT_THAT(ask("-F map", "Select MakePoint(30, 60, 4326)").output, HasSubstr("\xE2"));
    const QStringList diagonal =
        QString::fromStdString(ask("-F map", "Select GeomFromText('LINESTRING(0 0,2 1)')").output)
            .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(diagonal.size(), 20);
    EXPECT_EQ(diagonal.first().size(), 80);
    EXPECT_TRUE(diagonal.last().at(0) != QLatin1Char(' '));
}

/// How different two pictures are: the mean distance of their colours, of 255.
double difference(const QImage& a, const QImage& b) {
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb one = a.pixel(x, y);
            const QRgb other = b.pixel(x, y);
            sum += std::abs(qRed(one) - qRed(other)) + std::abs(qGreen(one) - qGreen(other)) +
                   std::abs(qBlue(one) - qBlue(other));
        }
    }
    return sum / (3.0 * a.width() * a.height());
}

/// Letters may be drawn otherwise elsewhere; a country that moves, or changes its colour, is seen.
TEST_F(Maps, looksAsDocumented) {
    QProcess script;
    script.start(QStringLiteral(ORVANE_SOURCES "/scripts/maps.sh"),
                 {QStringLiteral(ORVANE_PROGRAM), directory_.path()});
    ASSERT_TRUE(script.waitForFinished(120'000));
    EXPECT_EQ(script.exitCode(), 0) << script.readAllStandardError().constData();
    const QDir kept(QStringLiteral(ORVANE_SOURCES "/docs/maps"));
    const QStringList names = kept.entryList({QStringLiteral("*.png")});
    EXPECT_EQ(names.size(), 5);
    for (const QString& name : names) {
        const QImage expected(kept.filePath(name));
        const QImage actual(directory_.filePath(name));
        ASSERT_EQ(actual.size(), expected.size()) << name.toStdString();
        EXPECT_LT(difference(actual, expected), 2) << name.toStdString();
    }
}

} // namespace
} // namespace orvane::shell
