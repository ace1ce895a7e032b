#pragma once

#include "platform/serialization/Archive.h"

#include <memory>

namespace orvane::cs {
class CoordSystem;
}

namespace orvane::serialization {

/// A coordinate system as its tagged string; null as an empty text. Equal tagged strings give equal bytes.
ORVANE_PLATFORM_EXPORT void save(OutputArchive& archive, const std::shared_ptr<cs::CoordSystem>& coordSystem,
                                 unsigned short version);
/// Throws ArchiveError for an unknown version or a text that names no coordinate system.
ORVANE_PLATFORM_EXPORT void load(InputArchive& archive, std::shared_ptr<cs::CoordSystem>& coordSystem,
                                 unsigned short version);

} // namespace orvane::serialization
