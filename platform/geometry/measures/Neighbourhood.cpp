#include "platform/geometry/measures/Neighbourhood.h"

#include "platform/cs/CoordSystem.h"
#include "platform/cs/Transformer.h"
#include "platform/geometry/measures/Units.h"
#include "platform/geometry/shapes/Curves.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <stdexcept>

namespace orvane::geometry {

namespace {

using SystemPtr = std::shared_ptr<cs::CoordSystem>;
using Windows = std::vector<Envelope>;

constexpr double degreesPerRadian = 180.0 / std::numbers::pi;
constexpr double infinite = std::numeric_limits<double>::infinity();

/// For what rounding makes of envelopes and distances.
constexpr double roundingShare = 1e-9;

Envelope widened(const Envelope& envelope, double x, double y) {
    return {envelope.minX - x, envelope.minY - y, envelope.maxX + x, envelope.maxY + y};
}

bool areDegrees(const cs::CoordSystem& system) {
    return system.isGeographic() && std::abs(system.unitFactor() * degreesPerRadian - 1.0) < 1e-9;
}

/// Metres; none for units that are none of a distance on the ellipsoid.
std::optional<double> metresOf(const Nearness& nearness) {
    if (nearness.units.trimmed().isEmpty()) {
        return nearness.distance;
    }
    const Unit unit = lengthUnit(nearness.units);
    return unit.isAngular ? std::nullopt : std::optional(nearness.distance * unit.factor);
}

/// Units of the plane, likewise. Without a system they are metres.
std::optional<double> planeUnitsOf(const Nearness& nearness, const cs::CoordSystem* system) {
    const bool isBare = nearness.units.trimmed().isEmpty();
    if (isBare && nearness.kind == DistanceKind::Cartesian) {
        return nearness.distance;
    }
    const Unit unit = isBare ? Unit() : lengthUnit(nearness.units);
    const bool inDegrees = system && system->isGeographic();
    if (unit.isAngular != inDegrees) {
        return std::nullopt;
    }
    const double factor = system ? system->unitFactor() * (inDegrees ? degreesPerRadian : 1.0) : 1.0;
    return nearness.distance * unit.factor / factor;
}

/// Around an envelope in degrees, and the same a turn to the east and to the west: longitudes are read modulo
/// 360. Of a sphere as small as the ellipsoid's smallest radius of curvature, where a distance takes the
/// largest angle.
Windows windowsOnEarth(const Envelope& degrees, double metres, const cs::CoordSystem& system) {
    const double flattening = system.inverseFlattening() == 0.0 ? 0.0 : 1.0 / system.inverseFlattening();
    const double smallestRadius = system.semiMajorAxis() * (1.0 - flattening) * (1.0 - flattening);
    constexpr double ofLatitudes = 1.01; // geodetic ones are not those of a sphere
    const double reach = ofLatitudes * metres / smallestRadius * degreesPerRadian;
    const double highest = std::max(std::abs(degrees.minY), std::abs(degrees.maxY));
    Envelope around = widened(degrees, 0.0, reach + roundingShare);
    if (highest + reach >= 90.0) {
        around.minX = -infinite;
        around.maxX = infinite;
        return {around};
    }
    const double sine = std::sin(reach / degreesPerRadian) / std::cos(highest / degreesPerRadian);
    const double aside = std::asin(std::min(1.0, sine)) * degreesPerRadian * ofLatitudes + roundingShare;
    around = widened(around, aside, 0.0);
    if (around.maxX - around.minX >= 360.0) {
        around.minX = -infinite;
        around.maxX = infinite;
        return {around};
    }
    Windows windows;
    for (const double turn : {-360.0, 0.0, 360.0}) {
        windows.push_back({around.minX + turn, around.minY, around.maxX + turn, around.maxY});
    }
    return windows;
}

/// The envelope of a window's image, from positions along its border and a few within; none where one of them
/// has no image, or one within lies outside the image of the border, as around a pole.
std::optional<Envelope> imageOf(const Envelope& window, const cs::Transformer& transformer) {
    constexpr int parts = 32;
    constexpr double share = 0.01; // by which the border between two positions may stand out, amply
    const auto x = [&window](int part) { return window.minX + (window.maxX - window.minX) * part / parts; };
    const auto y = [&window](int part) { return window.minY + (window.maxY - window.minY) * part / parts; };
    std::vector<double> positions;
    const auto add = [&positions](double left, double up) { positions.insert(positions.end(), {left, up}); };
    for (int i = 0; i <= parts; ++i) {
        add(x(i), window.minY);
        add(x(i), window.maxY);
        add(window.minX, y(i));
        add(window.maxX, y(i));
    }
    const std::size_t numOfBorder = positions.size();
    for (int i = parts / 8; i < parts; i += parts / 4) {
        for (int j = parts / 8; j < parts; j += parts / 4) {
            add(x(i), y(j));
        }
    }
    if (!transformer.transform(positions.data(), positions.size() / 2, 2, false)) {
        return std::nullopt;
    }
    Envelope image;
    for (std::size_t i = 0; i < numOfBorder; i += 2) {
        image.add(positions[i], positions[i + 1]);
    }
    image = widened(image, (image.maxX - image.minX) * share, (image.maxY - image.minY) * share);
    for (std::size_t i = numOfBorder; i < positions.size(); i += 2) {
        if (!image.contains(Envelope{positions[i], positions[i + 1], positions[i], positions[i + 1]})) {
            return std::nullopt;
        }
    }
    return image;
}

/// Windows of one system in another.
std::optional<Windows> inOther(const Windows& windows, const cs::CoordSystem& from,
                               const cs::CoordSystem& to) {
    const auto transformer = cs::Transformer::between(from, to);
    if (!transformer || windows.empty()) {
        return std::nullopt;
    }
    // The turns of a window on Earth have one image, unless it reaches over the edge of the map.
    const Envelope& window = windows.size() > 1 ? windows[1] : windows.front();
    constexpr double nearPole = 89.0; // a pole of one datum is no pole of another, and maps tear there
    const bool isWithinMap = !from.isGeographic() || (window.minX >= -180.0 && window.maxX <= 180.0 &&
                                                      window.minY >= -nearPole && window.maxY <= nearPole);
    const auto image = isWithinMap ? imageOf(window, *transformer) : std::nullopt;
    // A geographic target may have the image on both sides of the 180th meridian.
    if (!image || (to.isGeographic() && image->maxX - image->minX > 180.0)) {
        return std::nullopt;
    }
    return Windows{*image};
}

double bulgeBetween(double x1, double y1, double x2, double y2) {
    const double turn = std::abs(x2 - x1);
    if (!(turn <= 180.0)) {
        return infinite;
    }
    const double highest = std::min(90.0, std::max(std::abs(y1), std::abs(y2)));
    const double half = turn / 2.0 / degreesPerRadian;
    // The highest latitude of the great circle between two positions of one latitude.
    const double top = std::atan2(std::tan(highest / degreesPerRadian), std::cos(half)) * degreesPerRadian;
    constexpr double ofEllipsoid = 1.02;
    return std::max(0.0, top - highest) * ofEllipsoid;
}

} // namespace

std::optional<Envelope> envelopeIn(const cs::CoordSystem& target, const Envelope& envelope,
                                   const cs::CoordSystem& own) {
    const auto windows = inOther({envelope}, own, target);
    return windows ? std::optional(windows->front()) : std::nullopt;
}

double geodesicBulge(const Geometry& geometry) {
    double bulge = 0.0;
    const auto note = [&bulge](const double* positions, std::size_t count, Dimensions dimensions) {
        const std::size_t stride = strideOf(dimensions);
        for (std::size_t i = 1; i < count; ++i) {
            const double* position = positions + i * stride;
            bulge = std::max(bulge, bulgeBetween(position[0], position[1], *(position - stride),
                                                 *(position - stride + 1)));
        }
        return true;
    };
    geometry.mapped(note);
    return bulge;
}

bool mayBulgeBeyond(double bulge, const Envelope& envelope) {
    const double turn = envelope.maxX - envelope.minX;
    if (!(turn <= 180.0)) {
        return true;
    }
    const double half = turn / 2.0 / degreesPerRadian;
    constexpr double mostOfShort = 1.02 * 1.02; // of the ellipsoid, and of what the square leaves out
    if (turn <= 20.0 && half * half / 4.0 * mostOfShort * degreesPerRadian <= bulge) {
        return false; // wherever it lies
    }
    const double high = std::max(std::abs(envelope.minY), std::abs(envelope.maxY));
    const bool isAcross = envelope.minY <= 0.0 && envelope.maxY >= 0.0;
    const double low = isAcross ? 0.0 : std::min(std::abs(envelope.minY), std::abs(envelope.maxY));
    // Where the bulges over one turn are the largest.
    const double worst = std::atan(std::sqrt(std::max(0.0, std::cos(half)))) * degreesPerRadian;
    const double latitude = std::max(low, std::min(high, worst));
    constexpr double ofRounding = 1.0 + 1e-6;
    return bulgeBetween(0.0, latitude, turn, latitude) * ofRounding > bulge;
}

std::optional<std::vector<Envelope>> neighbourhood(const Geometry& centre, const Nearness& nearness,
                                                   const OthersInPlace& others) try {
    const SystemPtr own = centre.coordSystem() ? centre.coordSystem() : others.coordSystem;
    const SystemPtr theirs = others.coordSystem ? others.coordSystem : own;
    const SystemPtr& measuring = nearness.centreIsFirst ? own : theirs;
    const bool isOneSystem = !theirs || measuring->equals(*theirs);
    if (!(nearness.distance >= 0.0) || centre.isEmpty() || (!isOneSystem && !others.arePositions)) {
        return std::nullopt;
    }
    GeometryPtr transformed;
    if (measuring && !own->equals(*measuring)) {
        transformed = centre.transformed(measuring);
        if (!transformed) {
            return std::nullopt;
        }
    }
    const Geometry& measured = transformed ? *transformed : centre;
    const bool isOnEarth = nearness.kind == DistanceKind::Spherical ||
                           (nearness.kind == DistanceKind::General && measuring && measuring->isGeographic());
    Windows windows;
    if (isOnEarth) {
        const auto metres = metresOf(nearness);
        const double bulge = geodesicBulge(measured) + (others.arePositions ? 0.0 : others.bulge);
        if (!measuring || !areDegrees(*measuring) || !metres || !(bulge < 90.0)) {
            return std::nullopt;
        }
        windows = windowsOnEarth(widened(measured.envelope(), 0.0, bulge), *metres, *measuring);
    } else {
        const auto distance = planeUnitsOf(nearness, measuring.get());
        if (!distance) {
            return std::nullopt;
        }
        const Envelope envelope = measured.envelope();
        const double reach = *distance * (1.0 + roundingShare) +
                             roundingShare * std::max({std::abs(envelope.minX), std::abs(envelope.maxX),
                                                       std::abs(envelope.minY), std::abs(envelope.maxY)});
        windows.push_back(widened(envelope, reach, reach));
    }
    return isOneSystem ? windows : inOther(windows, *measuring, *theirs);
} catch (const std::runtime_error&) {
    return std::nullopt; // of the units: the measure will tell
}

} // namespace orvane::geometry
