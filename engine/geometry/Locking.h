#pragma once

#include <QReadLocker>
#include <QReadWriteLock>
#include <QWriteLocker>

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace orvane::engine {

/// A QReadLocker or QWriteLocker whose order of events ThreadSanitizer sees: Qt itself is built without it,
/// so the sanitizer would take everything that its locks guard for unguarded.
template<class Locker>
class Locked {
public:
    explicit Locked(QReadWriteLock* lock) : lock_(lock), locker_(lock) {
#if defined(__SANITIZE_THREAD__)
        __tsan_acquire(lock_);
#endif
    }
    ~Locked() {
#if defined(__SANITIZE_THREAD__)
        __tsan_release(lock_);
#endif
    }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

private:
    [[maybe_unused]] QReadWriteLock* lock_;
    Locker locker_;
};

using ReadLocked = Locked<QReadLocker>;
using WriteLocked = Locked<QWriteLocker>;

} // namespace orvane::engine
