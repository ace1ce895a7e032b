#include "platform/geometry/overlay/Overlay.h"

#include "platform/geometry/overlay/GeosOperation.h"
#include "platform/geometry/relations/RelationForm.h"
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
        forms.push_back(finiteForm(*geometry));
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

using Operation = GEOSGeometry* (*)(GEOSContextHandle_t, const GEOSGeometry*, const GEOSGeometry*);

Operation operationOf(Overlay kind) {
    switch (kind) {
    case Overlay::Intersection: return GEOSIntersection_r;
    case Overlay::Union: return GEOSUnion_r;
    case Overlay::Difference: return GEOSDifference_r;
    case Overlay::SymmetricDifference: break;
    }
    return GEOSSymDifference_r;
}

void addIntersections(RelationForm& a, RelationForm& b, std::vector<GeosPtr>& results) {
    for (int dimensionA = 0; dimensionA < 3; ++dimensionA) {
        for (int dimensionB = 0; dimensionB < 3; ++dimensionB) {
            const GEOSGeometry* partA = a.joined(dimensionA);
            const GEOSGeometry* partB = b.joined(dimensionB);
            if (partA && partB) {
                results.push_back(checked(GEOSIntersection_r(geosContext(), partA, partB)));
            }
        }
    }
}

/// What is taken away has no effect on what has more dimensions.
void addDifferences(RelationForm& a, RelationForm& b, std::vector<GeosPtr>& results) {
    for (int dimension = 0; dimension < 3; ++dimension) {
        GeosPtr rest = a.joined(dimension) ? copyOf(a.joined(dimension)) : nullptr;
        for (int taken = 2; rest && taken >= dimension; --taken) {
            if (const GEOSGeometry* part = b.joined(taken)) {
                rest = checked(GEOSDifference_r(geosContext(), rest.get(), part));
            }
        }
        if (rest) {
            results.push_back(std::move(rest));
        }
    }
}

/// Of collections, which GEOS does not take.
GeosPtr overlayByParts(Overlay kind, RelationForm& a, RelationForm& b) {
    std::vector<GeosPtr> results;
    switch (kind) {
    case Overlay::Intersection: addIntersections(a, b, results); break;
    case Overlay::Difference: addDifferences(a, b, results); break;
    case Overlay::SymmetricDifference:
        addDifferences(a, b, results);
        addDifferences(b, a, results);
        break;
    case Overlay::Union:
        for (int dimension = 0; dimension < 3; ++dimension) {
            for (RelationForm* form : {&a, &b}) {
                if (const GEOSGeometry* part = form->joined(dimension)) {
                    results.push_back(copyOf(part));
                }
            }
        }
    }
    return united(std::move(results));
}

bool isCollection(const RelationForm& form) {
    return GEOSGeomTypeId_r(geosContext(), form.whole()) == GEOS_GEOMETRYCOLLECTION;
}

/// Collections, and areas that may overlap, are what their parts are.
bool isOfParts(RelationForm& form) {
    const int kind = GEOSGeomTypeId_r(geosContext(), form.whole());
    return kind == GEOS_GEOMETRYCOLLECTION ||
           (kind == GEOS_MULTIPOLYGON && !form.pieces().empty() && !form.related());
}

GeosPtr overlayOf(Overlay kind, RelationForm& a, RelationForm& b) {
    return isOfParts(a) || isOfParts(b) ? overlayByParts(kind, a, b)
                                        : checked(operationOf(kind)(geosContext(), a.whole(), b.whole()));
}

RelationForm repaired(const RelationForm& form) {
    return RelationForm(checked(GEOSMakeValid_r(geosContext(), form.whole())));
}

/// Whether an overlay leaves a form as it is: no lines that cross themselves, no areas that are not valid.
bool isPlain(const GEOSGeometry* form) {
    switch (GEOSGeomTypeId_r(geosContext(), form)) {
    case GEOS_POINT: return true;
    case GEOS_LINESTRING: return GEOSisSimple_r(geosContext(), form) == 1;
    case GEOS_POLYGON: return GEOSisValid_r(geosContext(), form) == 1;
    default: return false;
    }
}

GeosPtr emptyForm(int dimension) {
    return checked(dimension == 0   ? GEOSGeom_createEmptyPoint_r(geosContext())
                   : dimension == 1 ? GEOSGeom_createEmptyLineString_r(geosContext())
                                    : GEOSGeom_createEmptyPolygon_r(geosContext()));
}

/// What a clip, an area met again and again, leaves of something that lies all inside or all outside; null
/// where it has to be computed.
GeosPtr clippedAtOnce(RelationForm& clip, RelationForm& other) {
    if (!clip.isAreaAgain() || GEOSisEmpty_r(geosContext(), other.whole()) != 0) {
        return nullptr;
    }
    const GEOSContextHandle_t context = geosContext();
    if (!clip.envelope().intersects(other.envelope()) ||
        GEOSPreparedIntersects_r(context, clip.relatedPrepared(), other.whole()) == 0) {
        return emptyForm(GEOSGeom_getDimensions_r(context, other.whole()));
    }
    return GEOSPreparedCovers_r(context, clip.relatedPrepared(), other.whole()) == 1 && isPlain(other.whole())
               ? copyOf(other.whole())
               : nullptr;
}

GeosPtr intersectionAtOnce(RelationForm& a, RelationForm& b) {
    if (isCollection(a) || isCollection(b)) {
        return nullptr;
    }
    GeosPtr clipped = clippedAtOnce(b, a);
    return clipped ? std::move(clipped) : clippedAtOnce(a, b);
}

} // namespace

std::shared_ptr<Geometry> overlay(Overlay kind, const Geometry& a, const Geometry& b) {
    const work::Cancellation cancellation;
    const FormLock lock(a, b);
    RelationForm& formA = RelationForm::of(a);
    RelationForm& formB = RelationForm::of(b);
    if (!formA.whole() || !formB.whole()) {
        throwNotFinite();
    }
    return computed(cancellation, [&] {
        if (kind == Overlay::Intersection) {
            if (const GeosPtr clipped = intersectionAtOnce(formA, formB)) {
                return madeFrom(a, clipped.get());
            }
        }
        try {
            return madeFrom(a, overlayOf(kind, formA, formB).get());
        } catch (const std::runtime_error&) { // of areas that are not valid
            cancellation.check();
            RelationForm validA = repaired(formA);
            RelationForm validB = repaired(formB);
            return madeFrom(a, overlayOf(kind, validA, validB).get());
        }
    });
}

std::shared_ptr<Geometry> unaryUnion(const Geometry& geometry) {
    return computedFrom(geometry,
                        [](const GEOSGeometry* form) { return GEOSUnaryUnion_r(geosContext(), form); });
}

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
