#pragma once

#include "platform/Export.h"

#include <QReadWriteLock>

#include <map>
#include <memory>
#include <typeindex>

namespace orvane::di {

/// Services of the process that are no QObjects, one per type. Any thread may look up and replace them; a
/// caller keeps the service alive for as long as it holds the pointer.
class ORVANE_PLATFORM_EXPORT ServiceLocator {
public:
    ServiceLocator();
    ~ServiceLocator();
    ServiceLocator(const ServiceLocator&) = delete;
    ServiceLocator& operator=(const ServiceLocator&) = delete;

    /// The service of that type; null when there is none.
    template<typename Service>
    std::shared_ptr<Service> find() const {
        return std::static_pointer_cast<Service>(findByType(typeid(Service)));
    }

    /// Sets the service of that type and returns the one before; null removes it.
    template<typename Service>
    std::shared_ptr<Service> exchange(std::shared_ptr<Service> service) {
        return std::static_pointer_cast<Service>(exchangeByType(typeid(Service), std::move(service)));
    }

private:
    std::shared_ptr<void> findByType(std::type_index type) const;
    std::shared_ptr<void> exchangeByType(std::type_index type, std::shared_ptr<void> service);

    mutable QReadWriteLock lock_;
    std::map<std::type_index, std::shared_ptr<void>> services_;
};

} // namespace orvane::di

namespace orvane {

/// The service locator of the process.
ORVANE_PLATFORM_EXPORT di::ServiceLocator& serviceLocator();

} // namespace orvane
