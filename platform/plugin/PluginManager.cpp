#include "platform/plugin/PluginManager.h"

#include "platform/di/HasDependencies.h"

#include <algorithm>
#include <utility>

namespace orvane::plugin {

ExtensionConsumer::~ExtensionConsumer() = default;

PluginManager::PluginManager(const di::DependencyManager& services) : services_(services) {}

PluginManager::~PluginManager() = default;

void PluginManager::registerExtensionConsumer(std::unique_ptr<ExtensionConsumer>&& consumer) {
    if (!consumer) {
        return;
    }
    ExtensionConsumer& added = *consumers_.emplace_back(std::move(consumer));
    // By position: a consumer may register further extensions while it takes one.
    const std::size_t known = extensions_.size();
    for (std::size_t i = 0; i < known; ++i) {
        if (QObject* extension = extensions_[i]) {
            added.offer(extension);
        }
    }
}

void PluginManager::registerExtension(QObject* extension) {
    std::erase(extensions_, nullptr);
    if (!extension || std::find(extensions_.begin(), extensions_.end(), extension) != extensions_.end()) {
        return;
    }
    extensions_.emplace_back(extension);
    if (auto* dependent = dynamic_cast<di::HasDependencies*>(extension)) {
        dependent->dependencyManager()->follow(&services_);
    }
    const std::size_t known = consumers_.size();
    for (std::size_t i = 0; i < known; ++i) {
        consumers_[i]->offer(extension);
    }
}

} // namespace orvane::plugin
