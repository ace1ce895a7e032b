#pragma once

#include "platform/geometry/measures/Neighbourhood.h"
#include <orvane/engine/Export.h>

#include <optional>
#include <string>
#include <string_view>

namespace orvane::engine {

/// The value of the SQL function Nearness, which a condition on a distance hands to the scan that can look it
/// up: the centre as the blob it came as, and what is asked of the distance to it.
struct NearnessBlob {
    geometry::Nearness asked;
    std::string_view centre;
};

ORVANE_ENGINE_EXPORT std::string writeNearness(const NearnessBlob& nearness);
/// A view into the bytes; none for others.
ORVANE_ENGINE_EXPORT std::optional<NearnessBlob> readNearness(std::string_view bytes);

} // namespace orvane::engine
