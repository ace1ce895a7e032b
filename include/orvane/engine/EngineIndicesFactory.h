#pragma once

#include <orvane/engine/EngineIndices.h>
#include <orvane/engine/EngineIndicesSetup.h>

namespace orvane::engine {

/// Makes attribute index stores.
class ORVANE_ENGINE_EXPORT EngineIndicesFactory {
public:
    /// The factory of the process.
    static EngineIndicesFactory* instance();

    /// A new store without storage. The cache has to outlive it.
    std::unique_ptr<EngineIndices> construct(const EngineIndicesSetup& setup, EngineCache& cache) const;

private:
    EngineIndicesFactory() = default;
};

} // namespace orvane::engine
