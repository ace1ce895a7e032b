#pragma once

#include "platform/cs/CoordSystem.h"
#include <orvane/engine/EngineCache.h>

namespace orvane::tests {

/// A cache that knows the coordinate system of one table.
class PlainCache : public engine::EngineCache {
public:
    std::shared_ptr<cs::CoordSystem> tableCS(const QString& tableName) override {
        return tableName == QLatin1String("SomeTable") ? get(32636) : nullptr;
    }
};

} // namespace orvane::tests
