#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace orvane::shell {

/// Turns Ctrl-C (SIGINT) and SIGTERM into a cancellation. A thread of its own waits for the signals and calls
/// the cancellation, again and again until reset() or the end, since one that comes between two statements
/// has no effect. Made before any other thread, so that all of them leave the signals to that one.
class Interrupt {
public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /// What cancels the work under way; called on the waiting thread. Empty for nothing; after this call
    /// returns, the one before is not called any more.
    void setCancel(std::function<void()> cancel);
    /// Whether the process ends with status 130, without clean-up, when the work does not stop within 70 ms:
    /// opening a file, for instance, cannot be cancelled. This is so at first.
    void setExitsWhenStuck(bool exits) { exitsWhenStuck_ = exits; }
    /// What removes temporary files in that case; called on the waiting thread.
    void setCleanUp(std::function<void()> cleanUp);

    bool requested() const { return requested_; }
    /// Readable for as long as a request stands: to wait for input and for Ctrl-C at once.
    int descriptor() const { return descriptor_; }
    void reset();

private:
    void wait();
    void cancelUntilDone();
    [[noreturn]] void exitNow();

    std::mutex mutex_; ///< of the two below
    std::function<void()> cancel_;
    std::function<void()> cleanUp_;
    std::atomic<bool> requested_{false};
    std::atomic<bool> exitsWhenStuck_{true};
    std::atomic<bool> ending_{false};
    int descriptor_;
    std::thread thread_;
};

} // namespace orvane::shell
