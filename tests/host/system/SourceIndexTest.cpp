// The indices that files bring along: whatever a file claims, a query has to find the rows that it finds in
// the same table without any index, and says which index it used.

#include "support/Host.h"

#include "host/adaptor/explaining/StatementExplanation.h"
#include "host/providers/FileSource.h"
#include "host/providers/TestLayers.h"
#include "host/providers/reading/BatchCache.h"
#include "support/Query.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orvane/Engine.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QSqlDriver>
#include <QThread>

#include <random>

namespace orvane {
namespace {

using ::testing::HasSubstr;
using testing::Host;
using ::testing::Not;

/// A format, how it is told to make a spatial index, and what a query says of it.
struct IndexedFormat {
    const char* name;
    files::Format format;
    std::vector<const char*> datasetOptions;
    std::vector<const char*> layerOptions;
    bool isIndexed;
};

const IndexedFormat indexedFormats[] = {
    {"geoPackage", {"GPKG", "gpkg"}, {}, {"SPATIAL_INDEX=YES", "GEOMETRY_NAME=geom"}, true},
    {"geoPackageWithout", {"GPKG", "gpkg"}, {}, {"SPATIAL_INDEX=NO"}, false},
    {"spatiaLite",
     {"SQLite", "sqlite"},
     {"SPATIALITE=YES"},
     {"SPATIAL_INDEX=YES", "GEOMETRY_NAME=geom"},
     true},
    {"spatiaLiteWithout", {"SQLite", "sqlite"}, {"SPATIALITE=YES"}, {"SPATIAL_INDEX=NO"}, false},
    {"shapefile", {"ESRI Shapefile", "shp"}, {}, {"SPATIAL_INDEX=YES"}, true},
    {"flatGeobuf", {"FlatGeobuf", "fgb"}, {}, {"SPATIAL_INDEX=YES"}, true},
};

std::vector<char*> optionsOf(const std::vector<const char*>& texts) {
    std::vector<char*> options;
    for (const char* text : texts) {
        options.push_back(const_cast<char*>(text));
    }
    options.push_back(nullptr);
    return options;
}

/// Random polygons: boxes, U-shapes open to the right, and slivers; some without geometry, some far out
/// unless they lie close together.
std::vector<std::string> randomShapes(int count, std::mt19937& random, bool isClose = false) {
    const auto number = [&random](int most) { return static_cast<double>(random() % most); };
    std::vector<std::string> shapes;
    for (int i = 0; i < count; ++i) {
        const double x = number(1000) / 4, y = number(1000) / 4;
        const double w = 1 + number(100) / 8, h = 1 + number(100) / 8;
        char text[400];
        switch (random() % 8) {
        case 0: // a U
            std::snprintf(text, sizeof text,
                          "POLYGON ((%g %g,%g %g,%g %g,%g %g,%g %g,%g %g,%g %g,%g %g,%g %g))", x, y,
                          x + 3 * w, y, x + 3 * w, y + h / 8, x + w / 8, y + h / 8, x + w / 8, y + h * 2,
                          x + 3 * w, y + h * 2, x + 3 * w, y + h * 2 + 1, x, y + h * 2 + 1, x, y);
            break;
        case 1: // off the range of single precision steps
            std::snprintf(text, sizeof text, "POLYGON ((%.17g %.17g,%.17g %.17g,%.17g %.17g,%.17g %.17g))", x,
                          y, x + 1e-9, y, x, y + 1e-9, x, y);
            break;
        case 2:
            std::snprintf(text, sizeof text, "POLYGON ((%g %g,%g %g,%g %g,%g %g))", -1e39 - x, y, -1e39, y, x,
                          y + h, -1e39 - x, y);
            if (isClose || random() % 8 != 0) {
                text[0] = 0; // few are that large
            }
            break;
        default:
            std::snprintf(text, sizeof text,
                          "POLYGON ((%.17g %.17g,%.17g %.17g,%.17g %.17g,%.17g %.17g,%.17g %.17g))", x + 0.1,
                          y + 0.1, x + w, y + 0.1, x + w, y + h, x + 0.1, y + h, x + 0.1, y + 0.1);
        }
        shapes.emplace_back(text); // empty: without geometry
        if (random() % 40 == 0) {
            shapes.back() = "POLYGON EMPTY";
        }
    }
    return shapes;
}

/// Makes a file of a layer with the columns "k", a copy of it with an index where the format has them, and
/// the shapes.
void writeFile(const IndexedFormat& format, const QString& path, const char* layerName,
               const std::vector<std::string>& shapes) {
    GDALAllRegister();
    auto* driver = GetGDALDriverManager()->GetDriverByName(format.format.driver);
    const files::DatasetOwner dataset(driver->Create(path.toUtf8().constData(), 0, 0, 0, GDT_Unknown,
                                                     optionsOf(format.datasetOptions).data()));
    ASSERT_NE(dataset, nullptr);
    OGRSpatialReference plane;
    plane.importFromEPSG(3857);
    auto* layer = dataset->CreateLayer(layerName, &plane, wkbPolygon, optionsOf(format.layerOptions).data());
    ASSERT_NE(layer, nullptr);
    OGRFieldDefn k("k", OFTInteger), name("name", OFTString);
    layer->CreateField(&k);
    layer->CreateField(&name);
    ASSERT_EQ(layer->StartTransaction(), OGRERR_NONE);
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        OGRFeature feature(layer->GetLayerDefn());
        feature.SetField(0, static_cast<int>(i));
        feature.SetField(1, ("n" + std::to_string(i % 100)).c_str());
        OGRGeometry* shape = nullptr;
        if (!shapes[i].empty()) {
            OGRGeometryFactory::createFromWkt(shapes[i].c_str(), &plane, &shape);
        }
        feature.SetGeometryDirectly(shape);
        ASSERT_EQ(layer->CreateFeature(&feature), OGRERR_NONE);
    }
    ASSERT_EQ(layer->CommitTransaction(), OGRERR_NONE);
}

/// Changes a file behind the back of whoever reads it.
void change(const QString& path, const std::vector<std::string>& statements) {
    const files::DatasetOwner dataset = files::openDataset(path, GDAL_OF_UPDATE);
    for (const std::string& statement : statements) {
        CPLErrorReset();
        dataset->ReleaseResultSet(dataset->ExecuteSQL(statement.c_str(), nullptr, nullptr));
        EXPECT_EQ(CPLGetLastErrorType(), CE_None) << statement << ": " << CPLGetLastErrorMsg();
    }
}

class SourceIndex : public ::testing::Test {
protected:
    void TearDown() override {
        host_.closeAll();
        readFromMemory(true);
    }

    /// Small files are, else.
    static void readFromMemory(bool isWanted) {
        files::BatchCache::instance().setCapacity(isWanted ? std::size_t{256} << 20 : 0);
    }

    /// Opens a file as a table.
    void open(const QString& path, const char* table) {
        const auto opened = files::openFile(path).front();
        opened->setName(QString::fromLatin1(table));
        files::addToCatalog(host_.catalog, {opened});
        Host::deliverSignals();
    }
    void close(const char* table) {
        host_.catalog.close(QString::fromLatin1(table));
        Host::deliverSignals();
    }
    std::string explain(const QString& statement) {
        auto* database =
            *static_cast<sqlite3* const*>(host_.engine->engineDatabase().driver()->handle().constData());
        const QString sql = host_.engine->translate(statement);
        const adaptor::StatementExplanation explanation(database, sql.toStdString());
        testing::answer(host_.engine->engineDatabase(), sql);
        return explanation.lines().join(QLatin1Char('\n')).toStdString();
    }

    Host& host_ = Host::instance();
    QTemporaryDir directory_;
};

class SourceWindows : public SourceIndex, public ::testing::WithParamInterface<IndexedFormat> {};

TEST_P(SourceWindows, FindWhatATableWithoutIndexFinds) {
    constexpr int shapesCount = 3000;
    std::mt19937 random(11);
    const QByteArray driver(GetParam().format.driver);
    // A quadtree over shapes far out has all others in one node.
    const auto shapes = randomShapes(shapesCount, random, driver == "ESRI Shapefile");
    const char* const layerName = driver == "ESRI Shapefile" ? "t"
                                  : driver == "SQLite"       ? "o'т.x"
                                                             : "o'т.\"x\"";
    const QString path =
        directory_.filePath(QStringLiteral("indexed.") + QLatin1String(GetParam().format.extension));
    const QString plain = directory_.filePath(QStringLiteral("plain.gpkg"));
    ASSERT_NO_FATAL_FAILURE(writeFile(GetParam(), path, layerName, shapes));
    ASSERT_NO_FATAL_FAILURE(writeFile(indexedFormats[1], plain, "plain", shapes));
    open(plain, "plain");
    const char* const conditions[] = {"{}.obj Intersects %0",
                                      "%0 Intersects {}.obj",
                                      "{}.obj Within %0",
                                      "{}.obj Contains %0",
                                      "{}.obj Contains Entire %0",
                                      "{}.obj Entirely Within %0",
                                      "%0 Contains {}.obj",
                                      "Touches({}.obj, %0)",
                                      "Overlaps({}.obj, %0)",
                                      "Covers({}.obj, %0)",
                                      "Equals({}.obj, %0)",
                                      "Distance({}.obj, %0, 'm') < 3",
                                      "({}.obj Intersects %0 Or {}.k < 10)",
                                      "{}.obj Intersects %0 And {}.k % 3 = 1"};
    const auto number = [&random](int most) { return static_cast<double>(random() % most); };
    int found = 0;
    for (int round = 0; round < 60; ++round) {
        if (round % 6 == 0) { // before the tree is made
            readFromMemory(round % 12 == 0);
            close("t");
            open(path, "t");
        }
        const double x = number(1040) / 4 - 5, y = number(1040) / 4 - 5;
        const double size = round % 5 == 0 ? 0 : number(160) / 8;
        QString value = QStringLiteral("GeomFromText('POLYGON((%0 %1,%2 %1,%2 %3,%0 %3,%0 %1))', 3857)")
                            .arg(x)
                            .arg(y)
                            .arg(x + size)
                            .arg(y + size);
        if (size == 0) { // a corner of the boxes, and what is off it by less than single precision tells
            value = QStringLiteral("GeomFromText('POINT(%0 %1)', 3857)")
                        .arg(x + 0.1, 0, 'g', 17)
                        .arg(y + 0.1, 0, 'g', 17);
        }
        if (round == 6) {
            const std::string explanation =
                explain(QStringLiteral("Select k From t Where t.obj Intersects %0").arg(value));
            EXPECT_EQ(explanation.find("пространственный индекс файла") != std::string::npos,
                      GetParam().isIndexed)
                << explanation;
        }
        for (const char* condition : conditions) {
            const auto query = [&](const char* table) {
                return QStringLiteral("Select k From %0 Where %1 Order By k")
                    .arg(QLatin1String(table), QString::fromLatin1(condition)
                                                   .replace(QLatin1String("{}"), QLatin1String(table))
                                                   .arg(value));
            };
            const std::string expected = host_.ask(query("plain"));
            ASSERT_EQ(host_.ask(query("t")), expected) << query("t").toStdString();
            ASSERT_THAT(expected, Not(HasSubstr("error"))) << query("t").toStdString();
            found += !expected.empty();
        }
    }
    EXPECT_GT(found, 200);
}

/// What happens to a file before it is opened, and whether its index answers then all the same.
struct Tampering {
    const char* statement; ///< %0 stands for the name of the R-tree
    bool isTrusted;
};

const Tampering tamperings[] = {
    {"SELECT 1", true},
    {"INSERT INTO t(geom, k) SELECT geom, k + 5000 FROM t WHERE k % 3 = 0", true},
    {"UPDATE t SET geom = NULL WHERE k % 2 = 0", true},
    {"DELETE FROM t WHERE k % 2 = 0", true},
    {"DELETE FROM %0", false},
    {"DELETE FROM %0 WHERE rowid > 1500", false},
    {"DROP TABLE %0", false},
    {"UPDATE %0_node SET data = zeroblob(length(data))", false},
    {"UPDATE %0_node SET data = x'00'", false},
    {"trigger insert", false},
    {"trigger delete", false},
};

TEST_F(SourceIndex, IsTrustedAsFarAsItCanBeTold) {
    std::mt19937 random(5);
    std::vector<std::string> shapes;
    for (int i = 0; i < 3000; ++i) {
        shapes.push_back("POLYGON ((" + std::to_string(i) + " 0," + std::to_string(i + 1) + " 0," +
                         std::to_string(i) + " 1," + std::to_string(i) + " 0))");
    }
    const QString value =
        QStringLiteral("GeomFromText('POLYGON((90.5 -1,140.5 -1,140.5 1,90.5 1,90.5 -1))', 3857)");
    const QString query = QStringLiteral("Select k From t Where obj Intersects %0 Order By k").arg(value);
    const QString scan =
        QStringLiteral("Select k From t Where Intersects(obj, %0) + 0 > 0 Order By k").arg(value);
    readFromMemory(false);
    int number = 0;
    for (const int kind : {0, 2}) {
        const IndexedFormat& format = indexedFormats[kind];
        const std::string tree = kind == 0 ? "rtree_t_geom" : "idx_t_geom";
        for (const Tampering& each : tamperings) {
            const QString path = directory_.filePath(QString::number(++number) + QLatin1Char('.') +
                                                     QLatin1String(format.format.extension));
            ASSERT_NO_FATAL_FAILURE(writeFile(format, path, "t", shapes));
            std::string statement = QString::fromLatin1(each.statement)
                                        .replace(QLatin1String("%0"), QString::fromStdString(tree))
                                        .toStdString();
            if (statement.starts_with("trigger ")) {
                statement =
                    "DROP TRIGGER " +
                    (kind == 0 ? tree + "_" + statement.substr(8)
                               : std::string(statement == "trigger insert" ? "gii" : "gid") + "_t_geom");
            }
            change(path, {statement});
            open(path, "t");
            const std::string expected = host_.ask(scan);
            EXPECT_THAT(expected, Not(HasSubstr("error"))) << statement;
            EXPECT_EQ(host_.ask(query), expected) << format.name << ": " << statement;
            close("t");
            open(path, "t");
            const std::string explanation = explain(query);
            EXPECT_EQ(explanation.find("пространственный индекс файла") != std::string::npos, each.isTrusted)
                << format.name << ": " << statement << "\n"
                << explanation;
            close("t");
        }
    }
}

TEST_F(SourceIndex, OfAShapefileIsReadAsFarAsItIsWhole) {
    const IndexedFormat& shapefile = indexedFormats[4];
    std::mt19937 random(5);
    auto shapes = randomShapes(2000, random, true);
    const QString path = directory_.filePath(QStringLiteral("whole.shp"));
    ASSERT_NO_FATAL_FAILURE(writeFile(shapefile, path, "t", shapes));
    shapes.resize(1000);
    const QString fewer = directory_.filePath(QStringLiteral("fewer.shp"));
    ASSERT_NO_FATAL_FAILURE(writeFile(shapefile, fewer, "t", shapes));
    const auto bytesOf = [](const QString& file) {
        QFile opened(QString(file).replace(QLatin1String(".shp"), QLatin1String(".qix")));
        EXPECT_TRUE(opened.open(QIODevice::ReadOnly));
        return opened.readAll();
    };
    const QByteArray whole = bytesOf(path);
    const QString condition =
        QStringLiteral("(obj, GeomFromText('POLYGON((90 90,120 90,120 120,90 120,90 90))', 3857))");
    struct Case {
        QByteArray tree;
        bool isOld;
        bool isUsed;
    };
    readFromMemory(false);
    for (const Case& each :
         {Case{whole, false, true}, Case{whole, true, false}, Case{bytesOf(fewer), false, false},
          Case{whole.left(whole.size() / 2), false, false}, Case{whole.left(9), false, false},
          Case{QByteArray(whole.size(), 'x'), false, false}}) {
        QFile tree(directory_.filePath(QStringLiteral("whole.qix")));
        ASSERT_TRUE(tree.open(QIODevice::WriteOnly));
        tree.write(each.tree);
        tree.flush();
        const auto now = QDateTime::currentDateTime();
        ASSERT_TRUE(tree.setFileTime(each.isOld ? now.addDays(-1) : now, QFileDevice::FileModificationTime));
        tree.close();
        open(path, "t");
        const QString query = QStringLiteral("Select k From t Where Intersects%0 Order By k").arg(condition);
        const std::string explanation = explain(query);
        EXPECT_EQ(explanation.find("пространственный индекс файла") != std::string::npos, each.isUsed)
            << explanation;
        EXPECT_EQ(
            host_.ask(query),
            host_.ask(
                QStringLiteral("Select k From t Where Intersects%0 + 0 > 0 Order By k").arg(condition)));
        close("t");
    }
}

TEST_F(SourceIndex, FollowsEdits) {
    std::vector<std::string> shapes;
    for (int i = 0; i < 3000; ++i) {
        shapes.push_back("POLYGON ((" + std::to_string(i) + " 0," + std::to_string(i + 1) + " 0," +
                         std::to_string(i) + " 1," + std::to_string(i) + " 0))");
    }
    const auto box = [](int x) {
        return QStringLiteral("GeomFromText('POLYGON((%0 0,%1 0,%1 1,%0 1,%0 0))', 3857)")
            .arg(x + 0.25)
            .arg(x + 0.75);
    };
    readFromMemory(false);
    for (const IndexedFormat& format : indexedFormats) {
        const QString path =
            directory_.filePath(QStringLiteral("edits.") + QLatin1String(format.format.extension));
        ASSERT_NO_FATAL_FAILURE(writeFile(format, path, "edits", shapes));
        open(path, "t");
        const auto at = [&](int x) {
            return host_.ask(
                QStringLiteral("Select k From t Where obj Intersects %0 Order By k").arg(box(x)));
        };
        const auto edit = [&](const QString& statement) {
            EXPECT_EQ(host_.ask(statement), "") << format.name << statement.toStdString();
        };
        EXPECT_EQ(at(7), "7") << format.name;
        EXPECT_EQ(testing::answer(host_.engine->engineDatabase(), QStringLiteral("Begin")), "");
        const bool showsEdits = QByteArray(format.format.driver) != "SQLite"; // before the commit
        edit(QStringLiteral("Insert Into t (k, obj) Values (9001, %0)").arg(box(7)));
        EXPECT_EQ(at(7), showsEdits ? "7\n9001" : "7") << format.name;
        edit(QStringLiteral("Update t Set obj = %0 Where k = 7").arg(box(40)));
        EXPECT_EQ(at(7), showsEdits ? "9001" : "7") << format.name;
        EXPECT_EQ(at(40), showsEdits ? "7\n40" : "40") << format.name;
        edit(QStringLiteral("Delete From t Where k = 40"));
        EXPECT_EQ(at(40), showsEdits ? "7" : "40") << format.name;
        EXPECT_EQ(testing::answer(host_.engine->engineDatabase(), QStringLiteral("Rollback")), "");
        EXPECT_EQ(at(7), "7") << format.name;
        EXPECT_EQ(at(40), "40") << format.name;
        edit(QStringLiteral("Update t Set obj = %0 Where k = 7").arg(box(40)));
        EXPECT_EQ(at(7), "") << format.name;
        EXPECT_EQ(at(40), "7\n40") << format.name;
        host_.closeAll();
        open(path, "t"); // as the format has it now
        EXPECT_EQ(at(7), "") << format.name;
        EXPECT_EQ(at(40), "7\n40") << format.name;
        if (format.layerOptions.size() > 1) { // another program
            change(path, {"UPDATE edits SET geom = (SELECT geom FROM edits WHERE k = 50) WHERE k = 60"});
            QThread::msleep(150);
            EXPECT_EQ(at(50), "50\n60") << format.name;
            EXPECT_EQ(at(60), "") << format.name;
        }
        host_.closeAll();
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, SourceWindows, ::testing::ValuesIn(indexedFormats),
                         [](const auto& test) { return test.param.name; });

} // namespace
} // namespace orvane
