#include "platform/geometry/measures/Extremes.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/measures/FarthestSearch.h"
#include "platform/geometry/measures/GeodesicForm.h"
#include "platform/geometry/relations/RelationForm.h"
#include "platform/geometry/shapes/Curves.h"
#include "platform/geometry/shapes/Failure.h"
#include "platform/work/Cancellation.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::geometry {

namespace {

[[noreturn]] void throwNotFinite() {
    throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "Координата геометрии не конечное число."));
}

/// What GEOS makes of the forms of two geometries.
template<typename Compute>
auto withForms(const Geometry& a, const Geometry& b, const Compute& compute) {
    const FormLock lock(a, b);
    const GEOSGeometry* const first = RelationForm::of(a).whole();
    const GEOSGeometry* const second = RelationForm::of(b).whole();
    if (!first || !second) {
        throwNotFinite();
    }
    return compute(first, second);
}

Piece pointAt(const Vector& vector) {
    const Position position{0.0, 0.0, vector};
    return {position, position, 0.0};
}

/// Positions of the plane as points, z left out.
std::vector<Vector> verticesInPlane(const Geometry& geometry) {
    const GeometryPtr linear = linearized(GeometryPtr(std::shared_ptr<void>(), &geometry));
    std::vector<Vector> vertices;
    forEachSequence(*linear, [&vertices](const CoordinateSequence& sequence) {
        for (std::size_t i = 0; i < sequence.size(); ++i) {
            if (!std::isfinite(sequence.x(i)) || !std::isfinite(sequence.y(i))) {
                throwNotFinite();
            }
            vertices.push_back({sequence.x(i), sequence.y(i), 0.0});
        }
    });
    return vertices;
}

PieceTree treeOfPoints(const std::vector<Vector>& vertices) {
    std::vector<Piece> pieces(vertices.size());
    std::transform(vertices.begin(), vertices.end(), pieces.begin(), pointAt);
    return PieceTree(std::move(pieces));
}

std::vector<Position> verticesOnEarth(const GeographicShape& shape) {
    std::vector<Position> vertices;
    forEachSequence(*shape.geometry, [&](const CoordinateSequence& sequence) {
        for (std::size_t i = 0; i < sequence.size(); ++i) {
            vertices.push_back(positionAt(shape, sequence.x(i), sequence.y(i)));
        }
    });
    return vertices;
}

double between(const GeographicShape& shape, const Position& a, const Position& b) {
    double distance = 0.0;
    geod_inverse(&shape.ellipsoid, a.latitude, a.longitude, b.latitude, b.longitude, &distance, nullptr,
                 nullptr);
    return distance;
}

double maxDistanceOnEarth(const Geometry& a, const Geometry& b) {
    const auto first = formOf(a);
    const auto second = formOf(b);
    const GeographicShape& shape = first->shape;
    const double equator = shape.equatorialRadius;
    const double polar = equator * std::sqrt(1.0 - shape.eccentricitySquared);
    const double smallest = std::min(polar * polar / equator, equator * equator / polar);
    const auto bound = [smallest, longest = std::numbers::pi * std::max(equator, polar)](double chord) {
        return chord < 2.0 * smallest ? 2.0 * smallest * std::asin(chord / (2.0 * smallest)) : longest;
    };
    return FarthestSearch(
               first->tree, second->tree,
               [&shape](const Position& from, const Position& to) { return between(shape, from, to); }, bound)
        .run();
}

/// The farthest of the first from the second.
double reachOnEarth(const GeodesicForm& first, const GeodesicForm& second, double part) {
    const work::Cancellation cancellation;
    double most = 0.0;
    const auto note = [&](const Position& position) {
        cancellation.check();
        const PieceTree point({{position, position, 0.0}});
        most = std::max(most, nearestIn(first.shape, point, second.tree).distance);
    };
    const auto parts = static_cast<int>(std::ceil(1.0 / part));
    forEachSequence(*first.shape.geometry, [&](const CoordinateSequence& sequence) {
        for (std::size_t i = 0; i < sequence.size(); ++i) {
            note(positionAt(first.shape, sequence.x(i), sequence.y(i)));
            if (i == 0 || parts == 1) {
                continue;
            }
            geod_geodesicline line;
            geod_inverseline(&line, &first.shape.ellipsoid, sequence.y(i - 1), sequence.x(i - 1),
                             sequence.y(i), sequence.x(i), 0);
            for (int k = 1; k < parts; ++k) {
                double latitude = 0.0;
                double longitude = 0.0;
                geod_position(&line, line.s13 * k / parts, &latitude, &longitude, nullptr);
                note(positionAt(first.shape, longitude, latitude));
            }
        }
    });
    return most;
}

template<typename Vertex, typename Measure>
double frechet(const std::vector<Vertex>& a, const std::vector<Vertex>& b, const Measure& measure) {
    constexpr std::size_t mostPairs = 100'000'000;
    if (a.size() > mostPairs / b.size()) {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "У геометрий слишком много вершин."));
    }
    const work::Cancellation cancellation;
    std::vector<double> leash(b.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        cancellation.check();
        double diagonal = 0.0;
        for (std::size_t j = 0; j < b.size(); ++j) {
            double least = i == 0 ? INFINITY : leash[j];
            if (j > 0) {
                least = std::min(least, leash[j - 1]);
                if (i > 0) {
                    least = std::min(least, diagonal);
                }
            } else if (i == 0) {
                least = 0.0;
            }
            diagonal = leash[j];
            leash[j] = std::max(least, measure(a[i], b[j]));
        }
    }
    return leash.back();
}

} // namespace

bool isOnEarth(const Geometry& geometry) {
    const auto system = geometry.coordSystem();
    return system && system->isGeographic();
}

double maxDistance(const Geometry& a, const Geometry& b) {
    if (isOnEarth(a)) {
        return maxDistanceOnEarth(a, b);
    }
    const auto measure = [](const Position& from, const Position& to) {
        return norm(to.vector - from.vector);
    };
    return FarthestSearch(treeOfPoints(verticesInPlane(a)), treeOfPoints(verticesInPlane(b)), measure,
                          [](double chord) { return chord; })
        .run();
}

double hausdorffDistance(const Geometry& a, const Geometry& b, double part) {
    if (isOnEarth(a)) {
        const auto first = formOf(a);
        const auto second = formOf(b);
        return std::max(reachOnEarth(*first, *second, part), reachOnEarth(*second, *first, part));
    }
    return withForms(a, b, [part](const GEOSGeometry* first, const GEOSGeometry* second) {
        double distance = 0.0;
        const int done = part < 1.0
                             ? GEOSHausdorffDistanceDensify_r(geosContext(), first, second, part, &distance)
                             : GEOSHausdorffDistance_r(geosContext(), first, second, &distance);
        return done == 1 ? distance : (throwGeosError(), 0.0);
    });
}

double frechetDistance(const Geometry& a, const Geometry& b) {
    if (isOnEarth(a)) {
        const auto first = formOf(a);
        const auto second = formOf(b);
        return frechet(
            verticesOnEarth(first->shape), verticesOnEarth(second->shape),
            [&first](const Position& from, const Position& to) { return between(first->shape, from, to); });
    }
    return frechet(verticesInPlane(a), verticesInPlane(b),
                   [](const Vector& from, const Vector& to) { return norm(to - from); });
}

std::shared_ptr<LineString> shortestLine(const Geometry& a, const Geometry& b) {
    std::array<double, 4> ends{};
    if (isOnEarth(a)) {
        const GeodesicNearest nearest = geodesicNearest(a, b);
        const double factor = degreesPerUnit(*a.coordSystem());
        ends = {nearest.onA[0] / factor, nearest.onA[1] / factor, nearest.onB[0] / factor,
                nearest.onB[1] / factor};
    } else {
        withForms(a, b, [&ends](const GEOSGeometry* first, const GEOSGeometry* second) {
            GEOSCoordSequence* const found = GEOSNearestPoints_r(geosContext(), first, second);
            if (!found) {
                throwGeosError();
            }
            const int done = GEOSCoordSeq_copyToBuffer_r(geosContext(), found, ends.data(), 0, 0);
            GEOSCoordSeq_destroy_r(geosContext(), found);
            return done;
        });
    }
    auto line = std::make_shared<LineString>(CoordinateSequence(Dimensions::XY, ends));
    line->setCoordSystem(a.coordSystem());
    return line;
}

} // namespace orvane::geometry
