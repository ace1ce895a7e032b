#include "platform/geometry/forms/GeosInterrupt.h"

#include "platform/work/Cancellation.h"

#include <geos_c.h>

#include <optional>

namespace orvane::geometry {

namespace {

thread_local std::optional<work::Cancellation> currentWork;
GEOSInterruptCallback* callbackBefore = nullptr;

/// GEOS calls this from its loops, on the thread that works, and fails there when it was requested.
void interruptWhenCancelled() {
    if (callbackBefore) {
        callbackBefore();
    }
    if (currentWork && currentWork->isRequested()) {
        GEOS_interruptRequest();
    }
}

} // namespace

void beginInterruptibleWork() {
    static const bool registered = [] {
        callbackBefore = GEOS_interruptRegisterCallback(&interruptWhenCancelled);
        return true;
    }();
    static_cast<void>(registered);
    currentWork.emplace();
}

} // namespace orvane::geometry
