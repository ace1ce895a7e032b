#pragma once

#include <QByteArray>

#include <sqlite3.h>

#include <spatialite/gaiageo.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace orvane::tests {

struct FreeGaia {
    void operator()(gaiaGeomCollPtr collection) const { gaiaFreeGeomColl(collection); }
};
/// A geometry of SpatiaLite's.
using GaiaGeometry = std::unique_ptr<gaiaGeomColl, FreeGaia>;

/// Null when SpatiaLite makes nothing of the well-known binary.
inline GaiaGeometry gaiaGeometry(const QByteArray& wkb) {
    return GaiaGeometry(gaiaFromWkb(reinterpret_cast<const unsigned char*>(wkb.constData()),
                                    static_cast<unsigned>(wkb.size())));
}

/// What a writer of SpatiaLite's makes of a geometry; empty when that is nothing.
inline std::string gaiaBlob(const GaiaGeometry& geometry,
                            void (*write)(gaiaGeomCollPtr, unsigned char**, int*) = gaiaToSpatiaLiteBlobWkb) {
    unsigned char* bytes = nullptr;
    int size = 0;
    if (geometry) {
        write(geometry.get(), &bytes, &size);
    }
    const std::unique_ptr<unsigned char, decltype(&std::free)> owner(bytes, std::free);
    return bytes ? std::string(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size)) : "";
}

} // namespace orvane::tests
