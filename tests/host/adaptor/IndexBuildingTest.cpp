#include "AdaptorFixture.h"

#include "host/adaptor/explaining/StatementExplanation.h"
#include "platform/core/TypedSettings.h"
#include "platform/di/ServiceLocator.h"
#include "platform/log/Logger.h"
#include "platform/work/Cancellation.h"
#include "platform/work/Progress.h"

#include <QDir>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <sqlite3.h>

namespace orvane {

namespace {

using testing::attribute;
using testing::MemoryTable;

/// Settings as a host has them, and a log that can be read.
class IndexBuildingTest : public testing::AdaptorTest {
protected:
    void SetUp() override {
        AdaptorTest::SetUp();
        settings_->setValue(DefaultSettingsList::IndexDirectory, directory_.path());
        serviceLocator().exchange(settings_);
        sink_ = loggerInstance()->exchangeSink([this](const LogEntry& entry) { log_ += entry.text; });
    }
    void TearDown() override {
        work::Progress::exchangeWatcher({});
        loggerInstance()->exchangeSink(sink_);
        serviceLocator().exchange<TypedSettings>(nullptr);
        AdaptorTest::TearDown();
    }

    /// 6,000 rows under a name of their own: the engine keeps a store per name.
    std::shared_ptr<MemoryTable> openItems(const char* name) {
        std::vector<MemoryTable::Row> rows;
        for (qlonglong i = 0; i < 6'000; ++i) {
            rows.push_back({i / 2});
        }
        return open(name, {attribute("number", QMetaType::LongLong)}, std::move(rows));
    }

    /// Looks every sixth number up, in one statement that is worth an index. Each look-up has a cursor of its
    /// own, so that the rows are not kept as those of a join are.
    static std::string lookupsIn(const char* name) {
        return std::string("With Recursive n(i) As (Select 0 Union All Select i + 1 From n Where i < 499) "
                           "Select Sum((Select Count(*) From ") +
               name + " t Where t.number = n.i * 6)) From n";
    }

    static QString explanation(const std::string& sql) {
        auto* database =
            *static_cast<sqlite3* const*>(engine().engineDatabase().driver()->handle().constData());
        const adaptor::StatementExplanation explanation(database, sql);
        EXPECT_EQ(ask(sql), "1000");
        return explanation.lines().join(QLatin1Char('\n'));
    }

    QStringList files() const { return QDir(directory_.path()).entryList(QDir::Files); }

    std::shared_ptr<TypedSettings> settings_ = std::make_shared<TypedSettings>();
    QTemporaryDir directory_;
    CuteMessageLogger::Sink sink_;
    QStringList log_;
};

} // namespace

TEST_F(IndexBuildingTest, TellsHowFarItIsAndLogsWhatItMade) {
    const auto table = openItems("told");
    std::vector<work::Progress::State> states;
    work::Progress::exchangeWatcher(
        [&states](const work::Progress::State& state) { states.push_back(state); });
    EXPECT_TRUE(explanation(lookupsIn("told")).contains(QStringLiteral("сделан сейчас")));
    ASSERT_GT(states.size(), 10U);
    EXPECT_EQ(states.front().work, QStringLiteral("индекс told(number)"));
    EXPECT_EQ(states.front().total, 12'000);
    for (std::size_t i = 1; i + 1 < states.size(); ++i) {
        EXPECT_GE(states[i].done, states[i - 1].done);
        EXPECT_LE(states[i].done, 12'000);
    }
    EXPECT_EQ(states[states.size() - 2].done, 12'000);
    EXPECT_TRUE(states.back().work.isEmpty());
    ASSERT_EQ(log_.size(), 1);
    EXPECT_TRUE(log_.front().startsWith(QStringLiteral("Индекс told(number): строк 6000, ")));
    EXPECT_EQ(files().size(), 1);
}

TEST_F(IndexBuildingTest, EndsWhenTheQueryIsCancelledAndBeginsAfresh) {
    const auto table = openItems("stopped");
    for (const qint64 from : {1, 7'000}) { // while rows are read, while they are stored
        bool stopped = false;
        work::Progress::exchangeWatcher([&stopped, from](const work::Progress::State& state) {
            if (state.done >= from && !stopped) {
                stopped = true;
                work::Cancellation::cancelAll();
            }
        });
        QSqlQuery query(engine().engineDatabase());
        EXPECT_FALSE(query.exec(QString::fromStdString(lookupsIn("stopped"))) && query.next());
        EXPECT_TRUE(stopped);
        EXPECT_EQ(query.lastError().nativeErrorCode(), QString::number(SQLITE_INTERRUPT));
    }
    work::Progress::exchangeWatcher({});
    EXPECT_TRUE(
        explanation(lookupsIn("stopped")).contains(QStringLiteral("индекс по number (сделан сейчас")));
}

TEST_F(IndexBuildingTest, WithoutAPlaceForItQueriesAreAnsweredAllTheSame) {
    settings_->setValue(DefaultSettingsList::IndexDirectory, QStringLiteral("/proc"));
    const auto table = openItems("homeless");
    EXPECT_TRUE(explanation(lookupsIn("homeless")).contains(QStringLiteral("нет индекса для number: ")));
    ASSERT_FALSE(log_.isEmpty());
    EXPECT_EQ(log_.front(), QStringLiteral("Негде хранить индекс homeless(number)"));
    EXPECT_LT(log_.size(), 20) << "it is not tried at every scan";
}

TEST_F(IndexBuildingTest, AFailureWhileItIsMadeIsLoggedAndTheQueryGoesOn) {
    struct Unreadable : MemoryTable {
        using MemoryTable::MemoryTable;
        std::unique_ptr<dp::Cursor> openCursor(const dp::ScanRequest& request) override {
            if (request.terms.empty() && !request.ids) { // an index reads all rows
                throw std::runtime_error("torn page");
            }
            return MemoryTable::openCursor(request);
        }
    };
    std::vector<MemoryTable::Row> rows(2'000, {QVariant(7LL)});
    catalog().add(std::make_shared<Unreadable>(QStringLiteral("torn"),
                                               QVector{attribute("number", QMetaType::LongLong)}, rows));
    QCoreApplication::processEvents();
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(ask(lookupsIn("torn")), "0");
    }
    ASSERT_FALSE(log_.isEmpty());
    EXPECT_EQ(log_.front(), QStringLiteral("Индекс torn(number) не сделан: torn page"));
    EXPECT_LT(log_.size(), 40) << "it is not tried at every scan";
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(IndexBuildingTest, IsLeftOutWhenTheHostSwitchesItOff) {
    settings_->setValue(DefaultSettingsList::NoAttributeIndices, true);
    const auto table = openItems("scanned");
    const QString told = explanation(lookupsIn("scanned")).simplified();
    EXPECT_TRUE(told.contains(QStringLiteral("просмотр всей таблицы, раз: 500 "
                                             "строк 1000, ожидалось 25 на раз, прочитано 3000000 "
                                             "нет индекса для number =: индексы выключены")))
        << told.toStdString();
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(IndexBuildingTest, GoesWithItsFileWhenTheTableChangesOrCloses) {
    const auto table = openItems("edited");
    EXPECT_TRUE(explanation(lookupsIn("edited")).contains(QStringLiteral("сделан сейчас")));
    EXPECT_EQ(files().size(), 1);
    const QStringList first = files();
    ask("Delete From edited Where number >= 2700");
    EXPECT_EQ(ask("Select Count(*) From edited Where number = 5"), "2");
    EXPECT_TRUE(files().isEmpty());
    EXPECT_EQ(ask(lookupsIn("edited")), "900");
    EXPECT_EQ(files().size(), 1);
    EXPECT_NE(files(), first);
    engine().clearIndices(table);
    EXPECT_TRUE(files().isEmpty());
    EXPECT_EQ(ask(lookupsIn("edited")), "900");
    EXPECT_EQ(files().size(), 1);
    catalog().close(table->name());
    QCoreApplication::processEvents();
    EXPECT_TRUE(files().isEmpty());
}

} // namespace orvane
