#include "platform/geometry/editing/Editing.h"

#include "platform/geometry/editing/Access.h"

#include <algorithm>
#include <cmath>

namespace orvane::geometry {

namespace {

using SequenceChange = std::function<CoordinateSequence(const CoordinateSequence&)>;

std::shared_ptr<Geometry> rebuilt(const Geometry& geometry, Dimensions dimensions,
                                  const SequenceChange& change);

std::vector<GeometryPtr> rebuilt(const std::vector<GeometryPtr>& parts, Dimensions dimensions,
                                 const SequenceChange& change) {
    std::vector<GeometryPtr> changed;
    changed.reserve(parts.size());
    for (const GeometryPtr& part : parts) {
        changed.push_back(rebuilt(*part, dimensions, change));
    }
    return changed;
}

/// The same parts with other sequences of these dimensions; of a geometry in the standard kinds.
std::shared_ptr<Geometry> rebuilt(const Geometry& geometry, Dimensions dimensions,
                                  const SequenceChange& change) {
    switch (geometry.type()) {
    case GeometryType::Point: {
        const CoordinateSequence one(geometry.dimensions(), {static_cast<const Point&>(geometry).ordinates(),
                                                             strideOf(geometry.dimensions())});
        return geometry.isEmpty() ? std::make_shared<Point>(dimensions)
                                  : std::make_shared<Point>(dimensions, change(one).data());
    }
    case GeometryType::LineString:
        return std::make_shared<LineString>(change(static_cast<const LineString&>(geometry).coordinates()));
    case GeometryType::CircularString:
        return std::make_shared<CircularString>(
            change(static_cast<const CircularString&>(geometry).coordinates()));
    case GeometryType::Polygon: {
        std::vector<CoordinateSequence> rings;
        for (const CoordinateSequence& ring : static_cast<const Polygon&>(geometry).rings()) {
            rings.push_back(change(ring));
        }
        return std::make_shared<Polygon>(dimensions, std::move(rings));
    }
    case GeometryType::CompoundCurve:
        return std::make_shared<CompoundCurve>(
            dimensions, rebuilt(static_cast<const CompoundCurve&>(geometry).parts(), dimensions, change));
    case GeometryType::CurvePolygon:
        return std::make_shared<CurvePolygon>(
            dimensions, rebuilt(static_cast<const CurvePolygon&>(geometry).rings(), dimensions, change));
    default:
        return std::make_shared<GeometryCollection>(geometry.type(), dimensions,
                                                    rebuilt(*partsOf(geometry), dimensions, change));
    }
}

GeometryPtr inSystemOf(const Geometry& geometry, std::shared_ptr<Geometry> changed) {
    changed->setCoordSystem(geometry.coordSystem());
    return changed;
}

GeometryPtr changed(const Geometry& geometry, const PositionChange& change) {
    return inSystemOf(geometry,
                      rebuilt(geometry, geometry.dimensions(), [&change](const CoordinateSequence& source) {
                          return CoordinateSequence(source.dimensions(), source.size(), [&](double* target) {
                              const std::span<const double> values = source.values();
                              std::copy(values.begin(), values.end(), target);
                              for (std::size_t i = 0; i < source.size(); ++i) {
                                  change(target + i * source.stride(), source.dimensions());
                              }
                          });
                      }));
}

/// All that is no collection, from all levels.
void gatherSingles(const GeometryPtr& geometry, std::vector<GeometryPtr>& singles) {
    const std::vector<GeometryPtr>* parts = partsOf(*geometry);
    if (!parts) {
        singles.push_back(geometry);
        return;
    }
    for (const GeometryPtr& part : *parts) {
        gatherSingles(part, singles);
    }
}

GeometryPtr partOf(const Geometry& whole, const GeometryPtr& part) {
    return inSystemOf(whole, part->clone());
}

GeometryPtr collected(const Geometry& whole, GeometryType type, std::vector<GeometryPtr> parts) {
    return inSystemOf(whole,
                      std::make_shared<GeometryCollection>(type, whole.dimensions(), std::move(parts)));
}

GeometryType multiOf(GeometryType single) {
    switch (single) {
    case GeometryType::Point: return GeometryType::MultiPoint;
    case GeometryType::LineString: return GeometryType::MultiLineString;
    case GeometryType::Polygon: return GeometryType::MultiPolygon;
    case GeometryType::CurvePolygon: return GeometryType::MultiSurface;
    default: return GeometryType::MultiCurve;
    }
}

/// Of a longitude or latitude, from -`half` up to `half`.
double wrapped(double degrees, double half) {
    if (degrees >= -half && degrees <= half) {
        return degrees;
    }
    return degrees - 2.0 * half * std::floor((degrees + half) / (2.0 * half));
}

} // namespace

GeometryPtr withPositions(const GeometryPtr& geometry, const PositionChange& change) {
    return changed(*inStandardKinds(geometry), change);
}

GeometryPtr withLinearPositions(const GeometryPtr& geometry, const PositionChange& change) {
    return changed(*linearized(geometry), change);
}

GeometryPtr moved(const GeometryPtr& geometry, const AffineMap& map) {
    const PositionChange change = [&map](double* position, Dimensions dimensions) {
        double none = 0.0;
        map.apply(position[0], position[1], hasZ(dimensions) ? position[2] : none);
    };
    return map.keepsCircles() ? withPositions(geometry, change) : withLinearPositions(geometry, change);
}

GeometryPtr withDimensions(const GeometryPtr& geometry, Dimensions dimensions, double z, double m) {
    const GeometryPtr standard = inStandardKinds(geometry);
    return inSystemOf(*standard, rebuilt(*standard, dimensions, [&](const CoordinateSequence& source) {
        return CoordinateSequence(dimensions, source.size(), [&](double* target) {
            for (std::size_t i = 0; i < source.size(); ++i) {
                const double* position = source.position(i);
                *target++ = position[0];
                *target++ = position[1];
                if (hasZ(dimensions)) {
                    *target++ = hasZ(source.dimensions()) ? position[2] : z;
                }
                if (hasM(dimensions)) {
                    *target++ = hasM(source.dimensions()) ? position[source.stride() - 1] : m;
                }
            }
        });
    }));
}

GeometryPtr withNormalLongitudes(const GeometryPtr& geometry) {
    return withLinearPositions(geometry, [](double* position, Dimensions) {
        double latitude = wrapped(position[1], 180.0);
        double longitude = position[0];
        if (std::abs(latitude) > 90.0) {
            latitude = std::copysign(180.0, latitude) - latitude;
            longitude += 180.0;
        }
        position[0] = wrapped(longitude, 180.0);
        position[1] = latitude;
    });
}

GeometryPtr castTo(const GeometryPtr& geometry, GeometryType type) {
    const GeometryPtr standard = inStandardKinds(geometry);
    if (standard->type() == type) {
        return standard;
    }
    std::vector<GeometryPtr> singles;
    gatherSingles(standard, singles);
    if (type < GeometryType::MultiPoint || type == GeometryType::CircularString ||
        type == GeometryType::CompoundCurve || type == GeometryType::CurvePolygon) {
        return singles.size() == 1 && singles.front()->type() == type ? partOf(*standard, singles.front())
                                                                      : nullptr;
    }
    const bool fits =
        type == GeometryType::GeometryCollection ||
        (!singles.empty() && std::all_of(singles.begin(), singles.end(), [type](const GeometryPtr& part) {
            return GeometryCollection::takes(type, part->type());
        }));
    return fits ? collected(*standard, type, std::move(singles)) : nullptr;
}

GeometryPtr castToMulti(const GeometryPtr& geometry) {
    const GeometryPtr standard = inStandardKinds(geometry);
    return partsOf(*standard) ? standard : castTo(standard, multiOf(standard->type()));
}

GeometryPtr castToSingle(const GeometryPtr& geometry) {
    const GeometryPtr standard = inStandardKinds(geometry);
    std::vector<GeometryPtr> singles;
    gatherSingles(standard, singles);
    return singles.size() == 1 ? partOf(*standard, singles.front()) : nullptr;
}

} // namespace orvane::geometry
