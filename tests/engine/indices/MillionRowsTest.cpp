#include "IndexFixture.h"

#include "platform/work/Cancellation.h"

#include <QFile>

#include <chrono>
#include <thread>

namespace orvane::engine {

namespace {

/// How much slower than usual things may be: unoptimised code, and code under a sanitizer.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int slowdown = 30;
#elif !defined(__OPTIMIZE__)
constexpr int slowdown = 10;
#else
constexpr int slowdown = 3; // for a busy machine
#endif

/// The largest resident size of this process so far, in KiB (proc(5), VmHWM).
qint64 peakMemory() {
    QFile status(QStringLiteral("/proc/self/status"));
    EXPECT_TRUE(status.open(QIODevice::ReadOnly));
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:")) {
            return line.mid(6).trimmed().split(' ').front().toLongLong();
        }
    }
    return 0;
}

constexpr int numRows = 1'000'000;
constexpr unsigned numNames = 400'000;

std::string nameOf(unsigned number) {
    return "Участок №" + std::to_string(number * 7919 % numNames);
}

class MillionRows : public IndexFixture {};

TEST_F(MillionRows, AreLoadedInBoundedMemoryAndAllFoundAgain) {
    [[maybe_unused]] const qint64 before = peakMemory();
    ASSERT_TRUE(store_->createStorage(makeSchema({QMetaType::QString, QMetaType::LongLong})));
    const int byName = store_->addIndex({{0, Operation::Equal}, {1, Operation::Equal}});
    const int byNumber = store_->addIndex({{1, Operation::Equal}});

    std::map<unsigned, std::vector<qint64>> sample; ///< the rows of some names
    std::int64_t reported = 0;
    std::int64_t largestReport = 0;
    work::Progress::exchangeWatcher([&](const work::Progress::State& state) {
        largestReport = std::max(largestReport, state.done - reported);
        reported = std::max(reported, state.done);
    });
    work::Progress progress(QStringLiteral("индекс"), 2 * numRows);
    auto names = store_->getLoader(byName, &progress);
    for (int row = 0; row < numRows; ++row) {
        const unsigned number = unsigned(row) % numNames;
        const std::string name = nameOf(number);
        names->addRow(row, Cells{dp::Cell::ofText(name), dp::Cell::ofInteger(row)});
        if (number % 40'000 == 1) {
            sample[number].push_back(row);
        }
    }
    names->finish();
    names.reset();
    work::Progress::exchangeWatcher({});
    EXPECT_EQ(reported, 2 * numRows);
    EXPECT_LE(largestReport, numRows / 100) << "at least a hundred reports on the way";
    auto numbers = store_->getLoader(byNumber);
    for (int row = 0; row < numRows; ++row) {
        numbers->addRow(row, Cells{dp::Cell::ofInteger(qint64(row) * 31 % 1000)});
    }
    numbers->finish();
    numbers.reset();

    EXPECT_EQ(store_->statistics(byName).rows, numRows);
    EXPECT_EQ(store_->statistics(byNumber).largestGroup, 1000);
    EXPECT_EQ(store_->statistics(byNumber).smallestGroup, 1000);

    const Columns equal = {{0, Operation::Equal}};
    const auto lookup = store_->getLookup(byName, equal, EngineIndices::RowOrder::Ascending);
    for (const auto& [number, rows] : sample) {
        const std::string name = nameOf(number);
        EXPECT_EQ(rowsOf(*lookup, {dp::Cell::ofText(name)}), rows) << name;
    }
    const Columns atLeast = {{1, Operation::GreaterOrEqual}};
    EXPECT_EQ(rowsOf(*store_->getLookup(byNumber, atLeast), {dp::Cell::ofInteger(990)}).size(), 10'000U);

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // which take memory of their own
    // One portion of rows while it is sorted, and the page cache.
    constexpr qint64 limit = 256 * 1024;
    EXPECT_LT(peakMemory() - before, limit);
#endif
}

TEST_F(MillionRows, StopLoadingWithinATenthOfASecond) {
    ASSERT_TRUE(store_->createStorage(makeSchema({QMetaType::QString})));
    const int byName = store_->addIndex({{0, Operation::Equal}});
    for (const auto delay : {std::chrono::milliseconds(40), std::chrono::milliseconds(400)}) {
        const auto loader = store_->getLoader(byName);
        for (int row = 0; row < numRows; ++row) {
            loader->addRow(row, Cells{dp::Cell::ofText(nameOf(unsigned(row)))});
        }
        std::chrono::steady_clock::time_point cancelled;
        std::thread user([&cancelled, delay] { // while rows are sorted, while they are stored
            std::this_thread::sleep_for(delay);
            cancelled = std::chrono::steady_clock::now();
            work::Cancellation::cancelAll();
        });
        EXPECT_THROW(loader->finish(), work::Cancelled);
        const auto stopped = std::chrono::steady_clock::now();
        user.join();
        EXPECT_LT(stopped - cancelled, std::chrono::milliseconds(100 * slowdown));
    }
    EXPECT_EQ(store_->statistics(byName).known, 0U);
    EXPECT_TRUE(rowsOf(*store_->getLookup(byName, {}), {}).empty());
}

} // namespace

} // namespace orvane::engine
