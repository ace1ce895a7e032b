#pragma once

#include "platform/Export.h"

#include <QString>

#include <cstdint>
#include <functional>

namespace orvane::work {

/// Tells whoever watches how far a piece of long work is, such as making an index. Exists for as long as the
/// work; used from the thread that does it. Reports are for portions of work, not for single rows.
class ORVANE_PLATFORM_EXPORT Progress {
public:
    struct State {
        QString work; ///< in the user's language; empty when the work has ended
        std::int64_t done = 0;
        std::int64_t total = 0; ///< in the same unit; 0 when nobody knows
    };
    /// Called on the thread that works; may be called on several threads, one at a time.
    using Watcher = std::function<void(const State& state)>;

    Progress(QString work, std::int64_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void advance(std::int64_t portion);

    /// Replaces the watcher of the process and returns the one before. An empty watcher sees nothing.
    static Watcher exchangeWatcher(Watcher watcher);

private:
    State state_;
};

} // namespace orvane::work
