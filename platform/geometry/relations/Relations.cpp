#include "platform/geometry/relations/Relations.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/relations/RelationForm.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace orvane::geometry {

namespace {

using Piece = RelationForm::Piece;

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

bool meet(Piece& a, Piece& b) {
    if (!a.envelope.intersects(b.envelope)) {
        return false;
    }
    if ((a.isBox && a.envelope.contains(b.envelope)) || (b.isBox && b.envelope.contains(a.envelope))) {
        return true;
    }
    // Areas and lines are asked rather than points, and what is prepared rather than what would have to be.
    const bool asksB = a.dimension == 0 || b.dimension == 0 ? b.dimension > a.dimension
                       : a.preparedForm || b.preparedForm   ? !a.preparedForm
                                                            : b.dimension > a.dimension;
    Piece& asked = asksB ? b : a;
    return isTrue(GEOSPreparedIntersects_r(geosContext(), asked.prepared(), (asksB ? a : b).geometry));
}

bool meet(RelationForm& a, RelationForm& b) {
    const Envelope& place = b.envelope();
    return std::any_of(a.pieces().begin(), a.pieces().end(), [&](Piece& pieceA) {
        return pieceA.envelope.intersects(place) &&
               std::any_of(b.pieces().begin(), b.pieces().end(),
                           [&](Piece& pieceB) { return meet(pieceA, pieceB); });
    });
}

/// Whether one piece of a has all of a piece in it, its border included.
bool coversPiece(RelationForm& a, const Piece& b) {
    return std::any_of(a.pieces().begin(), a.pieces().end(), [&](Piece& piece) {
        return piece.dimension >= b.dimension && piece.envelope.contains(b.envelope) &&
               isTrue(GEOSPreparedCovers_r(geosContext(), piece.prepared(), b.geometry));
    });
}

/// Whether a position of b is outside a: nothing is left of b when the points, lines and areas of a are taken
/// away.
bool isBeyond(RelationForm& b, RelationForm& a) {
    if (std::all_of(b.pieces().begin(), b.pieces().end(),
                    [&](const Piece& piece) { return coversPiece(a, piece); })) {
        return false; // for which nothing has to be computed that is rounded
    }
    for (int dimension = 0; dimension < 3; ++dimension) {
        const GEOSGeometry* rest = b.joined(dimension);
        GeosPtr holder;
        for (int taken = 2; rest && taken >= dimension; --taken) {
            if (const GEOSGeometry* part = a.joined(taken)) {
                holder = checked(GEOSDifference_r(geosContext(), rest, part));
                rest = holder.get();
            }
        }
        if (rest && GEOSisEmpty_r(geosContext(), rest) != 1) {
            return true;
        }
    }
    return false;
}

/// The dimension of what the interiors of two geometries share, -1 for nothing.
int sharedInterior(RelationForm& a, RelationForm& b) {
    int shared = -1;
    for (int dimensionA = 0; dimensionA < 3; ++dimensionA) {
        for (int dimensionB = 0; dimensionB < 3; ++dimensionB) {
            const GEOSGeometry* partA = a.joined(dimensionA);
            const GEOSGeometry* partB = b.joined(dimensionB);
            if (!partA || !partB) {
                continue;
            }
            char* const matrix = GEOSRelate_r(geosContext(), partA, partB);
            if (!matrix) {
                throwGeosError();
            }
            shared = std::max(shared, matrix[0] == 'F' ? -1 : matrix[0] - '0');
            GEOSFree_r(geosContext(), matrix);
        }
    }
    return shared;
}

int dimensionOf(RelationForm& form) {
    int dimension = -1;
    for (const Piece& piece : form.pieces()) {
        dimension = std::max(dimension, piece.dimension);
    }
    return dimension;
}

/// Relations of collections, which GEOS does not take, from what they mean.
bool holdsByPieces(Relation relation, RelationForm& a, RelationForm& b) {
    const int dimensionA = dimensionOf(a);
    const int dimensionB = dimensionOf(b);
    switch (relation) {
    case Relation::Intersects: return meet(a, b);
    case Relation::Contains: return !isBeyond(b, a) && sharedInterior(a, b) >= 0;
    case Relation::Covers: return !isBeyond(b, a);
    case Relation::Equals: return !isBeyond(a, b) && !isBeyond(b, a);
    case Relation::Touches: return meet(a, b) && sharedInterior(a, b) < 0;
    case Relation::Overlaps:
        return dimensionA == dimensionB && sharedInterior(a, b) == dimensionA && isBeyond(a, b) &&
               isBeyond(b, a);
    case Relation::Crosses:
        if (dimensionA == dimensionB) {
            return dimensionA == 1 && sharedInterior(a, b) == 0;
        }
        return sharedInterior(a, b) >= 0 && (dimensionA < dimensionB ? isBeyond(a, b) : isBeyond(b, a));
    }
    return false;
}

/// Of two that GEOS relates as they are.
bool holdsByGeos(Relation relation, RelationForm& a, RelationForm& b) {
    const GEOSContextHandle_t context = geosContext();
    const GEOSGeometry* geosA = a.related();
    const GEOSGeometry* geosB = b.related();
    switch (relation) {
    case Relation::Intersects: return meet(a, b);
    case Relation::Contains: return isTrue(GEOSPreparedContains_r(context, a.relatedPrepared(), geosB));
    case Relation::Covers: return isTrue(GEOSPreparedCovers_r(context, a.relatedPrepared(), geosB));
    case Relation::Equals: return isTrue(GEOSEquals_r(context, geosA, geosB));
    case Relation::Touches: return isTrue(GEOSTouches_r(context, geosA, geosB));
    case Relation::Overlaps: return isTrue(GEOSOverlaps_r(context, geosA, geosB));
    case Relation::Crosses: return isTrue(GEOSCrosses_r(context, geosA, geosB));
    }
    return false;
}

bool hasPosition(Piece& piece, const GEOSGeometry* point, Relation relation) {
    return isTrue(relation == Relation::Intersects
                      ? GEOSPreparedIntersects_r(geosContext(), piece.prepared(), point)
                      : GEOSPreparedContains_r(geosContext(), piece.prepared(), point));
}

bool hasPosition(RelationForm& form, double x, double y, const GEOSGeometry* point, Relation relation) {
    return std::any_of(form.pieces().begin(), form.pieces().end(), [&](Piece& piece) {
        const Envelope& place = piece.envelope;
        return x >= place.minX && x <= place.maxX && y >= place.minY && y <= place.maxY &&
               hasPosition(piece, point, relation);
    });
}

RelationForm repaired(const RelationForm& form) {
    return RelationForm(checked(GEOSMakeValid_r(geosContext(), form.whole())));
}

/// Of forms that have pieces.
bool holds(Relation relation, RelationForm& a, RelationForm& b) {
    const Envelope& place = b.envelope();
    if (isRuledOut(relation, a.envelope(), place)) {
        return false;
    }
    const GEOSGeometry* related = b.related();
    if (relation == Relation::Contains && related && GEOSGeomTypeId_r(geosContext(), related) == GEOS_POINT) {
        return hasPosition(a, place.minX, place.minY, related, relation);
    }
    return related && a.related() ? holdsByGeos(relation, a, b) : holdsByPieces(relation, a, b);
}

bool askPosition(const Geometry& a, double x, double y, Relation relation) {
    if (!std::isfinite(x) || !std::isfinite(y)) {
        return false;
    }
    const std::lock_guard lock(a.keptForm().mutex());
    RelationForm& form = RelationForm::of(a);
    if (form.pieces().empty()) {
        return false;
    }
    const GeosPtr position = checked(GEOSGeom_createPointFromXY_r(geosContext(), x, y));
    return hasPosition(form, x, y, position.get(), relation);
}

/// Calls `ask` with the forms of both, locked, b in the system of a. False when it has no place there, and
/// for what is empty or not finite.
template<typename Ask>
bool askInOneSystem(const Geometry& a, const Geometry& b, const Ask& ask) {
    GeometryPtr holder;
    const Geometry* other = inSystemOf(a, b, holder);
    if (!other) {
        return false;
    }
    const FormLock lock(a, *other);
    RelationForm& formA = RelationForm::of(a);
    RelationForm& formB = RelationForm::of(*other);
    return !formA.pieces().empty() && !formB.pieces().empty() && ask(formA, formB);
}

/// Nine of those characters.
bool isMatrixOf(const std::string& text, const char* characters) {
    return text.size() == 9 && text.find_first_not_of(characters) == std::string::npos;
}

} // namespace

bool isRuledOut(Relation relation, const Envelope& a, const Envelope& b) {
    switch (relation) {
    case Relation::Contains:
    case Relation::Covers: return !a.contains(b);
    case Relation::Equals: return !(a == b);
    default: return !a.intersects(b);
    }
}

bool relates(Relation relation, const Geometry& a, const Geometry& b) {
    return askInOneSystem(a, b, [relation](RelationForm& formA, RelationForm& formB) {
        try {
            return holds(relation, formA, formB);
        } catch (const std::runtime_error&) { // of some geometries that are not valid
            RelationForm validA = repaired(formA);
            RelationForm validB = repaired(formB);
            return holds(relation, validA, validB);
        }
    });
}

std::optional<std::string> relationMatrix(const Geometry& a, const Geometry& b) {
    std::optional<std::string> matrix;
    askInOneSystem(a, b, [&](RelationForm& formA, RelationForm& formB) {
        if (formA.related() && formB.related()) {
            const std::unique_ptr<char, GeosTextDeleter> text(
                GEOSRelate_r(geosContext(), formA.related(), formB.related()));
            if (!text) {
                throwGeosError();
            }
            matrix = text.get();
        }
        return matrix.has_value();
    });
    return matrix;
}

std::optional<bool> matches(const std::string& matrix, const std::string& pattern) {
    if (!isMatrixOf(matrix, "F012") || !isMatrixOf(pattern, "TF*012")) {
        return std::nullopt;
    }
    return std::equal(matrix.begin(), matrix.end(), pattern.begin(), [](char cell, char asked) {
        return asked == '*' || (asked == 'T' ? cell != 'F' : cell == asked);
    });
}

std::optional<bool> matches(const Geometry& a, const Geometry& b, const std::string& pattern) {
    std::optional<bool> answer;
    if (!isMatrixOf(pattern, "TF*012")) {
        return answer;
    }
    askInOneSystem(a, b, [&](RelationForm& formA, RelationForm& formB) {
        if (formA.related() && formB.related()) {
            answer =
                isTrue(GEOSRelatePattern_r(geosContext(), formA.related(), formB.related(), pattern.c_str()));
        }
        return answer.has_value();
    });
    return answer;
}

bool Intersects(const Geometry& a, const Geometry& b) {
    return relates(Relation::Intersects, a, b);
}

bool Contains(const Geometry& a, const Geometry& b) {
    return relates(Relation::Contains, a, b);
}

bool ContainsCentroid(const Geometry& a, const Geometry& b) {
    const std::shared_ptr<Point> centre = centroid(b);
    return centre && Contains(a, *centre);
}

bool intersectsPosition(const Geometry& a, double x, double y) {
    return askPosition(a, x, y, Relation::Intersects);
}

bool containsPosition(const Geometry& a, double x, double y) {
    return askPosition(a, x, y, Relation::Contains);
}

} // namespace orvane::geometry
