#include "platform/core/Core.h"

namespace orvane {

Core::Core(QObject* parent) : QObject(parent), pluginManager_(*dependencyManager()) {
    registerService(this);
}

Core::~Core() = default;

QObject* Core::findService(const QMetaObject* metaObject, const QString& name) const {
    return dependencyManager()->findService(metaObject, name);
}

void Core::registerService(QObject* service) {
    dependencyManager()->provide(service);
}

} // namespace orvane
