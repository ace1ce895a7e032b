// Changes of files through statements: what is refused and how that is told, which geometries are taken, and
// what is left when the program is killed half-way.

#include "host/providers/TestLayers.h"
#include "host/shell/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <csignal>
#include <map>

namespace orvane::shell {
namespace {

using testing::HasSubstr;

class Writing : public testing::Test {
protected:
    QString path(const char* name) const { return directory_.filePath(QString::fromUtf8(name)); }

    /// A GeoPackage layer "t" whose fields have every kind of rule, with one row.
    QString tableWithRules() const {
        const QString name = path("t.gpkg");
        const auto dataset = files::createDataset({"GPKG", "gpkg"}, name);
        OGRSpatialReference reference;
        reference.importFromEPSG(4326);
        OGRLayer* layer = dataset->CreateLayer("t", &reference, wkbUnknown, nullptr);
        OGRFieldDefn code("code", OFTInteger);
        code.SetNullable(FALSE);
        code.SetUnique(TRUE);
        OGRFieldDefn name5("name", OFTString);
        name5.SetWidth(5);
        name5.SetNullable(FALSE);
        name5.SetDefault("'нет'");
        OGRFieldDefn day("day", OFTDate);
        OGRFieldDefn size("size", OFTReal);
        for (OGRFieldDefn* field : {&code, &name5, &day, &size}) {
            EXPECT_EQ(layer->CreateField(field), OGRERR_NONE);
        }
        OGRFeature feature(layer->GetLayerDefn());
        feature.SetField("code", 1);
        feature.SetField("name", "один");
        EXPECT_EQ(layer->CreateFeature(&feature), OGRERR_NONE);
        return name;
    }

    static Answer run(const QString& file, const char* statement) {
        return runProgram({file, QStringLiteral("-F"), QStringLiteral("csv"), QStringLiteral("--no-header"),
                           QStringLiteral("-c"), QString::fromUtf8(statement)});
    }

    QTemporaryDir directory_;
};

struct Refusal {
    const char* statement;
    const char* message;
};

TEST_F(Writing, RefusalsNameTableColumnAndValueAndChangeNothing) {
    const QString file = tableWithRules();
    const Refusal refusals[] = {
        {"Insert Into t (code) Values ('abc')", "Table t, column code: expected a whole number"},
        {"Insert Into t (code) Values (1.5)", "not \"1.5\""},
        {"Insert Into t (code) Values (3000000000)", "not \"3000000000\""},
        {"Insert Into t (name) Values ('x')", "Table t: Column \"code\": a value is needed"},
        {"Update t Set code = Null", "Table t: Column \"code\": a value is needed"},
        {"Update t Set name = Null", "Table t: Column \"name\": a value is needed"},
        {"Insert Into t (code) Values (2), (3), (1)",
         "Table t: Column \"code\": the value \"1\" is there already"},
        {"Insert Into t (code, name) Values (2, 'шестьб')", "Table t, column name: expected text of up to 5"},
        {"Update t Set day = 'завтра'", "Table t, column day: expected a date yyyy-MM-dd, not \"завтра\""},
        {"Update t Set size = 'wide'", "Table t, column size: expected a number, not \"wide\""},
        {"Update t Set size = X'00'", "Table t, column size: expected a number"},
        {"Update t Set obj = 'POINT(1 2)'", "expected a geometry, not \"POINT(1 2)\""},
        {"Update t Set obj = X'0101'", "expected a geometry"},
        {"Update t Set rowid = 5", "Row numbers are given by the table"},
        {"Update t Set colour = 1", "there is no column \"colour\""},
        {"Insert Into t (code, name) Values (2)", "values"},
    };
    for (const Refusal& refusal : refusals) {
        const Answer answer = run(file, refusal.statement);
        EXPECT_EQ(answer.status, 1) << refusal.statement;
        EXPECT_THAT(answer.errors, HasSubstr(refusal.message)) << refusal.statement;
    }
    EXPECT_EQ(run(file, "Select code, name, day, size, obj From t").output, "1,один,,,\n");
    EXPECT_EQ(run(file, "Insert Into t (code) Values (2); Select name From t Where code = 2").output,
              "нет\n");
}

TEST_F(Writing, AReadOnlyTableSaysSo) {
    QFile file(path("old.csv"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("id,name\n1,\xC6\xF3\xEA\xEE\xE2\n"); // windows-1251
    file.close();
    const Answer answer =
        run(file.fileName() + QStringLiteral("|encoding=windows-1251"), "Update old Set name = 'x'");
    EXPECT_EQ(answer.status, 1);
    EXPECT_THAT(answer.errors, HasSubstr("old.csv"));
    EXPECT_THAT(answer.errors, HasSubstr("only be read"));
}

TEST_F(Writing, GeometriesOfEveryFormAreTaken) {
    const QString file = tableWithRules();
    const std::pair<const char*, const char*> values[] = {
        {"MakePoint(1, 2, 4326)", "POINT(1 2)"},
        {"ST_GeomFromText('LINESTRING(0 0, 1 1)', 4326)", "LINESTRING(0 0,1 1)"},
        {"ToOrvGeo(MakePoint(1, 2, 4326))", "POINT(1 2)"},
        {"AsBinary(MakePoint(1, 2))", "POINT(1 2)"},
        {"AsFGF(MakePoint(1, 2), 0)", "POINT(1 2)"},
        {"MakePointZ(1, 2, 3, 4326)", "POINT Z(1 2 3)"},
        {"Null", ""},
    };
    for (const auto& [value, expected] : values) {
        const std::string statement =
            "Update t Set obj = " + std::string(value) + "; Select obj From t Where obj Is Not Null";
        const Answer answer = run(file, statement.c_str());
        EXPECT_EQ(answer.errors, "") << value;
        std::string written = answer.output.substr(0, answer.output.find('\n'));
        written.erase(std::remove(written.begin(), written.end(), '"'), written.end());
        EXPECT_EQ(written, expected) << value;
    }
    run(file, "Update t Set obj = MakePoint(1113194.9079327357, 6446275.841017158, 3857)");
    EXPECT_EQ(run(file, "Select RoundBy(X(obj), 6), RoundBy(Y(obj), 6) From t").output, "10,50\n");
}

/// What tells the rows of the layer "n" of a GeoPackage from any other.
std::string fingerprint(const QString& file) {
    sqlite3* database = nullptr;
    sqlite3_open(file.toUtf8().constData(), &database);
    std::string text;
    for (const char* sql :
         {"Pragma integrity_check", "Select Count(*) || ' ' || Sum(n) || ' ' || Sum(Length(s)) From n"}) {
        sqlite3_exec(
            database, sql,
            [](void* out, int, char** values, char**) {
                *static_cast<std::string*>(out) += std::string(values[0] ? values[0] : "NULL") + '\n';
                return 0;
            },
            &text, nullptr);
    }
    sqlite3_close(database);
    return text;
}

TEST_F(Writing, AKilledProgramLeavesTheFileAsItWas) {
    const QString file = path("n.gpkg");
    files::addLayerOfNumbers(*files::createDataset({"GPKG", "gpkg"}, file), "n", 30'000);
    const std::string before = fingerprint(file);
    ASSERT_THAT(before, testing::StartsWith("ok\n30000 "));
    const std::pair<const char*, int> changes[] = {
        {"Update n Set n = n + 1, s = s & 'x'", 0},
        {"Update n Set n = n + 1, s = s & 'x'", 150},
        {"Insert Into n (n, s, obj) Select n, s, obj From n", 100},
        {"Delete From n Where n > 5", 60},
    };
    for (const auto& [statement, milliseconds] : changes) {
        RunningProgram program({file, QStringLiteral("-c"), QString::fromUtf8(statement)});
        while (!QFile::exists(file + QStringLiteral("-journal")) && program.isRunning()) { // until it writes
            program.waitFor(1);
        }
        program.waitFor(milliseconds);
        EXPECT_TRUE(program.isRunning()) << statement << " was done too soon";
        program.signal(SIGKILL);
        program.finish();
        EXPECT_EQ(fingerprint(file), before) << statement;
        EXPECT_EQ(run(file, "Select Count(*) From n").output, "30000\n");
    }
    EXPECT_EQ(run(file, "Update n Set n = n + 1; Select Count(*) From n").output, "30000\n");
    EXPECT_NE(fingerprint(file), before);
}

/// The bytes of all files of a directory, by their names.
std::map<QString, QByteArray> contentsOf(const QString& directory) {
    std::map<QString, QByteArray> contents;
    for (const QFileInfo& info :
         QDir(directory).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
        QFile file(info.filePath());
        contents[info.fileName()] = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }
    return contents;
}

class WritingFormat : public Writing, public testing::WithParamInterface<const char*> {};

TEST_P(WritingFormat, AFullDiskFailsTheStatementAndLeavesEverythingAsItWas) {
    const QString cities = QStringLiteral(ORVANE_EXAMPLE_DATA "/cities.shp");
    const QString file = path("t.") + QLatin1String(GetParam());
    const QStringList make{cities, QStringLiteral("-o"), file, QStringLiteral("-c"),
                           QStringLiteral("Select name, population As n, obj From cities Limit 3000")};
    ASSERT_EQ(runProgram(make).status, 0);
    const auto before = contentsOf(directory_.path());
    qint64 largest = 0;
    for (const auto& [name, bytes] : before) {
        largest = std::max<qint64>(largest, bytes.size());
    }
    const std::pair<const char*, qint64> changes[] = {
        {"Update t Set name = 'a name of about forty characters for all'", largest},
        {"Insert Into t (name, n, obj) Select name, n, obj From t", largest},
        {"Delete From t Where n % 5 = 0", largest / 3},
    };
    for (const auto& [statement, room] : changes) {
        const bool growsInPlace = QByteArray(GetParam()) == "shp" || QByteArray(GetParam()) == "gpkg";
        if (growsInPlace && *statement == 'U') {
            continue; // there is room for every name
        }
        const Answer answer =
            runWithFullDisk({file, QStringLiteral("-c"), QString::fromUtf8(statement)}, room);
        EXPECT_EQ(answer.status, 1) << statement;
        EXPECT_THAT(answer.errors, HasSubstr("t." + std::string(GetParam()))) << statement;
        EXPECT_EQ(contentsOf(directory_.path()), before) << statement;
    }
    QStringList replace = make + QStringList{QStringLiteral("--overwrite")};
    replace[4].replace(QLatin1String("3000"), QLatin1String("8000"));
    const Answer answer = runWithFullDisk(replace, largest);
    EXPECT_EQ(answer.status, 1);
    EXPECT_EQ(contentsOf(directory_.path()), before);
}

INSTANTIATE_TEST_SUITE_P(Program, WritingFormat, testing::Values("gpkg", "csv", "geojson", "shp", "fgb"));

/// Holds a lock on a database of SQLite's.
class Lock {
public:
    Lock(const QString& file, const char* begin) {
        sqlite3_open(file.toUtf8().constData(), &database_);
        EXPECT_EQ(sqlite3_exec(database_, begin, nullptr, nullptr, nullptr), SQLITE_OK);
    }
    ~Lock() { sqlite3_close(database_); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    sqlite3* database_ = nullptr;
};

TEST_F(Writing, ALockFailsTheStatementOrIsWaitedForUntilCancelled) {
    const QString original = path("n.gpkg");
    files::addLayerOfNumbers(*files::createDataset({"GPKG", "gpkg"}, original), "n", 100);
    const std::string before = fingerprint(original);
    struct Locked {
        QString file;
        std::unique_ptr<Lock> lock;
        std::unique_ptr<RunningProgram> program;
    };
    std::vector<Locked> all; // each waits for five seconds: all at once
    for (const char* held : {"Begin; Select Count(*) From n", "Begin Immediate"}) {
        for (const char* statement : {"Update n Set n = 0", "Insert Into n (n) Values (1)", "Delete From n",
                                      "Update n Set s = 'x'"}) {
            const QString file = path("n") + QString::number(all.size()) + QStringLiteral(".gpkg");
            ASSERT_TRUE(QFile::copy(original, file));
            auto lock = std::make_unique<Lock>(file, held);
            all.push_back({file, std::move(lock),
                           std::make_unique<RunningProgram>(
                               QStringList{file, QStringLiteral("-c"), QString::fromUtf8(statement)})});
        }
    }
    all[3].program->waitFor(2500); // the last of each kind is cancelled
    for (const std::size_t cancelled : {3u, 7u}) {
        all[cancelled].program->signal(SIGINT);
    }
    for (std::size_t i = 0; i < all.size(); ++i) {
        const Answer answer = all[i].program->finish();
        if (i % 4 == 3) {
            EXPECT_EQ(answer.status, 130) << answer.errors;
        } else {
            EXPECT_EQ(answer.status, 1) << i;
            EXPECT_THAT(answer.errors,
                        testing::AllOf(HasSubstr(QFileInfo(all[i].file).fileName().toStdString()),
                                       HasSubstr("lock")));
        }
        all[i].lock.reset();
        EXPECT_EQ(fingerprint(all[i].file), before) << i;
    }
    EXPECT_EQ(run(original, "Delete From n; Select Count(*) From n").output, "0\n");
}

struct SelectionCase {
    const char* selection;
    const char* answer; ///< of "Select name From Selection Order By name", or an error
};

TEST_F(Writing, ASelectionComesFromAQuery) {
    const QString cities = QStringLiteral(ORVANE_EXAMPLE_DATA "/cities.shp");
    const QString countries = QStringLiteral(ORVANE_EXAMPLE_DATA "/countries.gpkg");
    const SelectionCase cases[] = {
        {"Select name From cities Where name = 'Paris' And country = 'FR'", "Paris\n"},
        {"Select 1 From cities c, countries k Where c.obj Within k.obj And k.iso_a2 = 'AT' And population > "
         "1000000",
         "Vienna\n"},
        {"select distinct country From cities Order By population Desc Limit 2", "Istanbul\nShanghai\n"},
        {"Select (Select Max(pop) From countries) From cities Where name Like 'São P%'", "São Paulo\n"},
        {"Select Count(*) From cities", "one Select from a table"},
        {"Select country From cities Group By country", "one Select from a table"},
        {"Select a From (Select 1 As a)", "one Select from a table"},
        {"Select name From cities Union Select name From cities", "one Select from a table"},
        {"Select nam From cities", "there is no column \"nam\"; did you mean \"name\""},
        {"Select name From citees", "there is no table \"citees\""},
        {"Select name Form cities", "did you mean \"From\""},
        {"Select name From Selection", "selection"},
    };
    for (const SelectionCase& selection : cases) {
        const Answer answer =
            runProgram({cities, countries, QStringLiteral("--select"), QString::fromUtf8(selection.selection),
                        QStringLiteral("-F"), QStringLiteral("csv"), QStringLiteral("--no-header"),
                        QStringLiteral("-c"), QStringLiteral("Select name From Selection Order By name")});
        if (answer.status == 0) {
            EXPECT_EQ(answer.output, selection.answer) << selection.selection;
        } else {
            EXPECT_EQ(answer.status, 2) << selection.selection;
            EXPECT_THAT(answer.errors, HasSubstr(selection.answer)) << selection.selection;
        }
    }
}

} // namespace
} // namespace orvane::shell
