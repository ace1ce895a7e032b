#include "platform/geometry/measures/GeodesicPieces.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/shapes/Shapes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

// The shortest geodesic between two shapes. In space a geodesic is longer than its chord by what lies between
// the circles of the smallest and of the largest radius of curvature, so that distances in space, which are
// cheap, tell what need not be measured on the ellipsoid. What is left is searched in two trees of boxes.

namespace orvane::geometry {

namespace {

struct Box {
    Vector least{INFINITY, INFINITY, INFINITY};
    Vector most{-INFINITY, -INFINITY, -INFINITY};

    void add(const Vector& position, double around) {
        for (std::size_t i = 0; i < 3; ++i) {
            least[i] = std::min(least[i], position[i] - around);
            most[i] = std::max(most[i], position[i] + around);
        }
    }
    double size() const { return norm(most - least); }
    double distance(const Box& other) const {
        double sum = 0.0;
        for (std::size_t i = 0; i < 3; ++i) {
            const double gap = std::max({0.0, least[i] - other.most[i], other.least[i] - most[i]});
            sum += gap * gap;
        }
        return std::sqrt(sum);
    }
};

/// Pieces by their place: halves of halves.
class PieceTree {
public:
    struct Node {
        Box box;
        std::size_t first, last;  ///< pieces [first, last)
        std::size_t children = 0; ///< the first of two; 0 for none
    };

    explicit PieceTree(std::vector<Piece> pieces) : pieces_(std::move(pieces)) {
        nodes_.emplace_back();
        build(0, 0, pieces_.size());
    }

    const Node& node(std::size_t index) const { return nodes_[index]; }
    const Piece& piece(std::size_t index) const { return pieces_[index]; }

private:
    void build(std::size_t index, std::size_t first, std::size_t last) {
        constexpr std::size_t fewPieces = 4;
        Node node{{}, first, last};
        for (std::size_t i = first; i < last; ++i) {
            node.box.add(pieces_[i].begin.vector, pieces_[i].sagitta);
            node.box.add(pieces_[i].end.vector, pieces_[i].sagitta);
        }
        if (last - first > fewPieces) {
            const Vector sides = node.box.most - node.box.least;
            const auto axis =
                static_cast<std::size_t>(std::max_element(sides.begin(), sides.end()) - sides.begin());
            const std::size_t middle = first + (last - first) / 2;
            const auto at = [this](std::size_t i) {
                return pieces_.begin() + static_cast<std::ptrdiff_t>(i);
            };
            std::nth_element(at(first), at(middle), at(last), [axis](const Piece& a, const Piece& b) {
                return a.begin.vector[axis] + a.end.vector[axis] < b.begin.vector[axis] + b.end.vector[axis];
            });
            node.children = nodes_.size();
            nodes_.resize(nodes_.size() + 2);
            build(node.children, first, middle);
            build(node.children + 1, middle, last);
        }
        nodes_[index] = node;
    }

    std::vector<Piece> pieces_;
    std::vector<Node> nodes_;
};

/// How far along a chord, 0 to 1, it is nearest to a position.
double nearestOn(const Piece& piece, const Vector& position) {
    const Vector chord = piece.end.vector - piece.begin.vector;
    const double square = dot(chord, chord);
    return square > 0.0 ? std::clamp(dot(position - piece.begin.vector, chord) / square, 0.0, 1.0) : 0.0;
}

Vector onChord(const Piece& piece, double part) {
    return piece.begin.vector + part * (piece.end.vector - piece.begin.vector);
}

/// Where two chords are nearest to each other, and how far apart they are there.
struct ChordsApart {
    double partA, partB, distance;
};

ChordsApart chordsApart(const Piece& a, const Piece& b) {
    const Vector chordA = a.end.vector - a.begin.vector;
    const Vector chordB = b.end.vector - b.begin.vector;
    const Vector between = b.begin.vector - a.begin.vector;
    const double aa = dot(chordA, chordA), bb = dot(chordB, chordB), ab = dot(chordA, chordB);
    const double determinant = aa * bb - ab * ab;
    double partA =
        determinant > 0.0
            ? std::clamp((dot(between, chordA) * bb - dot(between, chordB) * ab) / determinant, 0.0, 1.0)
            : 0.0;
    const double partB = nearestOn(b, onChord(a, partA));
    partA = nearestOn(a, onChord(b, partB));
    return {partA, partB, norm(onChord(b, partB) - onChord(a, partA))};
}

class NearestSearch {
public:
    NearestSearch(const GeographicShape& shape, const PieceTree& a, const PieceTree& b)
        : ellipsoid_(shape.ellipsoid), treeA_(a), treeB_(b) {
        const double polar = shape.equatorialRadius * std::sqrt(1.0 - shape.eccentricitySquared);
        largestRadius_ = std::max({shape.equatorialRadius, polar * polar / shape.equatorialRadius,
                                   shape.equatorialRadius * shape.equatorialRadius / polar});
    }

    double run() {
        search(0, 0);
        return best_;
    }

private:
    void search(std::size_t indexA, std::size_t indexB) {
        const PieceTree::Node& a = treeA_.node(indexA);
        const PieceTree::Node& b = treeB_.node(indexB);
        if (a.box.distance(b.box) >= reach_) {
            return;
        }
        if (a.children == 0 && b.children == 0) {
            for (std::size_t i = a.first; i < a.last; ++i) {
                for (std::size_t j = b.first; j < b.last; ++j) {
                    compare(treeA_.piece(i), treeB_.piece(j));
                }
            }
        } else if (b.children == 0 || (a.children != 0 && a.box.size() > b.box.size())) {
            const bool isFirst = treeA_.node(a.children).box.distance(b.box) <=
                                 treeA_.node(a.children + 1).box.distance(b.box);
            search(a.children + (isFirst ? 0 : 1), indexB);
            search(a.children + (isFirst ? 1 : 0), indexB);
        } else {
            const bool isFirst = treeB_.node(b.children).box.distance(a.box) <=
                                 treeB_.node(b.children + 1).box.distance(a.box);
            search(indexA, b.children + (isFirst ? 0 : 1));
            search(indexA, b.children + (isFirst ? 1 : 0));
        }
    }

    /// Two pieces that do not cross are nearest at an end of one of them.
    void compare(const Piece& a, const Piece& b) {
        const ChordsApart apart = chordsApart(a, b);
        const double around = a.sagitta + b.sagitta;
        if (apart.distance - around >= reach_) {
            return;
        }
        if (!a.isPoint() && !b.isPoint() && apart.distance <= around && cross(a, b, apart)) {
            found(0.0);
            return;
        }
        if (!a.isPoint() || b.isPoint()) {
            compareEnds(a, b);
        }
        if (!b.isPoint()) {
            compareEnds(b, a);
        }
    }

    void compareEnds(const Piece& piece, const Piece& other) {
        compare(piece, other.begin);
        if (!other.isPoint()) {
            compare(piece, other.end);
        }
    }

    void compare(const Piece& piece, const Position& position) {
        const Vector nearest = onChord(piece, nearestOn(piece, position.vector));
        if (norm(position.vector - nearest) - piece.sagitta < reach_) {
            measure(piece, position);
        }
    }

    void found(double distance) {
        if (distance < best_) {
            best_ = distance;
            // A geodesic as long as the best has at least this chord, where it bends least.
            reach_ = best_ < std::numbers::pi * largestRadius_
                         ? 2.0 * largestRadius_ * std::sin(best_ / (2.0 * largestRadius_))
                         : std::numeric_limits<double>::infinity();
        }
    }

    double between(const Position& a, const Position& b, double* azimuthA) const {
        double distance = 0.0;
        geod_inverse(&ellipsoid_, a.latitude, a.longitude, b.latitude, b.longitude, &distance, azimuthA,
                     nullptr);
        return distance;
    }

    /// The way from a position to a piece: to an end, or to where it meets the piece at a right angle.
    void measure(const Piece& piece, const Position& position) {
        double towards = 0.0;
        const double fromBegin = between(piece.begin, position, &towards);
        found(fromBegin);
        if (piece.isPoint()) {
            return;
        }
        const double fromEnd = between(piece.end, position, nullptr);
        found(fromEnd);
        geod_geodesicline line;
        geod_inverseline(&line, &ellipsoid_, piece.begin.latitude, piece.begin.longitude, piece.end.latitude,
                         piece.end.longitude, 0);
        // The cosine of the angle between the piece and the way to the position changes its sign at the foot.
        const auto cosine = [](double azimuth, double other) {
            return std::cos((azimuth - other) * std::numbers::pi / 180.0);
        };
        const double approach = cosine(towards, line.azi1);
        // Up to a quarter of the way around, the distance along the piece is a convex function.
        constexpr double quarter = 9.9e6;
        if (!(approach > 0.0) ||
            (fromEnd < quarter && fromBegin < quarter && fromBegin - approach * line.s13 >= best_)) {
            return;
        }
        signChange(0.0, line.s13, 1e-6, [&](double along) {
            Position here{};
            double lineAzimuth = 0.0;
            double azimuth = 0.0;
            geod_position(&line, along, &here.latitude, &here.longitude, &lineAzimuth);
            found(between(here, position, &azimuth));
            return cosine(azimuth, lineAzimuth);
        });
    }

    /// Whether two geodesics cross, by going again and again to where they would in the plane: C. F. F.
    /// Karney, Geodesic intersections, J. Surveying Eng. 150(3) (2024).
    bool cross(const Piece& a, const Piece& b, const ChordsApart& start) const {
        geod_geodesicline lineA;
        geod_geodesicline lineB;
        geod_inverseline(&lineA, &ellipsoid_, a.begin.latitude, a.begin.longitude, a.end.latitude,
                         a.end.longitude, 0);
        geod_inverseline(&lineB, &ellipsoid_, b.begin.latitude, b.begin.longitude, b.end.latitude,
                         b.end.longitude, 0);
        double alongA = start.partA * lineA.s13;
        double alongB = start.partB * lineB.s13;
        constexpr int mostSteps = 12;
        constexpr double precision = 1e-7; // metres
        double moved = INFINITY;
        for (int step = 0; step < mostSteps && moved > precision; ++step) {
            double latitudeA = 0.0, longitudeA = 0.0, azimuthA = 0.0;
            double latitudeB = 0.0, longitudeB = 0.0, azimuthB = 0.0;
            double apart = 0.0, fromA = 0.0, atB = 0.0;
            geod_position(&lineA, alongA, &latitudeA, &longitudeA, &azimuthA);
            geod_position(&lineB, alongB, &latitudeB, &longitudeB, &azimuthB);
            geod_inverse(&ellipsoid_, latitudeA, longitudeA, latitudeB, longitudeB, &apart, &fromA, &atB);
            const double angleA = (azimuthA - fromA) * std::numbers::pi / 180.0;
            const double angleB = (azimuthB - atB) * std::numbers::pi / 180.0;
            const double sine = std::sin(angleB - angleA);
            if (apart > 0.0 && std::abs(sine) < 1e-12) {
                return false; // side by side
            }
            const double stepA = apart > 0.0 ? apart * std::sin(angleB) / sine : 0.0;
            const double stepB = apart > 0.0 ? apart * std::sin(angleA) / sine : 0.0;
            alongA += stepA;
            alongB += stepB;
            moved = std::abs(stepA) + std::abs(stepB);
            if (std::abs(alongA) > 1e7 || std::abs(alongB) > 1e7) {
                return false; // nearly side by side, and far from crossing
            }
        }
        return moved <= precision && alongA >= 0.0 && alongA <= lineA.s13 && alongB >= 0.0 &&
               alongB <= lineB.s13;
    }

    const geod_geodesic& ellipsoid_;
    const PieceTree& treeA_;
    const PieceTree& treeB_;
    double largestRadius_;
    double best_ = std::numeric_limits<double>::infinity();
    double reach_ = std::numeric_limits<double>::infinity(); ///< the chord of the best
};

/// Calls `use` with every sequence of positions in a linear geometry: points, lines, rings.
template<typename Use>
void forEachSequence(const Geometry& geometry, const Use& use) {
    switch (geometry.type()) {
    case GeometryType::Point:
        if (!geometry.isEmpty()) {
            const auto& point = static_cast<const Point&>(geometry);
            use(CoordinateSequence(Dimensions::XY, std::span(point.ordinates(), 2)));
        }
        break;
    case GeometryType::LineString: use(static_cast<const LineString&>(geometry).coordinates()); break;
    case GeometryType::Polygon:
        for (const CoordinateSequence& ring : static_cast<const Polygon&>(geometry).rings()) {
            use(ring);
        }
        break;
    default:
        for (const GeometryPtr& part : static_cast<const GeometryCollection&>(geometry).parts()) {
            forEachSequence(*part, use);
        }
    }
}

PieceTree treeOf(const GeographicShape& shape) {
    std::vector<Piece> pieces;
    forEachSequence(*shape.geometry,
                    [&](const CoordinateSequence& sequence) { appendPieces(shape, sequence, pieces); });
    return PieceTree(std::move(pieces));
}

std::vector<Position> onePositionOfEach(const GeographicShape& shape) {
    std::vector<Position> positions;
    forEachSequence(*shape.geometry, [&](const CoordinateSequence& sequence) {
        if (!sequence.isEmpty()) {
            positions.push_back(positionAt(shape, sequence.x(0), sequence.y(0)));
        }
    });
    return positions;
}

/// The border of an area, then those of its holes.
using Area = std::vector<GeodesicRing>;

void appendAreas(const GeographicShape& shape, const Geometry& geometry, std::vector<Area>& areas) {
    if (const auto* collection = dynamic_cast<const GeometryCollection*>(&geometry)) {
        for (const GeometryPtr& part : collection->parts()) {
            appendAreas(shape, *part, areas);
        }
    } else if (geometry.type() == GeometryType::Polygon && !geometry.isEmpty()) {
        Area& area = areas.emplace_back();
        for (const CoordinateSequence& ring : static_cast<const Polygon&>(geometry).rings()) {
            if (!ring.isEmpty()) {
                area.emplace_back(shape, ring);
            }
        }
    }
}

/// What is measured from, made once for a geometry. Stays where it is: the areas refer to the shape.
struct GeodesicForm {
    explicit GeodesicForm(const Geometry& geometry)
        : shape(onEllipsoid(geometry)), tree(treeOf(shape)), positions(onePositionOfEach(shape)) {
        appendAreas(shape, *shape.geometry, areas);
    }
    GeodesicForm(const GeodesicForm&) = delete;
    GeodesicForm& operator=(const GeodesicForm&) = delete;

    GeographicShape shape;
    PieceTree tree;
    std::vector<Position> positions; ///< one of each part
    std::vector<Area> areas;
};

/// The form of the copy of a shape that was measured last: copies may have other systems.
struct KeptGeodesicForm {
    std::shared_ptr<const GeodesicForm> form;
    std::shared_ptr<cs::CoordSystem> system;
};

std::shared_ptr<const GeodesicForm> formOf(const Geometry& geometry) {
    if (geometry.type() == GeometryType::Point) {
        return std::make_shared<const GeodesicForm>(geometry);
    }
    KeptForm& shared = geometry.keptForm();
    const std::lock_guard lock(shared.mutex());
    auto& kept = shared.get<KeptGeodesicForm>();
    if (const auto system = geometry.coordSystem(); !kept.form || kept.system != system) {
        kept = {std::make_shared<const GeodesicForm>(geometry), system};
    }
    return kept.form;
}

/// Whether an area of a has a position of b inside. Their borders do not cross, so that one position of each
/// part is enough.
bool holdsPartOf(const GeodesicForm& a, const GeodesicForm& b) {
    return std::any_of(a.areas.begin(), a.areas.end(), [&b](const Area& area) {
        return std::any_of(b.positions.begin(), b.positions.end(), [&area](const Position& position) {
            return area.front().contains(position) &&
                   std::none_of(area.begin() + 1, area.end(),
                                [&position](const GeodesicRing& hole) { return hole.contains(position); });
        });
    });
}

/// Of two points in degrees, which most distances are measured between.
std::optional<double> pointDistance(const Geometry& a, const Geometry& b) {
    const auto system = a.coordSystem();
    if (a.type() != GeometryType::Point || b.type() != GeometryType::Point || !system ||
        !system->isGeographic() || degreesPerUnit(*system) != 1.0) {
        return std::nullopt;
    }
    const auto& from = static_cast<const Point&>(a);
    const auto& to = static_cast<const Point&>(b);
    if (!(std::abs(from.y()) <= 90.0 && std::abs(to.y()) <= 90.0) || !std::isfinite(from.x()) ||
        !std::isfinite(to.x())) {
        return std::nullopt;
    }
    double distance = 0.0;
    geod_inverse(&ellipsoidOf(*system), from.y(), from.x(), to.y(), to.x(), &distance, nullptr, nullptr);
    return distance;
}

} // namespace

double geodesicDistance(const Geometry& a, const Geometry& b) {
    if (const auto distance = pointDistance(a, b)) {
        return *distance;
    }
    const auto first = formOf(a);
    const auto second = formOf(b);
    const double distance = NearestSearch(first->shape, first->tree, second->tree).run();
    return distance > 0.0 && (holdsPartOf(*first, *second) || holdsPartOf(*second, *first)) ? 0.0 : distance;
}

} // namespace orvane::geometry
