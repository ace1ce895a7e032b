#include "platform/di/ServiceLocator.h"

#include <QReadLocker>
#include <QWriteLocker>

#include <utility>

namespace orvane::di {

ServiceLocator::ServiceLocator() = default;
ServiceLocator::~ServiceLocator() = default;

std::shared_ptr<void> ServiceLocator::findByType(std::type_index type) const {
    const QReadLocker lock(&lock_);
    const auto found = services_.find(type);
    return found == services_.end() ? nullptr : found->second;
}

std::shared_ptr<void> ServiceLocator::exchangeByType(std::type_index type, std::shared_ptr<void> service) {
    const QWriteLocker lock(&lock_);
    return std::exchange(services_[type], std::move(service));
}

} // namespace orvane::di

namespace orvane {

di::ServiceLocator& serviceLocator() {
    static di::ServiceLocator locator;
    return locator;
}

} // namespace orvane
