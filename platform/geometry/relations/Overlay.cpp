#include "platform/geometry/relations/Overlay.h"

#include "platform/geometry/forms/GeosForm.h"
#include "platform/geometry/shapes/Failure.h"
#include "platform/geometry/shapes/Shapes.h"

#include <stdexcept>
#include <vector>

namespace orvane::geometry {

namespace {

std::vector<GeosPtr> geosForms(const NextGeometry& next, const work::Cancellation& cancellation) {
    std::vector<GeosPtr> forms;
    while (const GeometryPtr geometry = next()) {
        cancellation.check();
        GeosPtr form = toGeos(*geometry);
        if (!form) {
            throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "Координата геометрии не конечное число."));
        }
        forms.push_back(std::move(form));
    }
    return forms;
}

/// What GEOS says of a computation that was cancelled is no message for a user.
template<typename Compute>
std::shared_ptr<Geometry> computed(const work::Cancellation& cancellation, const Compute& compute) {
    try {
        return compute();
    } catch (const std::runtime_error&) {
        cancellation.check();
        throw;
    }
}

/// Null for a null or an empty one.
std::shared_ptr<Geometry> fromGeosUnlessEmpty(const GeosPtr& geos) {
    return geos && GEOSisEmpty_r(geosContext(), geos.get()) == 0 ? fromGeos(geos.get()) : nullptr;
}

GeosPtr madeValid(const GEOSGeometry* collection, const work::Cancellation& cancellation) {
    std::vector<GeosPtr> valid;
    const int count = GEOSGetNumGeometries_r(geosContext(), collection);
    for (int i = 0; i < count; ++i) {
        cancellation.check();
        valid.push_back(
            checked(GEOSMakeValid_r(geosContext(), GEOSGetGeometryN_r(geosContext(), collection, i))));
    }
    return collectionOf(GEOS_GEOMETRYCOLLECTION, std::move(valid));
}

} // namespace

std::shared_ptr<Geometry> unionOf(const NextGeometry& next, const work::Cancellation& cancellation) {
    return computed(cancellation, [&] {
        const GeosPtr all = collectionOf(GEOS_GEOMETRYCOLLECTION, geosForms(next, cancellation));
        GeosPtr united(GEOSUnaryUnion_r(geosContext(), all.get()));
        if (!united) {
            united = checked(GEOSUnaryUnion_r(geosContext(), madeValid(all.get(), cancellation).get()));
        }
        return fromGeosUnlessEmpty(united);
    });
}

std::shared_ptr<Geometry> polygonized(const NextGeometry& next, const work::Cancellation& cancellation) {
    return computed(cancellation, [&] {
        const std::vector<GeosPtr> lines = geosForms(next, cancellation);
        std::vector<const GEOSGeometry*> lent;
        lent.reserve(lines.size());
        for (const GeosPtr& line : lines) {
            lent.push_back(line.get());
        }
        const GeosPtr areas =
            checked(GEOSPolygonize_r(geosContext(), lent.data(), static_cast<unsigned>(lent.size())));
        std::shared_ptr<Geometry> collection = fromGeosUnlessEmpty(areas);
        if (!collection) {
            return collection;
        }
        const auto& parts = static_cast<const GeometryCollection&>(*collection).parts();
        return parts.size() == 1 ? parts.front()->clone()
                                 : std::make_shared<GeometryCollection>(GeometryType::MultiPolygon,
                                                                        collection->dimensions(), parts);
    });
}

} // namespace orvane::geometry
