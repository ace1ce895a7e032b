#include "platform/geometry/making/GeodesicBuffer.h"

#include "platform/geometry/making/GlobeArea.h"
#include "platform/geometry/making/GlobeFigure.h"
#include "platform/geometry/making/LocalPlane.h"
#include "platform/geometry/shapes/Failure.h"
#include "platform/work/Cancellation.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>
#include <span>

// An azimuthal equidistant plane shows distances from its middle as they are. From a position that is s away
// from the middle it shows them wrong by about s^2 / (6 R^2) of them, however long they are. So what is
// buffered is cut into groups of edges not larger than 100 km, each is buffered in a plane of its own, and
// the buffers are united on the map: wrong by less than 2e-4 for distances of up to a quarter of the way
// around.

namespace orvane::geometry {

namespace {

constexpr double largestGroup = 100e3; // metres from its middle
constexpr double longestEdge = 20e3;   // metres
constexpr double shortestStep = 500.0; // metres

/// Edges so short that, read as straight lines of the map, they leave the geodesic by less than a thousandth
/// of the distance.
double edgeLength(const GeographicShape& shape, double distance) {
    return std::clamp(std::sqrt(8.0 * shape.equatorialRadius * std::abs(distance) / 4000.0), shortestStep,
                      longestEdge);
}

/// The edge that ends at a position of a track, or the point that is one.
struct Atom {
    const Track* track;
    std::size_t end;

    const Position& last() const { return track->positions[end]; }
    const Position& first() const { return track->positions[end == 0 ? 0 : end - 1]; }
};

class GeodesicBuffer {
public:
    GeodesicBuffer(const GeographicShape& shape, double distance, const BufferOptions& options)
        : shape_(shape), distance_(distance), options_(options),
          figure_(figureOf(shape, edgeLength(shape, distance))) {}

    GeosPtr run() {
        std::vector<Atom> atoms;
        for (const Track& track : figure_.tracks) {
            addAtoms(track, atoms);
        }
        for (const auto& area : figure_.areas) {
            for (const Track& ring : area) {
                seam_.add(ring);
            }
        }
        const bool isCut = !seam_.isEmpty();
        for (const auto& area : figure_.areas) {
            for (const Track& ring : area) {
                addAtoms(ring, atoms);
            }
        }
        if (atoms.empty()) {
            return checked(GEOSGeom_createEmptyPolygon_r(geosContext()));
        }
        if (!isCut && reach(atoms) <= largestGroup) {
            return unitedAreas(one(onMap(wholeBuffer(LocalPlane(shape_, middle(atoms))))));
        }
        return distance_ < 0.0 ? shrunk(atoms) : grown(atoms);
    }

private:
    static std::vector<GeosPtr> one(GeosPtr area) {
        std::vector<GeosPtr> areas;
        areas.push_back(std::move(area));
        return areas;
    }

    bool isBorder(const Track& track, std::size_t edge) const {
        return !track.isRing || !seam_.holds(track, edge);
    }

    void addAtoms(const Track& track, std::vector<Atom>& atoms) const {
        if (track.isPoint()) {
            atoms.push_back({&track, 0});
        }
        for (std::size_t i = 1; i < track.positions.size(); ++i) {
            if (isBorder(track, i)) {
                atoms.push_back({&track, i});
            }
        }
    }

    struct Extent {
        Vector least{INFINITY, INFINITY, INFINITY};
        Vector most{-INFINITY, -INFINITY, -INFINITY};
    };

    static Extent extentOf(std::span<const Atom> atoms) {
        Extent extent;
        for (const Atom& atom : atoms) {
            for (const Vector& vector : {atom.first().vector, atom.last().vector}) {
                for (std::size_t i = 0; i < 3; ++i) {
                    extent.least[i] = std::min(extent.least[i], vector[i]);
                    extent.most[i] = std::max(extent.most[i], vector[i]);
                }
            }
        }
        return extent;
    }
    static double reach(std::span<const Atom> atoms) {
        const Extent extent = extentOf(atoms);
        return norm(extent.most - extent.least) / 2.0;
    }
    GlobePosition middle(std::span<const Atom> atoms) const {
        const Extent extent = extentOf(atoms);
        const Vector sum = extent.least + extent.most;
        const double degrees = 180.0 / std::numbers::pi;
        return {std::atan2(sum[1], sum[0]) * degrees,
                std::atan2(sum[2], std::hypot(sum[0], sum[1]) * (1.0 - shape_.eccentricitySquared)) *
                    degrees};
    }

    /// Of something small, rings and all.
    GeosPtr wholeBuffer(LocalPlane plane) {
        std::vector<GeosPtr> parts;
        for (const Track& track : figure_.tracks) {
            parts.push_back(plane.line(track.positions));
        }
        for (const auto& area : figure_.areas) {
            std::vector<GeosPtr> rings;
            for (const Track& ring : area) {
                rings.push_back(plane.ring(ring.positions));
            }
            parts.push_back(LocalPlane::area(std::move(rings)));
        }
        return buffered(std::move(parts), std::move(plane), distance_);
    }

    GeosPtr buffered(std::vector<GeosPtr> parts, LocalPlane plane, double distance) {
        plane_.emplace(std::move(plane));
        return planarBuffer(collectionOf(GEOS_GEOMETRYCOLLECTION, std::move(parts)).get(), distance,
                            options_);
    }

    /// The area in the plane that was used last, on the map.
    GeosPtr onMap(const GeosPtr& area) {
        return plane_->onMap(area.get(), std::max(longestEdge, std::abs(distance_) / 8.0));
    }

    GeosPtr grown(std::vector<Atom>& atoms) {
        std::vector<GeosPtr> areas;
        for (const auto& area : figure_.areas) {
            areas.push_back(areaOf(area));
        }
        bufferGroups(atoms, distance_, areas);
        return unitedAreas(std::move(areas));
    }

    GeosPtr shrunk(std::vector<Atom>& atoms) {
        std::vector<GeosPtr> areas;
        for (const auto& area : figure_.areas) {
            areas.push_back(areaOf(area));
        }
        const GeosPtr whole = unitedAreas(std::move(areas));
        std::vector<GeosPtr> borders;
        std::erase_if(atoms, [](const Atom& atom) { return !atom.track->isRing; });
        bufferGroups(atoms, -distance_, borders);
        return checked(GEOSDifference_r(geosContext(), whole.get(), unitedAreas(std::move(borders)).get()));
    }

    /// Of rings that each bound the smaller of their two areas.
    static GeosPtr areaOf(const std::vector<Track>& rings) {
        GeosPtr shell = areaWithin(rings.front());
        for (std::size_t i = 1; i < rings.size(); ++i) {
            shell = checked(GEOSDifference_r(geosContext(), shell.get(), areaWithin(rings[i]).get()));
        }
        return shell;
    }

    static GeosPtr areaWithin(const Track& track) {
        GlobeRing ring;
        for (std::size_t i = 0; i + 1 < track.positions.size(); ++i) {
            ring.push_back({track.positions[i].longitude, track.positions[i].latitude});
        }
        return globeAreaWithin(ring);
    }

    void bufferGroups(std::span<Atom> atoms, double distance, std::vector<GeosPtr>& areas) {
        cancellation_.check();
        if (atoms.empty()) {
            return;
        }
        const Extent extent = extentOf(atoms);
        const Vector sides = extent.most - extent.least;
        if (norm(sides) / 2.0 <= largestGroup || atoms.size() == 1) {
            areas.push_back(onMap(bufferGroup(atoms, distance)));
            return;
        }
        const auto axis =
            static_cast<std::size_t>(std::max_element(sides.begin(), sides.end()) - sides.begin());
        const auto half = static_cast<std::ptrdiff_t>(atoms.size() / 2);
        std::nth_element(atoms.begin(), atoms.begin() + half, atoms.end(),
                         [axis](const Atom& a, const Atom& b) {
                             return a.first().vector[axis] + a.last().vector[axis] <
                                    b.first().vector[axis] + b.last().vector[axis];
                         });
        bufferGroups(atoms.first(static_cast<std::size_t>(half)), distance, areas);
        bufferGroups(atoms.subspan(static_cast<std::size_t>(half)), distance, areas);
    }

    /// Edges that follow each other are one line, which goes an edge farther on both sides: so the joins at
    /// its ends, and what its caps leave out, are in the buffers of both groups.
    GeosPtr bufferGroup(std::span<Atom> atoms, double distance) {
        LocalPlane plane(shape_, middle(atoms));
        std::sort(atoms.begin(), atoms.end(), [](const Atom& a, const Atom& b) {
            return a.track != b.track ? a.track < b.track : a.end < b.end;
        });
        std::vector<GeosPtr> lines;
        for (std::size_t first = 0; first < atoms.size();) {
            std::size_t next = first + 1;
            while (next < atoms.size() && atoms[next].track == atoms[first].track &&
                   atoms[next].end == atoms[next - 1].end + 1) {
                ++next;
            }
            lines.push_back(
                plane.line(withNeighbours(*atoms[first].track, atoms[first].end, atoms[next - 1].end)));
            first = next;
        }
        return buffered(std::move(lines), std::move(plane), distance);
    }

    std::vector<Position> withNeighbours(const Track& track, std::size_t first, std::size_t last) const {
        const auto& all = track.positions;
        if (track.isPoint()) {
            return all;
        }
        const std::size_t edges = all.size() - 1;
        const std::size_t before = first > 1 ? first - 1 : edges;
        const std::size_t behind = last < edges ? last + 1 : 1;
        std::vector<Position> line;
        if ((first > 1 || track.isRing) && isBorder(track, before)) {
            line.push_back(all[before - 1]);
        }
        line.insert(line.end(), all.begin() + static_cast<std::ptrdiff_t>(first) - 1,
                    all.begin() + static_cast<std::ptrdiff_t>(last) + 1);
        if ((last < edges || track.isRing) && isBorder(track, behind)) {
            line.push_back(all[behind]);
        }
        return line;
    }

    const GeographicShape& shape_;
    const double distance_;
    const BufferOptions options_;
    const work::Cancellation cancellation_;
    const Figure figure_;
    Seam seam_;
    std::optional<LocalPlane> plane_;
};

struct ParametersDeleter {
    void operator()(GEOSBufferParams* parameters) const {
        GEOSBufferParams_destroy_r(geosContext(), parameters);
    }
};

} // namespace

GeosPtr geodesicBuffer(const GeographicShape& shape, double distance, const BufferOptions& options) {
    constexpr double quarter = 10'000e3; // metres, of the way around the Earth
    const double most = quarter * shape.equatorialRadius / 6378137.0;
    if (std::abs(distance) > most) {
        throw failure(
            QT_TRANSLATE_NOOP("orvane::geometry", "Расстояние на эллипсоиде не может быть больше %0 м."),
            QString::number(most, 'f', 0));
    }
    return lessThanHalves(GeodesicBuffer(shape, distance, options).run());
}

GeosPtr planarBuffer(const GEOSGeometry* geometry, double distance, const BufferOptions& options) {
    const auto context = geosContext();
    const std::unique_ptr<GEOSBufferParams, ParametersDeleter> parameters(GEOSBufferParams_create_r(context));
    if (!parameters) {
        throwGeosError();
    }
    using Cap = BufferOptions::Cap;
    using Join = BufferOptions::Join;
    using Side = BufferOptions::Side;
    GEOSBufferParams_setQuadrantSegments_r(context, parameters.get(), options.quadrantSegments);
    GEOSBufferParams_setEndCapStyle_r(context, parameters.get(),
                                      options.cap == Cap::Round  ? GEOSBUF_CAP_ROUND
                                      : options.cap == Cap::Flat ? GEOSBUF_CAP_FLAT
                                                                 : GEOSBUF_CAP_SQUARE);
    GEOSBufferParams_setJoinStyle_r(context, parameters.get(),
                                    options.join == Join::Round   ? GEOSBUF_JOIN_ROUND
                                    : options.join == Join::Mitre ? GEOSBUF_JOIN_MITRE
                                                                  : GEOSBUF_JOIN_BEVEL);
    GEOSBufferParams_setMitreLimit_r(context, parameters.get(), options.mitreLimit);
    GEOSBufferParams_setSingleSided_r(context, parameters.get(), options.side != Side::Both);
    return checked(GEOSBufferWithParams_r(context, geometry, parameters.get(),
                                          options.side == Side::Right ? -distance : distance));
}

} // namespace orvane::geometry
