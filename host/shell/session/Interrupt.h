#pragma once

#include "host/shell/messages/Shell.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

#include <termios.h>

namespace orvane::shell {

/// Turns Ctrl-C (SIGINT), SIGTERM and SIGHUP into a cancellation. A thread of its own waits for the signals
/// and calls the cancellation, again and again until reset() or the end, since one that comes between two
/// statements has no effect. Work that does not stop is not waited for: the process ends from that thread,
/// with its temporary files removed and the terminal as it was. Made before any other thread, so that all of
/// them leave the signals to that one.
class Interrupt {
public:
    /// How long work may take to stop. A second signal ends it sooner.
    enum class Patience {
        Short, ///< nothing can be lost: files are being opened or read
        Long,  ///< a file is being written, or the user's session would go, too
    };

    Interrupt();
    /// From here on the signals end the process.
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /// What cancels the work under way; called on the waiting thread. Empty for nothing; after this call
    /// returns, the one before is not called any more.
    void setCancel(std::function<void()> cancel);
    /// What removes temporary files when the process ends without clean-up; called on the waiting thread.
    void setCleanUp(std::function<void()> cleanUp);
    /// Short at first. Gives the one before.
    Patience exchangePatience(Patience patience) { return patience_.exchange(patience); }
    /// Ctrl-C is meant for somebody else: the pager.
    void setIgnoresKeyboard(bool ignores) { ignoresKeyboard_ = ignores; }

    bool requested() const { return requested_; }
    /// The request was a SIGTERM or SIGHUP, which stands for good.
    bool isFinal() const { return isFinal_; }
    /// What a process that was interrupted answers with: 128 and the number of the signal.
    ExitStatus status() const { return static_cast<ExitStatus>(128 + signal_); }
    /// Readable for as long as a request stands: to wait for input and for Ctrl-C at once.
    int descriptor() const { return descriptor_; }
    /// The user has been told that the work stopped.
    void setTold() { isTold_ = true; }
    /// The work has stopped.
    void reset();

private:
    void wait();
    bool take(int signal);
    void cancelUntilDone();
    bool isOverdue(std::chrono::steady_clock::duration waited, bool isRepeated) const;
    [[noreturn]] void exitNow();

    std::mutex mutex_; ///< of the two below
    std::function<void()> cancel_;
    std::function<void()> cleanUp_;
    std::atomic<Patience> patience_{Patience::Short};
    std::atomic<bool> requested_{false};
    std::atomic<bool> isFinal_{false};
    std::atomic<bool> isTold_{false};
    std::atomic<bool> ignoresKeyboard_{false};
    std::atomic<bool> ending_{false};
    std::atomic<int> signal_{0};
    std::optional<termios> terminal_; ///< as it was found
    int descriptor_;
    std::thread thread_;
};

/// More patience for as long as this object lives.
class PatientWork {
public:
    explicit PatientWork(Interrupt& interrupt, Interrupt::Patience patience)
        : interrupt_(interrupt), before_(interrupt.exchangePatience(patience)) {}
    ~PatientWork() { interrupt_.exchangePatience(before_); }
    PatientWork(const PatientWork&) = delete;
    PatientWork& operator=(const PatientWork&) = delete;

private:
    Interrupt& interrupt_;
    const Interrupt::Patience before_;
};

} // namespace orvane::shell
