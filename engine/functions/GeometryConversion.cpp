#include <orvane/engine/functions/Geometry.h>

#include "Barrier.h"
#include "GeometryCall.h"
#include "PreparedArgument.h"
#include "platform/cs/CoordSystem.h"
#include "platform/cs/Transformer.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/relations/Relations.h"
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/GeometryConversions.h>
#include <orvane/engine/SpatialiteBlob.h>
#include <orvane/engine/functions/Converters.h>

#include <string>

namespace orvane::engine {

namespace {

using CoordSystemPtr = std::shared_ptr<cs::CoordSystem>;

EngineCache* cacheOf(sqlite3_context* context) {
    return static_cast<EngineCache*>(sqlite3_user_data(context));
}

/// The coordinate system that an argument names; read once per statement when the argument is constant.
CoordSystemPtr coordSystemArgument(sqlite3_context* context, sqlite3_value** values, int position) {
    CoordSystemPtr named;
    withPrepared<CoordSystemPtr>(
        context, position, [](const CoordSystemPtr&) { return true; },
        [&] {
            const CoordSystemPtr read = toCS(values[position]);
            if (read && read->epsg() != 0) {
                cacheOf(context)->save(read->epsg(), read);
            }
            return read;
        },
        [&named](const CoordSystemPtr& prepared) { named = prepared; });
    return named;
}

/// What transformBlob did last in a statement: rows have the systems of the row before, and where a column of
/// a derived table is used in several places, SQLite asks for the same value there, one after another.
struct LastTransformation {
    static constexpr int numberInStatement = -20263;
    static constexpr std::size_t longestInput = std::size_t(1) << 20;

    CoordSystemPtr source;
    int sourceCode = 0; ///< 0 where no code of the blob told the source
    CoordSystemPtr target;
    std::shared_ptr<const cs::Transformer> transformer; ///< null: none is needed, or there is none
    std::string input;
    std::string output; ///< empty where a position has no image
};

/// The systems of a blob and the way between them; false where the source is not known.
template<typename Systems>
bool prepareTransformation(LastTransformation& last, EngineCache& cache, const SpatialiteHeader& header,
                           const CoordSystemPtr& target, bool hasDefault, const Systems& systems) {
    if (last.sourceCode > 0 && last.sourceCode == header.srid && last.target == target) {
        return true;
    }
    CoordSystemPtr source = header.srid > 0 ? cache.get(header.srid) : nullptr;
    const int sourceCode = source ? header.srid : 0;
    if (!source && hasDefault) {
        source = systems(2);
    }
    if (!source) {
        return false;
    }
    if (last.source != source || last.target != target) {
        last = {};
        last.transformer = source->equals(*target) ? nullptr : cs::Transformer::between(*source, *target);
        last.source = std::move(source);
        last.target = target;
    }
    last.sourceCode = sourceCode;
    return true;
}

void giveOutput(sqlite3_context* context, const LastTransformation& last) {
    if (!last.output.empty()) {
        sqlite3_result_blob(context, last.output.data(), static_cast<int>(last.output.size()),
                            SQLITE_TRANSIENT);
    }
}

/// Reprojects the coordinates of a SpatiaLite blob where they stand, without a geometry object. False when
/// this way does not apply. `systems(position)`: the systems that the arguments name, the target and that of
/// a geometry without one.
template<typename Systems>
bool transformBlob(sqlite3_context* context, int count, sqlite3_value** values, const Systems& systems) {
    EngineCache* cache = cacheOf(context);
    if (sqlite3_value_type(values[0]) != SQLITE_BLOB || cache->useGaiaCache() != EngineCache::NoMemo) {
        return false;
    }
    const std::string_view blob(static_cast<const char*>(sqlite3_value_blob(values[0])),
                                static_cast<std::size_t>(sqlite3_value_bytes(values[0])));
    auto& last = ofStatement<LastTransformation>(context);
    const bool isRepeated = !blob.empty() && last.input == blob;
    if (isRepeated && last.sourceCode > 0 && last.target == systems(1)) {
        giveOutput(context, last);
        return true;
    }
    const auto header = readSpatialiteHeader(blob);
    const CoordSystemPtr target = header ? systems(1) : nullptr;
    if (!target || !prepareTransformation(last, *cache, *header, target, count > 2, systems) ||
        !last.transformer) {
        return false;
    }
    if (last.input != blob) {
        last.input.clear();
        last.output.clear();
        if (appendTransformedBlob(*header, *last.transformer, target->epsg(), last.output) ==
            BlobTransformation::NotLinear) {
            return false;
        }
        last.input = blob.size() <= LastTransformation::longestInput ? blob : std::string_view();
    }
    giveOutput(context, last);
    return true;
}

GeometryPtr transformedGeometry(sqlite3_context* context, int count, sqlite3_value** values) {
    GeometryPtr geometry = toGeometry(context, values[0], true);
    if (!geometry) {
        return nullptr;
    }
    if (count > 2 && !geometry->coordSystem()) {
        geometry = withCoordSystem(geometry, coordSystemArgument(context, values, 2));
    }
    return geometry->transformed(coordSystemArgument(context, values, 1));
}

bool hasTransformArguments(sqlite3_context* context, int count, const std::string& name) {
    if (count >= 2) {
        return true;
    }
    const std::string message =
        "Invalid argument count. Usage: " + name +
        " (geometry[,target coordinate system string[,default coordinate system string]]).";
    sqlite3_result_error(context, message.c_str(), -1);
    return false;
}

void resultCoordSystem(sqlite3_context* context, const CoordSystemPtr& coordSystem) {
    if (coordSystem) {
        const QString text = coordSystem->taggedString();
        sqlite3_result_text16(context, text.utf16(), -1, SQLITE_TRANSIENT);
    }
}

} // namespace

GeometryPtr withCoordSystem(const GeometryPtr& geometry, const CoordSystemPtr& coordSystem) {
    const std::shared_ptr<geometry::Geometry> copy = geometry->clone();
    copy->setCoordSystem(coordSystem);
    return geometry::fitGeometry(copy);
}

GeometryPair geometryPair(sqlite3_context* context, sqlite3_value* first, sqlite3_value* second) {
    GeometryPair pair{toGeometry(context, first, true), toGeometry(context, second, true)};
    if (pair.first && pair.second) {
        const CoordSystemPtr a = pair.first->coordSystem();
        const CoordSystemPtr b = pair.second->coordSystem();
        if (a && !b) {
            pair.second = withCoordSystem(pair.second, a);
        } else if (b && !a) {
            pair.first = withCoordSystem(pair.first, b);
        }
    }
    return pair;
}

void makeGeoValid(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        const GeometryPtr geometry = toGeometry(context, values[0], true);
        toOrvGeo(geometry::normalizedGeometry(geometry), context, cacheOf(context), true);
    });
}

void centroid(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        const GeometryPtr geometry = toGeometry(context, values[0], true);
        toGaia(geometry ? geometry::PointOnSurface(*geometry) : nullptr, context, cacheOf(context));
    });
}

void resemblance(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        EngineCache* cache = cacheOf(context);
        const GeometryPtr geometry = cache ? toGeometry(context, values[0], true) : nullptr;
        toOrvGeo(geometry ? cache->resemblance(geometry) : nullptr, context, cache, true);
    });
}

void toOrvGeo(sqlite3_context* context, int count, sqlite3_value** values) {
    barrier(context, [&] {
        if (count < 1) {
            sqlite3_result_error(
                context, "Invalid argument count. Usage: ToOrvGeo (geometry[,coordinate system string]).",
                -1);
            return;
        }
        GeometryPtr geometry = toGeometry(context, values[0], true);
        if (geometry && count > 1) {
            if (const CoordSystemPtr coordSystem = coordSystemArgument(context, values, 1)) {
                geometry = withCoordSystem(geometry, coordSystem);
            }
        }
        toOrvGeo(geometry, context, cacheOf(context), true);
    });
}

void transformToOrvGeo(sqlite3_context* context, int count, sqlite3_value** values) {
    barrier(context, [&] {
        static const std::string name = "TransformToOrvGeo";
        if (hasTransformArguments(context, count, name)) {
            toOrvGeo(transformedGeometry(context, count, values), context, cacheOf(context), true);
        }
    });
}

void transformToSLGeo(sqlite3_context* context, int count, sqlite3_value** values) {
    barrier(context, [&] {
        static const std::string name = "TransformToSLGeo";
        const auto systems = [&](int position) { return coordSystemArgument(context, values, position); };
        if (hasTransformArguments(context, count, name) && !transformBlob(context, count, values, systems)) {
            toGaia(transformedGeometry(context, count, values), context, cacheOf(context));
        }
    });
}

void transform(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("Transform", 2, context, count, values, [=](const GeometryCall& call) -> GeometryPtr {
        const CoordSystemPtr target = call.coordSystem(1);
        if (!target) {
            call.reject(1, QT_TRANSLATE_NOOP("orvane::geometry", "нужна известная координатная система"));
        }
        const auto systems = [&call](int position) { return call.coordSystem(position); };
        if (target->epsg() != 0 && transformBlob(context, count, values, systems)) {
            return nullptr; // the result is given
        }
        GeometryPtr geometry = call.geometry(0);
        if (const CoordSystemPtr otherwise = call.coordSystem(2); otherwise && !geometry->coordSystem()) {
            geometry = withCoordSystem(geometry, otherwise);
        }
        if (!geometry->coordSystem()) {
            call.reject(0, QT_TRANSLATE_NOOP("orvane::geometry", "у геометрии нет координатной системы"));
        }
        return geometry->transformed(target);
    });
}

void fromOrvGeo(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] { toGaia(toGeometry(context, values[0], true), context, cacheOf(context)); });
}

void retrieveCS(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        const GeometryPtr geometry = toGeometry(context, values[0], true);
        resultCoordSystem(context, geometry ? geometry->coordSystem()
                                            : cacheOf(context)->tableCS(toQString(values[0])));
    });
}

void retrieveTableCS(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] { resultCoordSystem(context, cacheOf(context)->tableCS(toQString(values[0]))); });
}

} // namespace orvane::engine
