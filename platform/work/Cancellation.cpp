#include "platform/work/Cancellation.h"

#include <QCoreApplication>

#include <atomic>

namespace orvane::work {

namespace {
std::atomic<std::uint64_t> cancellations{0};
}

Cancelled::Cancelled()
    : std::runtime_error(QCoreApplication::translate("orvane::work", "Запрос прерван").toStdString()) {}

Cancellation::Cancellation() : since_(cancellations.load(std::memory_order_relaxed)) {}

bool Cancellation::isRequested() const {
    return cancellations.load(std::memory_order_relaxed) != since_;
}

void Cancellation::check() const {
    if (isRequested()) {
        throw Cancelled();
    }
}

void Cancellation::cancelAll() {
    cancellations.fetch_add(1, std::memory_order_relaxed);
}

} // namespace orvane::work
