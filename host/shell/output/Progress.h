#pragma once

#include "platform/work/Progress.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace orvane::shell {

/// A line on standard error, where that is a terminal, that shows how far a statement is, or the work that it
/// waits for: it appears after half a second and is wiped when the object goes or stop() is called. Elsewhere
/// nothing is shown and no thread is started.
class Progress {
public:
    Progress();
    ~Progress() { stop(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void setRows(std::int64_t rows) { rows_.store(rows, std::memory_order_relaxed); }
    void stop();

private:
    void show();
    QString line() const;

    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::atomic<std::int64_t> rows_{0};
    std::mutex mutex_;
    std::condition_variable stopped_;
    bool stopping_ = false;
    work::Progress::State work_; ///< long work inside the statement, such as making an index
    std::thread thread_;
};

} // namespace orvane::shell
