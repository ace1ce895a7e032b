#include <orvane/engine/EngineIndicesFactory.h>

#include <orvane/engine/EngineIndicesSqlite.h>

namespace orvane::engine {

QVariant EngineIndicesSetup::value(const std::string& key, QVariant defaultValue) const {
    const auto found = options_.find(key);
    return found == options_.end() ? std::move(defaultValue) : found->second;
}

EngineIndicesFactory* EngineIndicesFactory::instance() {
    static EngineIndicesFactory factory;
    return &factory;
}

std::unique_ptr<EngineIndices> EngineIndicesFactory::construct(const EngineIndicesSetup& setup,
                                                               EngineCache& cache) const {
    return std::make_unique<EngineIndicesSqlite>(setup, cache);
}

} // namespace orvane::engine
