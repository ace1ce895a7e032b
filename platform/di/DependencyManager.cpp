#include "platform/di/DependencyManager.h"

#include <algorithm>
#include <utility>

namespace orvane::di {

namespace {

bool answersTo(const QObject* service, const QMetaObject* metaObject, const QString& name) {
    if (!service || (!metaObject && name.isEmpty())) {
        return false;
    }
    return (!metaObject || service->metaObject()->inherits(metaObject)) &&
           (name.isEmpty() || service->inherits(name.toLatin1().constData()));
}

} // namespace

DependencyManager::DependencyManager(QObject* parent) : QObject(parent) {}

DependencyManager::~DependencyManager() = default;

void DependencyManager::addDependency(const QMetaObject* metaObject, const QString& name,
                                      Provided onProvided) {
    if (!onProvided) {
        return;
    }
    if (QObject* service = findService(metaObject, name)) {
        onProvided(service);
    } else {
        wishes_.push_back({metaObject, name, std::move(onProvided)});
    }
}

QObject* DependencyManager::getService(const QString& name) const {
    return findService(nullptr, name);
}

QObject* DependencyManager::findService(const QMetaObject* metaObject, const QString& name) const {
    const auto found = std::find_if(services_.begin(), services_.end(), [&](const auto& service) {
        return answersTo(service, metaObject, name);
    });
    return found == services_.end() ? nullptr : found->data();
}

void DependencyManager::provide(QObject* service) {
    services_.removeAll(QPointer<QObject>());
    if (!service || services_.contains(service)) {
        return;
    }
    services_.append(service);
    // The callbacks may add wishes of their own, so the fulfilled ones are taken out first.
    const auto fulfilled = std::stable_partition(wishes_.begin(), wishes_.end(), [service](const Wish& wish) {
        return !answersTo(service, wish.metaObject, wish.name);
    });
    const std::vector<Wish> called(std::make_move_iterator(fulfilled),
                                   std::make_move_iterator(wishes_.end()));
    wishes_.erase(fulfilled, wishes_.end());
    for (const Wish& wish : called) {
        wish.onProvided(service);
    }
    Q_EMIT serviceProvided(service);
}

void DependencyManager::follow(const DependencyManager* source) {
    if (!source || source == this) {
        return;
    }
    connect(source, &DependencyManager::serviceProvided, this, &DependencyManager::provide,
            Qt::UniqueConnection);
    const auto known = source->services_;
    for (const auto& service : known) {
        provide(service);
    }
}

} // namespace orvane::di
