#include "platform/geometry/making/GlobeArea.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace orvane::geometry {

namespace {

constexpr double edge = 180.0;
constexpr double turnAround = 360.0;
constexpr double pole = 90.0;
constexpr double rounding = 1e-9; // degrees

double turn(double from, double to) {
    return std::remainder(to - from, turnAround);
}

bool isPole(const GlobePosition& position) {
    return std::abs(position.latitude) >= pole - 1e-11;
}

/// Positions on the map, x then y, with longitudes that go on beyond 180 degrees.
class Unrolled {
public:
    explicit Unrolled(const GlobeRing& ring) {
        values_.reserve(2 * ring.size() + 8);
        for (std::size_t i = 0; i < ring.size(); ++i) {
            if (isPole(ring[i])) {
                // A pole has every longitude: from that of the position before to that of the next.
                const double latitude = std::copysign(pole, ring[i].latitude);
                add(beside(ring, i, ring.size() - 1), latitude);
                add(beside(ring, i, 1), latitude);
            } else {
                add(ring[i].longitude, ring[i].latitude);
            }
        }
        close();
    }

    /// Anticlockwise, so that what is inside lies to the left.
    bool isPositive() const {
        double area = 0.0;
        for (std::size_t i = 2; i < values_.size(); i += 2) {
            area += (values_[i - 2] - values_[0]) * (values_[i + 1] - values_[1]) -
                    (values_[i] - values_[0]) * (values_[i - 1] - values_[1]);
        }
        return area > 0.0;
    }

    bool goesAround() const { return goesAround_; }
    double west() const { return west_; }
    double east() const { return east_; }

    GeosPtr area(double shift) const {
        std::vector<double> moved(values_);
        for (std::size_t i = 0; i < moved.size(); i += 2) {
            moved[i] += shift;
            moved[i] =
                std::abs(std::abs(moved[i]) - edge) < rounding ? std::copysign(edge, moved[i]) : moved[i];
        }
        GEOSCoordSequence* const sequence = GEOSCoordSeq_copyFromBuffer_r(
            geosContext(), moved.data(), static_cast<unsigned>(moved.size() / 2), 0, 0);
        GeosPtr ring = checked(sequence ? GEOSGeom_createLinearRing_r(geosContext(), sequence) : nullptr);
        GeosPtr area = checked(GEOSGeom_createPolygon_r(geosContext(), ring.release(), nullptr, 0));
        return GEOSisValid_r(geosContext(), area.get()) == 1
                   ? std::move(area)
                   : checked(GEOSMakeValid_r(geosContext(), area.get()));
    }

private:
    static double beside(const GlobeRing& ring, std::size_t position, std::size_t step) {
        for (std::size_t i = 0, at = position; i < ring.size(); ++i) {
            at = (at + step) % ring.size();
            if (!isPole(ring[at])) {
                return ring[at].longitude;
            }
        }
        return 0.0;
    }

    void add(double longitude, double latitude) {
        x_ = values_.empty() ? std::remainder(longitude, turnAround) : x_ + turn(x_, longitude);
        append(x_, latitude);
    }

    void append(double x, double y) {
        values_.insert(values_.end(), {x, y});
        west_ = std::min(west_, x);
        east_ = std::max(east_, x);
    }

    /// A ring around a pole is gone round until it covers the map and more on both sides, so that no begin of
    /// it shows there, and goes on along the border of the map.
    void close() {
        const double x = values_[0];
        const double y = values_[1];
        x_ += turn(x_, x);
        goesAround_ = std::abs(x_ - x) > edge;
        if (goesAround_) {
            const double once = x_ > x ? turnAround : -turnAround;
            const std::vector<double> ring = std::move(values_);
            values_.clear();
            for (const int round : {-2, -1, 0, 1}) {
                for (std::size_t i = 0; i < ring.size(); i += 2) {
                    append(ring[i] + round * once, ring[i + 1]);
                }
            }
            append(x + 2 * once, y);
            append(x + 2 * once, once > 0.0 ? pole : -pole);
            append(x - 2 * once, once > 0.0 ? pole : -pole);
            append(x - 2 * once, y);
        } else {
            append(x, y);
        }
        while (values_.size() < 8) {
            append(x, y);
        }
    }

    std::vector<double> values_;
    double x_ = 0.0;
    double west_ = INFINITY, east_ = -INFINITY;
    bool goesAround_ = false;
};

GeosPtr rectangle(double west, double east) {
    const std::array<double, 10> corners{west, -pole, east, -pole, east, pole, west, pole, west, -pole};
    GEOSCoordSequence* const sequence = GEOSCoordSeq_copyFromBuffer_r(geosContext(), corners.data(), 5, 0, 0);
    GeosPtr ring = checked(sequence ? GEOSGeom_createLinearRing_r(geosContext(), sequence) : nullptr);
    return checked(GEOSGeom_createPolygon_r(geosContext(), ring.release(), nullptr, 0));
}

void gatherAreas(GeosPtr geometry, std::vector<GeosPtr>& areas) {
    const int kind = GEOSGeomTypeId_r(geosContext(), geometry.get());
    if (kind == GEOS_POLYGON) {
        if (GEOSisEmpty_r(geosContext(), geometry.get()) == 0) {
            areas.push_back(std::move(geometry));
        }
    } else if (kind >= GEOS_MULTIPOINT) {
        const int count = GEOSGetNumGeometries_r(geosContext(), geometry.get());
        for (int i = 0; i < count; ++i) {
            gatherAreas(checked(GEOSGeom_clone_r(geosContext(),
                                                 GEOSGetGeometryN_r(geosContext(), geometry.get(), i))),
                        areas);
        }
    }
}

/// The share of the Earth that a ring of the map encloses, as on a sphere.
double shareOf(const GEOSGeometry* ring) {
    const GEOSCoordSequence* const positions = GEOSGeom_getCoordSeq_r(geosContext(), ring);
    unsigned size = 0;
    if (!positions || !GEOSCoordSeq_getSize_r(geosContext(), positions, &size)) {
        throwGeosError();
    }
    double sum = 0.0;
    double before[2] = {0.0, 0.0};
    for (unsigned i = 0; i < size; ++i) {
        double x = 0.0;
        double y = 0.0;
        GEOSCoordSeq_getXY_r(geosContext(), positions, i, &x, &y);
        const double sine = std::sin(y * std::numbers::pi / 180.0);
        sum += i > 0 ? (x - before[0]) * (sine + before[1]) : 0.0;
        before[0] = x;
        before[1] = sine;
    }
    return std::abs(sum) / (4.0 * turnAround);
}

double shareOfAreas(const GEOSGeometry* areas) {
    double share = 0.0;
    const int count = GEOSGetNumGeometries_r(geosContext(), areas);
    for (int i = 0; i < count && GEOSisEmpty_r(geosContext(), areas) == 0; ++i) {
        share += shareOf(GEOSGetExteriorRing_r(geosContext(), GEOSGetGeometryN_r(geosContext(), areas, i)));
    }
    return share;
}

GeosPtr restOfMap(const GEOSGeometry* area) {
    return checked(GEOSDifference_r(geosContext(), rectangle(-edge, edge).get(), area));
}

/// Of a ring around a pole what lies to its left, else what it encloses on the map.
GeosPtr areaOnMap(const Unrolled& ring) {
    const GeosPtr map = rectangle(-edge, edge);
    const auto cut = [&](double shift) {
        return checked(GEOSIntersection_r(geosContext(), ring.area(shift).get(), map.get()));
    };
    std::vector<GeosPtr> parts;
    if (ring.goesAround()) {
        parts.push_back(cut(0.0));
        return unitedAreas(std::move(parts));
    }
    const double first = -turnAround * std::floor((ring.west() + edge + rounding) / turnAround);
    for (double shift = first; ring.east() + shift > -edge + rounding; shift -= turnAround) {
        const bool isWithin =
            ring.west() + shift >= -edge - rounding && ring.east() + shift <= edge + rounding;
        parts.push_back(isWithin ? ring.area(shift) : cut(shift));
    }
    return unitedAreas(std::move(parts));
}

} // namespace

GeosPtr lessThanHalves(GeosPtr areas) {
    constexpr double nearlyHalf = 0.49;
    bool isTooLarge = false;
    const int count = GEOSGetNumGeometries_r(geosContext(), areas.get());
    for (int i = 0; i < count && GEOSisEmpty_r(geosContext(), areas.get()) == 0; ++i) {
        const GEOSGeometry* const part = GEOSGetGeometryN_r(geosContext(), areas.get(), i);
        isTooLarge = isTooLarge || shareOf(GEOSGetExteriorRing_r(geosContext(), part)) > nearlyHalf;
    }
    if (!isTooLarge) {
        return areas;
    }
    std::vector<GeosPtr> quarters;
    constexpr double quarter = 90.0;
    for (double west = -edge; west < edge; west += quarter) {
        gatherAreas(
            checked(GEOSIntersection_r(geosContext(), areas.get(), rectangle(west, west + quarter).get())),
            quarters);
    }
    return collectionOf(GEOS_GEOMETRYCOLLECTION,
                        std::move(quarters)); // neighbours make no valid multi-polygon
}

GeosPtr globeAreaLeftOf(const GlobeRing& ring) {
    if (ring.size() < 3) {
        return checked(GEOSGeom_createEmptyPolygon_r(geosContext()));
    }
    const Unrolled unrolled(ring);
    GeosPtr area = areaOnMap(unrolled);
    return unrolled.isPositive() ? std::move(area) : restOfMap(area.get());
}

GeosPtr globeAreaWithin(const GlobeRing& ring) {
    if (ring.size() < 3) {
        return checked(GEOSGeom_createEmptyPolygon_r(geosContext()));
    }
    const Unrolled unrolled(ring);
    GeosPtr area = areaOnMap(unrolled);
    return unrolled.goesAround() && shareOfAreas(area.get()) > 0.5 ? restOfMap(area.get()) : std::move(area);
}

GeosPtr unitedAreas(std::vector<GeosPtr> areas) {
    std::vector<GeosPtr> gathered;
    for (GeosPtr& area : areas) {
        gatherAreas(std::move(area), gathered);
    }
    if (gathered.size() == 1) {
        return std::move(gathered.front());
    }
    const GeosPtr all = collectionOf(GEOS_GEOMETRYCOLLECTION, std::move(gathered));
    return GEOSisEmpty_r(geosContext(), all.get()) != 0
               ? checked(GEOSGeom_createEmptyPolygon_r(geosContext()))
               : checked(GEOSUnaryUnion_r(geosContext(), all.get()));
}

} // namespace orvane::geometry
