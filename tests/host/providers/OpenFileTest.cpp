#include "host/providers/FileSource.h"
#include "host/providers/TestLayers.h"
#include "platform/cs/CoordSystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cpl_conv.h>
#include <sqlite3.h>

#include <random>

#include <sys/stat.h>
#include <unistd.h>

namespace orvane::files {
namespace {

using Rows = std::vector<std::vector<std::string>>;

class OpenFile : public testing::Test {
protected:
    QString write(const char* name, const QByteArray& content) {
        const auto path = directory_.filePath(QString::fromUtf8(name));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path;
    }
    static QStringList names(const dp::Table& table) {
        QStringList result;
        for (const auto& attribute : table.schema()->attributes()) {
            result.append(attribute->name());
        }
        return result;
    }
    static std::vector<int> types(const dp::Table& table) {
        std::vector<int> result;
        for (const auto& attribute : table.schema()->attributes()) {
            result.push_back(attribute->type());
        }
        return result;
    }
    /// The message with which the source does not open, or does not read; empty when it does both.
    static std::string failure(const QString& source) {
        try {
            for (const auto& table : openFile(source)) {
                readRows(*table, everything(*table));
            }
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return {};
    }

    QTemporaryDir directory_;
};

TEST_F(OpenFile, givesTemporaryFilesOfDriversADirectoryForItsOwner) {
    openFile(write("a.geojson", R"({"type":"FeatureCollection","features":[]})"));
    const QByteArray name = CPLGenerateTempFilename("foreseen");
    struct stat status {};
    ASSERT_EQ(::lstat(name.left(name.lastIndexOf('/')), &status), 0) << name.constData();
    EXPECT_EQ(status.st_mode & 07777, 0700U);
    EXPECT_EQ(status.st_uid, ::geteuid());
}

TEST_F(OpenFile, namesThatSqlCannotTellApartAreNumbered) {
    const auto table =
        openFile(write("names.geojson", R"({"type":"FeatureCollection","features":[{"type":"Feature",
        "geometry":null,"properties":{"name":1,"Name":2,"NAME_2":3,"style":4,"Obj":5,"имя":6,"ИМЯ":7,"a b":8," a b":9,
        "rowid":10}}]})"))
            .front();
    auto columns = names(*table);
    columns.removeLast(); // the geometry
    EXPECT_EQ(columns, QStringLiteral("name,Name_2,NAME_2_2,style_2,Obj_2,имя,ИМЯ_2,a b,a b_2,rowid_2")
                           .split(QLatin1Char(',')));
    EXPECT_EQ(readRows(*table, everything(*table)).front()[9], "i:10");
}

TEST_F(OpenFile, dateTimesStandAsWritten) {
    const auto table = openFile(write("times.geojson", R"({"type":"FeatureCollection","features":[
        {"type":"Feature","geometry":null,"properties":{"t":"2020-01-01T00:30:00+03:00"}},
        {"type":"Feature","geometry":null,"properties":{"t":"1900-12-31T23:59:59.5Z"}},
        {"type":"Feature","geometry":null,"properties":{"t":"2020-06-01T12:00:00"}}]})"))
                           .front();
    auto request = requestOf({0});
    EXPECT_EQ(
        readRows(*table, request),
        (Rows{{"t:2020-01-01 00:30:00.000"}, {"t:1900-12-31 23:59:59.500"}, {"t:2020-06-01 12:00:00.000"}}));
}

TEST_F(OpenFile, numbersWithMarksForMissingOnes) {
    const auto table = openFile(write("gaps.csv", "name,whole,real,code,mixed,allna,day\n"
                                                  "NA,NA,n/a,007,1,NA,2020-01-02\n"
                                                  "b,-5,1e3,NA,NA,NA,\n"
                                                  "c,,..,012,x,NA,1950-12-31\n"
                                                  "d,9223372036854775807,NULL,1,2,NA,\n"))
                           .front();
    EXPECT_THAT(types(*table), testing::ElementsAre(QMetaType::QString, QMetaType::LongLong,
                                                    QMetaType::Double, QMetaType::QString, QMetaType::QString,
                                                    QMetaType::QString, QMetaType::QDate));
    EXPECT_EQ(readRows(*table, everything(*table)),
              (Rows{{"t:NA", "NULL", "NULL", "t:007", "t:1", "t:NA", "t:2020-01-02"},
                    {"t:b", "i:-5", "r:1000", "t:NA", "t:NA", "t:NA", "NULL"},
                    {"t:c", "NULL", "NULL", "t:012", "t:x", "t:NA", "t:1950-12-31"},
                    {"t:d", "i:9223372036854775807", "NULL", "t:1", "t:2", "t:NA", "NULL"}}));
}

TEST_F(OpenFile, codesKeepTheirDigits) {
    const auto table = openFile(write("codes.csv", "zip,n,x,day,account\n01234,5,1.50,2020-01-02,9\n"
                                                   "99999,06,2,,12345678901234567890\n"))
                           .front();
    EXPECT_THAT(types(*table), testing::ElementsAre(QMetaType::QString, QMetaType::QString, QMetaType::Double,
                                                    QMetaType::QDate, QMetaType::QString));
    EXPECT_EQ(readRows(*table, everything(*table)),
              (Rows{{"t:01234", "t:5", "r:1.5", "t:2020-01-02", "t:9"},
                    {"t:99999", "t:06", "r:2", "NULL", "t:12345678901234567890"}}));
}

TEST_F(OpenFile, separators) {
    const std::pair<const char*, Rows> cases[] = {
        {"id\n7\n8\n", {{"i:7"}, {"i:8"}}},
        {"full name\r\nАнна Иванова\r\nParis, France\r\n", {{"t:Анна Иванова"}, {"t:Paris, France"}}},
        {"code\n007\n\"a \"\"b\"\"\"\n", {{"t:007"}, {"t:a \"b\""}}},
        {"lonely", {}},
        {"a|b\n1|2\n", {{"i:1", "i:2"}}}};
    for (const auto& [text, rows] : cases) {
        const auto table = openFile(write("one.csv", text)).front();
        EXPECT_EQ(readRows(*table, everything(*table)), rows) << text;
    }
}

struct Coordinates {
    const char* csv;
    const char* wkb; ///< of the first row, empty for a table without geometry
    int epsg;
};

class CoordinateColumns : public OpenFile, public testing::WithParamInterface<Coordinates> {};

TEST_P(CoordinateColumns, makeGeometries) {
    const auto table = openFile(write("places.csv", GetParam().csv)).front();
    const int geometry = table->schema()->geometryIndex();
    ASSERT_EQ(geometry >= 0, *GetParam().wkb != '\0');
    if (geometry < 0) {
        return;
    }
    auto request = requestOf({geometry});
    EXPECT_EQ(readRows(*table, request).front().front(), std::string("w:") + GetParam().wkb);
    EXPECT_EQ(table->coordSystem() ? table->coordSystem()->epsg() : 0, GetParam().epsg);
    EXPECT_GT(geometry, 1) << "the coordinates stay columns";
}

constexpr const char* pointOneTwo = "0101000000000000000000f03f0000000000000040";
INSTANTIATE_TEST_SUITE_P(
    Headers, CoordinateColumns,
    testing::Values(Coordinates{"name,LON,Lat\na,1,2\n", pointOneTwo, 4326},
                    Coordinates{"latitude;longitude;name\n2,0;1,0;a\n", pointOneTwo, 4326},
                    Coordinates{"x,y,name\n1,2,a\n", pointOneTwo, 0},
                    Coordinates{"долгота,широта\n1,2\n", pointOneTwo, 4326},
                    Coordinates{"name,WKT\na,POINT (1 2)\n", pointOneTwo, 0},
                    Coordinates{"name,the_geom,x,y\na,POINT (1 2),5,6\n", pointOneTwo, 0},
                    Coordinates{"name,x\na,1\n", "", 0}, Coordinates{"name,lon,y\na,1,2\n", "", 0}));

TEST_F(OpenFile, characterSetsOfTexts) {
    const Rows expected{{"t:Москва", "i:1"}};
    const QByteArray windows1251("\xe8\xec\xff,n\n\xcc\xee\xf1\xea\xe2\xe0,1\n");
    const auto path = write("cp1251.csv", windows1251);
    EXPECT_THAT(failure(path), testing::HasSubstr("encoding=windows-1251"));
    for (const auto& table : {openFile(path + QStringLiteral("|encoding=windows-1251")).front(),
                              openFile(path, {QStringLiteral("CP1251")}).front(),
                              openFile(write("bom.csv", "\xef\xbb\xbfимя,n\nМосква,1\n")).front(),
                              openFile(write("utf8.csv", "имя,n\nМосква,1\n")).front()}) {
        EXPECT_EQ(names(*table).front(), QStringLiteral("имя"));
        EXPECT_EQ(readRows(*table, everything(*table)), expected);
    }
    const auto text = QStringLiteral("\ufeffимя,n\nМосква,1\n");
    const QByteArray utf16(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
    const auto table = openFile(write("utf16.csv", utf16)).front();
    EXPECT_EQ(table->name(), QStringLiteral("utf16"));
    EXPECT_EQ(readRows(*table, everything(*table)), expected);
    EXPECT_NE(failure(path + QStringLiteral("|encoding=klingon")), "");
}

TEST_F(OpenFile, characterSetsOfShapefiles) {
    struct Case {
        const char* encoding;
        const char* text;
        int language; ///< byte 29 of the .dbf file in place of the names of the character set; -1 to keep
                      ///< them
    };
    const Case cases[] = {{"CP1251", "Москва", -1}, {"CP1251", "Москва", 0}, {"CP1251", "Ёлка-57", 0x57},
                          {"CP866", "Москва", 0},   {"UTF-8", "Ёж 😀", 0},    {"CP1252", "Größe", 0},
                          {"CP1252", "Größe", 0x57}};
    for (const Case& given : cases) {
        const auto path = directory_.filePath(QStringLiteral("Города.shp"));
        {
            const auto dataset = createDataset({"ESRI Shapefile", "shp"}, path);
            const std::string option = std::string("ENCODING=") + given.encoding;
            const char* const options[] = {option.c_str(), nullptr};
            auto* layer = dataset->CreateLayer("Города", nullptr, wkbPoint, const_cast<char**>(options));
            OGRFieldDefn field(given.text, OFTString);
            layer->CreateField(&field);
            OGRFeature feature(layer->GetLayerDefn());
            feature.SetField(0, given.text);
            ASSERT_EQ(layer->CreateFeature(&feature), OGRERR_NONE);
        }
        if (given.language >= 0) {
            QFile::remove(directory_.filePath(QStringLiteral("Города.cpg")));
            QFile table(directory_.filePath(QStringLiteral("Города.dbf")));
            ASSERT_TRUE(table.open(QIODevice::ReadWrite) && table.seek(29));
            table.putChar(static_cast<char>(given.language));
        }
        const auto table = openFile(path).front();
        EXPECT_EQ(names(*table).front(), QString::fromUtf8(given.text));
        EXPECT_EQ(readRows(*table, everything(*table)), (Rows{{std::string("t:") + given.text, "NULL"}}))
            << given.encoding << given.language;
        for (const auto& part : QDir(directory_.path()).entryList(QDir::Files)) {
            QFile::remove(directory_.filePath(part));
        }
    }
}

TEST_F(OpenFile, aSystemThatSaysNothingIsNone) {
    const auto path = directory_.filePath(QStringLiteral("s.gpkg"));
    const std::pair<const char*, int> cases[] = {{"", 0},
                                                 {"EPSG:4326", 4326},
                                                 {"LOCAL_CS[\"unnamed\",UNIT[\"metre\",1]]", 0},
                                                 {"ENGCRS[\"Plan\",EDATUM[\"\"],CS[Cartesian,2],AXIS[\"x\","
                                                  "east],AXIS[\"y\",north],LENGTHUNIT[\"m\",1]]",
                                                  0}};
    for (const auto& [definition, epsg] : cases) {
        QFile::remove(path);
        OGRSpatialReference reference;
        reference.SetFromUserInput(definition);
        createDataset({"GPKG", "gpkg"}, path)
            ->CreateLayer("s", *definition ? &reference : nullptr, wkbPoint, nullptr);
        const auto system = openFile(path).front()->coordSystem();
        EXPECT_EQ(system ? system->epsg() : 0, epsg) << definition;
        EXPECT_EQ(system == nullptr, epsg == 0) << definition;
    }
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(path.toUtf8().constData(), &database), SQLITE_OK);
    for (const int id : {0, -1}) {
        const auto update = "Update gpkg_geometry_columns Set srs_id=" + std::to_string(id);
        EXPECT_EQ(sqlite3_exec(database, update.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
        EXPECT_FALSE(openFile(path).front()->coordSystem()) << id;
    }
    sqlite3_close(database);
}

TEST_F(OpenFile, layersOfOneFileAndTheirNames) {
    const auto path = directory_.filePath(QStringLiteral("two.gpkg"));
    {
        const auto dataset = createDataset({"GPKG", "gpkg"}, path);
        addLayerOfNumbers(*dataset, "Дороги 😀", 3);
        dataset->CreateLayer("empty", nullptr, wkbNone, nullptr);
    }
    const auto tables = openFile(path);
    ASSERT_EQ(tables.size(), 2U);
    EXPECT_EQ(tables[0]->name(), QStringLiteral("Дороги 😀"));
    EXPECT_EQ(tables[1]->featureCount(), 0);
    EXPECT_EQ(tables[1]->schema()->geometryIndex(), -1);
    EXPECT_EQ(readRows(*tables[1], everything(*tables[1])), Rows());
    EXPECT_EQ(openFile(path + QStringLiteral("|EMPTY")).front()->name(), QStringLiteral("empty"));
    EXPECT_EQ(openFile(path + QStringLiteral("|layername=empty")).size(), 1U);
    EXPECT_THAT(failure(path + QStringLiteral("|roads")), testing::HasSubstr("Дороги 😀, empty"));

    dp::DataCatalog catalog;
    addToCatalog(catalog, tables);
    addToCatalog(catalog, openFile(path));
    EXPECT_TRUE(catalog.dataObject(QStringLiteral("empty_2")));
    EXPECT_TRUE(catalog.dataObject(QStringLiteral("Дороги 😀_2")));
}

TEST_F(OpenFile, whatDoesNotOpenSaysWhy) {
    const std::pair<QString, const char*> cases[] = {
        {directory_.filePath(QStringLiteral("absent.shp")), "No such file or directory"},
        {write("garbage.gpkg", "garbage"), "в нём нет таблиц в известном формате"},
        {write("empty.csv", ""), "файл пуст"},
        {write("broken.geojson", "{\"type\":\"FeatureColl"), "в нём нет таблиц в известном формате"},
        {write("text.zip", "no archive"), "в нём нет таблиц в известном формате"},
        {directory_.path(), "в нём нет таблиц в известном формате"},
        {write("wide.csv", QByteArray("a,").repeated(1998) + "z"),
         "столбцов 1999, а в таблице их не больше 1998"}};
    for (const auto& [path, reason] : cases) {
        EXPECT_EQ(failure(path), "Не удалось открыть «" + path.toStdString() + "»: " + reason);
    }
    for (const char* name : {"pipe.gpkg", "pipe.csv", "pipe.zip", "garbage.gpkg-wal", "empty.prj"}) {
        const QString path = directory_.filePath(QLatin1String(name));
        ASSERT_EQ(::mkfifo(path.toLocal8Bit().constData(), 0600), 0);
        const QString opened = path.contains(QLatin1String("pipe")) ? path
                               : path.endsWith(QLatin1String("wal"))
                                   ? directory_.filePath(QStringLiteral("garbage.gpkg"))
                                   : directory_.filePath(QStringLiteral("empty.csv"));
        EXPECT_EQ(failure(opened), "Не удалось открыть «" + path.toStdString() + "»: это не файл и не папка");
    }
    const auto vrt = write("v.vrt", "<OGRVRTDataSource><OGRVRTLayer name=\"pw\"><SrcDataSource>absent.csv"
                                    "</SrcDataSource></OGRVRTLayer></OGRVRTDataSource>");
    EXPECT_THAT(failure(vrt), testing::AllOf(testing::HasSubstr("v.vrt"), testing::HasSubstr("absent.csv")));
    const std::pair<const char*, const char*> broken[] = {
        {"a,b\n1,2\n\"3,4\n", "кавычка в строке 3 не закрыта"}, {"\n\n", "в нём нет таблиц"}};
    for (const auto& [text, reason] : broken) {
        EXPECT_THAT(failure(write("broken.csv", text)),
                    testing::HasSubstr(std::string("broken.csv»: ") + reason));
    }
}

TEST_F(OpenFile, aPipeInTheFilesPlaceIsNotWaitedFor) {
    const auto path = write("towns.csv", "a\n1\n");
    const auto table = openFile(path).front();
    ASSERT_TRUE(QFile::remove(path));
    ASSERT_EQ(::mkfifo(path.toLocal8Bit().constData(), 0600), 0);
    try {
        readRows(*table, everything(*table));
        ADD_FAILURE();
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr("это не файл и не папка"));
    }
}

TEST_F(OpenFile, archivesNeedNotBeUnpacked) {
    const auto put = [this](const char* archive, const char* name, const QByteArray& content) {
        const auto path = directory_.filePath(QLatin1String(archive));
        VSILFILE* const file = VSIFOpenL(("/vsizip/" + path.toUtf8() + '/' + name).constData(), "wb");
        EXPECT_TRUE(file);
        VSIFWriteL(content.constData(), 1, static_cast<std::size_t>(content.size()), file);
        VSIFCloseL(file);
        return path;
    };
    auto path =
        put("one.zip", "numbers.geojson", R"({"type":"FeatureCollection","features":[{"type":"Feature",
        "geometry":null,"properties":{"n":1}}]})");
    const auto numbers = openFile(path).front();
    EXPECT_EQ(readRows(*numbers, everything(*numbers)), (Rows{{"i:1", "NULL"}}));
    EXPECT_TRUE(numbers->isReadOnly());

    // Text tables are read as those beside no others: types, missing values, character set, points.
    put("texts.zip", "README.txt", "What is in the tables");
    put("texts.zip", "data/towns.csv", "имя,n,lon,lat\nТверь,NA,35.9,56.9\nКлин,7,36.7,56.3\n");
    put("texts.zip", "__MACOSX/data/._towns.csv", "nothing");
    path = put("texts.zip", "codes.tsv", "code\tday\n007\t2024-05-06\n");
    const auto tables = openFile(path);
    ASSERT_EQ(tables.size(), 2u);
    EXPECT_EQ(tables[0]->name(), QStringLiteral("codes"));
    EXPECT_EQ(readRows(*tables[0], everything(*tables[0])), (Rows{{"t:007", "t:2024-05-06"}}));
    EXPECT_EQ(tables[1]->name(), QStringLiteral("towns"));
    const auto rows = readRows(*tables[1], everything(*tables[1]));
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0][1], "NULL");
    EXPECT_EQ(rows[1][1], "i:7");
    EXPECT_NE(rows[1].back(), "NULL");
    EXPECT_TRUE(tables[1]->isReadOnly());
    path = put("old.zip", "towns.csv", QByteArray("name\n\xd2\xe2\xe5\xf0\xfc\n"));
    EXPECT_THAT(failure(path), testing::HasSubstr("«" + path.toStdString() + "|encoding=windows-1251»"));
    const auto old = openFile(path + QStringLiteral("|encoding=windows-1251")).front();
    EXPECT_EQ(readRows(*old, everything(*old)).front().front(), "t:Тверь");
}

TEST_F(OpenFile, damageIsToldInsteadOfRowsThatAreMissing) {
    const auto path = directory_.filePath(QStringLiteral("whole.gpkg"));
    addLayerOfNumbers(*createDataset({"GPKG", "gpkg"}, path), "numbers", 9000);
    const auto rowsOf = [](const QString& file) {
        const auto table = openFile(file).front();
        return readRows(*table, everything(*table));
    };
    const auto whole = rowsOf(path);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray content = file.readAll();
    constexpr int page = 4096;
    std::mt19937 random(29);
    std::uniform_int_distribution<int> byte(0, 255), pages(5, content.size() / page - 1), start(0, 200);
    int failures = 0;
    for (int i = 0; i < 12; ++i) {
        QByteArray damaged = content;
        const int first = pages(random) * page + (i % 2 == 0 ? 0 : start(random));
        for (int at = first; at < first + (i % 2 == 0 ? 8 : 20); ++at) {
            damaged[at] = static_cast<char>(byte(random));
        }
        const auto copy = write("damaged.gpkg", damaged);
        try {
            const auto rows = rowsOf(copy);
            EXPECT_EQ(rows.size(), whole.size()) << i; // a value may be another one, unnoticed
        } catch (const std::runtime_error& error) {
            ++failures;
            EXPECT_THAT(error.what(), testing::HasSubstr("damaged.gpkg"));
        }
    }
    EXPECT_GT(failures, 1);
    write("damaged.gpkg", content.left(content.size() / page / 2 * page));
    EXPECT_NE(failure(directory_.filePath(QStringLiteral("damaged.gpkg"))), "");
}

TEST_F(OpenFile, rowsThatTheFileCannotHoldAreNotCounted) {
    constexpr int rows = 300;
    const auto countOf = [](const QString& path) {
        const auto table = openFile(path).front();
        std::int64_t count = 0;
        for (const auto cursor = table->openCursor({}); cursor->next() && count <= rows;) {
            ++count;
        }
        return count;
    };
    const auto package = directory_.filePath(QStringLiteral("count.gpkg"));
    addLayerOfNumbers(*createDataset({"GPKG", "gpkg"}, package), "numbers", rows);
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(package.toUtf8().constData(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, "Update gpkg_ogr_contents Set feature_count = 1 << 60", nullptr, nullptr,
                           nullptr),
              SQLITE_OK);
    sqlite3_close(database);
    EXPECT_EQ(countOf(package), rows);

    const auto path = directory_.filePath(QStringLiteral("count.fgb"));
    addLayerOfNumbers(*createDataset({"FlatGeobuf", "fgb"}, path), "numbers", rows);
    EXPECT_EQ(countOf(path), rows);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const QByteArray count("\x2c\x01\0\0\0\0\0\0", 8);
    const int place = file.readAll().indexOf(count);
    ASSERT_GT(place, 0);
    file.seek(place + 3);
    file.write("\xd0", 1);
    file.close();
    EXPECT_THAT(failure(path), testing::HasSubstr("обещано строк 3489661228, а нет ни одной"));
    EXPECT_THROW(countOf(path), std::runtime_error);
}

TEST_F(OpenFile, aLayerWithoutRowsComesToItsEnd) {
    for (const Format& format :
         {Format{"FlatGeobuf", "fgb"}, Format{"GPKG", "gpkg"}, Format{"GeoJSON", "geojson"}}) {
        const auto path = directory_.filePath(QLatin1String("empty.") + QLatin1String(format.extension));
        addLayerOfNumbers(*createDataset(format, path), "empty", 0);
        const auto table = openFile(path).front();
        EXPECT_EQ(readRows(*table, everything(*table)), Rows()) << format.driver;
    }
}

} // namespace
} // namespace orvane::files
