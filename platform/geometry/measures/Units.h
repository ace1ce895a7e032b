#pragma once

#include "platform/Export.h"

#include <QString>
#include <QStringList>

namespace orvane::geometry {

/// A unit of length or of area.
struct Unit {
    double factor = 1.0;    ///< metres or square metres in one unit; degrees or square degrees when angular
    bool isAngular = false; ///< of a plane of degrees
};

/// The unit of that name, English or Russian, whatever the letter case, blanks and full stops. Throws
/// std::runtime_error that lists the known names for any other text; empty is not a name either.
ORVANE_PLATFORM_EXPORT Unit lengthUnit(const QString& name);
/// Units of area are the squares of units of length ("sq km", "square miles", "km2", "km^2", "кв.км", "км
/// кв."), hectares, acres, ares.
ORVANE_PLATFORM_EXPORT Unit areaUnit(const QString& name);

/// The names that lists of units show: an English and a Russian one for each.
ORVANE_PLATFORM_EXPORT QStringList lengthUnitNames();
ORVANE_PLATFORM_EXPORT QStringList areaUnitNames();

} // namespace orvane::geometry
