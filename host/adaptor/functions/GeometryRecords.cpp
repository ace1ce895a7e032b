#include "host/adaptor/functions/ScalarRecord.h"

#include <orvane/engine/functions/Geometry.h>

namespace orvane::adaptor {

namespace {

constexpr const char* relations = "Relations";
constexpr const char* geometries = "Geometries";
constexpr const char* systems = "Coordinate systems";
constexpr const char* aggregates = "Geometry aggregates";

const FunctionRecord records[] = {
    pureFunction("CentroidX", geometries, Arity::exactly(1), engine::centroidX,
                 {"CentroidX(obj)", "The x coordinate of the centre of mass; NULL for an empty object.",
                  "CentroidX(GeomFromText('POLYGON((0 0,4 0,4 2,0 2,0 0))'))", "2"}),
    pureFunction("CentroidY", geometries, Arity::exactly(1), engine::centroidY,
                 {"CentroidY(obj)", "The y coordinate of the centre of mass; NULL for an empty object.",
                  "CentroidY(GeomFromText('POLYGON((0 0,4 0,4 2,0 2,0 0))'))", "1"}),
    pureFunction("ContainsCentroid", relations, Arity::exactly(2), engine::containsCentroid,
                 {"a Contains b", "1 when the centre of mass of b lies inside a.",
                  "ContainsCentroid(GeomFromText('POLYGON((0 0,4 0,4 4,0 4,0 0))'), MakePoint(1, 1))", "1"}),
    pureFunction("CentroidWithin", relations, Arity::exactly(2), engine::centroidWithin,
                 {"a Within b", "1 when the centre of mass of a lies inside b.",
                  "CentroidWithin(MakePoint(5, 1), GeomFromText('POLYGON((0 0,4 0,4 4,0 4,0 0))'))", "0"}),
    alsoNamed("Intersects",
              pureFunction("ST_Intersects", relations, Arity::exactly(2), engine::intersects,
                           {"a Intersects b", "1 when the two objects share a position, borders included.",
                            "ST_Intersects(MakePoint(0, 0), GeomFromText('LINESTRING(0 0,1 1)'))", "1"})),
    pureFunction(
        "MayMeet", relations, Arity::exactly(2), engine::mayMeet,
        {"MayMeet(a, b)",
         "The part of a relation that a scan of the table of a looks up in the spatial index; else 1.",
         "MayMeet(MakePoint(0, 0), MakePoint(5, 5))", "1"}),
    alsoNamed(
        "ContainsEntirely",
        pureFunction("ST_Contains", relations, Arity::exactly(2), engine::containsEntirely,
                     {"a Contains Entire b", "1 when no part of b is outside a.",
                      "ST_Contains(GeomFromText('POLYGON((0 0,4 0,4 4,0 4,0 0))'), MakePoint(1, 1))", "1"})),
    alsoNamed(
        "EntirelyWithin",
        pureFunction("ST_Within", relations, Arity::exactly(2), engine::entirelyWithin,
                     {"a Entirely Within b", "1 when no part of a is outside b.",
                      "ST_Within(MakePoint(4, 1), GeomFromText('POLYGON((0 0,4 0,4 4,0 4,0 0))'))", "0"})),
    pureFunction("Contains", relations, Arity::exactly(2), engine::containsEntirely,
                 {"Contains(a, b)", "The same as ST_Contains, for queries of SQLite.",
                  "ST_Contains(BuildMbr(0, 0, 4, 4), MakePoint(5, 1))", "0"}),
    pureFunction("Within", relations, Arity::exactly(2), engine::entirelyWithin,
                 {"Within(a, b)", "The same as ST_Within, for queries of SQLite.",
                  "ST_Within(MakePoint(5, 1), BuildMbr(0, 0, 4, 4))", "0"}),
    alsoNamed("ST_Disjoint", pureFunction("Disjoint", relations, Arity::exactly(2), engine::disjoint,
                                          {"Disjoint(a, b)", "1 when the two objects share no position.",
                                           "Disjoint(MakePoint(1, 1), MakePoint(1, 2))", "1"})),
    alsoNamed("ST_Covers",
              pureFunction("Covers", relations, Arity::exactly(2), engine::covers,
                           {"Covers(a, b)", "1 when no part of b is outside a; b may lie on its border.",
                            "Covers(BuildMbr(0, 0, 4, 4), MakePoint(4, 1))", "1"})),
    alsoNamed("ST_CoveredBy",
              pureFunction("CoveredBy", relations, Arity::exactly(2), engine::coveredBy,
                           {"CoveredBy(a, b)", "1 when no part of a is outside b; a may lie on its border.",
                            "CoveredBy(MakePoint(4, 1), BuildMbr(0, 0, 4, 4))", "1"})),
    alsoNamed(
        "ST_Equals",
        pureFunction(
            "Equals", relations, Arity::exactly(2), engine::equals,
            {"Equals(a, b)", "1 when the two objects have the same positions, however they are written.",
             "Equals(GeomFromText('LINESTRING(0 0,2 2)'), GeomFromText('LINESTRING(2 2,1 1,0 0)'))", "1"})),
    alsoNamed("ST_Touches",
              pureFunction("Touches", relations, Arity::exactly(2), engine::touches,
                           {"Touches(a, b)", "1 when the two objects share positions of their borders only.",
                            "Touches(BuildMbr(0, 0, 1, 1), BuildMbr(1, 0, 2, 1))", "1"})),
    alsoNamed(
        "ST_Crosses",
        pureFunction("Crosses", relations, Arity::exactly(2), engine::crosses,
                     {"Crosses(a, b)",
                      "1 when the two objects cross: lines in points, a line and an area where the line goes "
                      "on outside.",
                      "Crosses(GeomFromText('LINESTRING(0 0,2 2)'), GeomFromText('LINESTRING(0 2,2 0)'))",
                      "1"})),
    alsoNamed(
        "ST_Overlaps",
        pureFunction(
            "Overlaps", relations, Arity::exactly(2), engine::overlaps,
            {"Overlaps(a, b)",
             "1 when two objects of one dimension share a part of it, and each goes on outside the other.",
             "Overlaps(BuildMbr(0, 0, 2, 2), BuildMbr(1, 1, 3, 3))", "1"})),
    alsoNamed("ST_Relate", pureFunction("Relate", relations, Arity::exactly(3), engine::matchesPattern,
                                        {"Relate(a, b, pattern)",
                                         "1 when the intersections of inside, border and outside of the two "
                                         "objects are as the pattern says; NULL for empty objects, "
                                         "collections of several kinds and other patterns.",
                                         "Relate(MakePoint(1, 1), BuildMbr(0, 0, 2, 2), 'T********')", "1"})),
    alsoNamed("ST_Relate",
              pureFunction("Relate", relations, Arity::exactly(2), engine::relationMatrix,
                           {"Relate(a, b)",
                            "The matrix of the intersections of inside, border and outside of the two "
                            "objects; NULL for empty objects and collections of several kinds.",
                            "Relate(MakePoint(1, 1), BuildMbr(0, 0, 2, 2))", "0FFFFF212"})),
    pureFunction("ST_RelateMatch", relations, Arity::exactly(2), engine::matrixMatches,
                 {"ST_RelateMatch(matrix, pattern)", "1 when a matrix of Relate is as the pattern says.",
                  "ST_RelateMatch('0FFFFF212', 'T*F**F***')", "1"}),
    pureFunction("MbrIntersects", relations, Arity::exactly(2), engine::envelopesIntersect,
                 {"MbrIntersects(a, b)", "1 when the bounding boxes of the two objects share a position.",
                  "MbrIntersects(BuildMbr(0, 0, 2, 2), MakePoint(2, 2))", "1"}),
    pureFunction("MbrDisjoint", relations, Arity::exactly(2), engine::envelopesDisjoint,
                 {"MbrDisjoint(a, b)", "1 when the bounding boxes of the two objects share no position.",
                  "MbrDisjoint(BuildMbr(0, 0, 2, 2), MakePoint(2, 2))", "0"}),
    pureFunction("MbrContains", relations, Arity::exactly(2), engine::envelopeContains,
                 {"MbrContains(a, b)", "1 when no part of the bounding box of b is outside that of a.",
                  "MbrContains(BuildMbr(0, 0, 2, 2), MakePoint(2, 2))", "1"}),
    pureFunction("MbrWithin", relations, Arity::exactly(2), engine::envelopeWithin,
                 {"MbrWithin(a, b)", "1 when no part of the bounding box of a is outside that of b.",
                  "MbrWithin(BuildMbr(0, 0, 2, 2), MakePoint(2, 2))", "0"}),
    pureFunction("MbrEqual", relations, Arity::exactly(2), engine::envelopesEqual,
                 {"MbrEqual(a, b)", "1 when the two objects have one bounding box.",
                  "MbrEqual(BuildMbr(0, 0, 2, 2), GeomFromText('LINESTRING(0 0,2 2)'))", "1"}),
    pureFunction("MbrTouches", relations, Arity::exactly(2), engine::envelopesTouch,
                 {"MbrTouches(a, b)",
                  "1 when the bounding boxes of the two objects share positions of their borders only.",
                  "MbrTouches(BuildMbr(0, 0, 2, 2), BuildMbr(2, 0, 3, 1))", "1"}),
    pureFunction("MbrOverlaps", relations, Arity::exactly(2), engine::envelopesOverlap,
                 {"MbrOverlaps(a, b)",
                  "1 when the bounding boxes of the two objects share more than borders, and each goes on "
                  "outside the other.",
                  "MbrOverlaps(BuildMbr(0, 0, 2, 2), BuildMbr(1, 1, 3, 3))", "1"}),
    alsoNamed("ST_EnvelopesIntersects",
              pureFunction("ST_EnvIntersects", relations, Arity::exactly(2), engine::envelopesIntersect,
                           {"ST_EnvIntersects(a, b)",
                            "1 when the bounding boxes of the two objects share a position.",
                            "ST_EnvIntersects(BuildMbr(0, 0, 2, 2), MakePoint(2, 2))", "1"})),
    alsoNamed("ST_EnvelopesIntersects",
              pureFunction("ST_EnvIntersects", relations, Arity::exactly(5), engine::envelopesIntersect,
                           {"ST_EnvIntersects(a, x1, y1, x2, y2)",
                            "1 when the bounding box of the object and the window between two corners share "
                            "a position; NULL where a corner is no number.",
                            "ST_EnvIntersects(BuildMbr(0, 0, 2, 2), 1, 1, 5, 5)", "1"})),
    alsoNamed("MakeValid",
              pureFunction(
                  "MakeValidGeo",
                  geometries, Arity::exactly(1), engine::makeGeoValid,
                  {"MakeValid(obj)", "The object without self-intersections, open rings or crossing rings.",
                   "AsText(FromOrvGeo(MakeValidGeo(GeomFromText('POLYGON((0 0,2 2,2 0,0 2,0 0))'))))",
                   "MULTIPOLYGON(((0 2, 1 1, 0 0, 0 2)), ((2 0, 1 1, 2 2, 2 0)))"})),
    pureFunction("Centroid", geometries, Arity::exactly(1), engine::centroid,
                 {"Centroid(obj)",
                  "A point that certainly lies on the object, near its middle; NULL for an empty object.",
                  "AsText(Centroid(GeomFromText('POLYGON((0 0,4 0,4 2,0 2,0 0))')))", "POINT(2 1)"}),
    environmentFunction("Resemblance", geometries, Arity::exactly(1), engine::resemblance,
                        {"Resemblance(obj)",
                         "The object that the plug-ins hold to resemble this one, else a copy.",
                         "AsText(FromOrvGeo(Resemblance(MakePoint(1, 2))))", "POINT(1 2)"}),
    pureFunction("ToOrvGeo", geometries, Arity::between(0, 2), engine::toOrvGeo,
                 {"ToOrvGeo(obj [, coordinate system])",
                  "The object in the engine's own form, with a coordinate system assigned if one is given.",
                  "RetrieveCS(ToOrvGeo(MakePoint(1, 2), 'epsg:3857'))", "epsg:3857"}),
    pureFunction("TransformToOrvGeo", geometries, Arity::between(0, 3), engine::transformToOrvGeo,
                 {"TransformToOrvGeo(obj, target [, default])",
                  "The object in another coordinate system, in the engine's own form; NULL where a system or "
                  "a position's image is missing.",
                  "RetrieveCS(TransformToOrvGeo(MakePoint(30, 60), 'epsg:3857', 'epsg:4326'))", "epsg:3857"}),
    pureFunction("TransformToSLGeo", geometries, Arity::between(0, 3), engine::transformToSLGeo,
                 {"TransformToSLGeo(obj, target [, default])",
                  "The object in another coordinate system, as a SpatiaLite geometry; NULL where a system or "
                  "a position's image is missing.",
                  "AsText(TransformToSLGeo(MakePoint(0, 0, 4326), 'epsg:32631'))", "POINT(166021.443081 0)"}),
    alsoNamed(
        "ST_Transform",
        pureFunction(
            "Transform",
            geometries, Arity::between(2, 3), engine::transform,
            {"Transform(obj, target [, default])",
             "The object in another coordinate system, which an EPSG code or a text such as epsg:3857 "
             "names; the default is that of an object without one. NULL where a position has no image.",
             "AsText(Transform(MakePoint(30, 60, 4326), 3857))", "POINT(3339584.723798 8399737.889818)"})),
    pureFunction("FromOrvGeo", geometries, Arity::exactly(1), engine::fromOrvGeo,
                 {"FromOrvGeo(obj)",
                  "The object as a SpatiaLite geometry, curves approximated; NULL where there is none, as "
                  "for an empty area.",
                  "AsText(FromOrvGeo(ToOrvGeo(MakePoint(1, 2))))", "POINT(1 2)"}),
    environmentFunction("RetrieveCS", systems, Arity::exactly(1), engine::retrieveCS,
                        {"RetrieveCS(obj or table name)",
                         "The coordinate system of an object or a table; NULL for none.",
                         "RetrieveCS(MakePoint(1, 2, 4326))", "epsg:4326"}),
    environmentFunction("RetrieveTableCS", systems, Arity::exactly(1), engine::retrieveTableCS,
                        {"RetrieveTableCS(table name)", "The coordinate system of a table; NULL for none.",
                         "RetrieveTableCS('no such table')", "NULL"}),
    alsoNamed("ST_Collect",
              aggregateFunction<engine::Collect>(
                  "Collect", aggregates, Arity::exactly(1),
                  {"Collect(obj)", "All objects as the parts of one, in the system of the first.",
                   "(Select AsText(Collect(p)) From (Select MakePoint(1, 2) As p Union All Select "
                   "MakePoint(3, 4)) t)",
                   "MULTIPOINT(1 2, 3 4)"})),
    alsoNamed("ST_Union",
              aggregateFunction<engine::Union>(
                  "GUnion", aggregates, Arity::exactly(1),
                  {"GUnion(obj)", "All that lies in one of the objects at least, in the system of the first.",
                   "(Select Area(GUnion(o)) From (Select BuildMbr(0, 0, 2, 2) As o Union All Select "
                   "BuildMbr(1, 0, 4, "
                   "2)) t)",
                   "8"})),
    aggregateFunction<engine::Extent>(
        "Extent", aggregates, Arity::exactly(1),
        {"Extent(obj)", "The bounding box of all objects, in the system of the first.",
         "(Select AsText(Extent(p)) From (Select MakePoint(1, 2) As p Union All Select MakePoint(3, 4)) t)",
         "POLYGON((1 2, 3 2, 3 4, 1 4, 1 2))"}),
    aggregateFunction<engine::MakeLine>(
        "MakeLine", aggregates, Arity::exactly(1),
        {"MakeLine(obj)", "The line through the positions of points and lines, in the order of the rows.",
         "(Select AsText(MakeLine(p)) From (Select MakePoint(1, 2) As p Union All Select MakePoint(3, 4)) t)",
         "LINESTRING(1 2, 3 4)"}),
    alsoNamed(
        "ST_Polygonize",
        aggregateFunction<engine::Polygonize>(
            "Polygonize", aggregates, Arity::exactly(1),
            {"Polygonize(obj)", "The areas that lines and borders enclose; lines have to meet in their ends.",
             "(Select ST_Area(Polygonize(l)) From (Select GeomFromText('LINESTRING(0 0,2 0,2 2)') As l Union "
             "All "
             "Select GeomFromText('LINESTRING(2 2,0 0)')) t)",
             "2"})),
};

} // namespace

std::span<const FunctionRecord> geometryRecords() {
    return records;
}

} // namespace orvane::adaptor
