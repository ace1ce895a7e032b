#include "host/adaptor/functions/ScalarRecord.h"

#include <orvane/engine/functions/GeometryShaping.h>

namespace orvane::adaptor {

namespace {

constexpr const char* hulls = "Hulls and borders";
constexpr const char* lineWork = "Areas of lines, and repair";
constexpr const char* cells = "Tessellations and grids";
constexpr const char* vertices = "Simplification and vertices";

const FunctionRecord records[] = {
    alsoNamed("ST_ConvexHull",
              pureFunction("ConvexHull", hulls, Arity::exactly(1), engine::convexHull,
                           {"ConvexHull(obj)", "The smallest convex area with all of the object in it.",
                            "AsText(ConvexHull(GeomFromText('MULTIPOINT(0 0,4 0,1 1,0 4)')))",
                            "POLYGON((0 0, 0 4, 4 0, 0 0))"})),
    alsoNamed(
        "ST_ConcaveHull",
        pureFunction("ConcaveHull", hulls, Arity::between(1, 3), engine::concaveHull,
                     {"ConcaveHull(obj [, ratio [, holes]])",
                      "An area around the object's vertices: from as concave as can be (ratio 0) to convex "
                      "(1), 0.3 without a number; with holes if the last number is not 0.",
                      "ST_Area(ConcaveHull(GeomFromText('MULTIPOINT(0 0,4 0,4 4,0 4,2 1)'), 0))", "10"})),
    alsoNamed("ST_Envelope",
              pureFunction("Envelope", hulls, Arity::exactly(1), engine::envelope,
                           {"Envelope(obj)", "The bounding box, a line or a point where it has no area.",
                            "AsText(Envelope(GeomFromText('LINESTRING(0 0,2 1)')))",
                            "POLYGON((0 0, 2 0, 2 1, 0 1, 0 0))"})),
    pureFunction("ST_Expand", hulls, Arity::between(2, 3), engine::expand,
                 {"ST_Expand(obj, length [, units])",
                  "The bounding box with so much more on every side, at least, in units of the coordinates "
                  "without units.",
                  "AsText(ST_Expand(MakePoint(1, 1), 2))", "POLYGON((-1 -1, 3 -1, 3 3, -1 3, -1 -1))"}),
    alsoNamed("ST_Boundary", pureFunction("Boundary", hulls, Arity::exactly(1), engine::boundary,
                                          {"Boundary(obj)", "The borders of areas and the ends of lines.",
                                           "AsText(Boundary(GeomFromText('LINESTRING(0 0,2 1,3 1)')))",
                                           "MULTIPOINT(0 0, 3 1)"})),
    alsoNamed("ST_PointOnSurface",
              pureFunction("PointOnSurface", hulls, Arity::exactly(1), engine::pointOnSurface,
                           {"PointOnSurface(obj)",
                            "A point that certainly lies on the object; NULL for an empty one.",
                            "AsText(PointOnSurface(BuildMbr(0, 0, 4, 2)))", "POINT(2 1)"})),
    pureFunction("ST_Centroid", hulls, Arity::exactly(1), engine::centreOfMass,
                 {"ST_Centroid(obj)",
                  "The centre of mass in the plane, which may lie outside; NULL for an empty object.",
                  "AsText(ST_Centroid(GeomFromText('LINESTRING(0 0,4 0,4 4)')))", "POINT(3 1)"}),
    alsoNamed("ST_OffsetCurve",
              pureFunction("OffsetCurve", hulls, Arity::between(2, 3), engine::offsetCurve,
                           {"OffsetCurve(line, distance [, units])",
                            "The line at a distance to the left, for a negative one to the right.",
                            "AsText(OffsetCurve(GeomFromText('LINESTRING(0 0,4 0)'), 1))",
                            "LINESTRING(0 1, 4 1)"})),
    alsoNamed("ST_LineMerge",
              pureFunction("LineMerge", lineWork, Arity::exactly(1), engine::lineMerge,
                           {"LineMerge(obj)", "Lines joined where exactly two of them meet in their ends.",
                            "AsText(LineMerge(GeomFromText('MULTILINESTRING((0 0,1 0),(2 0,1 0))')))",
                            "LINESTRING(0 0, 1 0, 2 0)"})),
    alsoNamed(
        "ST_BuildArea",
        pureFunction("BuildArea", lineWork, Arity::exactly(1), engine::buildArea,
                     {"BuildArea(obj)", "The area that lines enclose which meet in their ends.",
                      "ST_Area(BuildArea(GeomFromText('MULTILINESTRING((0 0,2 0,2 2),(2 2,0 0))')))", "2"})),
    alsoNamed("ST_MakePolygon",
              pureFunction("MakePolygon", lineWork, Arity::between(1, 2), engine::makePolygon,
                           {"MakePolygon(line [, lines of holes])", "The area within closed lines.",
                            "AsText(MakePolygon(GeomFromText('LINESTRING(0 0,4 0,4 4,0 0)')))",
                            "POLYGON((0 0, 4 0, 4 4, 0 0))"})),
    pureFunction("ST_MakeValid", lineWork, Arity::exactly(1), engine::makeValid,
                 {"ST_MakeValid(obj)", "What MakeValid gives.",
                  "AsText(ST_MakeValid(GeomFromText('POLYGON((0 0,2 2,2 0,0 2,0 0))')))",
                  "MULTIPOLYGON(((0 2, 1 1, 0 0, 0 2)), ((2 0, 1 1, 2 2, 2 0)))"}),
    alsoNamed(
        "ST_MakeValidDiscarded",
        pureFunction("MakeValidDiscarded", lineWork, Arity::exactly(1), engine::makeValidDiscarded,
                     {"MakeValidDiscarded(obj)",
                      "What MakeValid makes of an object that has fewer dimensions than it had: the points "
                      "and lines of areas that collapse.",
                      "AsText(MakeValidDiscarded(GeomFromText('POLYGON((0 0,4 0,4 4,4 8,4 4,0 4,0 0))')))",
                      "LINESTRING(4 4, 4 8)"})),
    pureFunction(
        "SanitizeGeometry", lineWork, Arity::exactly(1), engine::sanitizeGeometry,
        {"SanitizeGeometry(obj)",
         "The object without repeated positions, with closed rings, without lines and rings of too few "
         "positions.",
         "AsText(SanitizeGeometry(GeomFromText('LINESTRING(0 0,0 0,1 1)')))", "LINESTRING(0 0, 1 1)"}),
    pureFunction("EnsureClosedRings", lineWork, Arity::exactly(1), engine::ensureClosedRings,
                 {"EnsureClosedRings(obj)", "The object with rings that end where they begin.",
                  "AsText(EnsureClosedRings(BuildMbr(0, 0, 1, 1)))", "POLYGON((0 0, 1 0, 1 1, 0 1, 0 0))"}),
    alsoNamed(
        "ST_VoronojDiagram",
        pureFunction("VoronojDiagram", cells, Arity::between(1, 4), engine::voronoiDiagram,
                     {"VoronojDiagram(obj [, edges [, frame [, tolerance]]])",
                      "The areas nearest to each position, or their edges, within the bounding box and so "
                      "many percent more, 5 without a number.",
                      "ST_Area(VoronojDiagram(GeomFromText('MULTIPOINT(0 0,10 0,10 10)'), 0, 0))", "100"})),
    alsoNamed("ST_DelaunayTriangulation",
              pureFunction("DelaunayTriangulation", cells, Arity::between(1, 3),
                           engine::delaunayTriangulation,
                           {"DelaunayTriangulation(obj [, edges [, tolerance]])",
                            "The triangles between all positions, or their edges.",
                            "NumGeometries(DelaunayTriangulation(BuildMbr(0, 0, 2, 1)))", "2"})),
    alsoNamed(
        "ST_SquareGrid",
        pureFunction("SquareGrid", cells, Arity::between(2, 4), engine::squareGrid,
                     {"SquareGrid(obj, size [, mode [, origin]])",
                      "The squares of a grid that cover the object; their edges for a mode above 0, their "
                      "corners for one below; a corner lies in the origin.",
                      "NumGeometries(SquareGrid(BuildMbr(0, 0, 3, 2), 1))", "6"})),
    alsoNamed("ST_TriangularGrid",
              pureFunction("TriangularGrid", cells, Arity::between(2, 4), engine::triangularGrid,
                           {"TriangularGrid(obj, side [, mode [, origin]])",
                            "The same of triangles with sides of one length.",
                            "NumGeometries(TriangularGrid(MakePoint(1, 0.5), 2))", "1"})),
    alsoNamed("ST_HexagonalGrid",
              pureFunction("HexagonalGrid", cells, Arity::between(2, 4), engine::hexagonalGrid,
                           {"HexagonalGrid(obj, side [, mode [, origin]])",
                            "The same of hexagons, one with its centre in the origin.",
                            "NumGeometries(HexagonalGrid(MakePoint(0, 0), 1, -1))", "6"})),
    alsoNamed({"ST_Simplify", "ST_Generalize"},
              pureFunction("Simplify", vertices, Arity::between(2, 3), engine::simplify,
                           {"Simplify(obj, tolerance [, units])",
                            "Fewer vertices, nothing moved by more than the tolerance, in units of the "
                            "coordinates without units; areas smaller than that vanish.",
                            "AsText(Simplify(GeomFromText('LINESTRING(0 0,1 0.1,2 0)'), 0.2))",
                            "LINESTRING(0 0, 2 0)"})),
    alsoNamed("ST_SimplifyPreserveTopology",
              pureFunction("SimplifyPreserveTopology", vertices, Arity::between(2, 3),
                           engine::simplifyPreserveTopology,
                           {"SimplifyPreserveTopology(obj, tolerance [, units])",
                            "The same so that no part vanishes and no lines come to cross.",
                            "AsText(SimplifyPreserveTopology(BuildMbr(0, 0, 1, 1), 5))",
                            "POLYGON((0 0, 1 0, 1 1, 0 1, 0 0))"})),
    alsoNamed(
        "ST_Segmentize",
        pureFunction("Segmentize", vertices, Arity::between(2, 3), engine::segmentize,
                     {"Segmentize(obj, length [, units])",
                      "Segments cut into equal pieces no longer than that; with units on the ellipsoid of "
                      "geographic systems along geodesics.",
                      "AsText(Segmentize(GeomFromText('LINESTRING(0 0,4 0)'), 2))",
                      "LINESTRING(0 0, 2 0, 4 0)"})),
    alsoNamed(
        "ST_SnapToGrid",
        pureFunction("SnapToGrid", vertices, Arity::between(2, 3), engine::snapToGrid,
                     {"SnapToGrid(obj, size [, size y])",
                      "Positions on the nearest lines of a grid, without the repetition that comes of it.",
                      "AsText(SnapToGrid(GeomFromText('LINESTRING(0.1 0.4,1.2 0.7)'), 1))",
                      "LINESTRING(0 0, 1 1)"})),
    alsoNamed("ST_SnapToGrid",
              pureFunction("SnapToGrid", vertices, Arity::exactly(5), engine::snapToGrid,
                           {"SnapToGrid(obj, origin x, origin y, size x, size y)",
                            "The same with a grid through an origin.",
                            "AsText(SnapToGrid(MakePoint(1.2, 0.7), 0.5, 0.5, 1, 1))", "POINT(1.5 0.5)"})),
    alsoNamed("ST_SnapToGrid",
              pureFunction("SnapToGrid", vertices, Arity::exactly(6), engine::snapToGrid,
                           {"SnapToGrid(obj, origin, size x, size y, size z, size m)",
                            "The same for z and m, too; a size of 0 leaves them.",
                            "AsText(SnapToGrid(MakePointZ(1.2, 0.7, 5.6), MakePoint(0, 0), 1, 0, 5, 0))",
                            "POINT Z(1 0.7 5)"})),
    pureFunction("RemoveRepeatedPoints", vertices, Arity::between(1, 2), engine::removeRepeatedPoints,
                 {"RemoveRepeatedPoints(obj [, tolerance])",
                  "Without positions that are as near to the one before.",
                  "AsText(RemoveRepeatedPoints(GeomFromText('LINESTRING(0 0,0 0,0.1 0,3 0)'), 0.5))",
                  "LINESTRING(0 0, 3 0)"}),
    alsoNamed("ST_ForceLHR",
              pureFunction("ST_ForcePolygonCW", vertices, Arity::exactly(1), engine::forcePolygonCW,
                           {"ST_ForcePolygonCW(obj)", "Shells that run clockwise, holes the other way.",
                            "AsText(ST_ForcePolygonCW(BuildMbr(0, 0, 1, 1)))",
                            "POLYGON((0 0, 0 1, 1 1, 1 0, 0 0))"})),
    pureFunction("ST_ForcePolygonCCW", vertices, Arity::exactly(1), engine::forcePolygonCCW,
                 {"ST_ForcePolygonCCW(obj)", "Shells that run anticlockwise, holes the other way.",
                  "AsText(ST_ForcePolygonCCW(BuildMbr(0, 0, 1, 1)))", "POLYGON((0 0, 1 0, 1 1, 0 1, 0 0))"}),
    pureFunction("ST_IsPolygonCW", vertices, Arity::exactly(1), engine::isPolygonCW,
                 {"ST_IsPolygonCW(obj)", "1 when all shells run clockwise and all holes the other way.",
                  "ST_IsPolygonCW(BuildMbr(0, 0, 1, 1))", "0"}),
    pureFunction("ST_IsPolygonCCW", vertices, Arity::exactly(1), engine::isPolygonCCW,
                 {"ST_IsPolygonCCW(obj)", "1 when all shells run anticlockwise and all holes the other way.",
                  "ST_IsPolygonCCW(BuildMbr(0, 0, 1, 1))", "1"}),
    pureFunction("ST_Reverse", vertices, Arity::exactly(1), engine::reverse,
                 {"ST_Reverse(obj)", "Lines and rings in the other direction.",
                  "AsText(ST_Reverse(GeomFromText('LINESTRING(0 0,1 1,2 1)')))",
                  "LINESTRING(2 1, 1 1, 0 0)"}),
};

} // namespace

std::span<const FunctionRecord> shapingRecords() {
    return records;
}

} // namespace orvane::adaptor
