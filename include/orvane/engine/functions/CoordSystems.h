#pragma once

#include <orvane/engine/Export.h>
#include <orvane/engine/functions/ScalarFunction.h>

/// What is known of coordinate systems, which an EPSG code or a text ("epsg:3857", "proj:...", "wkt:...")
/// names. NULL gives NULL, and so does what PROJ's database does not say of the system; a system that is not
/// known is an error. The user data is the EngineCache. Reentrant.
namespace orvane::engine {

ORVANE_ENGINE_EXPORT ScalarFunction systemIsGeographic, systemIsProjected, systemHasFlippedAxes;
/// Of the first and the second axis in the order of the authority.
ORVANE_ENGINE_EXPORT ScalarFunction firstAxisName, firstAxisOrientation, secondAxisName,
    secondAxisOrientation;
ORVANE_ENGINE_EXPORT ScalarFunction systemUnit, systemDatum, systemEllipsoid, systemPrimeMeridian,
    systemProjection;

/// authority, code: the EPSG code of the system, NULL where there is none. Well-known text: the same.
ORVANE_ENGINE_EXPORT ScalarFunction epsgOfAuthority, epsgOfWkt;
/// authority, code: PROJ's text. authority, code [, form [, 0 for one line [, blanks]]]: well-known text; the
/// forms are ISO-2019, ISO-2018, ISO-2015, GDAL and ESRI. NULL where the authority has no such system.
ORVANE_ENGINE_EXPORT ScalarFunction systemAsProjText, systemAsWkt;

} // namespace orvane::engine
