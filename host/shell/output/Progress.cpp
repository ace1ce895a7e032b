#include "host/shell/output/Progress.h"

#include "host/shell/messages/DisplayWidth.h"
#include "host/shell/messages/Shell.h"
#include "host/shell/output/Output.h"
#include "platform/utils/VisibleText.h"

#include <QLocale>

#include <algorithm>
#include <cstdio>

#include <unistd.h>

namespace orvane::shell {

Progress::Progress() {
    if (!::isatty(STDERR_FILENO)) {
        return;
    }
    work::Progress::exchangeWatcher([this](const work::Progress::State& state) {
        const std::lock_guard lock(mutex_);
        work_ = state;
    });
    thread_ = std::thread([this] { show(); });
}

void Progress::stop() {
    if (!thread_.joinable()) {
        return;
    }
    work::Progress::exchangeWatcher({});
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    stopped_.notify_one();
    thread_.join();
}

QString Progress::line() const {
    if (!work_.work.isEmpty()) {
        return work_.total > 0
                   ? Shell::tr("%0: %1 %")
                         .arg(work_.work)
                         .arg(std::min<qint64>(100, 100 * work_.done / work_.total))
                   : Shell::tr("%0: %1 строк").arg(work_.work, QLocale().toString(qlonglong(work_.done)));
    }
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start_;
    return Shell::tr("%0 строк, %1 с")
        .arg(QLocale().toString(static_cast<qlonglong>(rows_.load(std::memory_order_relaxed))),
             QString::number(time.count(), 'f', 1));
}

void Progress::show() {
    using namespace std::chrono;
    std::unique_lock lock(mutex_);
    bool shown = false;
    while (!stopped_.wait_for(lock, shown ? milliseconds(200) : milliseconds(500),
                              [this] { return stopping_; })) {
        std::string text = utils::visibleText(line().toStdString());
        // A line that goes on below could not be wiped.
        if (const int width = terminalWidth(STDERR_FILENO); width > 0) {
            text.resize(prefixOfWidth(text, width - 1));
        }
        std::fprintf(stderr, "\r\033[K%s", text.c_str());
        std::fflush(stderr);
        shown = true;
    }
    if (shown) {
        std::fputs("\r\033[K", stderr);
        std::fflush(stderr);
    }
}

} // namespace orvane::shell
