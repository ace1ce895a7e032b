#include "platform/work/Progress.h"

#include <mutex>
#include <utility>

namespace orvane::work {

namespace {

std::mutex watcherMutex;

Progress::Watcher& currentWatcher() {
    static Progress::Watcher watcher;
    return watcher;
}

void tell(const Progress::State& state) {
    const std::lock_guard lock(watcherMutex);
    if (currentWatcher()) {
        currentWatcher()(state);
    }
}

} // namespace

Progress::Progress(QString work, std::int64_t total) : state_{std::move(work), 0, total} {
    tell(state_);
}

Progress::~Progress() {
    tell({});
}

void Progress::advance(std::int64_t portion) {
    state_.done += portion;
    tell(state_);
}

Progress::Watcher Progress::exchangeWatcher(Watcher watcher) {
    const std::lock_guard lock(watcherMutex);
    return std::exchange(currentWatcher(), std::move(watcher));
}

} // namespace orvane::work
