#include "host/shell/session/Interrupt.h"

#include "host/shell/messages/Shell.h"

#include <chrono>
#include <csignal>
#include <cstdio>

#include <sys/eventfd.h>
#include <unistd.h>

namespace orvane::shell {

namespace {

sigset_t cancellingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    return signals;
}

} // namespace

Interrupt::Interrupt() : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    const sigset_t signals = cancellingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    thread_ = std::thread([this] { wait(); });
}

Interrupt::~Interrupt() {
    ending_ = true;
    pthread_kill(thread_.native_handle(), SIGINT);
    thread_.join();
    ::close(descriptor_);
}

void Interrupt::reset() {
    requested_ = false;
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
    while (true) {
        int signal = 0;
        if (sigwait(&signals, &signal) != 0) {
            continue;
        }
        if (ending_) {
            return;
        }
        requested_ = true;
        ::eventfd_write(descriptor_, 1);
        cancelUntilDone();
    }
}

void Interrupt::cancelUntilDone() {
    using namespace std::chrono;
    const auto start = steady_clock::now();
    while (requested_ && !ending_) {
        {
            const std::lock_guard lock(mutex_);
            if (cancel_) {
                cancel_();
            }
        }
        if (exitsWhenStuck_ && steady_clock::now() - start > milliseconds(70)) {
            exitNow();
        }
        std::this_thread::sleep_for(milliseconds(2));
    }
}

void Interrupt::exitNow() {
    const std::lock_guard lock(mutex_);
    if (cleanUp_) {
        cleanUp_();
    }
    std::fprintf(stderr, "orvane: %s\n", Shell::tr("прервано").toUtf8().constData());
    ::_exit(Interrupted);
}

} // namespace orvane::shell
