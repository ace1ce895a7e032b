#include "platform/geometry/relations/Relations.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeosForm.h"
#include "platform/geometry/shapes/Curves.h"
#include "platform/geometry/shapes/Failure.h"

#include <cmath>
#include <stdexcept>
#include <vector>

namespace orvane::geometry {

namespace {

/// What GEOS's predicates answer.
constexpr char geosFailed = 2;

/// Holds the locks of the forms of two geometries.
class PairLock {
public:
    PairLock(GeosForm& a, GeosForm& b)
        : first_(a.mutex(), std::defer_lock), second_(b.mutex(), std::defer_lock) {
        if (&a == &b) {
            first_.lock();
        } else {
            std::lock(first_, second_);
        }
    }

private:
    std::unique_lock<std::mutex> first_;
    std::unique_lock<std::mutex> second_;
};

/// b itself, or b in the system of a, kept in `holder`; null when it has no place there.
const Geometry* inSystemOf(const Geometry& a, const Geometry& b, GeometryPtr& holder) {
    const auto systemA = a.coordSystem();
    const auto systemB = b.coordSystem();
    if (!systemA || !systemB || systemA == systemB || systemA->equals(*systemB)) {
        return &b;
    }
    holder = b.transformed(systemA);
    return holder.get();
}

bool answerOf(char answer) {
    if (answer == geosFailed) {
        throwGeosError();
    }
    return answer == 1;
}

/// The same question about repaired geometries: GEOS's overlay fails on some that are not valid.
template<typename Ask>
bool askRepaired(const GEOSGeometry* a, const GEOSGeometry* b, const Ask& ask) {
    const GeosPtr validA = checked(GEOSMakeValid_r(geosContext(), a));
    const GeosPtr validB = checked(GEOSMakeValid_r(geosContext(), b));
    return ask(validA.get(), validB.get());
}

/// The parts of one dimension, joined so that none crosses another; null when there are none.
GeosPtr partsOfDimension(const GEOSGeometry* geometry, int dimension) {
    std::vector<GeosPtr> parts;
    const auto collect = [&](const auto& self, const GEOSGeometry* part) -> void {
        const int count = GEOSGetNumGeometries_r(geosContext(), part);
        if (GEOSGeomTypeId_r(geosContext(), part) >= GEOS_MULTIPOINT) {
            for (int i = 0; i < count; ++i) {
                self(self, GEOSGetGeometryN_r(geosContext(), part, i));
            }
        } else if (GEOSGeom_getDimensions_r(geosContext(), part) == dimension &&
                   GEOSisEmpty_r(geosContext(), part) == 0) {
            parts.push_back(checked(GEOSGeom_clone_r(geosContext(), part)));
        }
    };
    collect(collect, geometry);
    if (parts.empty()) {
        return nullptr;
    }
    const GeosPtr collection = collectionOf(GEOS_GEOMETRYCOLLECTION, std::move(parts));
    return checked(GEOSUnaryUnion_r(geosContext(), collection.get()));
}

/// Containment where one of the two is a collection, which GEOS's own does not take: nothing of b may be left
/// when the points, lines and areas of a are taken away, and the interiors of two parts have to meet.
bool containsByParts(const GEOSGeometry* a, const GEOSGeometry* b) {
    GeosPtr partsOfA[3];
    for (int dimension = 0; dimension < 3; ++dimension) {
        partsOfA[dimension] = partsOfDimension(a, dimension);
    }
    bool interiorsMeet = false;
    for (int dimension = 0; dimension < 3; ++dimension) {
        GeosPtr rest = partsOfDimension(b, dimension);
        if (!rest) {
            continue;
        }
        for (const GeosPtr& part : partsOfA) {
            interiorsMeet =
                interiorsMeet ||
                (part && answerOf(GEOSRelatePattern_r(geosContext(), part.get(), rest.get(), "T********")));
        }
        for (int taken = 2; taken >= dimension; --taken) {
            if (partsOfA[taken]) {
                rest = checked(GEOSDifference_r(geosContext(), rest.get(), partsOfA[taken].get()));
            }
        }
        if (GEOSisEmpty_r(geosContext(), rest.get()) != 1) {
            return false;
        }
    }
    return interiorsMeet;
}

bool isCollection(const GEOSGeometry* geometry) {
    return GEOSGeomTypeId_r(geosContext(), geometry) == GEOS_GEOMETRYCOLLECTION;
}

using PreparedPredicate = char (*)(GEOSContextHandle_t, const GEOSPreparedGeometry*, const GEOSGeometry*);

/// Asks the prepared form of the owner where it has one.
char askPrepared(const Geometry& owner, const GEOSGeometry* other, PreparedPredicate predicate) {
    const GEOSPreparedGeometry* prepared =
        owner.type() == GeometryType::Point ? nullptr : owner.geosForm().prepared(owner);
    return prepared ? predicate(geosContext(), prepared, other) : geosFailed;
}

bool intersectsGeos(const GEOSGeometry* a, const GEOSGeometry* b) {
    return answerOf(GEOSIntersects_r(geosContext(), a, b));
}

bool containsGeos(const GEOSGeometry* a, const GEOSGeometry* b) {
    return isCollection(a) || isCollection(b) ? containsByParts(a, b)
                                              : answerOf(GEOSContains_r(geosContext(), a, b));
}

/// With the locks of both held.
template<typename Ask>
bool askPlain(const GEOSGeometry* a, const GEOSGeometry* b, const Ask& ask) {
    try {
        return ask(a, b);
    } catch (const std::runtime_error&) {
        return askRepaired(a, b, ask);
    }
}

/// Asks with both forms locked and b in the system of a. False when it has no place there, and where one of
/// the two has no form.
template<typename Ask>
bool askInOneSystem(const Geometry& a, const Geometry& b, const Ask& ask) {
    GeometryPtr holder;
    const Geometry* other = inSystemOf(a, b, holder);
    if (!other) {
        return false;
    }
    const PairLock lock(a.geosForm(), other->geosForm());
    const GEOSGeometry* plainA = a.geosForm().plain(a);
    const GEOSGeometry* plainB = other->geosForm().plain(*other);
    return plainA && plainB && ask(plainA, *other, plainB);
}

/// The answer about a position: the prepared form when there is one.
template<typename Ask>
bool askPosition(const Geometry& a, double x, double y, PreparedPredicate predicate, const Ask& ask) {
    if (!std::isfinite(x) || !std::isfinite(y)) {
        return false;
    }
    GeosForm& form = a.geosForm();
    const std::lock_guard lock(form.mutex());
    const GEOSGeometry* plain = form.plain(a);
    if (!plain) {
        return false;
    }
    const GeosPtr position = checked(GEOSGeom_createPointFromXY_r(geosContext(), x, y));
    const char answer = isCollection(plain) ? geosFailed : askPrepared(a, position.get(), predicate);
    return answer == geosFailed ? askPlain(plain, position.get(), ask) : answer == 1;
}

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
    GeosForm& form = geometry.geosForm();
    const std::lock_guard lock(form.mutex());
    const GEOSGeometry* plain = form.plain(geometry);
    return plain ? pointFrom(GeosPtr(operation(geosContext(), plain)), geometry) : nullptr;
}

/// Rings that are closed and long enough, which the form for GEOS has silently, are what the geometry itself
/// has.
bool hasProperRings(const Geometry& geometry) {
    if (geometry.type() == GeometryType::Polygon) {
        const auto& rings = static_cast<const Polygon&>(geometry).rings();
        return std::all_of(rings.begin(), rings.end(), [](const CoordinateSequence& ring) {
            return ring.isEmpty() || (ring.size() >= 4 && ring.isClosed());
        });
    }
    if (const auto* collection = dynamic_cast<const GeometryCollection*>(&geometry)) {
        const auto& parts = collection->parts();
        return std::all_of(parts.begin(), parts.end(),
                           [](const GeometryPtr& part) { return hasProperRings(*part); });
    }
    return true;
}

} // namespace

bool Intersects(const Geometry& a, const Geometry& b) {
    return askInOneSystem(
        a, b, [&a](const GEOSGeometry* plainA, const Geometry& other, const GEOSGeometry* plainB) {
            char answer = askPrepared(a, plainB, GEOSPreparedIntersects_r);
            if (answer == geosFailed) {
                answer = askPrepared(other, plainA, GEOSPreparedIntersects_r);
            }
            return answer == geosFailed ? askPlain(plainA, plainB, intersectsGeos) : answer == 1;
        });
}

bool Contains(const Geometry& a, const Geometry& b) {
    return askInOneSystem(
        a, b, [&a](const GEOSGeometry* plainA, const Geometry&, const GEOSGeometry* plainB) {
            const bool byParts = isCollection(plainA) || isCollection(plainB);
            const char answer = byParts ? geosFailed : askPrepared(a, plainB, GEOSPreparedContains_r);
            return answer == geosFailed ? askPlain(plainA, plainB, containsGeos) : answer == 1;
        });
}

bool ContainsCentroid(const Geometry& a, const Geometry& b) {
    const std::shared_ptr<Point> centre = centroid(b);
    return centre && Contains(a, *centre);
}

bool intersectsPosition(const Geometry& a, double x, double y) {
    return askPosition(a, x, y, GEOSPreparedIntersects_r, intersectsGeos);
}

bool containsPosition(const Geometry& a, double x, double y) {
    return askPosition(a, x, y, GEOSPreparedContains_r, containsGeos);
}

double planarDistance(const Geometry& a, const Geometry& b) {
    const PairLock lock(a.geosForm(), b.geosForm());
    const GEOSGeometry* plainA = a.geosForm().plain(a);
    const GEOSGeometry* plainB = b.geosForm().plain(b);
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
    if (!geometry) {
        return nullptr;
    }
    GeosForm& form = geometry->geosForm();
    const std::lock_guard lock(form.mutex());
    const GEOSGeometry* plain = form.plain(*geometry);
    if (!plain) {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "Координата геометрии не конечное число."));
    }
    if (answerOf(GEOSisValid_r(geosContext(), plain)) && hasProperRings(*geometry)) {
        return geometry;
    }
    const std::shared_ptr<Geometry> valid = fromGeos(checked(GEOSMakeValid_r(geosContext(), plain)).get());
    valid->setCoordSystem(geometry->coordSystem());
    return valid;
}

} // namespace orvane::geometry
