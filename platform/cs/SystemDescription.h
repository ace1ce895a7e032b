#pragma once

#include "platform/Export.h"

#include <QString>

#include <memory>

namespace orvane::cs {

class CoordSystem;

/// What PROJ's database says of a coordinate system; texts are null where it says nothing.
struct SystemDescription {
    struct Axis {
        QString name;
        QString orientation; ///< "north", "east", ...
    };
    Axis first; ///< in the order of the authority
    Axis second;
    QString unit; ///< of the first axis
    QString datum;
    QString ellipsoid;
    QString primeMeridian;
    QString projection; ///< the method; null for a geographic system
    bool isGeographic = false;
    bool hasFlippedAxes = false; ///< the first axis goes north or south
};

/// Any thread may call these.
ORVANE_PLATFORM_EXPORT SystemDescription describe(const CoordSystem& system);

enum class WktForm { Iso2019, Iso2015, Gdal, Esri };
/// Well-known text of the system, in one line or indented by so many blanks a level; null where the form
/// cannot say it.
ORVANE_PLATFORM_EXPORT QString wktOf(const CoordSystem& system, WktForm form, bool isIndented, int blanks);
/// The text with which PROJ is told of it: "+proj=longlat +datum=WGS84 +no_defs +type=crs"; null for none.
ORVANE_PLATFORM_EXPORT QString projTextOf(const CoordSystem& system);
/// The system that an authority ("EPSG", "ESRI", in any letter case) has given a code; null for none. With
/// its EPSG code where it has one, too.
ORVANE_PLATFORM_EXPORT std::shared_ptr<CoordSystem> systemOfAuthority(const QString& authority,
                                                                      const QString& code);

} // namespace orvane::cs
