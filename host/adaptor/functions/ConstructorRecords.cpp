#include "host/adaptor/functions/ScalarRecord.h"

#include <orvane/engine/functions/GeometryConstructors.h>

namespace orvane::adaptor {

namespace {

constexpr const char* numbers = "Geometries of numbers";

const FunctionRecord records[] = {
    alsoNamed(
        "ST_Point",
        pureFunction("MakePoint", numbers, Arity::between(2, 3), engine::makePoint,
                     {"MakePoint(x, y [, system])",
                      "A point; the system is an EPSG code or a text as RetrieveCS gives it, 0 for none.",
                      "AsText(MakePoint(30.5, 60, 4326))", "POINT(30.5 60)"})),
    pureFunction("MakePointZ", numbers, Arity::between(3, 4), engine::makePointZ,
                 {"MakePointZ(x, y, z [, system])", "A point with a height.", "AsText(MakePointZ(1, 2, 3))",
                  "POINT Z(1 2 3)"}),
    pureFunction("MakePointM", numbers, Arity::between(3, 4), engine::makePointM,
                 {"MakePointM(x, y, m [, system])", "A point with a measure.", "AsText(MakePointM(1, 2, 3))",
                  "POINT M(1 2 3)"}),
    pureFunction("MakePointZM", numbers, Arity::between(4, 5), engine::makePointZM,
                 {"MakePointZM(x, y, z, m [, system])", "A point with a height and a measure.",
                  "AsText(MakePointZM(1, 2, 3, 4))", "POINT ZM(1 2 3 4)"}),
    pureFunction("BuildMbr", numbers, Arity::between(4, 5), engine::buildMbr,
                 {"BuildMbr(x1, y1, x2, y2 [, system])", "The rectangle between two corners.",
                  "AsText(BuildMbr(0, 0, 2, 1))", "POLYGON((0 0, 2 0, 2 1, 0 1, 0 0))"}),
    pureFunction("BuildCircleMbr", numbers, Arity::between(3, 4), engine::buildCircleMbr,
                 {"BuildCircleMbr(x, y, radius [, system])", "The square around a circle.",
                  "AsText(BuildCircleMbr(0, 0, 1))", "POLYGON((-1 -1, 1 -1, 1 1, -1 1, -1 -1))"}),
    pureFunction("MakeCircle", numbers, Arity::between(3, 5), engine::makeCircle,
                 {"MakeCircle(x, y, radius [, system [, step]])",
                  "A circle in the plane of the coordinates as a closed line, with a position every so many "
                  "degrees, 10 without a step. For a distance in metres see Buffer.",
                  "AsText(MakeCircle(0, 0, 2, 0, 90))", "LINESTRING(2 0, 0 2, -2 0, 0 -2, 2 0)"}),
    pureFunction("MakeEllipse", numbers, Arity::between(4, 6), engine::makeEllipse,
                 {"MakeEllipse(x, y, radiusX, radiusY [, system [, step]])", "An ellipse likewise.",
                  "AsText(MakeEllipse(0, 0, 2, 1, 0, 90))", "LINESTRING(2 0, 0 1, -2 0, 0 -1, 2 0)"}),
    pureFunction("MakeArc", numbers, Arity::between(5, 7), engine::makeArc,
                 {"MakeArc(x, y, radius, begin, end [, system [, step]])",
                  "The arc between two angles in degrees anticlockwise from x, as a line.",
                  "AsText(MakeArc(0, 0, 2, 0, 180, 0, 90))", "LINESTRING(2 0, 0 2, -2 0)"}),
    pureFunction("MakeEllipticArc", numbers, Arity::between(6, 8), engine::makeEllipticArc,
                 {"MakeEllipticArc(x, y, radiusX, radiusY, begin, end [, system [, step]])",
                  "The arc of an ellipse likewise.", "AsText(MakeEllipticArc(0, 0, 2, 1, 0, 180, 0, 90))",
                  "LINESTRING(2 0, 0 1, -2 0)"}),
    pureFunction("MakeCircularSector", numbers, Arity::between(5, 7), engine::makeCircularSector,
                 {"MakeCircularSector(x, y, radius, begin, end [, system [, step]])",
                  "The area between an arc and its centre.",
                  "AsText(MakeCircularSector(0, 0, 2, 0, 90, 0, 90))", "POLYGON((0 0, 2 0, 0 2, 0 0))"}),
    pureFunction("MakeEllipticSector", numbers, Arity::between(6, 8), engine::makeEllipticSector,
                 {"MakeEllipticSector(x, y, radiusX, radiusY, begin, end [, system [, step]])",
                  "The area between an arc of an ellipse and its centre.",
                  "AsText(MakeEllipticSector(0, 0, 2, 1, 0, 90, 0, 90))", "POLYGON((0 0, 2 0, 0 1, 0 0))"}),
    pureFunction("MakeCircularStripe", numbers, Arity::between(6, 8), engine::makeCircularStripe,
                 {"MakeCircularStripe(x, y, radius1, radius2, begin, end [, system [, step]])",
                  "The area between two arcs about one centre.",
                  "AsText(MakeCircularStripe(0, 0, 1, 2, 0, 90, 0, 90))",
                  "POLYGON((1 0, 0 1, 0 2, 2 0, 1 0))"}),
};

} // namespace

std::span<const FunctionRecord> constructorRecords() {
    return records;
}

} // namespace orvane::adaptor
