#include <orvane/engine/functions/GeometryOverlay.h>

#include "GeometryCall.h"
#include "platform/geometry/overlay/Cutting.h"
#include "platform/geometry/overlay/LineWork.h"
#include "platform/geometry/overlay/Overlay.h"
#include "platform/geometry/overlay/Parts.h"
#include "platform/geometry/shapes/Curves.h"

#include <algorithm>

namespace orvane::engine {

namespace {

using geometry::Overlay;
using geometry::Side;
using Made = std::shared_ptr<geometry::Geometry>;

void overlayOfTwo(const char* name, Overlay kind, sqlite3_context* context, int count,
                  sqlite3_value** values) {
    evaluate(name, 2, context, count, values, [kind](const GeometryCall& call) {
        const GeometryPair pair = call.geometries(0, 1);
        return geometry::overlay(kind, *pair.first, *pair.second);
    });
}

void splitOfTwo(const char* name, Side side, sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate(name, 2, context, count, values, [side](const GeometryCall& call) {
        const GeometryPair pair = call.geometries(0, 1);
        return geometry::split(pair.first, *pair.second, side);
    });
}

void partsOfDimension(const char* name, int dimension, sqlite3_context* context, int count,
                      sqlite3_value** values) {
    evaluate(name, 1, context, count, values, [dimension](const GeometryCall& call) {
        return geometry::extracted(call.geometry(0), dimension);
    });
}

/// Appends the points of a geometry of points and lines.
void appendPoints(const GeometryCall& call, int position, const GeometryPtr& geometry,
                  std::vector<GeometryPtr>& points) {
    if (geometry::dimensionOf(*geometry) > 1) {
        call.reject(position, QT_TRANSLATE_NOOP("orvane::geometry", "нужны точки или линии"));
    }
    geometry::forEachPart(geometry::positionsOf(geometry),
                          [&](const GeometryPtr& point) { points.push_back(point); });
}

Made lineThrough(const GeometryPtr& first, const std::vector<GeometryPtr>& points) {
    const geometry::Dimensions dimensions = first->dimensions();
    const std::size_t stride = geometry::strideOf(dimensions);
    std::vector<double> values;
    for (const GeometryPtr& point : points) {
        const auto& position = static_cast<const geometry::Point&>(*point);
        const std::size_t given =
            position.dimensions() == dimensions ? stride : 2; // z and m are 0 where only others have them
        values.insert(values.end(), position.ordinates(), position.ordinates() + given);
        values.insert(values.end(), stride - given, 0.0);
    }
    if (points.size() < 2) {
        values.clear();
    }
    const Made line =
        std::make_shared<geometry::LineString>(geometry::CoordinateSequence(dimensions, values));
    line->setCoordSystem(first->coordSystem());
    return line;
}

} // namespace

void intersection(sqlite3_context* context, int count, sqlite3_value** values) {
    overlayOfTwo("Intersection", Overlay::Intersection, context, count, values);
}

void unionOfTwo(sqlite3_context* context, int count, sqlite3_value** values) {
    overlayOfTwo("GUnion", Overlay::Union, context, count, values);
}

void difference(sqlite3_context* context, int count, sqlite3_value** values) {
    overlayOfTwo("Difference", Overlay::Difference, context, count, values);
}

void symmetricDifference(sqlite3_context* context, int count, sqlite3_value** values) {
    overlayOfTwo("SymDifference", Overlay::SymmetricDifference, context, count, values);
}

void unaryUnion(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("UnaryUnion", context, count, values, geometry::unaryUnion);
}

void split(sqlite3_context* context, int count, sqlite3_value** values) {
    splitOfTwo("Split", Side::Both, context, count, values);
}

void splitLeft(sqlite3_context* context, int count, sqlite3_value** values) {
    splitOfTwo("SplitLeft", Side::Left, context, count, values);
}

void splitRight(sqlite3_context* context, int count, sqlite3_value** values) {
    splitOfTwo("SplitRight", Side::Right, context, count, values);
}

void snap(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("Snap", 3, context, count, values, [](const GeometryCall& call) {
        const GeometryPair pair = call.geometries(0, 1);
        return geometry::snapped(*pair.first, *pair.second, call.notNegative(2));
    });
}

void snapAndSplit(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("SnapAndSplit", 3, context, count, values, [](const GeometryCall& call) {
        const GeometryPair pair = call.geometries(0, 1);
        return geometry::split(geometry::snapped(*pair.first, *pair.second, call.notNegative(2)),
                               *pair.second);
    });
}

void linesCutAtNodes(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("LinesCutAtNodes", 2, context, count, values, [](const GeometryCall& call) {
        const GeometryPair pair = call.geometries(0, 1);
        return geometry::cutAtPoints(pair.first, *pair.second);
    });
}

void subdivide(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ST_Subdivide", 1, context, count, values, [](const GeometryCall& call) {
        constexpr std::int64_t least = 5;
        constexpr std::int64_t usual = 128;
        const std::int64_t most = call.integer(1, usual);
        if (most < least) {
            call.reject(1, QT_TRANSLATE_NOOP("orvane::geometry", "нужно целое число, не меньшее 5"));
        }
        return geometry::subdivided(call.geometry(0), static_cast<std::size_t>(most));
    });
}

void node(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("ST_Node", context, count, values, geometry::nodedLines);
}

void selfIntersections(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("SelfIntersections", context, count, values, geometry::selfIntersections);
}

void ringsCutAtNodes(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("RingsCutAtNodes", context, count, values, geometry::ringsCutAtNodes);
}

void sharedPaths(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("SharedPaths", 2, context, count, values, [](const GeometryCall& call) {
        const GeometryPair pair = call.geometries(0, 1);
        return geometry::sharedPaths(*pair.first, *pair.second);
    });
}

void collectionExtract(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("CollectionExtract", 2, context, count, values, [](const GeometryCall& call) {
        const std::int64_t kind = call.integer(1);
        if (kind < 1 || kind > 3) {
            call.reject(1,
                        QT_TRANSLATE_NOOP("orvane::geometry", "нужно 1 (точки), 2 (линии) или 3 (полигоны)"));
        }
        return geometry::extracted(call.geometry(0), static_cast<int>(kind) - 1);
    });
}

void extractMultiPoint(sqlite3_context* context, int count, sqlite3_value** values) {
    partsOfDimension("ExtractMultiPoint", 0, context, count, values);
}

void extractMultiLinestring(sqlite3_context* context, int count, sqlite3_value** values) {
    partsOfDimension("ExtractMultiLinestring", 1, context, count, values);
}

void extractMultiPolygon(sqlite3_context* context, int count, sqlite3_value** values) {
    partsOfDimension("ExtractMultiPolygon", 2, context, count, values);
}

void linesFromRings(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("LinesFromRings", 1, context, count, values, [](const GeometryCall& call) -> GeometryPtr {
        const GeometryPtr geometry = call.geometry(0);
        const Made rings = geometry::ringsOf(geometry);
        const auto& parts = static_cast<const geometry::GeometryCollection&>(*rings).parts();
        if (parts.size() != 1 || call.integer(1, std::int64_t(0)) != 0) {
            return rings;
        }
        const Made ring = parts.front()->clone();
        ring->setCoordSystem(geometry->coordSystem());
        return ring;
    });
}

void dissolveSegments(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("DissolveSegments", context, count, values, geometry::segmentsOf);
}

void dissolvePoints(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("DissolvePoints", context, count, values, geometry::positionsOf);
}

void collectTwo(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("Collect", 2, context, count, values, [](const GeometryCall& call) {
        const GeometryPair pair = call.geometries(0, 1);
        return geometry::collected(pair.first, pair.second);
    });
}

void makeLineOfTwo(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("MakeLine", 2, context, count, values, [](const GeometryCall& call) {
        std::vector<GeometryPtr> points;
        if (sqlite3_value_type(call.value(1)) == SQLITE_INTEGER) {
            const GeometryPtr geometry = call.geometry(0);
            appendPoints(call, 0, geometry, points);
            if (call.integer(1) == 0) {
                std::reverse(points.begin(), points.end());
            }
            return lineThrough(geometry, points);
        }
        const GeometryPair pair = call.geometries(0, 1);
        appendPoints(call, 0, pair.first, points);
        appendPoints(call, 1, pair.second, points);
        return lineThrough(pair.first, points);
    });
}

} // namespace orvane::engine
