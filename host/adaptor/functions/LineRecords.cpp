#include "host/adaptor/functions/ScalarRecord.h"

#include <orvane/engine/functions/GeometryLines.h>

namespace orvane::adaptor {

namespace {

constexpr const char* lines = "Along lines";

const FunctionRecord records[] = {
    alsoNamed(
        "ST_Line_Interpolate_Point",
        pureFunction(
            "Line_Interpolate_Point", lines, Arity::exactly(2), engine::lineInterpolatePoint,
            {"Line_Interpolate_Point(line, share)",
             "The point at a share of the length of the line, 0 to 1: along geodesics for geographic "
             "systems. NULL of an empty line.",
             "AsText(Line_Interpolate_Point(GeomFromText('LINESTRING(0 0,4 0,4 4)'), 0.75))", "POINT(4 2)"})),
    alsoNamed("ST_Line_Interpolate_Equidistant_Points",
              pureFunction(
                  "Line_Interpolate_Equidistant_Points", lines, Arity::between(2, 3),
                  engine::lineInterpolateEquidistantPoints,
                  {"Line_Interpolate_Equidistant_Points(line, distance [, units])",
                   "Points along the line, each a distance behind the one before, with the way so far as m; "
                   "metres without units. NULL where the line is shorter.",
                   "AsText(Line_Interpolate_Equidistant_Points(GeomFromText('LINESTRING(0 0,5 0)'), 2))",
                   "MULTIPOINT M(2 0 2, 4 0 4)"})),
    alsoNamed(
        "ST_Line_Locate_Point",
        pureFunction("Line_Locate_Point", lines, Arity::exactly(2), engine::lineLocatePoint,
                     {"Line_Locate_Point(line, point)",
                      "At which share of the length of the line, 0 to 1, it is nearest to the point. NULL "
                      "where one is empty.",
                      "Line_Locate_Point(GeomFromText('LINESTRING(0 0,4 0)'), MakePoint(1, 1))", "0.25"})),
    alsoNamed(
        "ST_Line_Substring",
        pureFunction("Line_Substring", lines, Arity::exactly(3), engine::lineSubstring,
                     {"Line_Substring(line, share, share)",
                      "The part of the line between two shares of its length, 0 to 1; a point when they are "
                      "the same. NULL of an empty line.",
                      "AsText(Line_Substring(GeomFromText('LINESTRING(0 0,4 0,4 4)'), 0.25, 0.75))",
                      "LINESTRING(2 0, 4 0, 4 2)"})),
    alsoNamed("ST_Locate_Along_Measure",
              pureFunction("ST_LocateAlong", lines, Arity::exactly(2), engine::locateAlong,
                           {"ST_LocateAlong(line, m)", "Where m has a value; NULL where it has it nowhere.",
                            "AsText(ST_LocateAlong(GeomFromText('LINESTRINGM(0 0 0,10 0 100)'), 25))",
                            "MULTIPOINT M(2.5 0 25)"})),
    alsoNamed(
        "ST_Locate_Between_Measures",
        pureFunction("ST_LocateBetween", lines, Arity::exactly(3), engine::locateBetween,
                     {"ST_LocateBetween(line, m, m)",
                      "The parts of the line where m lies between two values; NULL where there are none.",
                      "AsText(ST_LocateBetween(GeomFromText('LINESTRINGM(0 0 0,10 0 100)'), 20, 50))",
                      "MULTILINESTRING M((2 0 20, 5 0 50))"})),
    pureFunction("ST_InterpolatePoint", lines, Arity::exactly(2), engine::interpolateM,
                 {"ST_InterpolatePoint(line, point)",
                  "m where the line is nearest to the point. NULL where one is empty.",
                  "ST_InterpolatePoint(GeomFromText('LINESTRINGM(0 0 0,10 0 100)'), MakePoint(2, 3))", "20"}),
    alsoNamed("IsValidTrajectory",
              pureFunction("ST_IsValidTrajectory", lines, Arity::exactly(1), engine::isValidTrajectory,
                           {"ST_IsValidTrajectory(obj)",
                            "1 for a line whose m grows from vertex to vertex, 0 for other objects.",
                            "ST_IsValidTrajectory(GeomFromText('LINESTRINGM(0 0 0,10 0 100)'))", "1"})),
    alsoNamed("TrajectoryInterpolatePoint",
              pureFunction(
                  "ST_TrajectoryInterpolatePoint", lines, Arity::exactly(2),
                  engine::trajectoryInterpolatePoint,
                  {"ST_TrajectoryInterpolatePoint(line, m)",
                   "The point of a line with growing m where m has a value; NULL where it has it nowhere.",
                   "AsText(ST_TrajectoryInterpolatePoint(GeomFromText('LINESTRINGM(0 0 0,10 0 100)'), 25))",
                   "POINT M(2.5 0 25)"})),
    alsoNamed("ST_LinestringMinSegmentLength",
              pureFunction("LinestringMinSegmentLength", lines, Arity::between(1, 3),
                           engine::minSegmentLength,
                           {"LinestringMinSegmentLength(line [, leavesOutEmpty [, units]])",
                            "The length of the shortest edge; those without length count only with 0. NULL "
                            "without edges.",
                            "LinestringMinSegmentLength(GeomFromText('LINESTRING(0 0,3 4,3 5)'))", "1"})),
    alsoNamed("ST_LinestringMaxSegmentLength",
              pureFunction("LinestringMaxSegmentLength", lines, Arity::between(1, 3),
                           engine::maxSegmentLength,
                           {"LinestringMaxSegmentLength(line [, leavesOutEmpty [, units]])",
                            "The length of the longest edge. NULL without edges.",
                            "LinestringMaxSegmentLength(GeomFromText('LINESTRING(0 0,3 4,3 5)'))", "5"})),
    alsoNamed(
        "ST_LinestringAvgSegmentLength",
        pureFunction("LinestringAvgSegmentLength", lines, Arity::between(1, 3), engine::avgSegmentLength,
                     {"LinestringAvgSegmentLength(line [, leavesOutEmpty [, units]])",
                      "The mean length of the edges; those without length count only with 0. NULL without "
                      "edges.",
                      "LinestringAvgSegmentLength(GeomFromText('LINESTRING(0 0,3 4,3 5)'))", "3"})),
    alsoNamed(
        "ST_CurvosityIndex",
        pureFunction("CurvosityIndex", lines, Arity::between(1, 2), engine::curvosityIndex,
                     {"CurvosityIndex(line [, places])",
                      "The straight way from end to end, by so many places on the line, as a share of its "
                      "length: 1 for a straight line. NULL for a line without length.",
                      "RoundBy(CurvosityIndex(GeomFromText('LINESTRING(0 0,3 4,6 0)')), 2)", "0.6"})),
    alsoNamed(
        "ST_UphillHeight",
        pureFunction("UphillHeight", lines, Arity::exactly(1), engine::uphillHeight,
                     {"UphillHeight(line)", "By how much z rises along the line. NULL of an empty line.",
                      "UphillHeight(GeomFromText('LINESTRINGZ(0 0 1,1 0 5,2 0 3)'))", "4"})),
    alsoNamed(
        "ST_DownhillHeight",
        pureFunction("DownhillHeight", lines, Arity::exactly(1), engine::downhillHeight,
                     {"DownhillHeight(line)", "By how much z falls along the line. NULL of an empty line.",
                      "DownhillHeight(GeomFromText('LINESTRINGZ(0 0 1,1 0 5,2 0 3)'))", "2"})),
    alsoNamed("ST_UpDownHeight",
              pureFunction("UpDownHeight", lines, Arity::exactly(1), engine::upDownHeight,
                           {"UpDownHeight(line)",
                            "By how much z rises and falls along the line together. NULL of an empty line.",
                            "UpDownHeight(GeomFromText('LINESTRINGZ(0 0 1,1 0 5,2 0 3)'))", "6"})),
    alsoNamed(
        "ST_Circularity",
        pureFunction("Circularity", lines, Arity::exactly(1), engine::circularity,
                     {"Circularity(obj)",
                      "The area of the object as a share of that of a circle with as long a border: 1 for "
                      "circles. NULL without a border.",
                      "RoundBy(Circularity(BuildMbr(0, 0, 2, 2)), 4)", "0.7854"})),
};

} // namespace

std::span<const FunctionRecord> lineRecords() {
    return records;
}

} // namespace orvane::adaptor
