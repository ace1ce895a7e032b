#include <orvane/engine/functions/GeometryShaping.h>

#include "GeometryCall.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/measures/Measures.h"
#include "platform/geometry/overlay/LineWork.h"
#include "platform/geometry/relations/Relations.h"
#include "platform/geometry/shaping/Grids.h"
#include "platform/geometry/shaping/Hulls.h"
#include "platform/geometry/shaping/Rings.h"
#include "platform/geometry/shaping/Simplification.h"
#include "platform/geometry/shaping/Vertices.h"

namespace orvane::engine {

namespace {

using Made = std::shared_ptr<geometry::Geometry>;

bool flag(const GeometryCall& call, int position) {
    return call.integer(position, std::int64_t(0)) != 0;
}

bool isGeographic(const geometry::Geometry& geometry) {
    const auto system = geometry.coordSystem();
    return system && system->isGeographic();
}

void simplifyWith(const char* name, bool keepTopology, sqlite3_context* context, int count,
                  sqlite3_value** values) {
    evaluate(name, 2, context, count, values, [keepTopology](const GeometryCall& call) {
        return geometry::simplified(*call.geometry(0), call.notNegative(1), call.text(2), keepTopology);
    });
}

void gridOf(const char* name, geometry::CellShape shape, sqlite3_context* context, int count,
            sqlite3_value** values) {
    evaluate(name, 2, context, count, values, [shape](const GeometryCall& call) {
        using geometry::CellPart;
        GeometryPair pair{call.geometry(0), nullptr};
        double x = 0.0;
        double y = 0.0;
        if (call.isGiven(3)) {
            pair = call.geometries(0, 3);
            if (pair.second->type() != geometry::GeometryType::Point || pair.second->isEmpty()) {
                call.reject(3, QT_TRANSLATE_NOOP("orvane::geometry", "нужна точка"));
            }
            const auto& origin = static_cast<const geometry::Point&>(*pair.second);
            x = origin.x();
            y = origin.y();
        }
        const std::int64_t mode = call.integer(2, std::int64_t(0));
        const CellPart part = mode == 0 ? CellPart::Areas : mode > 0 ? CellPart::Edges : CellPart::Corners;
        return geometry::gridOver(*pair.first, shape, call.positive(1), part, x, y);
    });
}

/// The origin in two numbers or a point, then the steps.
geometry::Grid gridOf(const GeometryCall& call) {
    geometry::Grid grid;
    int position = 1;
    std::size_t steps = 0;
    if (call.count() == 5) {
        grid.origin = {call.number(1), call.number(2), 0.0, 0.0};
        position = 3;
    } else if (call.count() == 6) {
        const GeometryPtr origin = call.geometries(0, 1).second;
        if (origin->type() != geometry::GeometryType::Point || origin->isEmpty()) {
            call.reject(1, QT_TRANSLATE_NOOP("orvane::geometry", "нужна точка"));
        }
        const auto& point = static_cast<const geometry::Point&>(*origin);
        std::size_t axis = 0;
        for (std::size_t i = 0; i < geometry::strideOf(point.dimensions()); ++i, ++axis) {
            axis += i == 2 && !geometry::hasZ(point.dimensions()) ? 1 : 0;
            grid.origin[axis] = point.ordinates()[i];
        }
        position = 2;
    }
    for (; position < call.count(); ++position, ++steps) {
        grid.step[steps] = call.notNegative(position);
    }
    if (call.count() == 2) {
        grid.step[1] = grid.step[0];
    }
    return grid;
}

} // namespace

void convexHull(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("ConvexHull", context, count, values, geometry::convexHull);
}

void concaveHull(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ConcaveHull", 1, context, count, values, [](const GeometryCall& call) {
        constexpr double usual = 0.3;
        const double ratio = call.number(1, usual);
        if (ratio < 0.0 || ratio > 1.0) {
            call.reject(1, QT_TRANSLATE_NOOP("orvane::geometry", "нужно число от 0 до 1"));
        }
        return geometry::concaveHull(*call.geometry(0), ratio, flag(call, 2));
    });
}

void envelope(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("Envelope", context, count, values, geometry::envelopeOf);
}

void expand(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ST_Expand", 2, context, count, values, [](const GeometryCall& call) {
        const GeometryPtr geometry = call.geometry(0);
        const geometry::Reach reach = geometry::reachAround(*geometry, call.number(1), call.text(2));
        return geometry::expandedEnvelope(*geometry, reach.x, reach.y);
    });
}

void boundary(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("Boundary", context, count, values, geometry::boundary);
}

void pointOnSurface(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("PointOnSurface", context, count, values, geometry::PointOnSurface);
}

void centreOfMass(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("ST_Centroid", context, count, values, geometry::centroid);
}

void lineMerge(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("LineMerge", context, count, values, geometry::mergedLines);
}

void buildArea(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("BuildArea", context, count, values, geometry::builtArea);
}

void makePolygon(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("MakePolygon", 1, context, count, values, [](const GeometryCall& call) {
        if (!call.isGiven(1)) {
            return geometry::polygonOf(call.geometry(0), nullptr);
        }
        const GeometryPair pair = call.geometries(0, 1);
        return geometry::polygonOf(pair.first, pair.second);
    });
}

void makeValid(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("ST_MakeValid", context, count, values, geometry::normalizedGeometry);
}

void makeValidDiscarded(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("MakeValidDiscarded", context, count, values, geometry::collapsedParts);
}

void sanitizeGeometry(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("SanitizeGeometry", context, count, values, geometry::sanitized);
}

void ensureClosedRings(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("EnsureClosedRings", context, count, values, geometry::withClosedRings);
}

void voronoiDiagram(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("VoronojDiagram", 1, context, count, values, [](const GeometryCall& call) {
        constexpr double usualFrame = 5.0;
        return geometry::voronoiDiagram(*call.geometry(0), flag(call, 1), call.notNegative(2, usualFrame),
                                        call.notNegative(3, 0.0));
    });
}

void delaunayTriangulation(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("DelaunayTriangulation", 1, context, count, values, [](const GeometryCall& call) {
        return geometry::delaunayTriangulation(*call.geometry(0), flag(call, 1), call.notNegative(2, 0.0));
    });
}

void squareGrid(sqlite3_context* context, int count, sqlite3_value** values) {
    gridOf("SquareGrid", geometry::CellShape::Square, context, count, values);
}

void triangularGrid(sqlite3_context* context, int count, sqlite3_value** values) {
    gridOf("TriangularGrid", geometry::CellShape::Triangle, context, count, values);
}

void hexagonalGrid(sqlite3_context* context, int count, sqlite3_value** values) {
    gridOf("HexagonalGrid", geometry::CellShape::Hexagon, context, count, values);
}

void offsetCurve(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("OffsetCurve", 2, context, count, values, [](const GeometryCall& call) {
        const GeometryPtr geometry = call.geometry(0);
        const QString units = call.text(2);
        if (!units.isEmpty() && isGeographic(*geometry)) {
            call.reject(2, QT_TRANSLATE_NOOP("orvane::geometry",
                                             "единицы есть только у координатных систем на плоскости"));
        }
        const double distance = call.number(1);
        return geometry::offsetCurve(
            *geometry,
            units.isEmpty() ? distance : geometry::ownLength(distance, geometry->coordSystem().get(), units));
    });
}

void simplify(sqlite3_context* context, int count, sqlite3_value** values) {
    simplifyWith("Simplify", false, context, count, values);
}

void simplifyPreserveTopology(sqlite3_context* context, int count, sqlite3_value** values) {
    simplifyWith("SimplifyPreserveTopology", true, context, count, values);
}

void segmentize(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("Segmentize", 2, context, count, values, [](const GeometryCall& call) {
        const GeometryPtr geometry = call.geometry(0);
        const double longest = call.positive(1);
        const QString units = call.text(2);
        if (units.isEmpty()) {
            return geometry::segmentized(geometry, longest);
        }
        const double own = geometry::ownLength(longest, geometry->coordSystem().get(), units);
        return isGeographic(*geometry) ? geometry::geodesicallySegmentized(*geometry, own)
                                       : geometry::segmentized(geometry, own);
    });
}

void snapToGrid(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("SnapToGrid", count, context, count, values, [](const GeometryCall& call) {
        return geometry::snappedToGrid(call.geometry(0), gridOf(call));
    });
}

void removeRepeatedPoints(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("RemoveRepeatedPoints", 1, context, count, values, [](const GeometryCall& call) {
        return geometry::withoutRepeatedPoints(call.geometry(0), call.notNegative(1, 0.0));
    });
}

void forcePolygonCW(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("ST_ForcePolygonCW", context, count, values,
              [](const geometry::Geometry& geometry) { return geometry::oriented(geometry, true); });
}

void forcePolygonCCW(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("ST_ForcePolygonCCW", context, count, values,
              [](const geometry::Geometry& geometry) { return geometry::oriented(geometry, false); });
}

void isPolygonCW(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("ST_IsPolygonCW", context, count, values,
              [](const geometry::Geometry& geometry) { return geometry::isOriented(geometry, true); });
}

void isPolygonCCW(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("ST_IsPolygonCCW", context, count, values,
              [](const geometry::Geometry& geometry) { return geometry::isOriented(geometry, false); });
}

void reverse(sqlite3_context* context, int count, sqlite3_value** values) {
    madeOfOne("ST_Reverse", context, count, values, geometry::reversed);
}

} // namespace orvane::engine
