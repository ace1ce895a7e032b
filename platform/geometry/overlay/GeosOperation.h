#pragma once

#include "platform/geometry/forms/GeosForm.h"
#include "platform/work/Cancellation.h"

#include <vector>

namespace orvane::geometry {

/// The form for GEOS. Throws std::runtime_error when a coordinate is not finite.
GeosPtr finiteForm(const Geometry& geometry);
[[noreturn]] void throwNotFinite();
/// What GEOS made of a geometry, in the system of that one.
std::shared_ptr<Geometry> madeFrom(const Geometry& source, const GEOSGeometry* made);

/// The points, lines or areas in a form, through all levels; those that are empty are left out.
std::vector<const GEOSGeometry*> partsOf(const GEOSGeometry* form, int dimension);
GeosPtr copyOf(const GEOSGeometry* form);
/// The lines in a form and the borders of its areas.
GeosPtr lineWorkOf(const GEOSGeometry* form);
/// The points, lines and areas of all of them: without overlaps and lines in areas, lines cut where they
/// meet.
GeosPtr united(std::vector<GeosPtr> forms);

/// What `compute`, which returns null where GEOS fails, makes of a geometry. What is not valid is repaired
/// when it fails. Throws work::Cancelled and std::runtime_error.
template<typename Compute>
std::shared_ptr<Geometry> computedFrom(const Geometry& source, const Compute& compute) {
    const work::Cancellation cancellation;
    const GeosPtr form = finiteForm(source);
    GeosPtr made(compute(form.get()));
    if (!made) {
        cancellation.check();
        const GeosPtr valid = checked(GEOSMakeValid_r(geosContext(), form.get()));
        made = checked(compute(valid.get()));
    }
    return madeFrom(source, made.get());
}

} // namespace orvane::geometry
