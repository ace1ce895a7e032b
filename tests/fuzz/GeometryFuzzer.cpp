// Every decoder of geometries over arbitrary bytes: each gives a geometry, nothing, or one of its own
// exceptions, and what it gives can be written, measured and related.

#include "support/PlainCache.h"

#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/forms/TextFormats.h"
#include "platform/geometry/forms/TextReader.h"
#include "platform/geometry/forms/TinyForms.h"
#include "platform/geometry/measures/Measures.h"
#include "platform/geometry/relations/Relations.h"
#include "platform/geometry/shapes/Curves.h"
#include <orvane/engine/GeometryConversions.h>
#include <orvane/engine/SpatialiteBlob.h>

#include <cstdint>
#include <cstdlib>

namespace {

using namespace orvane;

struct Cache : tests::PlainCache {
    Cache() { setUseGaiaCache(NoMemo); }
};

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

/// Exceptions are what the functions are allowed to end in.
template<typename Operation>
void attempt(const Operation& operation) {
    try {
        operation();
    } catch (const std::exception&) {
        // Reported to the caller, as it should be.
    }
}

void use(const geometry::GeometryPtr& geometry, Cache& cache) {
    constexpr std::uint64_t mostWork = 200;
    attempt([&] {
        const QByteArray wkb = geometry::GeometryFactory::toWkb(geometry, QSysInfo::BigEndian);
        require(!wkb.isEmpty());
        geometry::GeometryFactory::fromWkb(wkb, nullptr);
    });
    if (geometry->weight() > mostWork) {
        return;
    }
    attempt([&] {
        const auto back = cache.geometryInfo(engine::toOrvGeo(geometry, &cache), false).geometry();
        require(back && back->equals(*geometry));
    });
    std::string text;
    attempt([&] { geometry::appendWkt(*geometry, text); });
    attempt([&] { geometry::appendGeoJson(*geometry, text); });
    attempt([&] { geometry::area(*geometry, QString()); });
    attempt([&] { geometry::cartesianLength(*geometry, QString()); });
    attempt([&] {
        const geometry::Point point(1, 2);
        const bool meets = geometry::Intersects(*geometry, point);
        require(geometry::Intersects(point, *geometry) == meets &&
                geometry::Intersects(*geometry, point) == meets);
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Cache cache;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    attempt([&] { geometry::fromWkt(bytes); });
    attempt([&] { geometry::fromGeoJson(bytes); });
    attempt([&] { geometry::fromGml(bytes); });
    attempt([&] { geometry::fromTwkb(bytes); });
    attempt([&] { geometry::fromEncodedPolyline(bytes, 5); });
    if (const auto geometry = cache.geometryInfo(data, static_cast<unsigned int>(size), false).geometry()) {
        use(geometry, cache);
    }
    attempt([&] { use(geometry::GeometryFactory::fromWkb(bytes, nullptr), cache); });
    attempt([&] { use(geometry::GeometryFactory::fromFgf(bytes), cache); });
    std::string blob;
    if (engine::appendSpatialiteBlob(bytes, 4326, blob)) {
        const auto header = engine::readSpatialiteHeader(blob);
        require(header && engine::isSoundSpatialiteBlob(*header));
    }
    return 0;
}
