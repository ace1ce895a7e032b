#include "host/adaptor/functions/ScalarRecord.h"

#include <orvane/engine/functions/Geometry.h>
#include <orvane/engine/functions/GeometryDistances.h>

namespace orvane::adaptor {

namespace {

constexpr const char* measures = "Measures";
constexpr const char* distances = "Distances";
constexpr const char* directions = "Directions and arcs";

const FunctionRecord records[] = {
    alsoNamed(
        {"ST_Area", "Area"},
        pureFunction("ObjectArea", measures, Arity::between(1, 2), engine::area,
                     {"Area(obj [, units])",
                      "The area: on the ellipsoid for geographic systems, else in the plane; square metres "
                      "without units.",
                      "RoundBy(ObjectArea(GeomFromText('POLYGON((0 0,1 0,1 1,0 1,0 0))', 4326), 'sq km'), 3)",
                      "12308.778"})),
    pureFunction("SphericalArea", measures, Arity::between(1, 2), engine::sphericalArea,
                 {"SphericalArea(obj [, units])",
                  "The area on the ellipsoid of the object's coordinate system.",
                  "RoundBy(SphericalArea(GeomFromText('POLYGON((0 0,1 0,1 1,0 1,0 0))', 4326), 'ha'), 1)",
                  "1230877.8"}),
    pureFunction("CartesianArea", measures, Arity::between(1, 2), engine::cartesianArea,
                 {"CartesianArea(obj [, units])", "The area in the plane of the coordinates.",
                  "CartesianArea(GeomFromText('POLYGON((0 0,4 0,4 3,0 3,0 0))'), '')", "12"}),
    alsoNamed(
        {"ST_Perimeter", "Perimeter"},
        pureFunction("ObjectPerimeter", measures, Arity::between(1, 2), engine::perimeter,
                     {"Perimeter(obj [, units])",
                      "The length of the borders of areas: on the ellipsoid for geographic systems, else in "
                      "the plane.",
                      "ObjectPerimeter(GeomFromText('POLYGON((0 0,4 0,4 3,0 3,0 0))', 3857), 'm')", "14"})),
    pureFunction(
        "SphericalPerimeter", measures, Arity::between(1, 2), engine::sphericalPerimeter,
        {"SphericalPerimeter(obj [, units])", "The length of the borders of areas on the ellipsoid.",
         "RoundBy(SphericalPerimeter(GeomFromText('POLYGON((0 0,1 0,1 1,0 1,0 0))', 4326), 'km'), 3)",
         "443.771"}),
    pureFunction("CartesianPerimeter", measures, Arity::between(1, 2), engine::cartesianPerimeter,
                 {"CartesianPerimeter(obj [, units])", "The length of the borders of areas in the plane.",
                  "CartesianPerimeter(GeomFromText('POLYGON((0 0,4 0,4 3,0 3,0 0))'), 'cm')", "1400"}),
    alsoNamed(
        {"GLength", "ST_Length"},
        pureFunction(
            "ObjectLen", measures, Arity::between(1, 2), engine::objectLen,
            {"ObjectLen(obj [, units])",
             "The length of lines: on the ellipsoid for geographic systems, else in the plane; metres "
             "without units.",
             "RoundBy(ObjectLen(GeomFromText('LINESTRING(0 0,0 1)', 4326), 'nautical mi'), 3)", "59.705"})),
    pureFunction("SphericalObjectLen", measures, Arity::between(1, 2), engine::sphericalObjectLen,
                 {"SphericalObjectLen(obj [, units])", "The length of lines on the ellipsoid.",
                  "RoundBy(SphericalObjectLen(GeomFromText('LINESTRING(0 0,1 0)', 4326), 'm'), 3)",
                  "111319.491"}),
    pureFunction("CartesianObjectLen", measures, Arity::between(1, 2), engine::cartesianObjectLen,
                 {"CartesianObjectLen(obj [, units])", "The length of lines in the plane of the coordinates.",
                  "CartesianObjectLen(GeomFromText('LINESTRING(0 0,3 4)'), '')", "5"}),
    pureFunction(
        "SphericalObjectDistance", distances, Arity::between(2, 3), engine::sphericalObjectDistance,
        {"SphericalObjectDistance(a, b [, units])",
         "The shortest way between two objects on the ellipsoid, 0 when they meet; -1 when there is none.",
         "RoundBy(SphericalObjectDistance(MakePoint(37.62, 55.75, 4326), MakePoint(30.31, 59.94, 4326), "
         "'km'), "
         "2)",
         "636.66"}),
    pureFunction(
        "CartesianObjectDistance", distances, Arity::between(2, 3), engine::cartesianObjectDistance,
        {"CartesianObjectDistance(a, b [, units])",
         "The shortest way between two objects in the plane, 0 when they meet; -1 when there is none.",
         "CartesianObjectDistance(MakePoint(0, 0), MakePoint(3, 4), '')", "5"}),
    alsoNamed("ST_Distance",
              pureFunction(
                  "Distance", distances, Arity::between(2, 3), engine::objectDistance,
                  {"Distance(a, b [, units])",
                   "The shortest way between two objects: on the ellipsoid where the first one's system is "
                   "geographic, "
                   "else in its plane; metres without units, NULL for an empty object. A condition on it "
                   "uses the spatial index.",
                   "RoundBy(Distance(MakePoint(37.62, 55.75, 4326), MakePoint(30.31, 59.94, 4326), 'km'), 2)",
                   "636.66"})),
    alsoNamed(
        {"PtDistWithin", "ST_DWithin"},
        pureFunction("WithinDistance", distances, Arity::between(3, 4), engine::withinDistance,
                     {"WithinDistance(a, b, distance [, units])",
                      "1 when the distance of two objects is at most a number; NULL for an empty object.",
                      "WithinDistance(MakePoint(0, 0, 4326), MakePoint(0, 1, 4326), 111, 'km')", "1"})),
    pureFunction("Nearness", distances, Arity::exactly(5), engine::nearness,
                 {"Nearness(obj, distance, units, kind, isFirst)",
                  "What IsNear compares an object with, NULL where the object or the distance is NULL; "
                  "translation makes it of a condition on a distance.",
                  "Nearness(NULL, 1, 'km', 0, 0)", "NULL"}),
    pureFunction(
        "IsNear", distances, Arity::exactly(2), engine::isNear,
        {"IsNear(obj, nearness)",
         "The part of a condition on a distance that a scan looks up in the spatial index; else 1, or NULL.",
         "IsNear(MakePoint(1, 2), NULL)", "NULL"}),
    alsoNamed(
        "ST_MaxDistance",
        pureFunction("MaxDistance", distances, Arity::between(2, 3), engine::maxDistance,
                     {"MaxDistance(a, b [, units])",
                      "The longest way between a position of one object and one of the other: on the "
                      "ellipsoid for geographic systems, else in the plane; metres without units. NULL where "
                      "one is empty.",
                      "RoundBy(MaxDistance(MakePoint(0, 0, 4326), GeomFromText('LINESTRING(0 1,0 2)', "
                      "4326), 'km'), 3)",
                      "221.149"})),
    alsoNamed(
        "ST_HausdorffDistance",
        pureFunction(
            "HausdorffDistance", distances, Arity::between(2, 4), engine::hausdorffDistance,
            {"HausdorffDistance(a, b [, part] [, units])",
             "How far the vertices of one object are from the other at the most, whichever is farther; "
             "with a part between 0 and 1 also positions on the edges, at so much of their length from "
             "each other. NULL where one is empty.",
             "HausdorffDistance(GeomFromText('LINESTRING(0 0,2 0)'), GeomFromText('LINESTRING(0 1,2 3)'))",
             "3"})),
    alsoNamed(
        "ST_FrechetDistance",
        pureFunction(
            "FrechetDistance", distances, Arity::between(2, 3), engine::frechetDistance,
            {"FrechetDistance(a, b [, units])",
             "The shortest leash for two that walk along the vertices of the two objects and never turn "
             "back. NULL where one is empty.",
             "FrechetDistance(GeomFromText('LINESTRING(0 0,5 0,10 0)'), GeomFromText('LINESTRING(0 "
             "1,5 4,10 1)'))",
             "4"})),
    alsoNamed(
        "ST_ShortestLine",
        pureFunction("ShortestLine", distances, Arity::exactly(2), engine::shortestLine,
                     {"ShortestLine(a, b)",
                      "The line from the one object to the other that Distance measures; twice the same "
                      "position where they meet, NULL where one is empty.",
                      "AsText(ShortestLine(MakePoint(1, 1), GeomFromText('LINESTRING(0 0,4 0)')))",
                      "LINESTRING(1 1, 1 0)"})),
    alsoNamed(
        "ST_ClosestPoint",
        pureFunction("ClosestPoint", distances, Arity::exactly(2), engine::closestPoint,
                     {"ClosestPoint(a, b)",
                      "The position of the first object that is nearest to the second; NULL where one is "
                      "empty.",
                      "AsText(ClosestPoint(GeomFromText('LINESTRING(0 0,4 0)'), MakePoint(1, 1)))",
                      "POINT(1 0)"})),
    pureFunction("ST_3DDistance", distances, Arity::between(2, 3), engine::distanceInSpace,
                 {"ST_3DDistance(a, b [, units])",
                  "The shortest straight way in space, z being the height above the ellipsoid in metres for "
                  "geographic systems, else in units of the plane. NULL where one is empty.",
                  "ST_3DDistance(MakePointZ(0, 0, 0), MakePointZ(2, 3, 6))", "7"}),
    pureFunction(
        "ST_3DMaxDistance", distances, Arity::between(2, 3), engine::maxDistanceInSpace,
        {"ST_3DMaxDistance(a, b [, units])",
         "The longest straight way in space between vertices of the two objects. NULL where one is empty.",
         "ST_3DMaxDistance(MakePointZ(0, 0, 0), GeomFromText('LINESTRINGZ(0 0 1,2 3 6)'))", "7"}),
    pureFunction("ST_3dLength", distances, Arity::between(1, 2), engine::lengthInSpace,
                 {"ST_3dLength(line [, units])", "The length of lines with the slope that z gives each edge.",
                  "ST_3dLength(GeomFromText('LINESTRINGZ(0 0 0,3 0 4)'))", "5"}),
    alsoNamed(
        "ST_Azimuth",
        pureFunction("Azimuth", directions, Arity::exactly(2), engine::azimuth,
                     {"Azimuth(point, point)",
                      "The direction from the first point to the second in radians, clockwise from north: "
                      "of the geodesic for geographic systems. NULL where they are one position.",
                      "RoundBy(Degrees(Azimuth(MakePoint(37.62, 55.75, 4326), MakePoint(30.31, 59.94, "
                      "4326))), 2)",
                      "320.12"})),
    alsoNamed(
        "ST_Project",
        pureFunction("Project", directions, Arity::between(3, 4), engine::project,
                     {"Project(point, distance, azimuth [, units])",
                      "The point a distance away in a direction, radians clockwise from north: along the "
                      "geodesic for geographic systems; metres without units.",
                      "AsText(Project(MakePoint(0, 0, 4326), 1000, Radians(90), 'km'))",
                      "POINT(8.983153 0)"})),
    pureFunction("GreatCircleLength", directions, Arity::between(1, 2), engine::greatCircleLength,
                 {"GreatCircleLength(obj [, units])",
                  "The length of lines and borders along great circles of a sphere with the ellipsoid's mean "
                  "radius.",
                  "RoundBy(GreatCircleLength(GeomFromText('LINESTRING(0 0,1 0)', 4326), 'km'), 3)",
                  "111.195"}),
    pureFunction("GeodesicLength", directions, Arity::between(1, 2), engine::geodesicLength,
                 {"GeodesicLength(obj [, units])", "The length of lines and borders on the ellipsoid.",
                  "RoundBy(GeodesicLength(GeomFromText('LINESTRING(0 0,1 0)', 4326), 'km'), 3)", "111.319"}),
    pureFunction("GeodesicArcLength", directions, Arity::between(2, 3), engine::geodesicArcLength,
                 {"GeodesicArcLength(point, point [, units])",
                  "The length of the geodesic between two points; NULL where one is empty.",
                  "RoundBy(GeodesicArcLength(MakePoint(0, 0, 4326), MakePoint(1, 0, 4326), 'km'), 3)",
                  "111.319"}),
    pureFunction(
        "GeodesicChordLength", directions, Arity::between(2, 3), engine::geodesicChordLength,
        {"GeodesicChordLength(point, point [, units])",
         "The straight way through the Earth between two points, their geodesic being an arc with the "
         "ellipsoid's mean radius; NULL where one is empty.",
         "RoundBy(GeodesicChordLength(MakePoint(0, 0, 4326), MakePoint(90, 0, 4326), 'km'), 1)", "9017.9"}),
    pureFunction("GeodesicArcHeight", directions, Arity::between(2, 3), engine::geodesicArcHeight,
                 {"GeodesicArcHeight(point, point [, units])",
                  "How high the Earth bulges over the chord between two points; NULL where one is empty.",
                  "RoundBy(GeodesicArcHeight(MakePoint(0, 0, 4326), MakePoint(1, 0, 4326), 'm'), 1)",
                  "243.1"}),
    pureFunction("GeodesicArcArea", directions, Arity::between(2, 3), engine::geodesicArcArea,
                 {"GeodesicArcArea(point, point [, units])",
                  "The area between the chord of two points and their geodesic; NULL where one is empty.",
                  "RoundBy(GeodesicArcArea(MakePoint(0, 0, 4326), MakePoint(1, 0, 4326), 'sq km'), 2)",
                  "18.04"}),
    pureFunction(
        "GeodesicCentralAngle", directions, Arity::between(2, 3), engine::geodesicCentralAngle,
        {"GeodesicCentralAngle(point, point [, isRadians])",
         "The angle between two points at the centre of the Earth, in radians, or in degrees with 0; "
         "NULL where one is empty.",
         "RoundBy(GeodesicCentralAngle(MakePoint(0, 0, 4326), MakePoint(90, 0, 4326), 0), 2)", "90.1"}),
};

} // namespace

std::span<const FunctionRecord> measureRecords() {
    return records;
}

} // namespace orvane::adaptor
