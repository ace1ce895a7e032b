#include "platform/geometry/measures/Extremes.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/measures/FarthestSearch.h"
#include "platform/geometry/measures/Geodesics.h"
#include "platform/geometry/shapes/Curves.h"
#include "platform/geometry/shapes/Failure.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

namespace orvane::geometry {

namespace {

Vector cross(const Vector& a, const Vector& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

/// An area that lies flat in space.
struct Face {
    std::vector<std::vector<Vector>> rings;
    Vector normal{}; ///< of length 1

    double above(const Vector& position) const { return dot(position - rings[0][0], normal); }
    /// Of a position in its plane, by how many edges lie to one side, along the axes that show most of it.
    bool contains(const Vector& position) const {
        const auto depth = static_cast<std::size_t>(
            std::max_element(normal.begin(), normal.end(),
                             [](double a, double b) { return std::abs(a) < std::abs(b); }) -
            normal.begin());
        const std::size_t x = (depth + 1) % 3;
        const std::size_t y = (depth + 2) % 3;
        bool isInside = false;
        for (const auto& ring : rings) {
            for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
                if ((ring[i][y] > position[y]) != (ring[j][y] > position[y]) &&
                    position[x] <
                        (ring[j][x] - ring[i][x]) * (position[y] - ring[i][y]) / (ring[j][y] - ring[i][y]) +
                            ring[i][x]) {
                    isInside = !isInside;
                }
            }
        }
        return isInside;
    }
};

/// Points and edges in space, and faces in the plane.
struct SpaceForm {
    std::vector<Piece> pieces;
    std::vector<Face> faces;
};

class SpaceReader {
public:
    explicit SpaceReader(const Geometry& geometry) {
        const GeometryPtr linear = linearized(GeometryPtr(std::shared_ptr<void>(), &geometry));
        if (isOnEarth(geometry)) {
            shape_ = onEllipsoid(geometry);
            read(*shape_->geometry);
        } else {
            read(*linear);
        }
    }
    SpaceForm form;

private:
    void read(const Geometry& geometry) {
        forEachSequence(geometry, [this](const CoordinateSequence& sequence) {
            const std::vector<Vector> vertices = vectors(sequence);
            for (std::size_t i = vertices.size() == 1 ? 0 : 1; i < vertices.size(); ++i) {
                form.pieces.push_back(
                    {{0.0, 0.0, vertices[i == 0 ? 0 : i - 1]}, {0.0, 0.0, vertices[i]}, 0.0});
            }
        });
        if (!shape_) {
            readFaces(geometry);
        }
    }

    std::vector<Vector> vectors(const CoordinateSequence& sequence) const {
        std::vector<Vector> vertices(sequence.size());
        for (std::size_t i = 0; i < sequence.size(); ++i) {
            const double* position = sequence.position(i);
            const double height =
                hasZ(sequence.dimensions()) && std::isfinite(position[2]) ? position[2] : 0.0;
            vertices[i] = shape_ ? onEarth(position, height) : Vector{position[0], position[1], height};
            if (!std::isfinite(dot(vertices[i], vertices[i]))) {
                throw failure(
                    QT_TRANSLATE_NOOP("orvane::geometry", "Координата геометрии не конечное число."));
            }
        }
        return vertices;
    }

    Vector onEarth(const double* position, double height) const {
        const double longitude = position[0] * std::numbers::pi / 180.0;
        const double latitude = position[1] * std::numbers::pi / 180.0;
        const Vector up{std::cos(latitude) * std::cos(longitude), std::cos(latitude) * std::sin(longitude),
                        std::sin(latitude)};
        return positionAt(*shape_, position[0], position[1]).vector + height * up;
    }

    void readFaces(const Geometry& geometry) {
        if (const auto* collection = dynamic_cast<const GeometryCollection*>(&geometry)) {
            for (const GeometryPtr& part : collection->parts()) {
                readFaces(*part);
            }
        } else if (geometry.type() == GeometryType::Polygon && !geometry.isEmpty()) {
            Face face;
            for (const CoordinateSequence& ring : static_cast<const Polygon&>(geometry).rings()) {
                if (!ring.isEmpty()) {
                    face.rings.push_back(vectors(ring));
                }
            }
            const auto& shell = face.rings.front();
            for (std::size_t i = 1; i < shell.size(); ++i) {
                face.normal = face.normal + cross(shell[i - 1] - shell[0], shell[i] - shell[0]);
            }
            if (const double length = norm(face.normal); length > 0.0) {
                face.normal = (1.0 / length) * face.normal;
                form.faces.push_back(std::move(face));
            }
        }
    }

    std::optional<GeographicShape> shape_;
};

class NearestInSpace {
public:
    NearestInSpace(SpaceForm a, SpaceForm b) : a_(std::move(a)), b_(std::move(b)) {}

    double run() {
        const PieceTree treeA(a_.pieces);
        const PieceTree treeB(b_.pieces);
        search(treeA, 0, treeB, 0);
        compareFaces(a_.faces, b_.pieces);
        compareFaces(b_.faces, a_.pieces);
        return best_;
    }

private:
    void search(const PieceTree& treeA, std::size_t indexA, const PieceTree& treeB, std::size_t indexB) {
        const PieceTree::Node& a = treeA.node(indexA);
        const PieceTree::Node& b = treeB.node(indexB);
        if (a.box.distance(b.box) >= best_) {
            return;
        }
        if (a.children == 0 && b.children == 0) {
            for (std::size_t i = a.first; i < a.last; ++i) {
                for (std::size_t j = b.first; j < b.last; ++j) {
                    best_ = std::min(best_, chordsApart(treeA.piece(i), treeB.piece(j)).distance);
                }
            }
        } else if (b.children == 0 || (a.children != 0 && a.box.size() > b.box.size())) {
            search(treeA, a.children, treeB, indexB);
            search(treeA, a.children + 1, treeB, indexB);
        } else {
            search(treeA, indexA, treeB, b.children);
            search(treeA, indexA, treeB, b.children + 1);
        }
    }

    void compareFaces(const std::vector<Face>& faces, const std::vector<Piece>& pieces) {
        for (const Face& face : faces) {
            for (const Piece& piece : pieces) {
                const double begin = face.above(piece.begin.vector);
                const double end = face.above(piece.end.vector);
                compare(face, piece.begin.vector, begin);
                compare(face, piece.end.vector, end);
                if (begin * end < 0.0 && face.contains(onChord(piece, begin / (begin - end)))) {
                    best_ = 0.0;
                }
            }
        }
    }

    void compare(const Face& face, const Vector& position, double above) {
        if (std::abs(above) < best_ && face.contains(position - above * face.normal)) {
            best_ = std::abs(above);
        }
    }

    SpaceForm a_, b_;
    double best_ = INFINITY;
};

} // namespace

double distanceInSpace(const Geometry& a, const Geometry& b) {
    return NearestInSpace(SpaceReader(a).form, SpaceReader(b).form).run();
}

double maxDistanceInSpace(const Geometry& a, const Geometry& b) {
    return FarthestSearch(
               PieceTree(SpaceReader(a).form.pieces), PieceTree(SpaceReader(b).form.pieces),
               [](const Position& from, const Position& to) { return norm(to.vector - from.vector); },
               [](double chord) { return chord; })
        .run();
}

double lengthInSpace(const Geometry& geometry) {
    if (const auto* collection = dynamic_cast<const GeometryCollection*>(&geometry)) {
        double sum = 0.0;
        for (const GeometryPtr& part : collection->parts()) {
            const std::shared_ptr<Geometry> placed = part->clone();
            placed->setCoordSystem(geometry.coordSystem());
            sum += lengthInSpace(*placed);
        }
        return sum;
    }
    const GeometryPtr linear = linearized(GeometryPtr(std::shared_ptr<void>(), &geometry));
    if (linear->type() != GeometryType::LineString || linear->isEmpty()) {
        return 0.0;
    }
    const bool onEarth = isOnEarth(geometry);
    const GeometryPtr measured = onEarth ? onEllipsoid(geometry).geometry : linear;
    const CoordinateSequence& line = static_cast<const LineString&>(*measured).coordinates();
    double length = 0.0;
    for (std::size_t i = 1; i < line.size(); ++i) {
        double along = std::hypot(line.x(i) - line.x(i - 1), line.y(i) - line.y(i - 1));
        if (onEarth) {
            geod_inverse(&ellipsoidOf(*geometry.coordSystem()), line.y(i - 1), line.x(i - 1), line.y(i),
                         line.x(i), &along, nullptr, nullptr);
        }
        const double rise = hasZ(line.dimensions()) ? line.position(i)[2] - line.position(i - 1)[2] : 0.0;
        length += std::hypot(along, std::isfinite(rise) ? rise : 0.0);
    }
    return length;
}

} // namespace orvane::geometry
