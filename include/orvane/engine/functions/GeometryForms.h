#pragma once

#include <orvane/engine/Export.h>
#include <orvane/engine/functions/ScalarFunction.h>

/// Geometries as texts and bytes, and back. NULL gives NULL; what is no geometry, and a text or bytes of
/// which none is made, is an error that names the function and, in a text, the place. Curves stay curves
/// where the form has them. The user data is the EngineCache. Reentrant.
namespace orvane::engine {

/// geometry [, digits behind the point]: well-known text; of the first as SpatiaLite has it, six digits where
/// nothing is said; of the second in the standard's form, with the shortest numbers that read back the same.
ORVANE_ENGINE_EXPORT ScalarFunction asText, asWkt;
/// geometry: well-known text with the system before it; well-known binary, in hexadecimal digits with the
/// system in it.
ORVANE_ENGINE_EXPORT ScalarFunction asEwkt, asBinary, asEwkb;
/// geometry [, digits [, options]]: RFC 7946, so in WGS 84 where the system is known. Options added up: 1 a
/// member "bbox", 2 and 4 a member "crs", in the short and the long form, the coordinates as they stand.
ORVANE_ENGINE_EXPORT ScalarFunction asGeoJson;

/// [version,] geometry [, digits]: geometry::appendGml, version 2 where none is given.
/// [name, description,] geometry [, digits]: geometry::appendKml in WGS 84; with a name a placemark.
ORVANE_ENGINE_EXPORT ScalarFunction asGml, asKml;
/// geometry [, 1 for relative positions [, digits]]: what an SVG path or point takes, y downwards. Curves are
/// approximated.
ORVANE_ENGINE_EXPORT ScalarFunction asSvg;
/// geometry [, 0 to 3 for the ordinates]: FGF, curves approximated.
ORVANE_ENGINE_EXPORT ScalarFunction asFgf;
/// geometry [, digits [, of z [, of m [, 1 for the size [, 1 for the envelope]]]]]: geometry::toTwkb.
ORVANE_ENGINE_EXPORT ScalarFunction asTwkb;
/// In WGS 84: line [, digits]: geometry::encodedPolyline. geometry [, length]: geometry::geoHash of a point
/// or of the middle; without a length as long as all of it has in common; NULL for an empty geometry. point:
/// the cell of geometry::garsCell.
ORVANE_ENGINE_EXPORT ScalarFunction asEncodedPolyline, geoHash, asGars;

/// text [, system]: geometry::fromWkt; of one kind only. The system given counts rather than the text's.
ORVANE_ENGINE_EXPORT ScalarFunction geometryFromText;
ORVANE_ENGINE_EXPORT ScalarFunction pointFromText, lineFromText, polygonFromText, multiPointFromText,
    multiLineFromText, multiPolygonFromText, collectionFromText;
/// bytes [, system]: well-known binary, extended or not; of one kind only.
ORVANE_ENGINE_EXPORT ScalarFunction geometryFromWkb;
ORVANE_ENGINE_EXPORT ScalarFunction pointFromWkb, lineFromWkb, polygonFromWkb, multiPointFromWkb,
    multiLineFromWkb, multiPolygonFromWkb, collectionFromWkb;
/// text or bytes of a multi-line string [, system]: the area, or the areas, that the lines enclose. NULL
/// where they enclose none, and where areas are more than the one asked for.
ORVANE_ENGINE_EXPORT ScalarFunction polygonOfText, polygonsOfText, polygonOfWkb, polygonsOfWkb;
/// text: extended well-known text; well-known binary in hexadecimal digits, or as bytes; GeoJSON.
ORVANE_ENGINE_EXPORT ScalarFunction geometryFromEwkt, geometryFromEwkb, geometryFromGeoJson;

/// text: geometry::fromGml, fromKml. bytes [, system]: FGF; geometry::fromTwkb.
ORVANE_ENGINE_EXPORT ScalarFunction geometryFromGml, geometryFromKml, geometryFromFgf, geometryFromTwkb;
/// In WGS 84: text [, digits]: a line; code: the area of a cell of the Global Area Reference System.
ORVANE_ENGINE_EXPORT ScalarFunction lineFromEncodedPolyline, areaFromGars;

} // namespace orvane::engine
