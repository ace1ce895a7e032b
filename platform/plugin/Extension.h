#pragma once

#include "platform/di/HasDependencies.h"

#include <QObject>

namespace orvane::plugin {

/// Base of what plug-ins contribute. Its services come from the nearest ancestor that has dependencies (the
/// core), or from the plug-in manager that it is registered with.
class ORVANE_PLATFORM_EXPORT Extension : public QObject, public di::HasDependencies {
    Q_OBJECT
public:
    explicit Extension(QObject* parent = nullptr);
    ~Extension() override;
};

} // namespace orvane::plugin
