#pragma once

#include <sqlite3.h>

#include <spatialite/gaiageo.h>

#include <cstdlib>
#include <memory>
#include <string_view>

namespace orvane::engine {

struct GaiaDeleter {
    void operator()(gaiaGeomCollPtr collection) const { gaiaFreeGeomColl(collection); }
};
/// A geometry of SpatiaLite's.
using GaiaPtr = std::unique_ptr<gaiaGeomColl, GaiaDeleter>;

/// The bytes that a writer of SpatiaLite's allocates for a geometry; empty where it makes none.
class GaiaBytes {
public:
    template<typename Writer>
    GaiaBytes(const GaiaPtr& geometry, Writer write) {
        unsigned char* bytes = nullptr;
        write(geometry.get(), &bytes, &size_);
        bytes_.reset(bytes);
    }

    std::string_view view() const {
        return {reinterpret_cast<const char*>(bytes_.get()), bytes_ ? static_cast<std::size_t>(size_) : 0};
    }

private:
    struct Free {
        void operator()(unsigned char* bytes) const { std::free(bytes); }
    };
    std::unique_ptr<unsigned char, Free> bytes_;
    int size_ = 0;
};

} // namespace orvane::engine
