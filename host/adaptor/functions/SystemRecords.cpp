#include "host/adaptor/functions/ScalarRecord.h"

#include <orvane/engine/functions/CoordSystems.h>

namespace orvane::adaptor {

namespace {

constexpr const char* systems = "Coordinate systems";

constexpr FunctionRecord records[] = {
    pureFunction("SridIsGeographic", systems, Arity::exactly(1), engine::systemIsGeographic,
                 {"SridIsGeographic(coordinate system)",
                  "1 when the positions of a coordinate system are longitudes and latitudes.",
                  "SridIsGeographic(4326)", "1"}),
    pureFunction("SridIsProjected", systems, Arity::exactly(1), engine::systemIsProjected,
                 {"SridIsProjected(coordinate system)", "1 when a coordinate system is a projection.",
                  "SridIsProjected(3857)", "1"}),
    pureFunction("SridHasFlippedAxes", systems, Arity::exactly(1), engine::systemHasFlippedAxes,
                 {"SridHasFlippedAxes(coordinate system)",
                  "1 when the authority puts north before east; objects have east first all the same.",
                  "SridHasFlippedAxes(4326)", "1"}),
    pureFunction("SridGetAxis_1_Name", systems, Arity::exactly(1), engine::firstAxisName,
                 {"SridGetAxis_1_Name(coordinate system)",
                  "The first axis in the order of the authority; NULL where nothing is known of it.",
                  "SridGetAxis_1_Name(4326)", "Geodetic latitude"}),
    pureFunction("SridGetAxis_1_Orientation", systems, Arity::exactly(1), engine::firstAxisOrientation,
                 {"SridGetAxis_1_Orientation(coordinate system)",
                  "Where the first axis goes; NULL where nothing is known of it.",
                  "SridGetAxis_1_Orientation(4326)", "north"}),
    pureFunction("SridGetAxis_2_Name", systems, Arity::exactly(1), engine::secondAxisName,
                 {"SridGetAxis_2_Name(coordinate system)",
                  "The second axis in the order of the authority; NULL where nothing is known of it.",
                  "SridGetAxis_2_Name(4326)", "Geodetic longitude"}),
    pureFunction("SridGetAxis_2_Orientation", systems, Arity::exactly(1), engine::secondAxisOrientation,
                 {"SridGetAxis_2_Orientation(coordinate system)",
                  "Where the second axis goes; NULL where nothing is known of it.",
                  "SridGetAxis_2_Orientation(4326)", "east"}),
    pureFunction("SridGetUnit", systems, Arity::exactly(1), engine::systemUnit,
                 {"SridGetUnit(coordinate system)",
                  "The unit of the first axis; NULL where nothing is known of it.", "SridGetUnit(3857)",
                  "metre"}),
    pureFunction("SridGetDatum", systems, Arity::exactly(1), engine::systemDatum,
                 {"SridGetDatum(coordinate system)",
                  "The datum of a coordinate system; NULL where it has none.", "SridGetDatum(4326)",
                  "World Geodetic System 1984"}),
    alsoNamed("SridGetSpheroid",
              pureFunction("SridGetEllipsoid", systems, Arity::exactly(1), engine::systemEllipsoid,
                           {"SridGetEllipsoid(coordinate system)",
                            "The ellipsoid of a coordinate system; NULL where it has none.",
                            "SridGetEllipsoid(4326)", "WGS 84"})),
    pureFunction("SridGetPrimeMeridian", systems, Arity::exactly(1), engine::systemPrimeMeridian,
                 {"SridGetPrimeMeridian(coordinate system)",
                  "The prime meridian of a coordinate system; NULL where it has none.",
                  "SridGetPrimeMeridian(4326)", "Greenwich"}),
    pureFunction("SridGetProjection", systems, Arity::exactly(1), engine::systemProjection,
                 {"SridGetProjection(coordinate system)",
                  "The method of projection; NULL for a geographic system.", "SridGetProjection(32636)",
                  "Transverse Mercator"}),
    pureFunction("SridFromAuthCRS", systems, Arity::exactly(2), engine::epsgOfAuthority,
                 {"SridFromAuthCRS(authority, code)",
                  "The EPSG code of the system that an authority has given a code; NULL where there is none.",
                  "SridFromAuthCRS('epsg', 3857)", "3857"}),
    pureFunction("PROJ_GuessSridFromWKT", systems, Arity::exactly(1), engine::epsgOfWkt,
                 {"PROJ_GuessSridFromWKT(text)",
                  "The EPSG code of the system that well-known text describes; NULL where there is none.",
                  "PROJ_GuessSridFromWKT(PROJ_AsWKT('EPSG', 3857))", "3857"}),
    pureFunction(
        "PROJ_AsProjString", systems, Arity::exactly(2), engine::systemAsProjText,
        {"PROJ_AsProjString(authority, code)",
         "The system that an authority has given a code as a text for PROJ; NULL where there is none.",
         "PROJ_AsProjString('EPSG', 32636)", "+proj=utm +zone=36 +datum=WGS84 +units=m +no_defs +type=crs"}),
    pureFunction("PROJ_AsWKT", systems, Arity::between(2, 5), engine::systemAsWkt,
                 {"PROJ_AsWKT(authority, code [, form [, indented [, blanks]]])",
                  "The system that an authority has given a code as well-known text of the form ISO-2019, "
                  "ISO-2018, ISO-2015, GDAL or ESRI, in one line for 0; NULL where there is none.",
                  "Left(PROJ_AsWKT('EPSG', 4326, 'GDAL', 0), 15)", "GEOGCS[\"WGS 84\""}),
};

} // namespace

std::span<const FunctionRecord> systemRecords() {
    return records;
}

} // namespace orvane::adaptor
