#include "host/adaptor/functions/ScalarRecord.h"

#include <orvane/engine/functions/GeometryOverlay.h>

namespace orvane::adaptor {

namespace {

constexpr const char* overlays = "Overlay";
constexpr const char* cutting = "Cutting and snapping";
constexpr const char* parts = "Parts of geometries";

const FunctionRecord records[] = {
    alsoNamed(
        "ST_Intersection",
        pureFunction("Intersection", overlays, Arity::exactly(2), engine::intersection,
                     {"Intersection(a, b)",
                      "What lies in both objects, an empty object where they share nothing; the system is "
                      "that of a.",
                      "AsText(Intersection(BuildMbr(0, 0, 2, 2), GeomFromText('LINESTRING(1 1,5 1)')))",
                      "LINESTRING(1 1, 2 1)"})),
    alsoNamed("ST_Union", pureFunction("GUnion", overlays, Arity::exactly(2), engine::unionOfTwo,
                                       {"GUnion(a, b)", "What lies in one of the two objects at least.",
                                        "ST_Area(GUnion(BuildMbr(0, 0, 2, 2), BuildMbr(1, 0, 4, 2)))", "8"})),
    alsoNamed("ST_Difference",
              pureFunction("Difference", overlays, Arity::exactly(2), engine::difference,
                           {"Difference(a, b)", "What lies in a and not in b.",
                            "AsText(Difference(GeomFromText('LINESTRING(0 0,4 0)'), BuildMbr(1, -1, 9, 1)))",
                            "LINESTRING(0 0, 1 0)"})),
    alsoNamed("ST_SymDifference",
              pureFunction("SymDifference", overlays, Arity::exactly(2), engine::symmetricDifference,
                           {"SymDifference(a, b)", "What lies in one of the two objects only.",
                            "ST_Area(SymDifference(BuildMbr(0, 0, 2, 2), BuildMbr(1, 0, 4, 2)))", "6"})),
    alsoNamed("ST_UnaryUnion",
              pureFunction("UnaryUnion", overlays, Arity::exactly(1), engine::unaryUnion,
                           {"UnaryUnion(obj)",
                            "The union of the parts of one object: areas without borders between them, lines "
                            "cut where they meet.",
                            "ST_Area(UnaryUnion(GeomFromText('MULTIPOLYGON(((0 0,2 0,2 2,0 2,0 0)),((1 0,4 "
                            "0,4 2,1 2,1 0)))')))",
                            "8"})),
    pureFunction("ST_Node", overlays, Arity::exactly(1), engine::node,
                 {"ST_Node(obj)", "Lines and borders cut wherever they meet, every piece once.",
                  "AsText(ST_Node(GeomFromText('LINESTRING(0 0,2 2,0 2,2 0)')))",
                  "MULTILINESTRING((0 0, 1 1), (1 1, 2 2, 0 2, 1 1), (1 1, 2 0))"}),
    alsoNamed(
        "ST_SelfIntersections",
        pureFunction("SelfIntersections", overlays, Arity::exactly(1), engine::selfIntersections,
                     {"SelfIntersections(obj)",
                      "Points where lines and borders cross, touch or run over each other, but for those "
                      "where only ends meet.",
                      "AsText(SelfIntersections(GeomFromText('LINESTRING(0 0,2 2,0 2,2 0)')))",
                      "MULTIPOINT(1 1)"})),
    alsoNamed(
        "ST_SharedPaths",
        pureFunction("SharedPaths", overlays, Arity::exactly(2), engine::sharedPaths,
                     {"SharedPaths(a, b)", "The stretches that lines and borders of both objects share.",
                      "AsText(SharedPaths(BuildMbr(0, 0, 2, 2), BuildMbr(2, 1, 3, 3)))",
                      "MULTILINESTRING((2 1, 2 2))"})),
    alsoNamed(
        "ST_Split",
        pureFunction("Split", cutting, Arity::exactly(2), engine::split,
                     {"Split(obj, blade)",
                      "The pieces into which points, lines and borders of the blade cut lines and areas.",
                      "AsText(Split(GeomFromText('LINESTRING(0 0,4 0)'), MakePoint(1, 0)))",
                      "MULTILINESTRING((0 0, 1 0), (1 0, 4 0))"})),
    alsoNamed("ST_SplitLeft",
              pureFunction("SplitLeft", cutting, Arity::exactly(2), engine::splitLeft,
                           {"SplitLeft(obj, blade)",
                            "Those pieces of Split that lie left of the blade in its direction; of a line "
                            "between points the first, the third, and so on.",
                            "AsText(Envelope(SplitLeft(BuildMbr(0, 0, 4, 4), GeomFromText('LINESTRING(1 0,1 "
                            "4)'))))",
                            "POLYGON((0 0, 1 0, 1 4, 0 4, 0 0))"})),
    alsoNamed("ST_SplitRight",
              pureFunction("SplitRight", cutting, Arity::exactly(2), engine::splitRight,
                           {"SplitRight(obj, blade)", "The other pieces of Split.",
                            "ST_Area(SplitRight(BuildMbr(0, 0, 4, 4), GeomFromText('LINESTRING(1 0,1 4)')))",
                            "12"})),
    alsoNamed(
        "ST_Snap",
        pureFunction("Snap", cutting, Arity::exactly(3), engine::snap,
                     {"Snap(a, b, tolerance)",
                      "The object a with its vertices and segments moved to vertices of b that are nearer "
                      "than the tolerance, in units of the coordinates.",
                      "AsText(Snap(GeomFromText('LINESTRING(0 0,4 0)'), MakePoint(2, 0.1), 0.5))",
                      "LINESTRING(0 0, 2 0.1, 4 0)"})),
    alsoNamed(
        "ST_SnapAndSplit",
        pureFunction("SnapAndSplit", cutting, Arity::exactly(3), engine::snapAndSplit,
                     {"SnapAndSplit(a, b, tolerance)", "What Split makes of Snap of the two objects.",
                      "AsText(SnapAndSplit(GeomFromText('LINESTRING(0 0,4 0)'), MakePoint(2, 0.1), 0.5))",
                      "MULTILINESTRING((0 0, 2 0.1), (2 0.1, 4 0))"})),
    alsoNamed("ST_LinesCutAtNodes",
              pureFunction("LinesCutAtNodes", cutting, Arity::exactly(2), engine::linesCutAtNodes,
                           {"LinesCutAtNodes(lines, points)", "The lines cut where the points lie on them.",
                            "AsText(LinesCutAtNodes(GeomFromText('LINESTRING(0 0,4 0)'), MakePoint(1, 0)))",
                            "MULTILINESTRING((0 0, 1 0), (1 0, 4 0))"})),
    alsoNamed("ST_RingsCutAtNodes",
              pureFunction("RingsCutAtNodes", cutting, Arity::exactly(1), engine::ringsCutAtNodes,
                           {"RingsCutAtNodes(obj)",
                            "The borders of areas cut where three or more of their pieces meet, every piece "
                            "once.",
                            "NumGeometries(RingsCutAtNodes(Collect(BuildMbr(0, 0, 2, 2), BuildMbr(2, 0, 4, "
                            "2))))",
                            "3"})),
    pureFunction("ST_Subdivide", cutting, Arity::between(1, 2), engine::subdivide,
                 {"ST_Subdivide(obj [, positions])",
                  "The same object in pieces of at most so many positions, 128 without a number.",
                  "NumGeometries(ST_Subdivide(BuildMbr(0, 0, 4, 4), 5))", "1"}),
    alsoNamed(
        "ST_CollectionExtract",
        pureFunction("CollectionExtract", parts, Arity::exactly(2), engine::collectionExtract,
                     {"CollectionExtract(obj, kind)",
                      "All points (1), lines (2) or polygons (3) of an object, as a multi-part one.",
                      "AsText(CollectionExtract(GeomFromText('GEOMETRYCOLLECTION(POINT(1 2),LINESTRING(0 "
                      "0,1 1))'), 2))",
                      "MULTILINESTRING((0 0, 1 1))"})),
    pureFunction("ExtractMultiPoint", parts, Arity::exactly(1), engine::extractMultiPoint,
                 {"ExtractMultiPoint(obj)", "All points of an object.",
                  "AsText(ExtractMultiPoint(MakePoint(1, 2)))", "MULTIPOINT(1 2)"}),
    pureFunction("ExtractMultiLinestring", parts, Arity::exactly(1), engine::extractMultiLinestring,
                 {"ExtractMultiLinestring(obj)", "All lines of an object, without borders.",
                  "AsText(ExtractMultiLinestring(GeomFromText('LINESTRING(0 0,1 1)')))",
                  "MULTILINESTRING((0 0, 1 1))"}),
    pureFunction("ExtractMultiPolygon", parts, Arity::exactly(1), engine::extractMultiPolygon,
                 {"ExtractMultiPolygon(obj)", "All areas of an object.",
                  "AsText(ExtractMultiPolygon(BuildMbr(0, 0, 1, 1)))",
                  "MULTIPOLYGON(((0 0, 1 0, 1 1, 0 1, 0 0)))"}),
    alsoNamed("ST_LinesFromRings",
              pureFunction("LinesFromRings", parts, Arity::between(1, 2), engine::linesFromRings,
                           {"LinesFromRings(obj [, multi])",
                            "The rings of areas as lines; with a number other than 0 a single one is a "
                            "multi-part object, too.",
                            "AsText(LinesFromRings(BuildMbr(0, 0, 1, 1)))",
                            "LINESTRING(0 0, 1 0, 1 1, 0 1, 0 0)"})),
    alsoNamed(
        "ST_DissolveSegments",
        pureFunction("DissolveSegments", parts, Arity::exactly(1), engine::dissolveSegments,
                     {"DissolveSegments(obj)", "Every segment of lines and borders as a line of its own.",
                      "AsText(DissolveSegments(GeomFromText('LINESTRING(0 0,1 1,2 1)')))",
                      "MULTILINESTRING((0 0, 1 1), (1 1, 2 1))"})),
    alsoNamed("ST_DissolvePoints",
              pureFunction("DissolvePoints", parts, Arity::exactly(1), engine::dissolvePoints,
                           {"DissolvePoints(obj)", "Every position of an object as a point.",
                            "AsText(DissolvePoints(GeomFromText('LINESTRING(0 0,1 1,2 1)')))",
                            "MULTIPOINT(0 0, 1 1, 2 1)"})),
    alsoNamed("ST_Collect",
              pureFunction("Collect", parts, Arity::exactly(2), engine::collectTwo,
                           {"Collect(a, b)", "The parts of both objects as those of one.",
                            "AsText(Collect(MakePoint(1, 2), MakePoint(3, 4)))", "MULTIPOINT(1 2, 3 4)"})),
    pureFunction(
        "MakeLine", parts, Arity::exactly(2), engine::makeLineOfTwo,
        {"MakeLine(a, b)",
         "The line through the positions of two objects of points or lines; with a whole number in the "
         "place of b through those of a, backwards for 0.",
         "AsText(MakeLine(MakePoint(1, 2), MakePoint(3, 4)))", "LINESTRING(1 2, 3 4)"}),
};

} // namespace

std::span<const FunctionRecord> overlayRecords() {
    return records;
}

} // namespace orvane::adaptor
