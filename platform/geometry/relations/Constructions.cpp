#include "platform/geometry/relations/Relations.h"

#include "platform/geometry/relations/RelationForm.h"
#include "platform/geometry/relations/Validity.h"
#include "platform/geometry/shapes/Curves.h"
#include "platform/geometry/shapes/Failure.h"

#include <cmath>
#include <mutex>

namespace orvane::geometry {

namespace {

std::shared_ptr<Point> pointFrom(GeosPtr geos, const Geometry& source) {
    double x = 0.0;
    double y = 0.0;
    if (!geos) {
        throwGeosError();
    }
    if (GEOSisEmpty_r(geosContext(), geos.get()) != 0 || GEOSGeomGetX_r(geosContext(), geos.get(), &x) != 1 ||
        GEOSGeomGetY_r(geosContext(), geos.get(), &y) != 1) {
        return nullptr;
    }
    auto point = std::make_shared<Point>(x, y);
    point->setCoordSystem(source.coordSystem());
    return point;
}

template<typename Operation>
std::shared_ptr<Point> pointOf(const Geometry& geometry, const Operation& operation) {
    if (geometry.type() == GeometryType::Point) {
        const auto& point = static_cast<const Point&>(geometry);
        if (!std::isfinite(point.x()) || !std::isfinite(point.y())) {
            return nullptr;
        }
        auto copy = std::make_shared<Point>(point.x(), point.y());
        copy->setCoordSystem(geometry.coordSystem());
        return copy;
    }
    const std::lock_guard lock(geometry.keptForm().mutex());
    const GEOSGeometry* plain = RelationForm::of(geometry).whole();
    return plain ? pointFrom(GeosPtr(operation(geosContext(), plain)), geometry) : nullptr;
}

} // namespace

double planarDistance(const Geometry& a, const Geometry& b) {
    const FormLock lock(a, b);
    const GEOSGeometry* plainA = RelationForm::of(a).whole();
    const GEOSGeometry* plainB = RelationForm::of(b).whole();
    if (!plainA || !plainB) {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "Координата геометрии не конечное число."));
    }
    double distance = 0.0;
    if (GEOSDistance_r(geosContext(), plainA, plainB, &distance) != 1) {
        throwGeosError();
    }
    return distance;
}

std::shared_ptr<Point> centroid(const Geometry& geometry) {
    return pointOf(geometry, GEOSGetCentroid_r);
}

std::shared_ptr<Point> PointOnSurface(const Geometry& geometry) {
    return pointOf(geometry, GEOSPointOnSurface_r);
}

std::shared_ptr<const Geometry> normalizedGeometry(const std::shared_ptr<const Geometry>& geometry) {
    if (!geometry || !defectOf(*geometry)) {
        return geometry;
    }
    const std::lock_guard lock(geometry->keptForm().mutex());
    const GEOSGeometry* plain = RelationForm::of(*geometry).whole();
    if (!plain) {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "Координата геометрии не конечное число."));
    }
    const std::shared_ptr<Geometry> valid = fromGeos(checked(GEOSMakeValid_r(geosContext(), plain)).get());
    valid->setCoordSystem(geometry->coordSystem());
    return valid;
}

} // namespace orvane::geometry
