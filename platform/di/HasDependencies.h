#pragma once

#include "platform/di/DependencyManager.h"

namespace orvane::di {

/// What a class derives from to ask for services: it carries the manager of the wishes, which end with the
/// object.
class ORVANE_PLATFORM_EXPORT HasDependencies {
public:
    HasDependencies();
    virtual ~HasDependencies();
    HasDependencies(const HasDependencies&) = delete;
    HasDependencies& operator=(const HasDependencies&) = delete;

    DependencyManager* dependencyManager() { return &dependencyManager_; }
    const DependencyManager* dependencyManager() const { return &dependencyManager_; }

private:
    DependencyManager dependencyManager_;
};

} // namespace orvane::di
