#include "host/providers/reading/ReadAhead.h"
#include "host/providers/FileSource.h"
#include "host/providers/TestLayers.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <atomic>
#include <chrono>
#include <set>
#include <stdexcept>
#include <thread>

namespace orvane::files {
namespace {

/// What a reader did, told from outside.
struct Account {
    std::atomic<int> given = 0;
    std::atomic<bool> isStopped = false;
    std::mutex mutex;
    std::set<std::thread::id> threads;
};

/// Batches whose numbers of rows count from 1.
class Counting final : public BatchReader {
public:
    Counting(std::shared_ptr<Account> account, int batches, std::size_t bytes, bool fails)
        : account_(std::move(account)), batches_(batches), bytes_(bytes), fails_(fails) {}

    bool next(ColumnBatch& batch) override {
        {
            const std::lock_guard lock(account_->mutex);
            account_->threads.insert(std::this_thread::get_id());
        }
        if (account_->given == batches_) {
            return fails_ ? throw std::runtime_error("the file ends too early") : false;
        }
        batch.rows = ++account_->given;
        batch.fids.bytes = bytes_;
        return true;
    }
    void stop() override { account_->isStopped = true; }

private:
    const std::shared_ptr<Account> account_;
    const int batches_;
    const std::size_t bytes_;
    const bool fails_;
};

TEST(ReadAhead, PassesAllOnThenTheFailure) {
    for (const int batches : {0, 1, 2, 3, 50}) {
        for (const bool fails : {false, true}) {
            const auto account = std::make_shared<Account>();
            ReadAhead reader(std::make_unique<Counting>(account, batches, 1, fails));
            ColumnBatch batch;
            for (int i = 1; i <= batches; ++i) {
                ASSERT_TRUE(reader.next(batch));
                EXPECT_EQ(batch.rows, i);
            }
            if (fails) {
                EXPECT_THROW(reader.next(batch), std::runtime_error);
            } else {
                EXPECT_FALSE(reader.next(batch));
                EXPECT_FALSE(reader.next(batch));
            }
            EXPECT_EQ(account->threads.size(), batches == 0 ? 1U : 2U);
        }
    }
}

TEST(ReadAhead, HoldsFewBatchesAndStopsWithItsCursor) {
    using namespace std::chrono_literals;
    struct Case {
        int taken;
        std::size_t bytes;
        int mostGiven;
    };
    for (const Case& each :
         {Case{1, 1, 1}, Case{2, 1, 4}, Case{9, 1, 11}, Case{2, std::size_t{1} << 30, 3}}) {
        const auto account = std::make_shared<Account>();
        auto reader =
            std::make_unique<ReadAhead>(std::make_unique<Counting>(account, 1'000'000, each.bytes, false));
        ColumnBatch batch;
        for (int i = 0; i < each.taken; ++i) {
            ASSERT_TRUE(reader->next(batch));
        }
        for (int i = 0; i < 500 && account->given < each.mostGiven; ++i) {
            std::this_thread::sleep_for(1ms);
        }
        std::this_thread::sleep_for(5ms);
        EXPECT_EQ(account->given, each.mostGiven);
        reader.reset();
        EXPECT_EQ(account->isStopped, each.taken > 1);
        EXPECT_EQ(account.use_count(), 1) << "no thread reads on";
    }
}

/// Cursors that end anywhere leave nothing behind, and give the rows that one by one would have given.
TEST(ReadAhead, SeveralCursorsOverOneFile) {
    const QTemporaryDir directory;
    constexpr int rows = 40'000;
    for (const Format& format : {Format{"GPKG", "gpkg"}, Format{"FlatGeobuf", "fgb"}, Format{"CSV", "csv"}}) {
        const auto path = directory.filePath(QStringLiteral("many.") + QLatin1String(format.extension));
        addLayerOfNumbers(*createDataset(format, path), "many", rows);
        const auto table = openFile(path).front();
        const int number = table->schema()->indexOf(QStringLiteral("n"));
        const auto request = requestOf({number});
        std::vector<std::unique_ptr<dp::Cursor>> cursors;
        for (const int end : {1, 8192, 8193, 30'000}) {
            const auto cursor = table->openCursor(request);
            for (int row = 0; row < end; ++row) {
                ASSERT_TRUE(cursor->next());
            }
            cursors.push_back(table->openCursor(request));
        }
        qint64 sum = 0;
        for (int row = 0; row < rows; ++row) {
            for (const auto& cursor : cursors) {
                ASSERT_TRUE(cursor->next());
                const dp::Cell cell = cursor->cell(number);
                sum += cell.isNull() ? 0 : cell.integer();
            }
        }
        qint64 expected = 0;
        for (int n = 0; n < rows; ++n) {
            expected += n % 7 == 3 ? 0 : n;
        }
        EXPECT_EQ(sum, expected * static_cast<qint64>(cursors.size())) << format.driver;
    }
}

} // namespace
} // namespace orvane::files
