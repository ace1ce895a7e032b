// Files that other people made with something in them that would reach other files, or the network: when they
// are opened, read, filtered or changed, nothing of the others shows and nothing of them is changed.

#include "support/Host.h"

#include "host/providers/FileSource.h"
#include "host/providers/LayerTable.h"
#include "host/providers/TestLayers.h"
#include "platform/log/Logger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cpl_vsi.h>
#include <sqlite3.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>

namespace orvane {
namespace {

using testing::Host;

/// Somebody whom nobody may call.
class Listener {
public:
    Listener() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        auto* const generic = reinterpret_cast<sockaddr*>(&address);
        isUp_ = ::bind(socket_, generic, size) == 0 && ::listen(socket_, 8) == 0 &&
                ::getsockname(socket_, generic, &size) == 0;
        port_ = ntohs(address.sin_port);
    }
    ~Listener() { ::close(socket_); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    bool isUp() const { return isUp_; }
    QByteArray url() const { return "http://127.0.0.1:" + QByteArray::number(port_) + "/x"; }
    /// Since the last time.
    bool wasCalled() const {
        const int caller = ::accept(socket_, nullptr, nullptr);
        if (caller >= 0) {
            ::close(caller);
        }
        return caller >= 0;
    }

private:
    int socket_;
    bool isUp_ = false;
    int port_ = 0;
};

/// A file in the folder that the user opens. In texts, $SECRET is the folder of the others, $URL the network.
struct Attack {
    const char* name;
    const char* file;
    const char* content;   ///< of the file; for databases, the statements that make it
    const char* statement; ///< that is tried on its tables
    const char* named;     ///< what the messages tell of, or nothing where all goes well
};

void PrintTo(const Attack& attack, std::ostream* stream) {
    *stream << attack.name;
}

class HostileFiles : public ::testing::TestWithParam<Attack> {
protected:
    /// What is taken from the first database must not be all that is taken from others.
    static void SetUpTestSuite() { files::openFile(QStringLiteral(ORVANE_EXAMPLE_DATA "/countries.gpkg")); }
    HostileFiles() {
        QDir(directory_.path()).mkdir(QStringLiteral("secret"));
        QDir(directory_.path()).mkdir(QStringLiteral("home"));
        write("secret/secret.csv", "word,n\nTOPSECRET,1\n");
        write("secret/secret.txt", "TOPSECRET");
        write("home/near.csv", "word,n\nnear,1\n");
        write("home/near.geojson",
              "{\"type\":\"Feature\",\"properties\":{\"word\":\"beside\"},\"geometry\":null}");
        makeDatabase(path("secret/other.sqlite"), "create table s(a); insert into s values('TOPSECRET')");
        QFile::link(path("secret/secret.csv"), path("home/link.csv"));
        QFile::link(path("secret"), path("home/away"));
        QFile::link(path("secret/new.gfs"), path("home/linked.gfs"));
        sink_ = loggerInstance()->exchangeSink(
            [this](const LogEntry& entry) { told_ += entry.text + QLatin1Char('\n'); });
    }
    ~HostileFiles() override {
        Host::instance().closeAll();
        loggerInstance()->exchangeSink(std::move(sink_));
    }

    QString path(const QByteArray& name) const { return directory_.filePath(QString::fromUtf8(name)); }
    QString write(const QByteArray& name, const QByteArray& content) const {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path(name);
    }
    static void makeDatabase(const QString& path, const QByteArray& statements) {
        sqlite3* database = nullptr;
        ASSERT_EQ(sqlite3_open(path.toUtf8().constData(), &database), SQLITE_OK);
        char* error = nullptr;
        EXPECT_EQ(sqlite3_exec(database, statements.constData(), nullptr, nullptr, &error), SQLITE_OK)
            << error;
        sqlite3_close(database);
    }
    QByteArray filledIn(QByteArray text) const {
        return text.replace("$SECRET", path("secret").toUtf8()).replace("$URL", listener_.url());
    }
    /// The names and contents of the files that are nobody's business.
    QByteArray secrets() const {
        QByteArray all;
        for (const QString& name : QDir(path("secret")).entryList(QDir::Files)) {
            QFile file(path("secret/" + name.toUtf8()));
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            all += name.toUtf8() + file.readAll();
        }
        return all;
    }
    QString make(const Attack& attack) const {
        const QByteArray name = QByteArray("home/") + attack.file;
        if (name.endsWith(".tab")) {
            makeTables();
        }
        if (name.endsWith(".gpkg")) {
            files::addLayerOfNumbers(*files::createDataset({"GPKG", "gpkg"}, path(name)), "t", 3);
        }
        if (name.endsWith(".sqlite") || name.endsWith(".gpkg")) {
            makeDatabase(path(name), filledIn(attack.content));
            return path(name);
        }
        return write(name, filledIn(attack.content));
    }
    /// Two that a view can join.
    void makeTables() const {
        for (const char* name : {"a", "b"}) {
            const auto dataset =
                files::createDataset({"MapInfo File", "tab"}, path(QByteArray("secret/") + name + ".tab"));
            OGRLayer* const layer = dataset->CreateLayer(name, nullptr, wkbPoint);
            OGRFieldDefn id("id", OFTInteger);
            OGRFieldDefn word(*name == 'a' ? "name" : "other", OFTString);
            layer->CreateField(&id);
            layer->CreateField(&word);
            dataset->ExecuteSQL((std::string("CREATE INDEX ON ") + name + " USING id").c_str(), nullptr,
                                nullptr);
            OGRFeature feature(layer->GetLayerDefn());
            feature.SetField(0, 1);
            feature.SetField(1, "TOPSECRET");
            EXPECT_EQ(layer->CreateFeature(&feature), OGRERR_NONE);
        }
    }
    /// Everything that the user gets to see.
    QString attempt(const QString& source, const char* statement) {
        told_.clear();
        try {
            Host::instance().open(source);
            told_ += QString::fromStdString(Host::instance().ask(QString::fromUtf8(statement)));
        } catch (const std::exception& error) {
            told_ += QString::fromUtf8(error.what());
        }
        Host::instance().closeAll();
        return told_;
    }

    QTemporaryDir directory_;
    Listener listener_;
    QString told_;
    CuteMessageLogger::Sink sink_;
};

TEST_P(HostileFiles, ReachNothingElse) {
    const Attack& attack = GetParam();
    ASSERT_TRUE(listener_.isUp());
    const QString source = make(attack);
    const QByteArray before = secrets();
    const std::string told = attempt(source, attack.statement).toStdString();
    EXPECT_THAT(told, ::testing::Not(::testing::HasSubstr("TOPSECRET")));
    EXPECT_THAT(told, ::testing::HasSubstr(filledIn(attack.named).toStdString()));
    EXPECT_EQ(secrets(), before);
    EXPECT_FALSE(listener_.wasCalled());
}

std::string nameOf(const ::testing::TestParamInfo<Attack>& info) {
    return info.param.name;
}

// SQLite allows what it would refuse to create to be written down.
#define ORVANE_WITH_TABLE(name, module)                                                                      \
    "create table t(a); insert into t values(1); pragma writable_schema = on; insert into "                  \
    "sqlite_master(type, name, "                                                                             \
    "tbl_name, rootpage, sql) values('table', '" name "', '" name "', 0, 'CREATE VIRTUAL TABLE " name        \
    " USING " module "')"
#define ORVANE_ATTACHING                                                                                     \
    "SqlProc_Execute(SqlProc_FromText('attach ''$SECRET/other.sqlite'' as x; update x.s set a = 5;'))"

INSTANTIATE_TEST_SUITE_P(
    Databases, HostileFiles,
    ::testing::Values(
        Attack{
            "TextModule", "h.sqlite",
            ORVANE_WITH_TABLE("v", "VirtualText(''$SECRET/secret.csv'',''UTF-8'',1,POINT,DOUBLEQUOTE,'','')"),
            "Select * From v", "no such module: VirtualText"},
        Attack{"FileModule", "h.sqlite", ORVANE_WITH_TABLE("v", "VirtualOGR(''$SECRET/secret.csv'')"),
               "Select * From v", "no such module: VirtualOGR"},
        Attack{"NetworkModule", "h.sqlite", ORVANE_WITH_TABLE("v", "VirtualOGR(''/vsicurl/$URL.csv'')"),
               "Select * From v", "no such module: VirtualOGR"},
        Attack{"ModuleReadWhenOpened", "h.sqlite",
               ORVANE_WITH_TABLE("geometry_columns", "VirtualOGR(''/vsicurl/$URL.csv'')"), "Select * From t",
               ""},
        Attack{
            "ModuleInAGeoPackage", "h.gpkg",
            "pragma writable_schema = on; insert into sqlite_master(type, name, tbl_name, rootpage, sql) "
            "values('table', 'v', 'v', 0, 'CREATE VIRTUAL TABLE v USING VirtualText(''$SECRET/secret.csv'', "
            "''UTF-8'', 1, POINT, DOUBLEQUOTE, '','')')",
            "Select * From v", "v"},
        Attack{
            "ModuleBehindAView", "h.sqlite",
            ORVANE_WITH_TABLE("v", "VirtualOGR(''$SECRET/secret.csv'')") "; create view w as select * from v",
            "Select * From w", "no such module: VirtualOGR"},
        Attack{"ViewThatAttaches", "h.sqlite",
               "create table t(a); create view w as select " ORVANE_ATTACHING " as a", "Select * From w",
               "no such function: SqlProc_"},
        Attack{"ViewThatAsksTheNetwork", "h.sqlite",
               "create view w as select ogr_geocode('a', 'geometry', 'SERVICE=', 'QUERY_TEMPLATE=$URL?%s') "
               "as a; create table t(a)",
               "Select * From w", "no such function: ogr_geocode"},
        Attack{"ViewThatReadsAnArchive", "h.sqlite",
               "create table t(a); create view w as select Zipfile_NumSHP('$SECRET/secret.zip') as a",
               "Select * From w", "no such function: Zipfile_NumSHP"},
        Attack{"TriggerThatAttaches", "h.sqlite",
               "create table t(a); insert into t values(1); create trigger g after update on t begin "
               "select " ORVANE_ATTACHING "; end",
               "Update t Set a = 2", "no such function: SqlProc_"},
        Attack{"TriggerInAGeoPackage", "h.gpkg",
               "create trigger g after update on t begin select " ORVANE_ATTACHING "; end",
               "Update t Set n = 2", "h.gpkg"},
        Attack{"DefaultThatAttaches", "h.sqlite", "create table t(a, b default (" ORVANE_ATTACHING "))",
               "Insert Into t (a) Values (1)", ""},
        Attack{"ColumnThatAsksTheNetwork", "h.sqlite",
               "create table t(a, b as (a)); insert into t values(1); pragma writable_schema = on; update "
               "sqlite_master "
               "set sql = 'create table t(a, b as (XB_Create(x''3c612f3e'', 0, ''$URL.xsd'')))'",
               "Select * From t", "XB_Create"},
        Attack{
            "RightfulView", "h.sqlite",
            "create table t(a); insert into t values(2); create view w as select ST_X(MakePoint(a, 1)) as x, "
            "Max(2, a) as m from t",
            "Select x, m From w", "2|2"}),
    nameOf);

#define ORVANE_SOURCE(source)                                                                                \
    "<OGRVRTDataSource><OGRVRTLayer name='secret'>" source "</OGRVRTLayer></OGRVRTDataSource>"
#define ORVANE_PLAIN_SOURCE(source) ORVANE_SOURCE("<SrcDataSource>" source "</SrcDataSource>")
#define ORVANE_NEAR_SOURCE(source)                                                                           \
    ORVANE_SOURCE("<SrcDataSource relativeToVRT='1'>" source "</SrcDataSource>")

INSTANTIATE_TEST_SUITE_P(
    VirtualDatasets, HostileFiles,
    ::testing::Values(
        Attack{"FullPath", "h.vrt", ORVANE_PLAIN_SOURCE("$SECRET/secret.csv"), "Select * From secret",
               "$SECRET/secret.csv"},
        Attack{"Upwards", "h.vrt", ORVANE_NEAR_SOURCE("../secret/secret.csv"), "Select * From secret",
               "../secret/secret.csv"},
        Attack{"Link", "h.vrt",
               ORVANE_SOURCE(
                   "<SrcDataSource relativeToVRT='1'>link.csv</SrcDataSource><SrcLayer>link</SrcLayer>"),
               "Select * From secret", "link.csv"},
        Attack{"LinkToAFolder", "h.vrt", ORVANE_NEAR_SOURCE("away/secret.csv"), "Select * From secret",
               "away/secret.csv"},
        Attack{"Attribute", "h.vrt",
               "<OGRVRTDataSource><OGRVRTLayer name='secret' "
               "SrcDataSource='$SECRET/secret.csv'/></OGRVRTDataSource>",
               "Select * From secret", "$SECRET/secret.csv"},
        Attack{
            "OtherLetters", "h.vrt",
            "<OGRVRTDataSource><ogrvrtlayer name='secret'><srcdatasource>$SECRET/secret.csv</srcdatasource>"
            "</ogrvrtlayer></OGRVRTDataSource>",
            "Select * From secret", "$SECRET/secret.csv"},
        Attack{"Entities", "h.vrt", ORVANE_PLAIN_SOURCE("$SECRET/../&#x73;&#101;cret/secret.csv"),
               "Select * From secret", "secret/secret.csv"},
        Attack{"Inline", "h.vrt",
               ORVANE_PLAIN_SOURCE(
                   "&lt;OGRVRTDataSource&gt;&lt;OGRVRTLayer name='secret'&gt;&lt;SrcDataSource&gt;"
                   "$SECRET/secret.csv&lt;/SrcDataSource&gt;&lt;/OGRVRTLayer&gt;"
                   "&lt;/OGRVRTDataSource&gt;"),
               "Select * From secret", "OGRVRTDataSource"},
        Attack{"Archive", "h.vrt", ORVANE_PLAIN_SOURCE("/vsisubfile/0_19,$SECRET/secret.csv"), "Select 1",
               "/vsisubfile/"},
        Attack{"Network", "h.vrt", ORVANE_PLAIN_SOURCE("/vsicurl/$URL.csv"), "Select 1", "/vsicurl/$URL.csv"},
        Attack{"Database", "h.vrt", ORVANE_PLAIN_SOURCE("PG:host=127.0.0.1"), "Select 1",
               "PG:host=127.0.0.1"},
        Attack{"Prefix", "h.vrt", ORVANE_PLAIN_SOURCE("CSV:$SECRET/secret.csv"), "Select * From secret",
               "CSV:$SECRET/secret.csv"},
        Attack{"Query", "h.vrt",
               ORVANE_SOURCE("<SrcDataSource relativeToVRT='1'>near.csv</SrcDataSource><SrcSQL>Select * From "
                             "'$SECRET/secret.csv'.secret</SrcSQL>"),
               "Select * From secret", "'$SECRET/secret.csv'.secret"},
        Attack{"Options", "h.vrt",
               ORVANE_SOURCE("<SrcDataSource relativeToVRT='1'>near.csv</SrcDataSource><OpenOptions><OOI "
                             "key='PRELUDE_STATEMENTS'>attach 'x' as y</OOI></OpenOptions>"),
               "Select 1", "PRELUDE_STATEMENTS»"},
        Attack{
            "Union", "h.vrt",
            "<OGRVRTDataSource><OGRVRTUnionLayer name='u'><OGRVRTWarpedLayer><OGRVRTLayer name='secret'>"
            "<SrcDataSource>$SECRET/secret.csv</SrcDataSource></OGRVRTLayer><TargetSRS>EPSG:4326</TargetSRS>"
            "</OGRVRTWarpedLayer></OGRVRTUnionLayer></OGRVRTDataSource>",
            "Select * From u", "$SECRET/secret.csv"},
        Attack{"Circle", "h.vrt", ORVANE_NEAR_SOURCE("h.vrt"), "Select * From secret", "h.vrt"},
        Attack{"Change", "h.vrt",
               "<OGRVRTDataSource><OGRVRTLayer name='near'><SrcDataSource "
               "relativeToVRT='1'>near.csv</SrcDataSource>"
               "</OGRVRTLayer></OGRVRTDataSource>",
               "Delete From near", "только чита"},
        Attack{
            "Rightful", "h.vrt",
            "<OGRVRTDataSource xmlns='x'><OGRVRTUnionLayer name='u'><OGRVRTLayer name='near'><SrcDataSource "
            "relativeToVRT='1' shared='1'>near.csv</SrcDataSource><OpenOptions><OOI "
            "key='ENCODING'>UTF-8</OOI>"
            "</OpenOptions></OGRVRTLayer></OGRVRTUnionLayer></OGRVRTDataSource>",
            "Select word From u", "near"},
        Attack{"RightfulDocument", "h.vrt",
               "<OGRVRTDataSource><OGRVRTLayer name='near'><SrcDataSource "
               "relativeToVRT='1'>near.geojson</SrcDataSource>"
               "</OGRVRTLayer></OGRVRTDataSource>",
               "Select word From near", "beside"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Documents, HostileFiles,
    ::testing::Values(
        Attack{
            "EntityOfGml", "h.gml",
            "<?xml version=\"1.0\" encoding=\"windows-1251\"?><!-- x --><!DOCTYPE a [<!ENTITY s SYSTEM "
            "\"file://$SECRET/secret.txt\">]><ogr:FeatureCollection xmlns:ogr=\"http://ogr.maptools.org/\" "
            "xmlns:gml=\"http://www.opengis.net/gml\"><gml:featureMember><ogr:t fid=\"1\"><ogr:name>[&s;]"
            "</ogr:name></ogr:t></gml:featureMember></ogr:FeatureCollection>",
            "Select * From t", "file://$SECRET/secret.txt"},
        Attack{"NotesOnAGml", "linked.gml",
               "<?xml version=\"1.0\"?><ogr:FeatureCollection xmlns:ogr=\"http://ogr.maptools.org/\" "
               "xmlns:gml=\"http://www.opengis.net/gml\"><gml:featureMember><ogr:t "
               "fid=\"1\"><ogr:name>n</ogr:name>"
               "</ogr:t></gml:featureMember></ogr:FeatureCollection>",
               "Select name From t", "linked.gfs"},
        Attack{
            "EntityOfInterlis", "h.xtf",
            "<?xml version=\"1.0\"?><!DOCTYPE a SYSTEM \"$URL.dtd\"><TRANSFER xmlns=\"http://www.interlis.ch/"
            "INTERLIS2.3\"><HEADERSECTION VERSION=\"2.3\" SENDER=\"x\"><MODELS></MODELS></HEADERSECTION>"
            "<DATASECTION><M.T BID=\"b\"><M.T.C "
            "TID=\"1\"><name>n</name></M.T.C></M.T></DATASECTION></TRANSFER>",
            "Select 1", "$URL.dtd"},
        Attack{
            "CoordinateSystem", "h.geojson",
            "{\"type\":\"FeatureCollection\",\"crs\":{\"type\":\"link\",\"properties\":{\"href\":\"$URL\"}},"
            "\"features\":[{\"type\":\"Feature\",\"properties\":{\"a\":7},\"geometry\":null}]}",
            "Select a From h", "$URL"},
        Attack{"Service", "h.xml", "<OGRWFSDataSource><URL>$URL</URL></OGRWFSDataSource>", "Select 1", "WFS"},
        Attack{"SeamlessTable", "h.tab",
               "!Table\n!Version 300\nDefinition Table\n\"\\IsSeamless\" = \"TRUE\"\n", "Select 1",
               "IsSeamless"},
        Attack{"View", "h.tab",
               "!Table\n!Version 100\nOpen Table \"../secret/a\" Hide\nOpen Table \".\"\"./secret/b\" "
               "Hide\n\nCreate "
               "View h As\nSelect other, name\nFrom b, a\nWhere a.id=b.id\n",
               "Select * From h", "../secret/"}),
    nameOf);

TEST_F(HostileFiles, ADatabaseIsConfinedAsASourceAndInAnArchive) {
    const Attack module{"", "h.sqlite", ORVANE_WITH_TABLE("v", "VirtualOGR(''$SECRET/secret.csv'')"), "", ""};
    const QString database = make(module);
    const QString virtualDataset =
        write("home/h.vrt", ORVANE_SOURCE("<SrcDataSource relativeToVRT='1'>h.sqlite"
                                          "</SrcDataSource><SrcLayer>v</SrcLayer>"));
    const QString archive = path("home/h.zip");
    ASSERT_EQ(
        CPLCopyFile(("/vsizip/" + archive.toUtf8() + "/h.sqlite").constData(), database.toUtf8().constData()),
        0);
    for (const QString& source : {virtualDataset, archive}) {
        EXPECT_THAT(attempt(source, "Select * From v").toStdString(),
                    ::testing::AllOf(::testing::HasSubstr("VirtualOGR"),
                                     ::testing::Not(::testing::HasSubstr("TOPSECRET"))));
    }
}

TEST_F(HostileFiles, SourcesAndNamesSmuggleNothing) {
    const QByteArray near = path("home/near.csv").toUtf8();
    const std::array<QByteArray, 6> sources{near + "|$SECRET/secret.csv",
                                            near + "|encoding=UTF-8|$SECRET/secret.csv",
                                            near + QByteArray(1, '\0') + "|secret",
                                            ORVANE_PLAIN_SOURCE("$SECRET/secret.csv"),
                                            "$SECRET/../home/none.vrt",
                                            "SQLITE:$SECRET/none.sqlite"};
    for (const QByteArray& source : sources) {
        EXPECT_THAT(attempt(QString::fromUtf8(filledIn(source)), "Select * From secret").toStdString(),
                    ::testing::AllOf(::testing::Not(::testing::IsEmpty()),
                                     ::testing::Not(::testing::HasSubstr("TOPSECRET"))))
            << source.constData();
    }
}

TEST_F(HostileFiles, OpenWithWhatTheyReferToWhereTheUserTrustsThem) {
    const Attack module{"", "h.sqlite", ORVANE_WITH_TABLE("v", "VirtualOGR(''$SECRET/secret.csv'')"), "", ""};
    const QString virtualDataset = write("home/h.vrt", filledIn(ORVANE_PLAIN_SOURCE("$SECRET/secret.csv")));
    files::OpenOptions options;
    options.trustReferences = true;
    for (const QString& source : {virtualDataset, make(module) + QStringLiteral("|v")}) {
        const auto table = files::openFile(source, options).front();
        const auto rows = files::readRows(*table, files::everything(*table));
        ASSERT_EQ(rows.size(), 1U);
        EXPECT_THAT(rows.front(), ::testing::Contains("t:TOPSECRET")) << source.toStdString();
    }
    EXPECT_TRUE(files::openFile(virtualDataset, options).front()->isReadOnly());
}

} // namespace
} // namespace orvane
