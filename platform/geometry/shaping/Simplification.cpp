#include "platform/geometry/shaping/Simplification.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/measures/Geodesics.h"
#include "platform/geometry/measures/Measures.h"
#include "platform/geometry/overlay/GeosOperation.h"
#include "platform/geometry/shapes/Curves.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace orvane::geometry {

namespace {

constexpr double radiansPerDegree = 0.017453292519943295;

/// Metres that one degree has at the most: of latitude at a pole, of longitude times the cosine of a
/// latitude.
double metresPerDegree(const cs::CoordSystem& system) {
    const geod_geodesic& ellipsoid = ellipsoidOf(system);
    return ellipsoid.a / std::sqrt(1.0 - ellipsoid.f * (2.0 - ellipsoid.f)) * radiansPerDegree;
}

std::shared_ptr<Geometry> simplifiedForm(const Geometry& geometry, double tolerance, bool keepTopology) {
    return computedFrom(geometry, [=](const GEOSGeometry* form) {
        return keepTopology ? GEOSTopologyPreserveSimplify_r(geosContext(), form, tolerance)
                            : GEOSSimplify_r(geosContext(), form, tolerance);
    });
}

/// A geometry with the x of its positions made smaller, and back: which x a scaled position had is kept, so
/// that vertices stay exactly what they were.
class ScaledAlongX {
public:
    explicit ScaledAlongX(double factor) : factor_(factor) {}

    std::shared_ptr<Geometry> scaled(const Geometry& geometry) {
        return geometry.mapped([this](double* positions, std::size_t count, Dimensions dimensions) {
            for (std::size_t i = 0; i < count; ++i) {
                double* const position = positions + i * strideOf(dimensions);
                const double x = position[0];
                position[0] *= factor_;
                originals_.insert({{position[0], position[1]}, x});
            }
            return true;
        });
    }
    std::shared_ptr<Geometry> original(const Geometry& scaled) const {
        return scaled.mapped([this](double* positions, std::size_t count, Dimensions dimensions) {
            for (std::size_t i = 0; i < count; ++i) {
                double* const position = positions + i * strideOf(dimensions);
                const auto kept = originals_.find({position[0], position[1]});
                position[0] = kept != originals_.end() ? kept->second : position[0] / factor_;
            }
            return true;
        });
    }

private:
    double factor_;
    std::map<std::pair<double, double>, double> originals_;
};

/// The cosine of the latitude of a box that is nearest to the equator, or farthest from it; not 0.
double cosine(const Envelope& envelope, double degreesPerUnit, bool nearest) {
    const double low = std::abs(envelope.minY * degreesPerUnit);
    const double high = std::abs(envelope.maxY * degreesPerUnit);
    const double farthest = std::min(std::max(low, high), 90.0);
    const bool crosses = envelope.minY <= 0.0 && envelope.maxY >= 0.0;
    const double latitude = nearest ? (crosses ? 0.0 : std::min(low, high)) : farthest;
    return std::max(std::cos(std::min(latitude, 90.0) * radiansPerDegree), 1e-9);
}

} // namespace

std::shared_ptr<Geometry> simplified(const Geometry& geometry, double tolerance, const QString& units,
                                     bool keepTopology) {
    const auto system = geometry.coordSystem();
    if (units.isEmpty()) {
        return simplifiedForm(geometry, tolerance, keepTopology);
    }
    const double own = ownLength(tolerance, system.get(), units);
    if (!system || !system->isGeographic()) {
        return simplifiedForm(geometry, own, keepTopology);
    }
    const double degrees = degreesPerUnit(*system);
    ScaledAlongX scale(cosine(geometry.envelope(), degrees, true));
    const std::shared_ptr<Geometry> made = scale.original(
        *simplifiedForm(*scale.scaled(geometry), own / metresPerDegree(*system) / degrees, keepTopology));
    made->setCoordSystem(system);
    return made;
}

Reach reachAround(const Geometry& geometry, double distance, const QString& units) {
    const auto system = geometry.coordSystem();
    const Envelope envelope = geometry.envelope();
    if (units.isEmpty() || envelope.isEmpty()) {
        return {distance, distance};
    }
    const double own = ownLength(distance, system.get(), units);
    if (!system || !system->isGeographic()) {
        return {own, own};
    }
    // A degree of latitude has least metres at the equator: those of the curvature of the meridian there.
    const geod_geodesic& ellipsoid = ellipsoidOf(*system);
    const double degrees = degreesPerUnit(*system);
    const double leastMetres = ellipsoid.a * std::pow(1.0 - ellipsoid.f, 2) * radiansPerDegree * degrees;
    const double y = own / leastMetres;
    Envelope reached = envelope;
    reached.minY -= std::max(y, 0.0);
    reached.maxY += std::max(y, 0.0);
    const double whole = 360.0 / degrees;
    return {std::clamp(y / cosine(reached, degrees, false), -whole, whole), y};
}

} // namespace orvane::geometry
