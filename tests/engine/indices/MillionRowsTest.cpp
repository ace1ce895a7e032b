#include "IndexFixture.h"

#include <QFile>

#include <random>

namespace orvane::engine {

namespace {

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

class MillionRows : public IndexFixture {};

TEST_F(MillionRows, AreLoadedInBoundedMemoryAndAllFoundAgain) {
    constexpr int numRows = 1'000'000;
    constexpr unsigned numNames = 400'000;
    [[maybe_unused]] const qint64 before = peakMemory();
    ASSERT_TRUE(store_->createStorage(makeSchema({QMetaType::QString, QMetaType::LongLong})));
    const int byName = store_->addIndex({{0, Operation::Equal}, {1, Operation::Equal}});
    const int byNumber = store_->addIndex({{1, Operation::Equal}});
    const auto nameOf = [](unsigned number) {
        return "Участок №" + std::to_string(number * 7919 % numNames);
    };

    std::map<unsigned, std::vector<qint64>> sample; ///< the rows of some names
    auto names = store_->getLoader(byName);
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

} // namespace

} // namespace orvane::engine
