#pragma once

#include "platform/Export.h"

#include <cstddef>
#include <memory>

namespace orvane::cs {

class CoordSystem;

/// Converts coordinates from one system to another, x east and y north on both sides, angles in degrees.
/// Belongs to the thread that asked for it.
class ORVANE_PLATFORM_EXPORT Transformer {
public:
    /// The transformer of the pair, kept per thread. Null when PROJ knows no way between the systems.
    static std::shared_ptr<const Transformer> between(const CoordSystem& from, const CoordSystem& to);
    /// From a system to the geographic system beneath it, longitude and latitude in degrees.
    static std::shared_ptr<const Transformer> toGeographic(const CoordSystem& from);

    ~Transformer();
    Transformer(const Transformer&) = delete;
    Transformer& operator=(const Transformer&) = delete;

    /// Converts `count` positions in place; `stride` doubles from one x to the next, y behind x, z behind y
    /// where `hasZ`. False when a position has no image; its coordinates are then infinite.
    bool transform(double* positions, std::size_t count, std::size_t stride, bool hasZ) const;

private:
    struct Impl;
    static std::shared_ptr<const Transformer> find(const CoordSystem& from, const CoordSystem* to);
    explicit Transformer(std::unique_ptr<Impl> impl);

    std::unique_ptr<Impl> impl_;
};

} // namespace orvane::cs
