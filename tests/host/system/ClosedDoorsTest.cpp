// What texts that other people wrote cannot reach: queries, expressions, labels, selections.

#include "support/Host.h"

#include "host/adaptor/FeatureExpression.h"
#include "host/adaptor/QuerySelection.h"
#include "support/Query.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSqlDriver>

#include <sqlite3.h>

#include <sys/stat.h>

namespace orvane {

namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;
using testing::Host;
using ::testing::StartsWith;

class ClosedDoors : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        Host& host = Host::instance();
        if (!host.catalog.dataObject(QStringLiteral("cities"))) {
            host.openExamples();
        }
        QDir::setCurrent(host.path(QString())); // where a relative name would be made
    }

    static Engine& engine() { return *Host::instance().engine; }
    static sqlite3* database() {
        return *static_cast<sqlite3* const*>(engine().engineDatabase().driver()->handle().constData());
    }
    /// The answer to a text of SQLite's own dialect.
    static std::string raw(const QString& text) { return testing::answer(engine().engineDatabase(), text); }
    static QStringList names(const char* pragma) {
        return QString::fromStdString(
                   raw(QStringLiteral("Select Distinct name From pragma_%0").arg(QLatin1String(pragma))))
            .split(QLatin1Char('\n'));
    }
    static QStringList files() { return QDir().entryList(QDir::Files | QDir::Hidden); }
};

TEST_F(ClosedDoors, EveryFunctionIsAllowedOrRefusedByName) {
    QFile file(QStringLiteral(ORVANE_TEST_DATA "/functions/refused.txt"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QStringList refused = QString::fromUtf8(file.readAll()).simplified().split(QLatin1Char(' '));
    ASSERT_GT(refused.size(), 400);
    int numAllowed = 0;
    for (const QString& name : names("function_list")) {
        const bool isAllowed = engine().allowsFunction(name);
        numAllowed += isAllowed ? 1 : 0;
        EXPECT_NE(isAllowed, refused.contains(name)) << name.toStdString();
        if (!isAllowed) {
            for (const char* arguments : {"", "1", "1, 2", "1, 2, 3", "1, 2, 3, 4"}) {
                EXPECT_THAT(raw(QStringLiteral("Select \"%0\"(%1)").arg(name, QLatin1String(arguments))),
                            AnyOf(HasSubstr("not authorized to use function: "), HasSubstr("wrong number"),
                                  HasSubstr("misuse of"), HasSubstr("unable to use function MATCH")))
                    << name.toStdString();
            }
        }
    }
    EXPECT_GT(numAllowed, 600);
}

TEST_F(ClosedDoors, TheOnlyModulesAreTheAdaptorsAndWhatPragmasMayTell) {
    for (const QString& name : names("module_list")) {
        EXPECT_TRUE(name == QLatin1String("OrvaneTable") || name == QLatin1String("Generate_Series") ||
                    name.startsWith(QLatin1String("pragma_")))
            << name.toStdString();
    }
    const QStringList telling =
        QString::fromLatin1("collation_list compile_options database_list function_list module_list "
                            "pragma_list table_info table_list table_xinfo")
            .split(QLatin1Char(' '));
    const std::string pragmas = raw(QStringLiteral("Pragma pragma_list"));
    for (const QString& pragma : QString::fromStdString(pragmas).split(QLatin1Char('\n'))) {
        const std::string answer = raw(QStringLiteral("Pragma %0 = 1").arg(pragma));
        EXPECT_EQ(answer.rfind("error: not authorized", 0) != 0, telling.contains(pragma))
            << pragma.toStdString() << ": " << answer;
    }
    EXPECT_EQ(raw(QStringLiteral("Select Count(*) From cities")), "4442"); // and nothing was switched
}

TEST_F(ClosedDoors, StatementsOfSqliteReachNothingElse) {
    const QStringList before = files();
    const std::pair<const char*, const char*> attacks[] = {
        {"Attach 'other.db' As x", "Attach other.db"},
        {"Attach 'file:other.db?mode=rwc' As x", "Attach file:other.db?mode=rwc"},
        {"Attach Lower('OTHER.db') As x", "Attach"},
        {"Detach main", "Detach main"},
        {"Vacuum Into 'other.db'", "Attach other.db"},
        {"Vacuum", "Attach"},
        {"Pragma journal_mode = wal", "Pragma journal_mode"},
        {"Pragma writable_schema = 1", "Pragma writable_schema"},
        {"Pragma temp_store_directory = '/'", "Pragma temp_store_directory"},
        {"Pragma trusted_schema = 1", "Pragma trusted_schema"},
        {"Select * From pragma_temp_store_directory", ""},
        {"Create Table t(a)", "Create Table t"},
        {"Create Temp Table t(a)", "Create Temp Table t"},
        {"Create Table t As Select * From cities", "Create Table t"},
        {"Create View v As Select 1", "Create View v"},
        {"Create Temp Trigger x After Insert On cities Begin Select 1; End", ""},
        {"Create Virtual Table t Using VirtualText('/etc/passwd', UTF8, 0)", "Create Virtual Table t"},
        {"Create Virtual Table temp.t Using OrvaneTable(cities)", "Create Virtual Table t"},
        {"Create Index i On cities(name)", ""},
        {"Drop Table cities", "Drop Table cities"},
        {"Alter Table cities Rename To towns", "Alter Table cities"},
        {"Alter Table cities Add Column x", ""},
        {"Analyze", "Create Table sqlite_stat1"},
        {"Delete From sqlite_master", ""},
        {"Update sqlite_schema Set sql = 'x'", ""},
        {"Insert Into sqlite_temp_master Values (1, 2, 3, 4, 5)", ""},
        {"Select * From fts3tokenize('simple', 'a b')", ""},
        {"Select * From dbstat", ""},
        {"Select * From sqlite_stmt", ""},
    };
    for (const auto& [text, refused] : attacks) {
        EXPECT_THAT(raw(QLatin1String(text)), StartsWith("error: ")) << text;
        if (*refused) {
            EXPECT_EQ(engine().refusedAction(), QString::fromLatin1(refused)) << text;
        }
    }
    EXPECT_EQ(files(), before);
    EXPECT_EQ(raw(QStringLiteral("Select Count(*) From cities")), "4442");
}

/// One text, asked in every way in which a project can hold it.
TEST_F(ClosedDoors, ExpressionsReachNothingElse) {
    const QStringList before = files();
    const char* const attacks[] = {
        "SqlProc_Execute(SqlProc_FromText('attach ''other.db'' as x; create table x.s(a);'))",
        "SqlProc_FromText('select 1')",
        "StoredProc_Execute('x')",
        "load_extension('other.so')",
        "LOAD_EXTENSION('other.so', 'entry')",
        "\"load_extension\"('other.so')",
        "[load_extension]('other.so')",
        "fts3_tokenizer('porter', X'4141414141414141')",
        "fts3_tokenizer('simple')",
        "XB_Create(X'3C612F3E', '/etc/passwd')",
        "XB_SchemaValidate(X'3C612F3E', 'http://127.0.0.1:9/x')",
        "InitSpatialMetadata(1)",
        "InitSpatialMetadataFull(1)",
        "DropTable('main', 'cities', 1)",
        "RenameTable('main', 'cities', 'towns')",
        "CloneTable('main', 'cities', 'copy', 1)",
        "CreateTopology('t')",
        "ST_Cutter('main', 'a', 'g', 'main', 'b', 'g', 'other')",
        "PROJ_SetDatabasePath('other.db')",
        "ExportSHP('cities', 'geometry', 'other', 'UTF-8')",
        "ImportDXF('other.dxf')",
        "BlobToFile(X'00', 'other.bin')",
        "BlobFromFile('/etc/passwd')",
        "SetDecimalPrecision(1)",
        "Pause()",
        "sqlite_log(1, 'x')",
        "readfile('/etc/passwd')",
        "writefile('other.txt', 'x')",
        "edit('x', 'sh')",
        "Transform(MakePoint(1, 2, 4326), 3857, NULL, '+proj=longlat +nadgrids=/etc/passwd', "
        "'+proj=longlat')",
        "1 + (Select SqlProc_FromText('x') From cities Limit 1)",
        "Case When 1 = 2 Then load_extension('other.so') End",
        "Coalesce(1, load_extension('other.so'))",
    };
    const auto cities =
        std::dynamic_pointer_cast<dp::Table>(Host::instance().catalog.dataObject(QStringLiteral("cities")));
    ASSERT_TRUE(cities);
    adaptor::FeatureExpression label(engine(), *cities->schema());
    for (const char* text : attacks) {
        const auto isRefused =
            AnyOf(HasSubstr("not authorized to use function: "), HasSubstr("no such function: "),
                  HasSubstr("wrong number of arguments to function "));
        EXPECT_THAT(Host::instance().ask(QStringLiteral("Select %0 From cities").arg(QLatin1String(text))),
                    isRefused)
            << text;
        EXPECT_THAT(Host::instance().ask(
                        QStringLiteral("Select name From cities Where %0 = 1").arg(QLatin1String(text))),
                    isRefused)
            << text;
        EXPECT_THAT(
            Host::instance().ask(QStringLiteral("Update cities Set name = %0").arg(QLatin1String(text))),
            isRefused)
            << text;
        EXPECT_THAT(raw(QStringLiteral("Select %0").arg(QLatin1String(text))), isRefused) << text;
        EXPECT_FALSE(label.setText(QLatin1String(text))) << text;
        EXPECT_THAT(label.lastError().toStdString(), isRefused) << text;
        try {
            adaptor::selectionOf(std::string("Select * From cities Where ") + text + " = 1", engine(),
                                 Host::instance().catalog);
            ADD_FAILURE() << text;
        } catch (const adaptor::SelectionError& error) {
            EXPECT_THAT(error.what(), isRefused) << text;
        }
    }
    EXPECT_EQ(files(), before);
}

TEST_F(ClosedDoors, SqliteItselfIsDefensive) {
    for (const auto& [option, expected] :
         {std::pair{SQLITE_DBCONFIG_DEFENSIVE, 1}, std::pair{SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
          std::pair{SQLITE_DBCONFIG_ENABLE_FTS3_TOKENIZER, 0}}) {
        int value = -1;
        EXPECT_EQ(sqlite3_db_config(database(), option, -1, &value), SQLITE_OK);
        EXPECT_EQ(value, expected) << option;
    }
    EXPECT_EQ(sqlite3_limit(database(), SQLITE_LIMIT_ATTACHED, -1), 0);
}

TEST_F(ClosedDoors, AHostOpensWhatItLoads) {
    const QString path = QStringLiteral(ORVANE_LOADED_MODULE);
    const QString calls[] = {QStringLiteral("Select loaded_answer()"),
                             QStringLiteral("Select answer From loaded_answers"),
                             QStringLiteral("Select Count(*) From loaded_answers")};
    engine().loadDatabaseModule(path.toUtf8().constData());
    for (const QString& call : calls) {
        EXPECT_THAT(raw(call), AnyOf(HasSubstr("not authorized"), HasSubstr("prohibited")))
            << call.toStdString();
    }
    {
        const engine::OwnStatements own;
        EXPECT_EQ(raw(calls[0]), "42");
    }
    engine().allowFunctions({QStringLiteral("LOADED_answer"), QStringLiteral("loaded_Answers")});
    for (const QString& call : calls) {
        EXPECT_THAT(raw(call), AnyOf("42", "1")) << call.toStdString();
    }
}

/// A grid is looked for in PROJ's own folders only: a pipe elsewhere, which nobody writes to, is not waited
/// for.
TEST_F(ClosedDoors, ACoordinateSystemNamesNoFiles) {
    const QByteArray pipe = Host::instance().path(QStringLiteral("grid.pipe")).toUtf8();
    ASSERT_EQ(mkfifo(pipe.constData(), S_IRUSR | S_IWUSR), 0);
    for (const char* definition :
         {"proj:+proj=longlat +ellps=bessel +nadgrids=%0 +type=crs",
          "proj:+proj=longlat +ellps=bessel +geoidgrids=%0 +type=crs", "proj:+init=%0:1 +type=crs",
          "wkt:GEOGCS[\"x\",DATUM[\"y\",SPHEROID[\"Bessel 1841\",6377397.155,299.1528128],"
          "EXTENSION[\"PROJ4_GRIDS\",\"%0\"]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]"
          "]"}) {
        const QString system = QString::fromLatin1(definition).arg(QString::fromUtf8(pipe));
        const std::string answer = Host::instance().ask(
            QStringLiteral("AsText(TransformToSLGeo(MakePoint(30, 60, 4326), '%0'))").arg(system));
        EXPECT_THAT(answer, AnyOf(StartsWith("POINT"), "NULL", StartsWith("error"))) << definition;
    }
}

} // namespace

} // namespace orvane
