// Programs that are killed while they write: whoever opens the file next finds the rows as they were before,
// or as they are after, and a file that takes further changes.

#include "host/providers/FileSource.h"
#include "host/providers/LayerTable.h"
#include "host/providers/TestLayers.h"
#include "host/shell/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gdal_utils.h>
#include <sqlite3.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <map>
#include <optional>
#include <random>

namespace orvane::shell {
namespace {

using files::Format;
constexpr std::size_t rowCount = 1500;

using Rows = std::vector<std::vector<std::string>>;

struct Change {
    const char* name;
    QStringList arguments; ///< "%0" stands for the file
};

/// What a program does to the file "t", over and over.
std::vector<Change> changesOf(const Format& format) {
    const auto statement = [](const char* text) {
        return QStringList{QStringLiteral("%0"), QStringLiteral("-c"), QLatin1String(text)};
    };
    std::vector<Change> changes{
        {"Delete", statement("Delete From t Where population % 7 = 0")},
        {"Update", statement("Update t Set population = population + 1, name = name & 'x'")},
        {"Insert", statement("Insert Into t (population, name, obj) Select population, name, obj From t")},
    };
    static const QStringList results{QStringLiteral("gpkg"), QStringLiteral("shp"), QStringLiteral("csv"),
                                     QStringLiteral("geojson"), QStringLiteral("fgb")};
    if (results.contains(QLatin1String(format.extension))) {
        const QStringList overwriting{exampleFile("cities.shp"), QStringLiteral("--overwrite"),
                                      QStringLiteral("-c")};
        changes.push_back({"-o", overwriting + QStringList{QStringLiteral("Select name, obj From cities"),
                                                           QStringLiteral("-o"), QStringLiteral("%0")}});
        changes.push_back(
            {"Into", overwriting + QStringList{QStringLiteral("Select name, obj Into '%0' From cities")}});
    }
    return changes;
}

std::string integrity(const QString& file) {
    sqlite3* database = nullptr;
    sqlite3_open(file.toUtf8().constData(), &database);
    std::string answer;
    sqlite3_exec(
        database, "Pragma integrity_check",
        [](void* out, int, char** values, char**) {
            *static_cast<std::string*>(out) += values[0];
            return 0;
        },
        &answer, nullptr);
    sqlite3_close(database);
    return answer;
}

class Kill : public testing::TestWithParam<Format> {
protected:
    Kill() {
        GDALAllRegister();
        const std::string rows = std::to_string(rowCount);
        const char* const words[] = {"-f",     GetParam().driver, "-nln", "t", "-select", "name,population",
                                     "-limit", rows.c_str(),      nullptr};
        auto* const options = GDALVectorTranslateOptionsNew(const_cast<char**>(words), nullptr);
        GDALDatasetH source = files::openDataset(exampleFile("cities.shp")).release();
        GDALClose(GDALVectorTranslate(nameIn(originals_).toUtf8().constData(), nullptr, 1, &source, options,
                                      nullptr));
        GDALClose(source);
        GDALVectorTranslateOptionsFree(options);
    }

    QString file() const { return nameIn(work_); }
    static QString nameIn(const QTemporaryDir& directory) {
        return directory.filePath(QStringLiteral("t.") + QLatin1String(GetParam().extension));
    }

    /// Puts the file into a directory of its own.
    void restore() const {
        namespace fs = std::filesystem;
        const fs::path work(work_.path().toStdString());
        fs::remove_all(work);
        fs::copy(originals_.path().toStdString(), work, fs::copy_options::recursive);
    }
    QStringList argumentsOf(const Change& change) const {
        QStringList arguments = change.arguments;
        return arguments.replaceInStrings(QStringLiteral("%0"), file());
    }

    /// The rows that who opens the file finds, in any order.
    Rows rows() const {
        try {
            const auto tables = files::openFile(file());
            auto found = files::readRows(*tables.front(), files::everything(*tables.front()));
            std::sort(found.begin(), found.end());
            return found;
        } catch (const std::exception& error) {
            return {{error.what()}};
        }
    }

    /// What a change that is not disturbed leaves.
    const Rows& rowsAfter(const Change& change) {
        auto& known = after_[change.name];
        if (!known) {
            restore();
            const Answer answer = runProgram(argumentsOf(change));
            EXPECT_EQ(answer.status, 0) << answer.errors;
            known = rows();
        }
        return *known;
    }

    /// After a kill.
    void expectOneOrTheOther(const Change& change) {
        const Rows found = rows();
        const std::string database =
            QByteArray(GetParam().driver) == "GPKG" || QByteArray(GetParam().driver) == "SQLite"
                ? integrity(file())
                : "ok";
        EXPECT_EQ(database, "ok");
        const QStringList left = QDir(work_.path()).entryList(QDir::Files | QDir::Hidden);
        EXPECT_FALSE(left.contains(QStringLiteral(".orvane-exchange")));
        EXPECT_TRUE(left.filter(QStringLiteral("packed")).isEmpty());
        if (found != before_) {
            const Rows& expected = rowsAfter(change);
            EXPECT_TRUE(found == expected) << found.size() << " rows, before " << before_.size() << ", after "
                                           << expected.size() << "; the first " << found.front().front();
        }
    }
    void expectChangeable(const Change& change) const {
        const Answer answer = runProgram(argumentsOf(change));
        EXPECT_EQ(answer.status, 0) << answer.errors;
        EXPECT_NE(rows(), before_);
    }

    QTemporaryDir originals_, work_;
    Rows before_;
    std::map<std::string, std::optional<Rows>> after_;
};

TEST_P(Kill, AtAnyMomentLeavesTheOldRowsOrTheNew) {
    const QByteArray given = qgetenv("ORVANE_TEST_KILLS");
    const int times = given.isEmpty() ? 6 : given.toInt();
    std::mt19937 random(given.isEmpty() ? 5u : static_cast<unsigned>(times));
    const std::vector<Change> changes = changesOf(GetParam());
    restore();
    before_ = rows();
    ASSERT_EQ(before_.size(), rowCount);
    QElapsedTimer timer;
    timer.start();
    rowsAfter(changes.front());
    const int duration = static_cast<int>(timer.elapsed());
    for (int i = 0; i < times; ++i) {
        const Change& change = changes[static_cast<std::size_t>(i) % changes.size()];
        const int delay = duration / 4 + static_cast<int>(random() % static_cast<unsigned>(duration));
        SCOPED_TRACE(std::string(change.name) + " killed after " + std::to_string(delay) + " ms of " +
                     std::to_string(duration));
        restore();
        RunningProgram program(argumentsOf(change));
        program.waitFor(delay);
        program.signal(SIGKILL);
        program.finish();
        expectOneOrTheOther(change);
    }
    restore();
    expectChangeable(changes.front());
}

class KillInExchange : public Kill {};

// Every call that gives a name to one of the files or takes one away is the last of some program.
TEST_P(KillInExchange, LeavesTheOldRowsOrTheNew) {
    const std::vector<Change> changes = changesOf(GetParam());
    restore();
    before_ = rows();
    for (const Change& change : {changes.front(), changes.back()}) {
        constexpr int most = 60;
        int call = 1;
        for (bool isKilled = true; isKilled && call < most && !HasFailure(); ++call) {
            SCOPED_TRACE(std::string(change.name) + " killed at call " + std::to_string(call));
            restore();
            qputenv("LD_PRELOAD", ORVANE_KILL_AT_CALL);
            qputenv("ORVANE_KILL_AT", QByteArray::number(call));
            RunningProgram program(argumentsOf(change));
            qunsetenv("LD_PRELOAD");
            isKilled = program.finish().status != 0;
            expectOneOrTheOther(change);
        }
        EXPECT_GT(call, 6) << change.name;
        EXPECT_LT(call, most) << change.name;
    }
}

std::string formatName(const testing::TestParamInfo<Format>& format) {
    return format.param.extension;
}

INSTANTIATE_TEST_SUITE_P(Formats, Kill,
                         testing::Values(Format{"GPKG", "gpkg"}, Format{"SQLite", "sqlite"},
                                         Format{"CSV", "csv"}, Format{"GeoJSON", "geojson"},
                                         Format{"FlatGeobuf", "fgb"}, Format{"ESRI Shapefile", "shp"},
                                         Format{"MapInfo File", "tab"}, Format{"XLSX", "xlsx"},
                                         Format{"OpenFileGDB", "gdb"}),
                         formatName);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // which must be loaded first themselves
INSTANTIATE_TEST_SUITE_P(Formats, KillInExchange,
                         testing::Values(Format{"ESRI Shapefile", "shp"}, Format{"MapInfo File", "tab"}),
                         formatName);
#endif
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(KillInExchange);

} // namespace
} // namespace orvane::shell
