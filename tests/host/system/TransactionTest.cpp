// Edits of files, failures in the middle, savepoints and rollbacks in random order: at every moment a table
// of a file has to show what an ordinary table of SQLite shows after the same statements, and so has the file
// itself after each commit.

#include "support/Host.h"

#include "host/providers/FileSource.h"
#include "host/providers/TestLayers.h"
#include "support/Query.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orvane/Engine.h>

#include <QDir>
#include <QFileInfo>

#include <random>

namespace orvane {
namespace {

using testing::Host;

QString ask(const QString& sql) {
    return QString::fromStdString(testing::answer(Host::instance().engine->engineDatabase(), sql));
}

/// Statements in random order on the table "t" of a file and on the table "model" of SQLite's own.
class RandomEdits {
public:
    RandomEdits(unsigned seed, QString file) : random_(seed), file_(std::move(file)) {
        const engine::OwnStatements own;
        ask(QStringLiteral("Drop Table If Exists model"));
        ask(QStringLiteral(
            "Create Temp Table model(k Integer Check (TypeOf(k) In ('integer', 'null')), name Text)"));
        ask(QStringLiteral("Insert Into model Select k, name From t"));
    }
    ~RandomEdits() { ask(QStringLiteral("Rollback")); }

    /// False once something was wrong.
    bool step() {
        const int kind = number(12);
        if (kind < 9) {
            edit();
        } else {
            control(kind);
        }
        const QString rows = QStringLiteral("Select k, name From %0 Order By k, name");
        EXPECT_EQ(ask(rows.arg(QStringLiteral("t"))).toStdString(),
                  ask(rows.arg(QStringLiteral("model"))).toStdString())
            << history();
        if (!isInTransaction_) {
            compareFile();
        }
        return !::testing::Test::HasFailure();
    }

private:
    int number(int most) { return static_cast<int>(random_() % static_cast<unsigned>(most)); }

    void edit() {
        const int next = ++inserted_ * 10;
        const int divisor = 2 + number(5);
        const QStringList edits{
            QStringLiteral("Insert Into {} (k, name) Values (%0, 'é %0')").arg(next),
            QStringLiteral("Insert Into {} (k, name) Values (%0, 'a'), (Null, 'é, \"b\"'), (%1, Null)")
                .arg(next)
                .arg(next + 1),
            QStringLiteral("Insert Into {} (k, name) Select k + %0, name From {} Where k % 7 = %1")
                .arg(next)
                .arg(number(7)),
            QStringLiteral("Update {} Set name = 'n' || k || '-%0' Where k % %1 = 1").arg(next).arg(divisor),
            QStringLiteral("Update {} Set k = k + 1, name = name Where k % %0 = 0").arg(divisor),
            QStringLiteral("Delete From {} Where k % %0 = %1").arg(divisor + 3).arg(number(divisor)),
            // The last two fail at some row.
            QStringLiteral("Update {} Set k = Case When k % %0 = 0 Then 'x' Else k + 5 End").arg(divisor),
            QStringLiteral("Insert Into {} (k, name) Values (%0, 'a'), ('x', 'b')").arg(next),
        };
        const QString statement = edits[number(edits.size())];
        done_ += statement;
        const auto fails = [&statement](const char* table) {
            const QString answer = ask(QString(statement).replace(QLatin1String("{}"), QLatin1String(table)));
            return answer.startsWith(QLatin1String("error"));
        };
        EXPECT_EQ(fails("t"), fails("model")) << history();
    }

    void control(int kind) {
        QString statement;
        if (!isInTransaction_) {
            statement = QStringLiteral("Begin");
            isInTransaction_ = true;
        } else if (kind == 9) {
            statement = number(2) == 0 ? QStringLiteral("Commit") : QStringLiteral("Rollback");
            isInTransaction_ = false;
            savepoints_ = 0;
        } else if (savepoints_ == 0 || number(3) == 0) {
            statement = QStringLiteral("Savepoint s%0").arg(++savepoints_);
        } else {
            const int chosen = 1 + number(savepoints_);
            const bool isReleased = number(2) == 0;
            statement =
                (isReleased ? QStringLiteral("Release s%0") : QStringLiteral("Rollback To s%0")).arg(chosen);
            savepoints_ = isReleased ? chosen - 1 : chosen;
        }
        done_ += statement;
        EXPECT_EQ(ask(statement).toStdString(), "") << history();
    }

    /// As somebody sees the file who opens it now.
    void compareFile() {
        const auto table = files::openFile(file_).front();
        std::vector<int> positions{table->schema()->indexOf(QStringLiteral("k")),
                                   table->schema()->indexOf(QStringLiteral("name"))};
        QStringList rows;
        for (const auto& row : files::readRows(*table, files::requestOf(positions))) {
            rows += QString::fromStdString(row[0] + '|' + row[1]);
        }
        const QString model =
            ask(QStringLiteral("Select IfNull('i:' || k, 'NULL'), IfNull('t:' || name, 'NULL') From model"));
        QStringList expected = model.isEmpty() ? QStringList() : model.split(QLatin1Char('\n'));
        rows.sort();
        expected.sort();
        EXPECT_EQ(rows.join(QLatin1Char('\n')).toStdString(), expected.join(QLatin1Char('\n')).toStdString())
            << history();
    }

    std::string history() const { return done_.join(QStringLiteral(";\n")).toStdString(); }

    std::mt19937 random_;
    const QString file_;
    QStringList done_;
    bool isInTransaction_ = false;
    int savepoints_ = 0, inserted_ = 0;
};

class Transactions : public ::testing::TestWithParam<files::Format> {};

TEST_P(Transactions, LeaveWhatSqliteWouldLeave) {
    const char* const more = std::getenv("ORVANE_RANDOM_EDITS");
    const int rounds = more ? std::atoi(more) : 3;
    for (int seed = 0; seed < rounds && !HasFailure(); ++seed) {
        const QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("t.") + QLatin1String(GetParam().extension));
        {
            const auto dataset = files::createDataset(GetParam(), path);
            OGRLayer* layer = dataset->CreateLayer("t", nullptr, wkbPoint, nullptr);
            OGRFieldDefn k("k", OFTInteger), name("name", OFTString);
            name.SetWidth(80);
            ASSERT_EQ(layer->CreateField(&k), OGRERR_NONE);
            ASSERT_EQ(layer->CreateField(&name), OGRERR_NONE);
            for (int i = 1; i <= 40; ++i) {
                OGRFeature feature(layer->GetLayerDefn());
                feature.SetField("k", i);
                feature.SetField("name", ("é " + std::to_string(i)).c_str());
                feature.SetGeometryDirectly(new OGRPoint(i, i));
                ASSERT_EQ(layer->CreateFeature(&feature), OGRERR_NONE);
            }
        }
        Host::instance().open(path);
        {
            RandomEdits edits(static_cast<unsigned>(seed), path);
            for (int i = 0; i < 80 && edits.step(); ++i) {
            }
        }
        Host::instance().closeAll();
        const QStringList left =
            QDir(directory.path()).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
        EXPECT_EQ(left, QStringList()); // no working copy
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, Transactions,
                         ::testing::Values(files::Format{"GPKG", "gpkg"}, files::Format{"GeoJSON", "geojson"},
                                           files::Format{"CSV", "csv"},
                                           files::Format{"ESRI Shapefile", "shp"}),
                         [](const auto& format) { return std::string(format.param.extension); });

} // namespace
} // namespace orvane
