#include "host/adaptor/module/RelationCollations.h"

#include "host/adaptor/indices/SpatialIndex.h"
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/RelationName.h>

#include <exception>
#include <memory>
#include <new>

namespace orvane::adaptor {

namespace {

struct Collation {
    SpatialRelation relation;
    engine::EngineCache& cache;
    sqlite3* database;

    geometry::GeometryPtr geometryOf(const void* bytes, int size) const {
        return cache.geometryInfo(bytes, static_cast<unsigned>(size), true).geometry();
    }
};

/// 0 where the relation holds. SQLite hands the operands over as they are written: first, then second.
int compare(void* context, int firstSize, const void* first, int secondSize, const void* second) {
    try {
        const auto& collation = *static_cast<const Collation*>(context);
        const auto a = collation.geometryOf(first, firstSize);
        const auto b = collation.geometryOf(second, secondSize);
        return a && b && holds(collation.relation, *a, *b) ? 0 : 1;
    } catch (const std::bad_alloc&) {
        sqlite3_interrupt(static_cast<const Collation*>(context)->database); // there is no other way to fail
        return 1;
    } catch (const std::exception&) {
        return 1; // as where the relation is looked up
    }
}

void define(void* context, sqlite3* database, int /*encoding*/, const char* name) {
    const auto parsed = engine::relationNameOf(name);
    const auto relation = parsed ? spatialRelationOf(parsed->relation.c_str()) : std::nullopt;
    if (relation) {
        auto collation = std::make_unique<Collation>(
            Collation{*relation, *static_cast<engine::EngineCache*>(context), database});
        const int code =
            sqlite3_create_collation_v2(database, name, SQLITE_UTF8, collation.get(), compare,
                                        [](void* kept) { delete static_cast<Collation*>(kept); });
        if (code == SQLITE_OK) {
            collation.release(); // NOLINT(bugprone-unused-return-value): SQLite's now
        }
    }
}

} // namespace

int offerRelations(sqlite3* database, engine::EngineCache& cache) {
    return sqlite3_collation_needed(database, &cache, define);
}

} // namespace orvane::adaptor
