// Statements that are cancelled at any moment.

#include "support/Host.h"

#include "host/providers/TestLayers.h"
#include "support/Query.h"

#include <gtest/gtest.h>

#include <QFile>

#include <sqlite3.h>

#include <chrono>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <random>
#include <thread>

#include <pthread.h>
#include <time.h>

namespace orvane {

namespace {

using std::chrono::microseconds;
using testing::Host;

/// What one thread itself works, whatever else the machine does; any thread may ask.
class ThreadClock {
public:
    /// Of the calling thread.
    ThreadClock() { ::pthread_getcpuclockid(::pthread_self(), &clock_); }
    double seconds() const {
        timespec time{};
        ::clock_gettime(clock_, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
    }

private:
    clockid_t clock_{};
};

/// Seconds of work from a cancellation to the statement's end. Without optimisation it works several times
/// slower, under a sanitizer without a bound.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr double mostLate = std::numeric_limits<double>::infinity();
#elif defined(__OPTIMIZE__)
constexpr double mostLate = 0.1;
#else
constexpr double mostLate = 0.3;
#endif

/// Each takes far longer than it is allowed to.
constexpr const char* statements[] = {
    "Select Count(*) From numbers a, numbers b Where a.n + b.n = -1",
    "Select Count(*) From numbers a, numbers b Where a.s Like '%' & b.s",
    "Select a.s, Count(*) From numbers a, numbers b Group By a.s Having Count(*) < 0",
    "Select Count(*) From numbers Where Len(Repeat(s, 9000000 + n)) = 1",
    "Select Count(*) From numbers Where Repeat(s, 100000 + n) Like '%' & Repeat('e%x', 30) & 'q'",
    "Select Count(*) From numbers Where Repeat(s, 100000 + n) Glob '*' & Repeat('e*x', 30) & 'q'",
    "Select Count(*) From numbers Where InStr(UCase(Repeat(s, 300000 + n)), 'Ё') = 1",
    "Select Count(*) From cities c, countries k Where c.obj Within k.obj And k.pop < -1",
    "Select Count(*) From countries a, countries b Where a.obj Intersects b.obj And a.pop < -1",
    "Select Count(*) From countries a, countries b Where Distance(a.obj, b.obj) < 0",
    "Select ST_Area(ST_Union(Buffer(c.obj, 200, 'km'))) From cities c, cities d",
    "Select Area(ConvexHull(Collect(c.obj))) From cities c, numbers d",
    "Select Count(Distinct a.s & b.s) From numbers a, numbers b",
    "Select Max(UCase(a.s) & Format(b.n, '#,##0')) From numbers a, numbers b",
    "Select Count(*) From numbers a Join numbers b On a.s = b.s Join numbers c On b.n = c.n, numbers d",
    "With Recursive r(i) As (Select 1 Union All Select i + 1 From r) Select Count(*) From r",
    "Select Sum(r) From (Select n, r From numbers Order By s Desc, r), cities Order By 1",
    "Select Count(*) From endless",
    "Select Max(s) From endless Where i = 2",
};

/// Cancels the engine after a while, from another thread, until it is told that the statement has ended.
class Canceller {
public:
    Canceller(Engine& engine, microseconds delay)
        : thread_([this, &engine, delay] {
              std::unique_lock lock(mutex_);
              if (ended_.wait_for(lock, delay, [this] { return isEnded_; })) {
                  return;
              }
              cancelledAt_ = statementClock_.seconds();
              engine.cancelQuery();
              // One that falls between two statements has no effect; the host repeats it until the work has
              // ended.
              while (!ended_.wait_for(lock, std::chrono::milliseconds(2), [this] { return isEnded_; })) {
                  engine.cancelQuery();
              }
          }) {}
    ~Canceller() { end(); }

    /// Seconds that the calling thread, the statement's, worked from the cancellation on; 0 when there was
    /// none.
    double end() {
        const double now = statementClock_.seconds();
        {
            const std::lock_guard lock(mutex_);
            isEnded_ = true;
        }
        ended_.notify_one();
        if (thread_.joinable()) {
            thread_.join();
        }
        return cancelledAt_ ? now - *cancelledAt_ : 0;
    }

private:
    const ThreadClock statementClock_;
    std::mutex mutex_;
    std::condition_variable ended_;
    bool isEnded_ = false;
    std::optional<double> cancelledAt_;
    std::thread thread_;
};

class CancellationTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        Host& host = Host::instance();
        host.openExamples();
        const QString path = host.path(QStringLiteral("numbers.gpkg"));
        const auto dataset = files::createDataset({"GPKG", "gpkg"}, path);
        files::addLayerOfNumbers(*dataset, "numbers", 20'000);
        host.open(path);
        openEndlessView();
    }
    /// Rows that SQLite looks for within GDAL, and does not find.
    static void openEndlessView() {
        const QString path = Host::instance().path(QStringLiteral("endless.sqlite"));
        sqlite3* database = nullptr;
        ASSERT_EQ(sqlite3_open(path.toUtf8().constData(), &database), SQLITE_OK);
        EXPECT_EQ(
            sqlite3_exec(database,
                         "Create Table t(a); Create View endless As With Recursive r(i) As "
                         "(Select 1 Union All Select i + 1 From r) Select i, 'x' As s From r Where i < 3",
                         nullptr, nullptr, nullptr),
            SQLITE_OK);
        sqlite3_close(database);
        Host::instance().open(path);
    }
    static void TearDownTestSuite() { Host::instance().closeAll(); }
};

} // namespace

TEST_F(CancellationTest, EndsAnyStatementAtAnyMoment) {
    Host& host = Host::instance();
    const QByteArray given = qgetenv("ORVANE_TEST_CANCELLATIONS");
    const int times = given.isEmpty() ? 80 : given.toInt();
    std::mt19937 random(given.isEmpty() ? 7u : static_cast<unsigned>(times));
    int interrupted = 0;
    for (int i = 0; i < times; ++i) {
        const char* const statement = statements[static_cast<std::size_t>(i) % std::size(statements)];
        const QString sql = host.engine->translate(QLatin1String(statement));
        // Mostly soon, where statements begin and indices are built.
        const double share = std::uniform_real_distribution(0.0, 1.0)(random);
        const microseconds delay(static_cast<int>(share * share * share * 400'000));
        Canceller canceller(*host.engine, delay);
        const std::string answer = testing::answer(host.engine->engineDatabase(), sql);
        const double late = canceller.end();
        interrupted += answer.rfind("error", 0) == 0;
        EXPECT_LT(late, mostLate) << statement << " cancelled after " << delay.count() << " microseconds";
        ASSERT_EQ(testing::answer(host.engine->engineDatabase(),
                                  QStringLiteral("Select Count(*) From numbers Where n < 10")),
                  "9");
    }
    EXPECT_GT(interrupted, times / 2); // the others were done before
}

} // namespace orvane
