#pragma once

#include "host/providers/Export.h"
#include "host/providers/columns/ColumnBatch.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>

namespace orvane::files {

/// Runs another reader in a thread of its own, up to two batches ahead of who asks for them, from the second
/// batch on: until then the rows may be few, or wanted no longer. What the reader throws comes behind the
/// batches before it. The thread ends with this object, and with the batch that it is at.
class ORVANE_FILES_EXPORT ReadAhead final : public BatchReader {
public:
    explicit ReadAhead(std::unique_ptr<BatchReader> reader) : reader_(std::move(reader)) {}
    ~ReadAhead() override;

    bool next(ColumnBatch& batch) override;

private:
    /// False where the system has no thread to give.
    bool start();
    void run();
    bool hasRoom() const;

    const std::unique_ptr<BatchReader> reader_; ///< the thread's while there is one
    std::thread thread_;
    bool hasBegun_ = false;

    std::mutex mutex_; ///< of what follows
    std::condition_variable changed_;
    std::deque<ColumnBatch> ready_;
    std::exception_ptr failure_;
    bool isAtEnd_ = false;
    bool isStopped_ = false;
};

} // namespace orvane::files
