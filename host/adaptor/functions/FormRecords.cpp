#include "host/adaptor/functions/ScalarRecord.h"

#include <orvane/engine/functions/GeometryForms.h>

namespace orvane::adaptor {

namespace {

constexpr const char* writing = "Geometries as texts and bytes";
constexpr const char* readingForms = "Geometries from texts and bytes";

constexpr FunctionRecord records[] = {
    alsoNamed("ST_AsText",
              pureFunction("AsText", writing, Arity::between(1, 2), engine::asText,
                           {"AsText(obj [, digits])",
                            "Well-known text with at most six digits behind the point, or as many as asked "
                            "for; with -1 as many as it takes to read back the same numbers.",
                            "AsText(GeomFromText('LINESTRING Z(1 2 3,4.123456789 5 6)'))",
                            "LINESTRING Z(1 2 3, 4.123457 5 6)"})),
    pureFunction("AsWkt", writing, Arity::between(1, 2), engine::asWkt,
                 {"AsWkt(obj [, digits])",
                  "Well-known text in the form of the standard, with all digits unless fewer are asked for.",
                  "AsWkt(GeomFromText('MULTIPOINT(1 2,4.123456789 5)'))",
                  "MULTIPOINT((1 2),(4.123456789 5))"}),
    pureFunction("AsEWKT", writing, Arity::exactly(1), engine::asEwkt,
                 {"AsEWKT(obj)",
                  "Well-known text with the EPSG code of the coordinate system before it, 0 for none.",
                  "AsEWKT(MakePointM(1, 2, 3, 4326))", "SRID=4326;POINTM(1 2 3)"}),
    pureFunction("AsGeoJSON", writing, Arity::between(1, 3), engine::asGeoJson,
                 {"AsGeoJSON(obj [, digits [, options]])",
                  "GeoJSON in WGS 84; options added up: 1 for a member bbox, 2 or 4 for a member crs and "
                  "coordinates as they stand.",
                  "AsGeoJSON(MakePoint(1.5, 2))", "{\"type\":\"Point\",\"coordinates\":[1.5,2]}"}),
    alsoNamed("ST_AsBinary",
              pureFunction("AsBinary", writing, Arity::exactly(1), engine::asBinary,
                           {"AsBinary(obj)", "Well-known binary of the standard.",
                            "Hex(AsBinary(MakePoint(1, 2)))", "0101000000000000000000F03F0000000000000040"})),
    pureFunction("AsEWKB", writing, Arity::exactly(1), engine::asEwkb,
                 {"AsEWKB(obj)", "Well-known binary with the EPSG code in it, in hexadecimal digits.",
                  "AsEWKB(MakePoint(1, 2, 4326))", "0101000020E6100000000000000000F03F0000000000000040"}),
    alsoNamed(
        {"ST_GeomFromText", "GeometryFromText", "ST_GeometryFromText", "ST_WKTToSQL"},
        pureFunction(
            "GeomFromText", readingForms, Arity::between(1, 2), engine::geometryFromText,
            {"GeomFromText(text [, coordinate system])",
             "The object of well-known text, in the system of an EPSG code or of a text such as epsg:3857.",
             "AsEWKT(GeomFromText('CIRCULARSTRING(0 0,1 1,2 0)', 3857))",
             "SRID=3857;CIRCULARSTRING(0 0,1 1,2 0)"})),
    alsoNamed("ST_PointFromText",
              pureFunction("PointFromText", readingForms, Arity::between(1, 2), engine::pointFromText,
                           {"PointFromText(text [, coordinate system])",
                            "The point of well-known text; any other kind is an error.",
                            "AsText(PointFromText('POINT(1 2)'))", "POINT(1 2)"})),
    alsoNamed({"LineStringFromText", "ST_LineFromText", "ST_LineStringFromText"},
              pureFunction("LineFromText", readingForms, Arity::between(1, 2), engine::lineFromText,
                           {"LineFromText(text [, coordinate system])",
                            "The line of well-known text; any other kind is an error.",
                            "AsText(LineFromText('LINESTRING(1 2,3 4)'))", "LINESTRING(1 2, 3 4)"})),
    alsoNamed({"PolygonFromText", "ST_PolyFromText", "ST_PolygonFromText"},
              pureFunction("PolyFromText", readingForms, Arity::between(1, 2), engine::polygonFromText,
                           {"PolyFromText(text [, coordinate system])",
                            "The polygon of well-known text; any other kind is an error.",
                            "AsText(PolyFromText('POLYGON((0 0,1 0,1 1,0 0))'))",
                            "POLYGON((0 0, 1 0, 1 1, 0 0))"})),
    alsoNamed({"MultiPointFromText", "ST_MPointFromText", "ST_MultiPointFromText"},
              pureFunction("MPointFromText", readingForms, Arity::between(1, 2), engine::multiPointFromText,
                           {"MPointFromText(text [, coordinate system])",
                            "The multi-point of well-known text; any other kind is an error.",
                            "AsText(MPointFromText('MULTIPOINT(1 2,3 4)'))", "MULTIPOINT(1 2, 3 4)"})),
    alsoNamed(
        {"MultiLineStringFromText", "ST_MLineFromText", "ST_MultiLineStringFromText"},
        pureFunction("MLineFromText", readingForms, Arity::between(1, 2), engine::multiLineFromText,
                     {"MLineFromText(text [, coordinate system])",
                      "The multi-line string of well-known text; any other kind is an error.",
                      "AsText(MLineFromText('MULTILINESTRING((1 2,3 4))'))", "MULTILINESTRING((1 2, 3 4))"})),
    alsoNamed({"MultiPolygonFromText", "ST_MPolyFromText", "ST_MultiPolygonFromText"},
              pureFunction("MPolyFromText", readingForms, Arity::between(1, 2), engine::multiPolygonFromText,
                           {"MPolyFromText(text [, coordinate system])",
                            "The multi-polygon of well-known text; any other kind is an error.",
                            "AsText(MPolyFromText('MULTIPOLYGON(((0 0,1 0,1 1,0 0)))'))",
                            "MULTIPOLYGON(((0 0, 1 0, 1 1, 0 0)))"})),
    alsoNamed({"GeometryCollectionFromText", "ST_GeomCollFromText", "ST_GeometryCollectionFromText"},
              pureFunction("GeomCollFromText", readingForms, Arity::between(1, 2), engine::collectionFromText,
                           {"GeomCollFromText(text [, coordinate system])",
                            "The collection of well-known text; any other kind is an error.",
                            "AsText(GeomCollFromText('GEOMETRYCOLLECTION(POINT(1 2))'))",
                            "GEOMETRYCOLLECTION(POINT(1 2))"})),
    alsoNamed("ST_BdPolyFromText",
              pureFunction("BdPolyFromText", readingForms, Arity::between(1, 2), engine::polygonOfText,
                           {"BdPolyFromText(text [, coordinate system])",
                            "The polygon that the lines of a multi-line string in well-known text enclose; "
                            "NULL where they enclose none or several.",
                            "ST_Area(BdPolyFromText('MULTILINESTRING((0 0,1 0,1 1),(1 1,0 0))'))", "0.5"})),
    alsoNamed("ST_BdMPolyFromText",
              pureFunction("BdMPolyFromText", readingForms, Arity::between(1, 2), engine::polygonsOfText,
                           {"BdMPolyFromText(text [, coordinate system])",
                            "The multi-polygon of all that the lines of a multi-line string in well-known "
                            "text enclose; NULL where they enclose nothing.",
                            "GeometryType(BdMPolyFromText('MULTILINESTRING((0 0,1 0,1 1),(1 1,0 0))'))",
                            "MULTIPOLYGON"})),
    alsoNamed(
        {"ST_GeomFromWKB", "GeometryFromWKB", "ST_GeometryFromWKB", "ST_WKBToSQL"},
        pureFunction(
            "GeomFromWKB",
            readingForms, Arity::between(1, 2), engine::geometryFromWkb,
            {"GeomFromWKB(bytes [, coordinate system])",
             "The object of well-known binary, in the system of an EPSG code or of a text such as epsg:3857.",
             "AsText(GeomFromWKB(AsBinary(MakePoint(1, 2))))", "POINT(1 2)"})),
    alsoNamed("ST_PointFromWKB",
              pureFunction("PointFromWKB", readingForms, Arity::between(1, 2), engine::pointFromWkb,
                           {"PointFromWKB(bytes [, coordinate system])",
                            "The point of well-known binary; any other kind is an error.",
                            "AsText(PointFromWKB(AsBinary(GeomFromText('POINT(1 2)'))))", "POINT(1 2)"})),
    alsoNamed({"LineStringFromWKB", "ST_LineFromWKB", "ST_LineStringFromWKB"},
              pureFunction("LineFromWKB", readingForms, Arity::between(1, 2), engine::lineFromWkb,
                           {"LineFromWKB(bytes [, coordinate system])",
                            "The line of well-known binary; any other kind is an error.",
                            "AsText(LineFromWKB(AsBinary(GeomFromText('LINESTRING(1 2,3 4)'))))",
                            "LINESTRING(1 2, 3 4)"})),
    alsoNamed({"PolygonFromWKB", "ST_PolyFromWKB", "ST_PolygonFromWKB"},
              pureFunction("PolyFromWKB", readingForms, Arity::between(1, 2), engine::polygonFromWkb,
                           {"PolyFromWKB(bytes [, coordinate system])",
                            "The polygon of well-known binary; any other kind is an error.",
                            "AsText(PolyFromWKB(AsBinary(GeomFromText('POLYGON((0 0,1 0,1 1,0 0))'))))",
                            "POLYGON((0 0, 1 0, 1 1, 0 0))"})),
    alsoNamed({"MultiPointFromWKB", "ST_MPointFromWKB", "ST_MultiPointFromWKB"},
              pureFunction("MPointFromWKB", readingForms, Arity::between(1, 2), engine::multiPointFromWkb,
                           {"MPointFromWKB(bytes [, coordinate system])",
                            "The multi-point of well-known binary; any other kind is an error.",
                            "AsText(MPointFromWKB(AsBinary(GeomFromText('MULTIPOINT(1 2,3 4)'))))",
                            "MULTIPOINT(1 2, 3 4)"})),
    alsoNamed({"MultiLineStringFromWKB", "ST_MLineFromWKB", "ST_MultiLineStringFromWKB"},
              pureFunction("MLineFromWKB", readingForms, Arity::between(1, 2), engine::multiLineFromWkb,
                           {"MLineFromWKB(bytes [, coordinate system])",
                            "The multi-line string of well-known binary; any other kind is an error.",
                            "AsText(MLineFromWKB(AsBinary(GeomFromText('MULTILINESTRING((1 2,3 4))'))))",
                            "MULTILINESTRING((1 2, 3 4))"})),
    alsoNamed(
        {"MultiPolygonFromWKB", "ST_MPolyFromWKB", "ST_MultiPolygonFromWKB"},
        pureFunction("MPolyFromWKB", readingForms, Arity::between(1, 2), engine::multiPolygonFromWkb,
                     {"MPolyFromWKB(bytes [, coordinate system])",
                      "The multi-polygon of well-known binary; any other kind is an error.",
                      "AsText(MPolyFromWKB(AsBinary(GeomFromText('MULTIPOLYGON(((0 0,1 0,1 1,0 0)))'))))",
                      "MULTIPOLYGON(((0 0, 1 0, 1 1, 0 0)))"})),
    alsoNamed(
        {"GeometryCollectionFromWKB", "ST_GeomCollFromWKB", "ST_GeometryCollectionFromWKB"},
        pureFunction("GeomCollFromWKB", readingForms, Arity::between(1, 2), engine::collectionFromWkb,
                     {"GeomCollFromWKB(bytes [, coordinate system])",
                      "The collection of well-known binary; any other kind is an error.",
                      "AsText(GeomCollFromWKB(AsBinary(GeomFromText('GEOMETRYCOLLECTION(POINT(1 2))'))))",
                      "GEOMETRYCOLLECTION(POINT(1 2))"})),
    alsoNamed(
        "ST_BdPolyFromWKB",
        pureFunction(
            "BdPolyFromWKB", readingForms, Arity::between(1, 2), engine::polygonOfWkb,
            {"BdPolyFromWKB(bytes [, coordinate system])",
             "The polygon that the lines of a multi-line string in well-known binary enclose; NULL where "
             "they enclose none or several.",
             "ST_Area(BdPolyFromWKB(AsBinary(GeomFromText('MULTILINESTRING((0 0,1 0,1 1),(1 1,0 0))'))))",
             "0.5"})),
    alsoNamed("ST_BdMPolyFromWKB",
              pureFunction("BdMPolyFromWKB", readingForms, Arity::between(1, 2), engine::polygonsOfWkb,
                           {"BdMPolyFromWKB(bytes [, coordinate system])",
                            "The multi-polygon of all that the lines of a multi-line string in well-known "
                            "binary enclose; NULL where they enclose nothing.",
                            "GeometryType(BdMPolyFromWKB(AsBinary(GeomFromText('MULTILINESTRING((0 0,1 0,1 "
                            "1),(1 1,0 0))'))))",
                            "MULTIPOLYGON"})),
    pureFunction("GeomFromEWKT", readingForms, Arity::exactly(1), engine::geometryFromEwkt,
                 {"GeomFromEWKT(text)", "The object of well-known text with its coordinate system before it.",
                  "SRID(GeomFromEWKT('SRID=3857;POINT(1 2 3)'))", "3857"}),
    pureFunction("GeomFromEWKB", readingForms, Arity::exactly(1), engine::geometryFromEwkb,
                 {"GeomFromEWKB(bytes or digits)",
                  "The object of well-known binary with its coordinate system in it, as bytes or in "
                  "hexadecimal digits.",
                  "AsEWKT(GeomFromEWKB('0101000020E6100000000000000000F03F0000000000000040'))",
                  "SRID=4326;POINT(1 2)"}),
    pureFunction(
        "GeomFromGeoJSON", readingForms, Arity::exactly(1), engine::geometryFromGeoJson,
        {"GeomFromGeoJSON(text)",
         "The object of a GeoJSON geometry or feature, in WGS 84 unless a member crs says otherwise.",
         "AsEWKT(GeomFromGeoJSON('{\"type\":\"Point\",\"coordinates\":[1,2]}'))", "SRID=4326;POINT(1 2)"}),
};

} // namespace

std::span<const FunctionRecord> formRecords() {
    return records;
}

} // namespace orvane::adaptor
