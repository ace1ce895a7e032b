#pragma once

#include "engine/geometry/GaiaPtr.h"

namespace orvane::tests {

/// Null when SpatiaLite makes nothing of the well-known binary.
inline engine::GaiaPtr gaiaFromWkb(std::string_view wkb) {
    return engine::GaiaPtr(
        ::gaiaFromWkb(reinterpret_cast<const unsigned char*>(wkb.data()), static_cast<unsigned>(wkb.size())));
}

} // namespace orvane::tests
