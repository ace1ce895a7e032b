#include "platform/dp/Cancellation.h"

#include <atomic>

namespace orvane::dp {

namespace {
std::atomic<std::uint64_t> cancellations{0};
}

Cancellation::Cancellation() : since_(cancellations.load(std::memory_order_relaxed)) {}

bool Cancellation::isRequested() const {
    return cancellations.load(std::memory_order_relaxed) != since_;
}

void Cancellation::cancelAll() {
    cancellations.fetch_add(1, std::memory_order_relaxed);
}

} // namespace orvane::dp
