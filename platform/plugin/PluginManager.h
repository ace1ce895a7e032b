#pragma once

#include "platform/di/DependencyManager.h"
#include "platform/plugin/ExtensionConsumer.h"

#include <memory>
#include <vector>

namespace orvane::plugin {

/// Brings extensions and their consumers together, whichever came first. Owns the consumers, not the
/// extensions; an extension that is destroyed is forgotten. Used from the thread of the core.
class ORVANE_PLATFORM_EXPORT PluginManager {
public:
    /// `services` is what extensions with dependencies get their services from; it has to outlive the
    /// manager.
    explicit PluginManager(const di::DependencyManager& services);
    ~PluginManager();
    PluginManager(const PluginManager&) = delete;
    PluginManager& operator=(const PluginManager&) = delete;

    /// Takes a consumer and offers it every extension so far. Null is ignored.
    void registerExtensionConsumer(std::unique_ptr<ExtensionConsumer>&& consumer);
    /// Gives an extension its services and offers it to every consumer. Null and known extensions are
    /// ignored.
    void registerExtension(QObject* extension);

private:
    const di::DependencyManager& services_;
    std::vector<std::unique_ptr<ExtensionConsumer>> consumers_;
    std::vector<QPointer<QObject>> extensions_;
};

} // namespace orvane::plugin
