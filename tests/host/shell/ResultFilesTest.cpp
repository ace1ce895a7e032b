// Results that become tables and files, through the built program, read back through GDAL.

#include "host/providers/TestLayers.h"
#include "host/shell/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDataStream>
#include <QDir>
#include <QDirIterator>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <csignal>

#include <sys/stat.h>
#include <unistd.h>

namespace orvane::shell {
namespace {

using files::DatasetOwner;
using testing::HasSubstr;

constexpr files::Format geoPackage{"GPKG", "gpkg"};

class ResultFiles : public testing::Test {
protected:
    static void SetUpTestSuite() { GDALAllRegister(); }
    QString path(const char* name) const { return directory_.filePath(QString::fromUtf8(name)); }
    QStringList files() const {
        return QDir(directory_.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    /// The directories of unfinished work.
    QStringList unfinished() const {
        return files().filter(QRegularExpression(QStringLiteral("^\\.orvane-")));
    }
    QStringList contentsOf(const QString& name) const {
        QStringList found;
        QDirIterator entry(directory_.filePath(name), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                           QDirIterator::Subdirectories);
        while (entry.hasNext()) {
            found += entry.next();
        }
        found.sort();
        return found;
    }
    mode_t modeOf(const QString& name) const {
        struct stat status {};
        ::lstat(directory_.filePath(name).toUtf8(), &status);
        return status.st_mode;
    }

    bool isBeingWritten() const {
        const QStringList found = files();
        return !found.isEmpty() &&
               QFile::exists(directory_.filePath(found.front() + QStringLiteral("/r.gpkg")));
    }

    /// Runs a script over the source files; "%0" stands for the directory of the test.
    Answer run(const QStringList& sources, const char* script, const QStringList& options = {}) const {
        QString text = QString::fromUtf8(script);
        text.replace(QLatin1String("%0"), directory_.path());
        return runProgram(sources + options + QStringList{QStringLiteral("-c"), text});
    }
    void runWell(const QStringList& sources, const char* script, const QStringList& options = {}) const {
        const Answer answer = run(sources, script, options);
        EXPECT_EQ(answer.status, 0) << answer.errors;
        EXPECT_EQ(answer.output, "");
    }

    /// A query into a file that takes longer than any test.
    QString longResult(const char* file, const char* condition = "") const {
        return QStringLiteral("With Recursive n(i) As (Select 1 Union All Select i + 1 From n %1) Select i, "
                              "MakePoint(i, i) As g Into '%2' From n")
            .arg(QLatin1String(condition), path(file));
    }

    QTemporaryDir directory_;
};

/// Tables know integers of 32 and 64 bits only, and JSON as text.
const char* subTypeName(OGRFieldSubType subType) {
    const bool isKnown = subType != OFSTInt16 && subType != OFSTJSON;
    return OGRFieldDefn::GetFieldSubTypeName(isKnown ? subType : OFSTNone);
}

/// Name, type, subtype and width of every field, and the values of every row.
std::vector<std::string> describeLayer(const QString& path) {
    const DatasetOwner dataset = files::openDataset(path);
    std::vector<std::string> lines;
    if (!dataset || dataset->GetLayerCount() != 1) {
        return {"not one layer"};
    }
    OGRLayer& layer = *dataset->GetLayer(0);
    const OGRFeatureDefn& definition = *layer.GetLayerDefn();
    for (int i = 0; i < definition.GetFieldCount(); ++i) {
        const OGRFieldDefn& field = *definition.GetFieldDefn(i);
        lines.push_back(std::string(field.GetNameRef()) + ' ' +
                        OGRFieldDefn::GetFieldTypeName(field.GetType()) + ' ' +
                        subTypeName(field.GetSubType()) + ' ' + std::to_string(field.GetWidth()) + '.' +
                        std::to_string(field.GetPrecision()));
    }
    for (const auto& feature : layer) {
        std::string line;
        for (int i = 0; i < definition.GetFieldCount(); ++i) {
            line += files::describeField(*feature, i) + '|';
        }
        lines.push_back(line + files::describeGeometry(*feature));
    }
    return lines;
}

std::string geometryName(const QString& path) {
    const DatasetOwner dataset = files::openDataset(path);
    return dataset ? OGRGeometryTypeToName(dataset->GetLayer(0)->GetGeomType()) : "not opened";
}

int epsgCode(const QString& path) {
    const DatasetOwner dataset = files::openDataset(path);
    const auto* reference = dataset ? dataset->GetLayer(0)->GetSpatialRef() : nullptr;
    const char* code = reference ? reference->GetAuthorityCode(nullptr) : nullptr;
    return code ? std::atoi(code) : 0;
}

class EveryType : public ResultFiles, public testing::WithParamInterface<files::Format> {
protected:
    QString source() const {
        const QString name = path("types.") + QLatin1String(GetParam().extension);
        files::addLayerOfEveryType(*files::createDataset(GetParam(), name), "types", GetParam());
        return name;
    }
};

TEST_P(EveryType, keepsTypeWidthAndValue) {
    const QString original = source();
    const QString copy = path("copy.") + QLatin1String(GetParam().extension);
    const QStringList output{QStringLiteral("-o"), copy};
    runWell({original}, "Select * From types", output);
    EXPECT_EQ(describeLayer(copy), describeLayer(original));
    EXPECT_EQ(geometryName(copy), "Point");
    EXPECT_EQ(epsgCode(copy), 4326);
}

TEST_P(EveryType, isKeptByATableInBetween) {
    const QString original = source();
    const QString copy = path("copy.") + QLatin1String(GetParam().extension);
    const QStringList output{QStringLiteral("-o"), copy};
    runWell({original}, "Select * Into kept From types; Select * From kept", output);
    EXPECT_EQ(describeLayer(copy), describeLayer(original));
}

INSTANTIATE_TEST_SUITE_P(Formats, EveryType,
                         testing::Values(geoPackage, files::Format{"ESRI Shapefile", "shp"},
                                         files::Format{"FlatGeobuf", "fgb"}),
                         [](const auto& format) { return std::string(format.param.extension); });

/// A column that no table has, and the field that it becomes in a GeoPackage.
struct ComputedCase {
    const char* name;
    const char* query;
    const char* field;
    const char* values; ///< of the field, by rows
};

void PrintTo(const ComputedCase& computed, std::ostream* stream) {
    *stream << computed.name;
}

class Computed : public ResultFiles, public testing::WithParamInterface<ComputedCase> {};

TEST_P(Computed, columnsTakeTheTypeOfTheirValues) {
    runWell({}, GetParam().query, {QStringLiteral("-o"), path("r.gpkg")});
    const DatasetOwner dataset = files::openDataset(path("r.gpkg"));
    ASSERT_TRUE(dataset);
    OGRLayer& layer = *dataset->GetLayer(0);
    const OGRFieldDefn& field = *layer.GetLayerDefn()->GetFieldDefn(0);
    EXPECT_EQ(std::string(field.GetNameRef()) + ' ' + OGRFieldDefn::GetFieldTypeName(field.GetType()),
              GetParam().field);
    std::string values;
    for (const auto& feature : layer) {
        values += (values.empty() ? "" : " ") + files::describeField(*feature, 0);
    }
    EXPECT_EQ(values, GetParam().values);
}

INSTANTIATE_TEST_SUITE_P(
    Program, Computed,
    testing::Values(
        ComputedCase{"integers are 64 bits wide",
                     "Select 1 As n Union All Select Null Union All Select 3000000000", "n Integer64",
                     "i:1 NULL i:3000000000"},
        ComputedCase{"one real makes all real", "Select 1 As n Union All Select 1.5", "n Real", "r:1 r:1.5"},
        ComputedCase{"one text makes all text",
                     "Select 1 As n Union All Select 1.5 Union All Select 'ж' Union All Select X'0A'",
                     "n String", "t:1 t:1.5 t:ж t:0A"},
        ComputedCase{"nothing but NULL", "Select Null As n", "n String", "NULL"},
        ComputedCase{"bytes", "Select X'00ff' As n", "n Binary", "b:00ff"},
        ComputedCase{"a column without a name of its own", "Select 6 * 7", "6 * 7 Integer64", "i:42"},
        ComputedCase{"a second geometry is written as text",
                     "Select MakePoint(3, 4, 4326) As b From (Select MakePoint(1, 2, 4326) As g) t Union All "
                     "Select 'none'",
                     "b String", "t:POINT(3 4) t:none"}));

struct KindCase {
    const char* geometries; ///< WKT texts, for Union All
    const char* kind;
};

TEST_F(ResultFiles, GeometryKindIsThatOfTheRows) {
    const KindCase cases[] = {
        {"Point(1 2)", "Point"},
        {"Point(1 2);MultiPoint(1 2,3 4)", "Multi Point"},
        {"LineString(0 0,1 1);MultiLineString((0 0,1 1),(2 2,3 3))", "Multi Line String"},
        {"Point(1 2);LineString(0 0,1 1)", "Unknown (any)"},
        {"Point Z(1 2 3)", "3D Point"},
        {"GeometryCollection(Point(1 2))", "Geometry Collection"},
    };
    for (const KindCase& kind : cases) {
        QStringList selects;
        for (const QString& text : QString::fromUtf8(kind.geometries).split(QLatin1Char(';'))) {
            selects += QStringLiteral("Select ST_GeomFromText('%0', 3857) As g").arg(text);
        }
        const QByteArray query = selects.join(QStringLiteral(" Union All ")).toUtf8();
        runWell({}, query.constData(), {QStringLiteral("-o"), path("k.gpkg"), QStringLiteral("--overwrite")});
        EXPECT_EQ(geometryName(path("k.gpkg")), kind.kind) << kind.geometries;
        EXPECT_EQ(epsgCode(path("k.gpkg")), 3857) << kind.geometries;
    }
}

/// A layer with one curve polygon.
QString curveLayer(const QString& path) {
    const DatasetOwner dataset = files::createDataset(geoPackage, path);
    OGRSpatialReference reference;
    reference.importFromEPSG(3857);
    OGRLayer* layer = dataset->CreateLayer("curves", &reference, wkbCurvePolygon, nullptr);
    OGRFeature feature(layer->GetLayerDefn());
    OGRGeometry* shape = nullptr;
    OGRGeometryFactory::createFromWkt("CURVEPOLYGON(CIRCULARSTRING(0 0,1 1,2 0,1 -1,0 0))", nullptr, &shape);
    feature.SetGeometryDirectly(shape);
    EXPECT_EQ(layer->CreateFeature(&feature), OGRERR_NONE);
    return path;
}

TEST_F(ResultFiles, CurvesStayWhereTheFormatHasThem) {
    const QString source = curveLayer(path("curves.gpkg"));
    runWell({source},
            "Select obj Into '%0/kept.gpkg' From curves; Select obj Into '%0/made.shp' From curves");
    EXPECT_EQ(geometryName(path("kept.gpkg")), "Curve Polygon");
    EXPECT_EQ(describeLayer(path("kept.gpkg")), describeLayer(source));
    EXPECT_EQ(geometryName(path("made.shp")), "Polygon");
    const DatasetOwner made = files::openDataset(path("made.shp"));
    const auto feature = OGRFeatureUniquePtr(made->GetLayer(0)->GetNextFeature());
    EXPECT_NEAR(feature->GetGeometryRef()->toPolygon()->get_Area(), 3.14159, 0.01);
}

TEST_F(ResultFiles, GeoJsonIsInWgs84) {
    runWell({}, "Select MakePoint(1492853.371, 6894701.26, 3857) As g, 'x' As name Into '%0/p.geojson'");
    const DatasetOwner dataset = files::openDataset(path("p.geojson"));
    const auto feature = OGRFeatureUniquePtr(dataset->GetLayer(0)->GetNextFeature());
    const OGRPoint* point = feature->GetGeometryRef()->toPoint();
    EXPECT_NEAR(point->getX(), 13.41053, 1e-5);
    EXPECT_NEAR(point->getY(), 52.520008, 1e-6);
}

TEST_F(ResultFiles, MixedSystemsBecomeTheFirst) {
    runWell({},
            "Select MakePoint(10, 50, 4326) As g Union All Select MakePoint(1113194.9079, 6446275.841, 3857) "
            "Union All Select Null",
            {QStringLiteral("-o"), path("m.gpkg")});
    const auto lines = describeLayer(path("m.gpkg"));
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(epsgCode(path("m.gpkg")), 4326);
    EXPECT_EQ(lines[2], "NULL");
}

TEST_F(ResultFiles, AnotherProgramReadsThem) {
    const QString cities = QStringLiteral(ORVANE_EXAMPLE_DATA "/cities.shp");
    runWell({cities},
            "Select name, population, obj Into '%0/capitals.gpkg' From cities Where feature = 'PPLC'");
    QProcess program;
    program.start(QStringLiteral("ogrinfo"),
                  {QStringLiteral("-so"), path("capitals.gpkg"), QStringLiteral("capitals")});
    ASSERT_TRUE(program.waitForFinished());
    const std::string text = program.readAllStandardOutput().toStdString();
    for (const char* line : {"Geometry: Point", "Feature Count: 164", "name: String (60.0)",
                             "population: Integer (0.0)", "ID[\"EPSG\",4326]]"}) {
        EXPECT_THAT(text, HasSubstr(line));
    }
}

TEST_F(ResultFiles, AnUnwantedFileIsNotReplaced) {
    const Answer first = run({}, "Select 1 As a Into '%0/r.csv'");
    EXPECT_EQ(first.status, 0) << first.errors;
    const auto before = describeLayer(path("r.csv"));
    EXPECT_THAT(run({}, "Select 2 As b Into '%0/r.csv'").errors,
                HasSubstr("r.csv: the file exists; --overwrite"));
    const Answer output = run({}, "Select 2 As b", {QStringLiteral("-o"), path("r.csv")});
    EXPECT_EQ(output.status, 2);
    EXPECT_THAT(output.errors, HasSubstr("r.csv: the file exists; --overwrite"));
    EXPECT_EQ(describeLayer(path("r.csv")), before);
    runWell({}, "Select 2 As b Into '%0/r.csv'", {QStringLiteral("--overwrite")});
    EXPECT_NE(describeLayer(path("r.csv")), before);
}

struct RefusedCase {
    const char* script;
    const char* message;
};

TEST_F(ResultFiles, AFailureLeavesNothing) {
    const QString cities = QStringLiteral(ORVANE_EXAMPLE_DATA "/cities.shp");
    const RefusedCase cases[] = {
        {"Select Abs(-9223372036854775807 - Cast(rownum / 4000 As Integer)) As a Into '%0/r.gpkg' From "
         "cities",
         "does not fit into 64 bits"},
        {"Select 1 As a Into '%0/r.txt'", "files are written with the endings .gpkg"},
        {"Select 1 As a Into '%0/no/r.gpkg'", "no/r.gpkg: "},
        {"Select 1 As a Into '%0/r.shp'", "r.shp: the result has no geometry"},
        {"Select name Into Cities From cities", "line 1, column 18: there is a table \"Cities\" already"},
        {"Select name Into Selection From cities",
         "line 1, column 18: a table cannot be called \"Selection\""},
        {"Select Abs(-9223372036854775807 - Cast(rownum / 4000 As Integer)) As a Into t From cities; Select "
         "1",
         "does not fit into 64 bits"},
    };
    for (const RefusedCase& refused : cases) {
        const Answer answer = run({cities}, refused.script);
        EXPECT_EQ(answer.status, 1) << refused.script;
        EXPECT_THAT(answer.errors, HasSubstr(refused.message));
        EXPECT_EQ(files(), QStringList()) << refused.script;
    }
    const Answer twice = run({}, "Select 1; Select 2", {QStringLiteral("-o"), path("r.gpkg")});
    EXPECT_EQ(twice.status, 1);
    EXPECT_THAT(twice.errors, HasSubstr("takes one result only"));
    EXPECT_EQ(files(), QStringList());
}

TEST_F(ResultFiles, CancellingLeavesNothing) {
    const auto stop = [this](const QString& script, bool isWritten, int milliseconds) {
        RunningProgram program({QStringLiteral("-c"), script});
        while (program.isRunning() && (isWritten ? !isBeingWritten() : files().isEmpty())) {
            program.waitFor(5);
        }
        program.waitFor(milliseconds);
        program.signal(SIGINT);
        EXPECT_EQ(program.finish().status, 130);
        EXPECT_EQ(files(), QStringList());
    };
    for (const int milliseconds : {1, 300}) {
        stop(longResult("r.gpkg"), false, milliseconds);
        stop(longResult("r.gpkg", "Where i < 200000"), true, milliseconds);
    }
}

TEST_F(ResultFiles, WhatAKilledProgramLeftGoesWithTheNextResult) {
    const QString endless =
        QStringLiteral("With Recursive n(i) As (Select 1 Union All Select i + 1 From n) Select ");
    const QStringList works[] = {
        {QStringLiteral("-c"), longResult("r.gpkg")},
        {QStringLiteral("-o"), path("r.txt"), QStringLiteral("-c"), endless + QStringLiteral("i From n")},
        {path("a.csv"), QStringLiteral("--sqlite"), QStringLiteral("-c"),
         QStringLiteral("Begin; Update a Set a = 2; %0Count(*) From n").arg(endless)}};
    const auto waitForNew = [this](RunningProgram& program, const QStringList& known) {
        QString found;
        while (found.isEmpty() && program.isRunning()) {
            program.waitFor(5);
            for (const QString& name : unfinished()) {
                found = known.contains(name) ? found : name;
            }
        }
        program.waitFor(100); // it has marked its directory, and fills it
        return found;
    };
    runWell({}, "Select 1 As a Into '%0/a.csv'");
    const QStringList before = files();
    for (const QStringList& work : works) {
        RunningProgram killed(work);
        const QString left = waitForNew(killed, {});
        killed.signal(SIGKILL);
        killed.finish();
        ASSERT_EQ(unfinished(), QStringList(left)) << work.join(QLatin1Char(' ')).toStdString();
        EXPECT_EQ(modeOf(left), S_IFDIR | 0700U);

        RunningProgram living(work);
        const QString held = waitForNew(living, {left});
        EXPECT_EQ(unfinished(), QStringList(held)); // it has taken away the other
        const QStringList contents = contentsOf(held);
        runWell({}, "Select 1 As a Into '%0/q.csv'");
        EXPECT_EQ(unfinished(), QStringList(held));
        EXPECT_EQ(contentsOf(held), contents);
        living.signal(SIGINT);
        EXPECT_EQ(living.finish().status, 130);
        QFile::remove(path("q.csv"));
        EXPECT_EQ(files(), before);
        EXPECT_EQ(describeLayer(path("a.csv")), (std::vector<std::string>{"a Integer None 0.0", "i:1|NULL"}));
    }
}

TEST_F(ResultFiles, OfWhatLooksAbandonedOnlyItsOwnGoes) {
    const QDir directory(directory_.path());
    const auto makeFile = [this](const char* name) { QFile(path(name)).open(QIODevice::WriteOnly); };
    for (const char* name : {".orvane-result-aempty", ".orvane-result-marked", ".orvane-result-others",
                             ".orvane-result-foreig", ".orvane-backup", "target"}) {
        directory.mkdir(QLatin1String(name));
    }
    for (const char* name : {".orvane-result-marked/.orvane-result", ".orvane-result-marked/r.gpkg",
                             ".orvane-result-others/notes.txt", ".orvane-result-foreig/.orvane-result",
                             ".orvane-result-onefil", "target/.orvane-result", "target/r.gpkg"}) {
        makeFile(name);
    }
    QFile::link(path("target"), path(".orvane-result-linked"));
    QStringList kept{QStringLiteral(".orvane-backup"),
                     QStringLiteral(".orvane-result-linked"),
                     QStringLiteral(".orvane-result-onefil"),
                     QStringLiteral(".orvane-result-others"),
                     QStringLiteral("q.csv"),
                     QStringLiteral("target")};
    constexpr uid_t somebody = 65534;
    if (::chown(path(".orvane-result-foreig").toUtf8(), somebody, somebody) == 0) {
        kept.insert(1, QStringLiteral(".orvane-result-foreig"));
    }
    runWell({}, "Select 1 As a Into '%0/q.csv'");
    EXPECT_EQ(files(), kept);
    EXPECT_EQ(contentsOf(QStringLiteral("target")).size(), 2);
}

TEST_F(ResultFiles, InAFolderForEverybodyOnlyTheUsersOwnExchangeIsTakenBack) {
    const auto write = [this](const char* name, const QByteArray& content) {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    };
    constexpr uid_t somebody = 65534;
    for (const bool isOwn : {true, false}) {
        write("a.csv", "a\n1\n");
        QDir(directory_.path()).mkpath(QStringLiteral(".orvane-result-killed/replaced"));
        write(".orvane-result-killed/replaced/0", "a\n2\n");
        QByteArray journal;
        QDataStream stream(&journal, QIODevice::WriteOnly);
        stream << quint32(0x4f584a31) << QByteArray(".orvane-result-killed") << quint32(1)
               << QByteArray("a.csv") << true << quint64(0) << qint64(0);
        write(".orvane-exchange", journal);
        ASSERT_EQ(::chmod(directory_.path().toUtf8(), 01777), 0);
        if (!isOwn && ::chown(path(".orvane-exchange").toUtf8(), somebody, somebody) != 0) {
            GTEST_SKIP() << "only the administrator gives files away";
        }
        const Answer answer = run({path("a.csv")}, "Select a From a", {QStringLiteral("-Fcsv")});
        EXPECT_EQ(answer.output, isOwn ? "a\n2\n" : "a\n1\n") << answer.errors;
    }
}

TEST_F(ResultFiles, NewFilesHaveTheUsualModeAndReplacedOnesTheirs) {
    const mode_t usual = ::umask(027);
    const QStringList options{QStringLiteral("--overwrite")};
    for (const bool isReplaced : {false, true}) {
        const mode_t mode = S_IFREG | (isReplaced ? 0604U : 0640U);
        runWell(
            {}, "Select 1 As a",
            {QStringLiteral("--overwrite"), QStringLiteral("-Fcsv"), QStringLiteral("-o"), path("o.txt")});
        runWell({}, "Select 1 As a Into '%0/a.csv'; Select 1 As a Into '%0/b.gpkg'", options);
        runWell({path("a.csv")}, "Update a Set a = 5; Insert Into a (a) Values (7)");
        for (const char* name : {"o.txt", "a.csv", "b.gpkg"}) {
            EXPECT_EQ(modeOf(QLatin1String(name)), mode) << name;
            ::chmod(path(name).toUtf8(), 0604);
        }
    }
    ::umask(usual);
}

TEST_F(ResultFiles, NothingIsWrittenThroughALink) {
    for (const bool isInto : {true, false}) {
        const char* const script = isInto ? "Select 1 As a Into '%0/r.csv'" : "Select 1 As a";
        const QStringList options{QStringLiteral("-o"), path("r.csv"), QStringLiteral("-Fcsv")};
        QFile::link(path("nowhere"), path("r.csv"));
        EXPECT_NE(run({}, script, isInto ? QStringList() : options).status, 0);
        EXPECT_TRUE(S_ISLNK(modeOf(QStringLiteral("r.csv"))));
        runWell({}, script, (isInto ? QStringList() : options) + QStringList{QStringLiteral("--overwrite")});
        EXPECT_TRUE(S_ISREG(modeOf(QStringLiteral("r.csv")))); // in place of the link
        EXPECT_EQ(files(), QStringList(QStringLiteral("r.csv")));
        QFile::remove(path("r.csv"));
    }
}

TEST_F(ResultFiles, AShapefileTakesNumbersOfEverySize) {
    runWell(
        {},
        "Select MakePoint(1, 2) As g, 1e300 As huge, -123456789012.25 As big, 0.125 As small, 1364270000.5 "
        "As people, 9223372036854775807 As whole Into '%0/r.shp' "
        "Union All Select MakePoint(3, 4), -1, 0.5, -0.0009765625, 0, -7");
    const auto lines = describeLayer(path("r.shp"));
    ASSERT_EQ(lines.size(), 7u);
    EXPECT_THAT(lines[5], testing::StartsWith("t:1e+300|r:-123456789012.25|r:0.125|r:1364270000.5|"));
    EXPECT_THAT(lines[6], testing::StartsWith("t:-1|r:0.5|r:-0.0009765625|r:0|"));
}

TEST_F(ResultFiles, WhatAShapefileCutsIsTold) {
    const Answer answer = run(
        {}, "Select MakePoint(1, 2) As g, 'a' & Replace(Space(130), ' ', 'ж') As \"длинное имя\", 'ok' As "
            "\"длинное имя 2\", 3 As fits Into '%0/r.shp' "
            "Union All Select MakePoint(3, 4), Replace(Space(127), ' ', 'ж'), 'ok', 4");
    EXPECT_EQ(answer.status, 0);
    EXPECT_THAT(answer.errors,
                HasSubstr("r.shp: column names have at most 10 bytes in this format: \"длинное имя\" → "
                          "\"длинн\", \"длинное имя 2\" → \"длин_2\"\n"));
    EXPECT_THAT(answer.errors,
                testing::EndsWith("r.shp: column \"длинное имя\": texts of which the first 254 "
                                  "bytes were kept: 1\n"));
    const std::string kept = QString(126, QChar(0x0436)).toStdString();
    EXPECT_THAT(describeLayer(path("r.shp")),
                testing::Contains(testing::StartsWith("t:a" + kept + "|t:ok|i:3|")));
}

TEST_F(ResultFiles, TablesMadeByAQueryAreQueriedAndChanged) {
    const QString cities = QStringLiteral(ORVANE_EXAMPLE_DATA "/cities.shp");
    const QString countries = QStringLiteral(ORVANE_EXAMPLE_DATA "/countries.gpkg");
    const Answer answer =
        run({cities, countries},
            "Select name, population, obj, population / 1000.0 As \"тысяч\" Into capitals From cities Where "
            "feature = 'PPLC';"
            "Select Count(*), Max(\"тысяч\") From capitals;"
            "Update capitals Set \"тысяч\" = -1 Where name = 'Paris';"
            "Insert Into capitals (name, obj) Values ('Atlantis', MakePoint(-30, 40, 4326));"
            "Select name, obj From capitals Where \"тысяч\" < 0 Or \"тысяч\" Is Null Order By name;"
            "Select k.name_long Into homes From capitals c, countries k Where c.obj Within k.obj And c.name "
            "= 'Paris';"
            "Table homes; Delete From homes; Select Count(*) From homes",
            {QStringLiteral("-F"), QStringLiteral("csv"), QStringLiteral("--no-header")});
    EXPECT_EQ(answer.errors, "");
    EXPECT_EQ(answer.output, "164,13076.3\n"
                             "Atlantis,\"POINT(-30 40)\"\nParis,\"POINT(2.3488 48.85341)\"\n"
                             "France\n0\n");
}

} // namespace
} // namespace orvane::shell
