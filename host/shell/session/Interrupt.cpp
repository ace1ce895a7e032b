#include "host/shell/session/Interrupt.h"

#include <csignal>
#include <ctime>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace orvane::shell {

namespace {

using std::chrono::milliseconds;

/// SIGHUP is not among them where it is ignored, as under nohup.
sigset_t cancellingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    struct sigaction hangUp {};
    if (::sigaction(SIGHUP, nullptr, &hangUp) == 0 && hangUp.sa_handler != SIG_IGN) {
        sigaddset(&signals, SIGHUP);
    }
    return signals;
}

std::optional<termios> terminalNow() {
    termios terminal{};
    return ::tcgetattr(STDIN_FILENO, &terminal) == 0 ? std::optional(terminal) : std::nullopt;
}

/// Ends a line that shows progress or is being typed. Does not wait for a reader: the output may be what the
/// work is stuck in.
void writeLastWords(const QString& text) {
    const QByteArray line = (::isatty(STDERR_FILENO) ? "\r\033[K" : "") + ("orvane: " + text.toUtf8()) + '\n';
    pollfd target{STDERR_FILENO, POLLOUT, 0};
    if (::poll(&target, 1, 0) == 1 && (target.revents & POLLOUT) != 0 &&
        ::write(STDERR_FILENO, line.constData(), static_cast<std::size_t>(line.size())) < 0) {
        return; // nobody can be told
    }
}

} // namespace

Interrupt::Interrupt() : terminal_(terminalNow()), descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    const sigset_t signals = cancellingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    thread_ = std::thread([this] { wait(); });
}

Interrupt::~Interrupt() {
    ending_ = true;
    pthread_kill(thread_.native_handle(), SIGINT);
    thread_.join();
    ::close(descriptor_);
    const sigset_t signals = cancellingSignals();
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

void Interrupt::reset() {
    if (isFinal_) {
        return;
    }
    requested_ = false;
    isTold_ = false;
    eventfd_t requests = 0;
    ::eventfd_read(descriptor_, &requests);
}

void Interrupt::setCancel(std::function<void()> cancel) {
    const std::lock_guard lock(mutex_);
    cancel_ = std::move(cancel);
}

void Interrupt::setCleanUp(std::function<void()> cleanUp) {
    const std::lock_guard lock(mutex_);
    cleanUp_ = std::move(cleanUp);
}

void Interrupt::wait() {
    const sigset_t signals = cancellingSignals();
    while (!ending_) {
        if (take(::sigwaitinfo(&signals, nullptr))) {
            cancelUntilDone();
        }
    }
}

/// Whether it is one to obey.
bool Interrupt::take(int signal) {
    if (signal <= 0 || ending_ || (signal == SIGINT && ignoresKeyboard_)) {
        return false;
    }
    if (!isFinal_) {
        signal_ = signal;
    }
    isFinal_ = isFinal_ || signal != SIGINT;
    requested_ = true;
    ::eventfd_write(descriptor_, 1);
    return true;
}

void Interrupt::cancelUntilDone() {
    const sigset_t signals = cancellingSignals();
    const auto start = std::chrono::steady_clock::now();
    bool isRepeated = false;
    while (requested_ && !ending_) {
        {
            const std::lock_guard lock(mutex_);
            if (cancel_) {
                cancel_();
            }
        }
        if (isOverdue(std::chrono::steady_clock::now() - start, isRepeated)) {
            exitNow();
        }
        const timespec pause{0, 2'000'000};
        isRepeated = take(::sigtimedwait(&signals, nullptr, &pause)) || isRepeated;
    }
}

bool Interrupt::isOverdue(std::chrono::steady_clock::duration waited, bool isRepeated) const {
    if (patience_ == Patience::Short) {
        return waited > milliseconds(70);
    }
    // A key that is held down repeats before most work has stopped.
    return waited > (isRepeated ? milliseconds(200) : milliseconds(2000));
}

void Interrupt::exitNow() {
    ::alarm(2); // ends the process should the file system not answer
    const std::lock_guard lock(mutex_);
    if (cleanUp_) {
        cleanUp_();
    }
    if (terminal_ && ::tcgetpgrp(STDIN_FILENO) == ::getpgrp()) {
        ::tcsetattr(STDIN_FILENO, TCSANOW, &*terminal_);
    }
    if (patience_ != Patience::Short) {
        writeLastWords(Shell::tr("прервано; работа не остановилась, поэтому программа завершена"));
    } else if (!isTold_) { // else only what the statement held is still being given back
        writeLastWords(Shell::tr("прервано"));
    }
    ::_exit(status());
}

} // namespace orvane::shell
