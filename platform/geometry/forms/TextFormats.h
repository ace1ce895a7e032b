#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Geometry.h"

#include <string>

namespace orvane::geometry {

/// The keyword of well-known text with the ordinates: "POINT", "CIRCULARSTRING Z".
ORVANE_PLATFORM_EXPORT std::string wktKind(GeometryType type, Dimensions dimensions);

/// How well-known text is written.
struct WktStyle {
    int digits = -1;     ///< behind the decimal point, at most; -1 for the shortest that read back the same
    bool spaced = false; ///< ", " where others have ","
    bool barePoints = false; ///< "MULTIPOINT(1 2,3 4)" in place of "MULTIPOINT((1 2),(3 4))"
    bool extended = false; ///< "POINT(1 2 3)", "POINTM(1 2 3)" in place of "POINT Z(1 2 3)", "POINT M(1 2 3)"
};

/// Appends well-known text: "POINT(2.35 48.85)", "LINESTRING Z(1 2 3,4 5 6)", "POLYGON EMPTY". Curves stay
/// curves where the text has them.
ORVANE_PLATFORM_EXPORT void appendWkt(const Geometry& geometry, std::string& out, const WktStyle& style = {});

struct GeoJsonStyle {
    int digits = -1;       ///< as WktStyle
    bool envelope = false; ///< a member "bbox"
    std::string crs;       ///< the name in a member "crs", which RFC 7946 does not have; empty for none
};

/// Appends a geometry object of RFC 7946. m is left out, curves are approximated, coordinates are in the
/// geometry's own system; positions that are not finite become null.
ORVANE_PLATFORM_EXPORT void appendGeoJson(const Geometry& geometry, std::string& out,
                                          const GeoJsonStyle& style = {});

/// A number as the styles have it: at most so many digits behind the point, or with -1 the shortest that
/// reads back as the same double, plain digits for the magnitudes of coordinates.
ORVANE_PLATFORM_EXPORT void appendNumber(double value, int digits, std::string& out);

} // namespace orvane::geometry
