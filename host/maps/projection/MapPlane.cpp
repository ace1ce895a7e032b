#include "host/maps/projection/MapPlane.h"

#include "host/maps/projection/GroundExtent.h"
#include "platform/cs/SystemDescription.h"

#include <QHash>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::maps {

namespace {

/// The parameters of "+proj=utm +zone=37 +south"; those without a value have an empty one.
QHash<QString, QString> parametersOf(const QString& projText) {
    QHash<QString, QString> parameters;
    for (const QString& word : projText.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        if (word.startsWith(QLatin1Char('+'))) {
            parameters.insert(word.section(QLatin1Char('='), 0, 0).mid(1), word.section(QLatin1Char('='), 1));
        }
    }
    return parameters;
}

/// Where web maps end: the square.
constexpr double mercatorLimit = 85.06;

void limit(MapPlane& plane, const QHash<QString, QString>& parameters) {
    const QString method = parameters.value(QStringLiteral("proj"));
    const double centre = parameters.value(QStringLiteral("lat_0")).toDouble();
    const auto is = [&method](std::initializer_list<const char*> names) {
        return std::any_of(names.begin(), names.end(),
                           [&method](const char* name) { return method == QLatin1String(name); });
    };
    if (is({"merc", "webmerc", "mill"})) {
        plane.south = -mercatorLimit;
        plane.north = mercatorLimit;
    } else if (is({"tmerc", "utm", "etmerc", "cass", "gstmerc"})) {
        plane.halfWidth = 60;
    } else if (is({"lcc"})) {
        const double first = parameters.value(QStringLiteral("lat_1")).toDouble();
        const bool isNorthern = first + parameters.value(QStringLiteral("lat_2")).toDouble() >= 0;
        (isNorthern ? plane.south : plane.north) = isNorthern ? -60 : 60;
    } else if (is({"laea", "aeqd", "stere", "sterea", "ups", "gnom", "ortho"})) {
        const double reach = is({"laea", "aeqd"}) ? 170 : is({"gnom"}) ? 60 : is({"ortho"}) ? 89 : 110;
        const bool isPolar = std::abs(centre) > 89 || is({"ups"});
        const bool isSouthern = centre < 0 || parameters.contains(QStringLiteral("south"));
        if (isPolar) {
            (isSouthern ? plane.north : plane.south) = isSouthern ? reach - 90 : 90 - reach;
        } else {
            plane.halfWidth = std::min(reach, 120.0);
        }
    } else {
        plane.isWorld =
            is({"eqearth", "natearth", "natearth2", "robin", "moll", "eck4", "eck6", "sinu", "wintri",
                "hammer", "aitoff", "eqc", "cea", "longlat", "vandg", "goode", "igh", "patterson"});
    }
}

std::shared_ptr<cs::CoordSystem> systemOf(const QString& method, double latitude, double longitude,
                                          const QString& rest = QString()) {
    const QString text =
        QStringLiteral("proj:+proj=%0 +lat_0=%1 +lon_0=%2%3 +datum=WGS84 +units=m +no_defs")
            .arg(method, QString::number(latitude, 'g', 10), QString::number(longitude, 'g', 10), rest);
    return cs::CoordSysFactory::defaultCoordSysFactory()->createFromTaggedString(text);
}

/// A conic projection touching a sixth of the height within the extent, as Kavrayskiy proposed.
std::shared_ptr<cs::CoordSystem> conic(const QString& method, const GroundExtent& extent, double longitude) {
    const double height = extent.north() - extent.south();
    const auto parallels = QStringLiteral(" +lat_1=%0 +lat_2=%1")
                               .arg(QString::number(extent.south() + height / 6, 'g', 8),
                                    QString::number(extent.north() - height / 6, 'g', 8));
    return systemOf(method, (extent.south() + extent.north()) / 2, longitude, parallels);
}

double normalized(double longitude) {
    return std::remainder(longitude, 360.0);
}

} // namespace

MapPlane planeOf(const cs::CoordSystem& system) {
    MapPlane plane;
    const auto parameters = parametersOf(cs::projTextOf(system));
    plane.centralMeridian = parameters.value(QStringLiteral("lon_0")).toDouble();
    if (const int zone = parameters.value(QStringLiteral("zone")).toInt(); zone != 0) {
        plane.centralMeridian = 6 * zone - 183;
    }
    limit(plane, parameters);
    return plane;
}

std::shared_ptr<cs::CoordSystem> suitableSystem(const GroundExtent& extent) {
    if (extent.isEmpty()) {
        return cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(4326);
    }
    const double height = extent.north() - extent.south();
    const double width = extent.width();
    const double latitude = (extent.south() + extent.north()) / 2;
    const double longitude = normalized(extent.west() + width / 2);
    // Widths in degrees of latitude.
    const double shrink = std::cos(latitude * std::numbers::pi / 180);
    const double narrowed = width * shrink;
    if (width > 120 && (extent.south() >= 45 || extent.north() <= -45) &&
        (width > 200 || std::max(extent.north(), -extent.south()) > 85)) {
        return systemOf(QStringLiteral("laea"), extent.south() > 0 ? 90 : -90, width > 330 ? 0 : longitude);
    }
    if (width > 200 || (narrowed > 120 && std::abs(latitude) < 35)) {
        // The whole world is cut open along the Bering Strait, where no continent is.
        constexpr double meridianOfTheWorld = 11;
        return systemOf(QStringLiteral("eqearth"), 0, width > 330 ? meridianOfTheWorld : longitude);
    }
    if (narrowed <= 6 || (height > 2 * narrowed && narrowed <= 20)) {
        return systemOf(QStringLiteral("tmerc"), latitude, longitude);
    }
    const bool isCrossingEquator = extent.south() < 0 && extent.north() > 0;
    if (isCrossingEquator || std::abs(latitude) < 15 || std::abs(latitude) > 75) {
        return systemOf(QStringLiteral("laea"), latitude, longitude);
    }
    return conic(height <= 25 && width <= 50 ? QStringLiteral("lcc") : QStringLiteral("aea"), extent,
                 longitude);
}

} // namespace orvane::maps
