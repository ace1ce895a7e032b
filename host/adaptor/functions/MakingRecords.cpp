#include "host/adaptor/functions/ScalarRecord.h"

#include <orvane/engine/functions/GeometryMaking.h>

namespace orvane::adaptor {

namespace {

constexpr const char* making = "Making geometries";

const FunctionRecord records[] = {
    alsoNamed(
        "ST_Buffer",
        pureFunction("Buffer", making, Arity::between(2, 5), engine::buffer,
                     {"Buffer(obj, distance [, units [, options]])",
                      "All positions within a distance of the object, as an area: on the ellipsoid for "
                      "geographic systems, "
                      "else in the plane; metres without units. A negative distance shrinks areas. Options: "
                      "'quad_segs=32 "
                      "endcap=round|flat|square join=round|mitre|bevel mitre_limit=5 side=both|left|right', "
                      "or a number "
                      "of segments for a quarter of a circle.",
                      "RoundBy(ObjectArea(Buffer(MakePoint(37.62, 55.75, 4326), 10, 'km'), 'sq km'), 1)",
                      "314"})),
    alsoNamed(
        "ST_SingleSidedBuffer",
        pureFunction("SingleSidedBuffer", making, Arity::between(3, 4), engine::singleSidedBuffer,
                     {"SingleSidedBuffer(line, distance, isLeft [, units])",
                      "The buffer of a line on its left side (1) or on its right (0).",
                      "ObjectArea(SingleSidedBuffer(GeomFromText('LINESTRING(0 0,10 0)'), 2, 1))", "20"})),
};

} // namespace

std::span<const FunctionRecord> makingRecords() {
    return records;
}

} // namespace orvane::adaptor
