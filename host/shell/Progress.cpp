#include "host/shell/Progress.h"

#include "host/shell/Shell.h"

#include <QLocale>

#include <cstdio>

#include <unistd.h>

namespace orvane::shell {

Progress::Progress() {
    if (::isatty(STDERR_FILENO))
        thread_ = std::thread([this] { show(); });
}

void Progress::stop() {
    if (!thread_.joinable())
        return;
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    stopped_.notify_one();
    thread_.join();
}

void Progress::show() {
    using namespace std::chrono;
    std::unique_lock lock(mutex_);
    bool shown = false;
    while (!stopped_.wait_for(lock, shown ? milliseconds(200) : milliseconds(500),
                              [this] { return stopping_; })) {
        const double seconds = duration<double>(steady_clock::now() - start_).count();
        const QString line =
            Shell::tr("%0 строк, %1 с")
                .arg(QLocale().toString(static_cast<qlonglong>(rows_.load(std::memory_order_relaxed))),
                     QString::number(seconds, 'f', 1));
        std::fprintf(stderr, "\r\033[K%s", line.toUtf8().constData());
        std::fflush(stderr);
        shown = true;
    }
    if (shown) {
        std::fputs("\r\033[K", stderr);
        std::fflush(stderr);
    }
}

} // namespace orvane::shell
