#pragma once

#include "platform/di/HasDependencies.h"
#include "platform/plugin/PluginManager.h"

#include <QObject>

namespace orvane {

/// The core of the application: its services, by class, and its plug-in manager. The core is a service
/// itself, and the source of the services of every extension below it. Used from the thread it lives on.
class ORVANE_PLATFORM_EXPORT Core : public QObject, public di::HasDependencies {
    Q_OBJECT
public:
    explicit Core(QObject* parent = nullptr);
    ~Core() override;

    /// The service that is a `metaObject` and of a class of that name or derived from it
    /// (di::DependencyManager says how); null when there is none.
    QObject* findService(const QMetaObject* metaObject, const QString& name = QString()) const;
    template<typename Service>
    Service* findService() const {
        return qobject_cast<Service*>(findService(&Service::staticMetaObject));
    }

    /// Makes a service known to everyone who asks or has asked for it. Not owned; null is ignored.
    void registerService(QObject* service);

    plugin::PluginManager* pluginManager() { return &pluginManager_; }

private:
    plugin::PluginManager pluginManager_;
};

} // namespace orvane
