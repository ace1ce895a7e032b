#include <orvane/engine/functions/Geometry.h>

#include "Barrier.h"
#include "RecentGeometries.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/relations/Relations.h"
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/SpatialiteBlob.h>

namespace orvane::engine {

namespace {

using GeometryPtr = std::shared_ptr<const geometry::Geometry>;

enum class Relation { Intersects, Contains, ContainsCentroid };

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

/// Whether the envelopes rule the relation out. A centroid lies in the envelope of its geometry.
bool isRuledOut(Relation relation, const SpatialiteHeader& a, const SpatialiteHeader& b) {
    return relation == Relation::Contains ? !a.envelope.contains(b.envelope)
                                          : !a.envelope.intersects(b.envelope);
}

bool haveOneSystem(const SpatialiteHeader& a, const SpatialiteHeader& b) {
    return a.srid == b.srid || a.srid <= 0 || b.srid <= 0;
}

/// 1, 0, or none where one of the operands is no geometry.
std::optional<bool> relate(sqlite3_context* context, Relation relation, const Operand& a, const Operand& b) {
    if (a.bytes.empty() || b.bytes.empty()) {
        return std::nullopt;
    }
    const bool comparable = a.header && b.header && haveOneSystem(*a.header, *b.header);
    if (comparable && isRuledOut(relation, *a.header, *b.header)) {
        return false;
    }
    auto& cache = *static_cast<EngineCache*>(sqlite3_user_data(context));
    RecentGeometries& recent = RecentGeometries::ofStatement(context);
    if (comparable && b.isPoint && !a.isPoint) {
        const GeometryPtr area = recent.get(cache, a.bytes);
        if (!area) {
            return std::nullopt;
        }
        return relation == Relation::Intersects ? geometry::intersectsPosition(*area, b.x, b.y)
                                                : geometry::containsPosition(*area, b.x, b.y);
    }
    if (comparable && relation == Relation::Intersects && a.isPoint && !b.isPoint) {
        return relate(context, relation, b, a);
    }
    const GeometryPtr first = recent.get(cache, a.bytes);
    GeometryPtr second = recent.get(cache, b.bytes);
    if (!first || !second) {
        return std::nullopt;
    }
    const auto target = first->coordSystem();
    const auto source = second->coordSystem();
    if (relation != Relation::ContainsCentroid && target && source && !source->equals(*target)) {
        second = recent.get(cache, b.bytes, target);
        if (!second) {
            return false;
        }
    }
    switch (relation) {
    case Relation::Intersects: return geometry::Intersects(*first, *second);
    case Relation::Contains: return geometry::Contains(*first, *second);
    case Relation::ContainsCentroid: return geometry::ContainsCentroid(*first, *second);
    }
    return std::nullopt;
}

void resultRelation(sqlite3_context* context, Relation relation, sqlite3_value* a, sqlite3_value* b) {
    barrier(context, [&] {
        if (const std::optional<bool> answer = relate(context, relation, Operand(a), Operand(b))) {
            sqlite3_result_int(context, *answer ? 1 : 0);
        }
    });
}

} // namespace

void containsCentroid(sqlite3_context* context, int, sqlite3_value** values) {
    resultRelation(context, Relation::ContainsCentroid, values[0], values[1]);
}

void centroidWithin(sqlite3_context* context, int, sqlite3_value** values) {
    resultRelation(context, Relation::ContainsCentroid, values[1], values[0]);
}

void intersects(sqlite3_context* context, int, sqlite3_value** values) {
    resultRelation(context, Relation::Intersects, values[0], values[1]);
}

void containsEntirely(sqlite3_context* context, int, sqlite3_value** values) {
    resultRelation(context, Relation::Contains, values[0], values[1]);
}

void entirelyWithin(sqlite3_context* context, int, sqlite3_value** values) {
    resultRelation(context, Relation::Contains, values[1], values[0]);
}

} // namespace orvane::engine
