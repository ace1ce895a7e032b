#pragma once

#include <QThread>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace orvane {
class Engine;
}

namespace orvane::desk {

class EngineWork;

/// The thread of the engine: carries out what other threads post, in its order. What may run between the rows
/// of a query does so; the rest waits for its end. The event loop is our own, because what is delivered to
/// the engine's objects may throw.
class EngineThread final : public QThread {
public:
    using Task = std::function<void(EngineWork&)>;
    enum class When { Anytime, BetweenQueries };
    /// Makes the work, on the thread; its failure ends the thread, and is told to `failed`.
    using Maker = std::function<std::unique_ptr<EngineWork>()>;

    EngineThread(Maker maker, std::function<void(const QString& reason)> failed);
    /// Cancels what runs and waits for its end. What is posted still is not done.
    ~EngineThread() override;

    /// Any thread.
    void post(When when, Task task);
    /// Cancels the queries up to the one of that number, whether they run already or not. Whoever does so
    /// repeats it until the query has ended: an interruption between two statements has no effect. Any
    /// thread.
    void cancel(quint64 query);
    bool isCancelled(quint64 query) const { return query <= cancelled_.load(std::memory_order_relaxed); }

    /// The number of the query that runs from now on; they ascend. This thread.
    void setQuery(quint64 query);
    /// For the task that runs a query: carries out what may run now. This thread.
    void runBetweenRows(EngineWork& work);
    /// Whether the thread is to end. Any thread.
    bool isEnding() const;

protected:
    void run() override;

private:
    struct Entry {
        When when;
        Task task;
    };

    void serve(EngineWork& work);

    Maker maker_;
    std::function<void(const QString&)> failed_;
    std::atomic<quint64> cancelled_{0};
    mutable std::mutex mutex_; ///< guards what follows
    std::condition_variable posted_;
    std::deque<Entry> entries_;
    Engine* engine_ = nullptr;
    quint64 query_ = 0; ///< that runs, or ran last
    bool isEnding_ = false;
};

} // namespace orvane::desk
