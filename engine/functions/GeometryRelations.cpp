#include <orvane/engine/functions/Geometry.h>

#include "Barrier.h"
#include "GeometryCall.h"
#include "RecentGeometries.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/relations/Relations.h"
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/GeometryConversions.h>
#include <orvane/engine/SpatialiteBlob.h>
#include <orvane/engine/functions/Converters.h>

#include <algorithm>

namespace orvane::engine {

namespace {

using geometry::Envelope;
using geometry::Relation;

/// A blob argument, looked at without decoding it.
struct Operand {
    std::string_view bytes;
    std::optional<SpatialiteHeader> header;
    double x = 0.0;
    double y = 0.0;
    bool isPoint = false;

    explicit Operand(sqlite3_value* value) {
        if (sqlite3_value_type(value) != SQLITE_BLOB) {
            return;
        }
        const auto* data = static_cast<const char*>(sqlite3_value_blob(value));
        bytes = std::string_view(data, static_cast<std::size_t>(sqlite3_value_bytes(value)));
        header = readSpatialiteHeader(bytes);
        isPoint = header && spatialiteBlobPoint(*header, x, y);
        if (header && !isPoint && !isSoundSpatialiteBlob(*header)) {
            header.reset();
        }
    }
};

bool haveOneSystem(const SpatialiteHeader& a, const SpatialiteHeader& b) {
    return a.srid == b.srid || a.srid <= 0 || b.srid <= 0;
}

/// Both arguments; the second may stand for its centroid, which lies in the envelope of its geometry.
struct Operands {
    Operand a;
    Operand b;
    bool byCentroid = false;
};

/// 1, 0, or none where one of the operands is no geometry.
std::optional<bool> relate(sqlite3_context* context, Relation relation, const Operands& operands) {
    const auto& [a, b, byCentroid] = operands;
    if (a.bytes.empty() || b.bytes.empty()) {
        return std::nullopt;
    }
    const bool comparable = a.header && b.header && haveOneSystem(*a.header, *b.header);
    if (comparable && geometry::isRuledOut(byCentroid ? Relation::Intersects : relation, a.header->envelope,
                                           b.header->envelope)) {
        return false;
    }
    auto& cache = *static_cast<EngineCache*>(sqlite3_user_data(context));
    RecentGeometries& recent = RecentGeometries::ofStatement(context);
    const bool isOfPositions = relation == Relation::Intersects || relation == Relation::Contains;
    if (comparable && isOfPositions && b.isPoint && !a.isPoint) {
        const GeometryPtr area = recent.get(cache, a.bytes);
        if (!area) {
            return std::nullopt;
        }
        return relation == Relation::Intersects ? geometry::intersectsPosition(*area, b.x, b.y)
                                                : geometry::containsPosition(*area, b.x, b.y);
    }
    if (comparable && relation == Relation::Intersects && a.isPoint && !b.isPoint) {
        return relate(context, relation, {b, a});
    }
    const GeometryPtr first = recent.get(cache, a.bytes);
    GeometryPtr second = recent.get(cache, b.bytes);
    if (!first || !second) {
        return std::nullopt;
    }
    const auto target = first->coordSystem();
    const auto source = second->coordSystem();
    if (!byCentroid && target && source && !source->equals(*target)) {
        second = recent.get(cache, b.bytes, target);
        if (!second) {
            return false;
        }
    }
    return byCentroid ? geometry::ContainsCentroid(*first, *second)
                      : geometry::relates(relation, *first, *second);
}

/// `holds` is what the answer is when the relation does.
void resultRelation(sqlite3_context* context, Relation relation, sqlite3_value* a, sqlite3_value* b,
                    bool holds = true) {
    barrier(context, [&] {
        if (const std::optional<bool> answer = relate(context, relation, {Operand(a), Operand(b)})) {
            sqlite3_result_int(context, *answer == holds ? 1 : 0);
        }
    });
}

void resultCentroidInside(sqlite3_context* context, sqlite3_value* a, sqlite3_value* b) {
    barrier(context, [&] {
        if (const auto answer = relate(context, Relation::Contains, {Operand(a), Operand(b), true})) {
            sqlite3_result_int(context, *answer ? 1 : 0);
        }
    });
}

bool areInOneSystem(const GeometryPair& pair) {
    const auto a = pair.first->coordSystem();
    const auto b = pair.second->coordSystem();
    return a == b || a->equals(*b);
}

/// Whether something is true of the envelopes of two geometries; NULL where one is no geometry.
void resultOfEnvelopes(sqlite3_context* context, sqlite3_value** values,
                       bool (*holds)(const Envelope&, const Envelope&)) {
    barrier(context, [&] {
        const GeometryPair pair = recentPair(context, values[0], values[1]);
        if (pair.first && pair.second && areInOneSystem(pair)) {
            sqlite3_result_int(context, holds(pair.first->envelope(), pair.second->envelope()) ? 1 : 0);
        }
    });
}

bool shareBorderOnly(const Envelope& a, const Envelope& b) {
    return a.intersects(b) && (a.maxX == b.minX || b.maxX == a.minX || a.maxY == b.minY || b.maxY == a.minY);
}

} // namespace

void containsCentroid(sqlite3_context* context, int, sqlite3_value** values) {
    resultCentroidInside(context, values[0], values[1]);
}

void centroidWithin(sqlite3_context* context, int, sqlite3_value** values) {
    resultCentroidInside(context, values[1], values[0]);
}

void intersects(sqlite3_context* context, int, sqlite3_value** values) {
    resultRelation(context, Relation::Intersects, values[0], values[1]);
}

void mayMeet(sqlite3_context* context, int, sqlite3_value** values) {
    if (sqlite3_value_type(values[0]) == SQLITE_BLOB && sqlite3_value_type(values[1]) == SQLITE_BLOB) {
        sqlite3_result_int(context, 1);
    }
}

void disjoint(sqlite3_context* context, int, sqlite3_value** values) {
    resultRelation(context, Relation::Intersects, values[0], values[1], false);
}

void containsEntirely(sqlite3_context* context, int, sqlite3_value** values) {
    resultRelation(context, Relation::Contains, values[0], values[1]);
}

void entirelyWithin(sqlite3_context* context, int, sqlite3_value** values) {
    resultRelation(context, Relation::Contains, values[1], values[0]);
}

void covers(sqlite3_context* context, int, sqlite3_value** values) {
    resultRelation(context, Relation::Covers, values[0], values[1]);
}

void coveredBy(sqlite3_context* context, int, sqlite3_value** values) {
    resultRelation(context, Relation::Covers, values[1], values[0]);
}

void equals(sqlite3_context* context, int, sqlite3_value** values) {
    resultRelation(context, Relation::Equals, values[0], values[1]);
}

void touches(sqlite3_context* context, int, sqlite3_value** values) {
    resultRelation(context, Relation::Touches, values[0], values[1]);
}

void crosses(sqlite3_context* context, int, sqlite3_value** values) {
    resultRelation(context, Relation::Crosses, values[0], values[1]);
}

void overlaps(sqlite3_context* context, int, sqlite3_value** values) {
    resultRelation(context, Relation::Overlaps, values[0], values[1]);
}

void matchesPattern(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        const GeometryPair pair = geometryPair(context, values[0], values[1]);
        const QByteArray pattern = toQString(values[2]).toLatin1();
        if (pair.first && pair.second && sqlite3_value_type(values[2]) == SQLITE_TEXT) {
            if (const auto answer = geometry::matches(*pair.first, *pair.second, pattern.toStdString())) {
                sqlite3_result_int(context, *answer ? 1 : 0);
            }
        }
    });
}

void relationMatrix(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("Relate", 2, context, count, values, [](const GeometryCall& call) {
        const GeometryPair pair = call.geometries(0, 1);
        return geometry::relationMatrix(*pair.first, *pair.second);
    });
}

void matrixMatches(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ST_RelateMatch", 2, context, count, values, [](const GeometryCall& call) {
        const auto answer = geometry::matches(std::string(call.utf8(0)), std::string(call.utf8(1)));
        if (!answer) {
            call.reject(1, QT_TRANSLATE_NOOP("orvane::geometry",
                                             "нужны матрица из девяти 0, 1, 2, F и шаблон из них, T и *"));
        }
        return *answer;
    });
}

void envelopesIntersect(sqlite3_context* context, int count, sqlite3_value** values) {
    if (count == 2) {
        resultOfEnvelopes(context, values,
                          [](const Envelope& a, const Envelope& b) { return a.intersects(b); });
        return;
    }
    barrier(context, [&] {
        const GeometryPtr geometry = toGeometry(context, values[0], true);
        const bool isWindow = std::all_of(values + 1, values + count, [](sqlite3_value* value) {
            return sqlite3_value_type(value) == SQLITE_INTEGER || sqlite3_value_type(value) == SQLITE_FLOAT;
        });
        if (geometry && isWindow) {
            Envelope window;
            window.add(sqlite3_value_double(values[1]), sqlite3_value_double(values[2]));
            window.add(sqlite3_value_double(values[3]), sqlite3_value_double(values[4]));
            sqlite3_result_int(context, geometry->envelope().intersects(window) ? 1 : 0);
        }
    });
}

void envelopesDisjoint(sqlite3_context* context, int, sqlite3_value** values) {
    resultOfEnvelopes(context, values, [](const Envelope& a, const Envelope& b) { return !a.intersects(b); });
}

void envelopeContains(sqlite3_context* context, int, sqlite3_value** values) {
    resultOfEnvelopes(context, values, [](const Envelope& a, const Envelope& b) { return a.contains(b); });
}

void envelopeWithin(sqlite3_context* context, int, sqlite3_value** values) {
    resultOfEnvelopes(context, values, [](const Envelope& a, const Envelope& b) { return b.contains(a); });
}

void envelopesEqual(sqlite3_context* context, int, sqlite3_value** values) {
    resultOfEnvelopes(context, values, [](const Envelope& a, const Envelope& b) { return a == b; });
}

void envelopesTouch(sqlite3_context* context, int, sqlite3_value** values) {
    resultOfEnvelopes(context, values, shareBorderOnly);
}

void envelopesOverlap(sqlite3_context* context, int, sqlite3_value** values) {
    resultOfEnvelopes(context, values, [](const Envelope& a, const Envelope& b) {
        return a.intersects(b) && !shareBorderOnly(a, b) && !a.contains(b) && !b.contains(a);
    });
}

} // namespace orvane::engine
