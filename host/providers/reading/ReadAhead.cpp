#include "host/providers/reading/ReadAhead.h"

#include <numeric>
#include <system_error>
#include <utility>

namespace orvane::files {

namespace {

std::size_t bytesOf(const ColumnBatch& batch) {
    return std::accumulate(batch.columns.begin(), batch.columns.end(), batch.fids.bytes,
                           [](std::size_t bytes, const ColumnChunk& column) { return bytes + column.bytes; });
}

} // namespace

ReadAhead::~ReadAhead() {
    if (thread_.joinable()) {
        {
            const std::lock_guard lock(mutex_);
            isStopped_ = true;
        }
        reader_->stop();
        changed_.notify_all();
        thread_.join();
    }
}

bool ReadAhead::next(ColumnBatch& batch) {
    if (!hasBegun_ || (!thread_.joinable() && !isAtEnd_ && !start())) {
        hasBegun_ = true;
        isAtEnd_ = !reader_->next(batch);
        return !isAtEnd_;
    }
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return isAtEnd_ || !ready_.empty(); });
    if (!ready_.empty()) {
        batch = std::move(ready_.front());
        ready_.pop_front();
        lock.unlock();
        changed_.notify_all();
        return true;
    }
    if (failure_) {
        std::rethrow_exception(std::exchange(failure_, nullptr));
    }
    return false;
}

bool ReadAhead::start() {
    try {
        thread_ = std::thread([this] { run(); });
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

void ReadAhead::run() {
    for (bool goesOn = true; goesOn;) {
        std::exception_ptr failure;
        std::unique_lock lock(mutex_, std::defer_lock);
        try {
            ColumnBatch batch;
            goesOn = reader_->next(batch);
            lock.lock();
            if (goesOn) {
                ready_.push_back(std::move(batch));
            }
        } catch (...) {
            goesOn = false;
            failure = std::current_exception();
        }
        if (!lock.owns_lock()) {
            lock.lock();
        }
        if (!goesOn) {
            isAtEnd_ = true;
            failure_ = std::move(failure);
        }
        changed_.notify_all();
        changed_.wait(lock, [this] { return isAtEnd_ || isStopped_ || hasRoom(); });
        goesOn = goesOn && !isStopped_;
    }
}

/// Batches of large geometries come one by one.
bool ReadAhead::hasRoom() const {
    constexpr std::size_t mostBatches = 2;
    constexpr std::size_t mostBytes = std::size_t{16} << 20;
    const std::size_t bytes =
        std::accumulate(ready_.begin(), ready_.end(), std::size_t{0},
                        [](std::size_t sum, const ColumnBatch& batch) { return sum + bytesOf(batch); });
    return ready_.size() < mostBatches && bytes < mostBytes;
}

} // namespace orvane::files
