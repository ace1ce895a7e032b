#include "platform/geometry/overlay/GeosOperation.h"

#include "platform/geometry/shapes/Failure.h"

#include <vector>

namespace orvane::geometry {

namespace {

void addParts(const GEOSGeometry* form, int dimension, std::vector<const GEOSGeometry*>& parts) {
    const GEOSContextHandle_t context = geosContext();
    if (GEOSGeomTypeId_r(context, form) < GEOS_MULTIPOINT) {
        if (GEOSGeom_getDimensions_r(context, form) == dimension && GEOSisEmpty_r(context, form) == 0) {
            parts.push_back(form);
        }
        return;
    }
    const int count = GEOSGetNumGeometries_r(context, form);
    for (int i = 0; i < count; ++i) {
        addParts(GEOSGetGeometryN_r(context, form, i), dimension, parts);
    }
}

} // namespace

GeosPtr finiteForm(const Geometry& geometry) {
    GeosPtr form = toGeos(geometry);
    if (!form) {
        throwNotFinite();
    }
    return form;
}

void throwNotFinite() {
    throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "Координата геометрии не конечное число."));
}

std::shared_ptr<Geometry> madeFrom(const Geometry& source, const GEOSGeometry* made) {
    std::shared_ptr<Geometry> geometry = fromGeos(made);
    geometry->setCoordSystem(source.coordSystem());
    return geometry;
}

std::vector<const GEOSGeometry*> partsOf(const GEOSGeometry* form, int dimension) {
    std::vector<const GEOSGeometry*> parts;
    addParts(form, dimension, parts);
    return parts;
}

GeosPtr copyOf(const GEOSGeometry* form) {
    return checked(GEOSGeom_clone_r(geosContext(), form));
}

GeosPtr lineWorkOf(const GEOSGeometry* form) {
    std::vector<GeosPtr> lines;
    for (const GEOSGeometry* line : partsOf(form, 1)) {
        lines.push_back(copyOf(line));
    }
    for (const GEOSGeometry* area : partsOf(form, 2)) {
        const GeosPtr border = checked(GEOSBoundary_r(geosContext(), area));
        for (const GEOSGeometry* ring : partsOf(border.get(), 1)) {
            lines.push_back(copyOf(ring));
        }
    }
    return collectionOf(GEOS_MULTILINESTRING, std::move(lines));
}

GeosPtr united(std::vector<GeosPtr> forms) {
    std::erase_if(forms, [](const GeosPtr& form) { return GEOSisEmpty_r(geosContext(), form.get()) == 1; });
    const GeosPtr all = collectionOf(GEOS_GEOMETRYCOLLECTION, std::move(forms));
    return checked(GEOSUnaryUnion_r(geosContext(), all.get()));
}

} // namespace orvane::geometry
