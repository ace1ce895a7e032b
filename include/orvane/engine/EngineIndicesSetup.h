#pragma once

#include <orvane/engine/Export.h>

#include <QVariant>

#include <map>
#include <string>

namespace orvane::engine {

/// Options of an attribute index store, by name: "Collate" (the name of the collation of text columns, none
/// when empty), "UseCaseInsensitiveLike" and "UseCaseInsensitiveGlob" (false when absent).
class ORVANE_ENGINE_EXPORT EngineIndicesSetup {
public:
    EngineIndicesSetup() = default;
    explicit EngineIndicesSetup(std::map<std::string, QVariant> options) : options_(std::move(options)) {}

    /// The option of exactly that name, or the default when it is not set.
    QVariant value(const std::string& key, QVariant defaultValue) const;

private:
    std::map<std::string, QVariant> options_;
};

} // namespace orvane::engine
