#include "host/desk/session/EngineThread.h"

#include "host/desk/session/EngineWork.h"

#include <orvane/Engine.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace orvane::desk {

EngineThread::EngineThread(Maker maker, std::function<void(const QString&)> failed)
    : maker_(std::move(maker)), failed_(std::move(failed)) {}

EngineThread::~EngineThread() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
        posted_.notify_all();
    }
    constexpr unsigned long pauseMs = 5;
    do {
        cancel(std::numeric_limits<quint64>::max());
    } while (!wait(pauseMs));
}

void EngineThread::post(When when, Task task) {
    const std::lock_guard lock(mutex_);
    entries_.push_back({when, std::move(task)});
    posted_.notify_all();
}

void EngineThread::cancel(quint64 query) {
    const std::lock_guard lock(mutex_);
    cancelled_ = query;
    if (engine_ && query_ <= query) { // the next query is nobody's to interrupt
        engine_->cancelQuery();
    }
}

void EngineThread::setQuery(quint64 query) {
    const std::lock_guard lock(mutex_);
    query_ = query;
}

bool EngineThread::isEnding() const {
    const std::lock_guard lock(mutex_);
    return isEnding_;
}

void EngineThread::run() {
    std::unique_ptr<EngineWork> work;
    try {
        work = maker_();
    } catch (const std::exception& failure) {
        failed_(reasonOf(failure));
        return;
    }
    {
        const std::lock_guard lock(mutex_);
        engine_ = &work->host().engine();
    }
    serve(*work);
    const std::lock_guard lock(mutex_);
    engine_ = nullptr; // nobody interrupts an engine that goes
}

void EngineThread::serve(EngineWork& work) {
    std::unique_lock lock(mutex_);
    for (;;) {
        posted_.wait(lock, [this] { return isEnding_ || !entries_.empty(); });
        if (isEnding_) {
            return;
        }
        const Task task = std::move(entries_.front().task);
        entries_.pop_front();
        lock.unlock();
        task(work);
        work.host().settle();
        lock.lock();
    }
}

/// Tasks that come meanwhile wait for the next time: what posts itself again must not keep the query from
/// going on.
void EngineThread::runBetweenRows(EngineWork& work) {
    std::deque<Entry> due;
    {
        const std::lock_guard lock(mutex_);
        const auto isDue = [](const Entry& entry) { return entry.when == When::Anytime; };
        std::copy_if(std::make_move_iterator(entries_.begin()), std::make_move_iterator(entries_.end()),
                     std::back_inserter(due), isDue);
        entries_.erase(std::remove_if(entries_.begin(), entries_.end(), isDue), entries_.end());
    }
    for (const Entry& entry : due) {
        entry.task(work);
    }
    work.host().settle();
}

} // namespace orvane::desk
