#include <orvane/engine/functions/CoordSystems.h>

#include "GeometryCall.h"
#include "platform/cs/CoordSystem.h"
#include "platform/cs/SystemDescription.h"
#include <orvane/engine/functions/Converters.h>

#include <algorithm>

namespace orvane::engine {

namespace {

constexpr const char* systemExpected =
    QT_TRANSLATE_NOOP("orvane::geometry", "нужна известная координатная система");

std::shared_ptr<cs::CoordSystem> systemOf(const GeometryCall& call) {
    auto system = call.coordSystem(0);
    if (!system) {
        call.reject(0, systemExpected);
    }
    return system;
}

/// What `told` tells of the system's description.
template<typename Told>
void describe(const char* name, sqlite3_context* context, int count, sqlite3_value** values,
              const Told& told) {
    evaluate(name, 1, context, count, values,
             [&told](const GeometryCall& call) { return told(cs::describe(*systemOf(call))); });
}

using Description = cs::SystemDescription;

/// By an authority and a code, which may be a number.
std::shared_ptr<cs::CoordSystem> systemOfAuthority(const GeometryCall& call) {
    return cs::systemOfAuthority(call.text(0), toQString(call.value(1)));
}

std::optional<int> codeOf(const std::shared_ptr<cs::CoordSystem>& system) {
    return system && system->epsg() != 0 ? std::optional(system->epsg()) : std::nullopt;
}

cs::WktForm formOf(const GeometryCall& call, int position) {
    struct Named {
        const char* name;
        cs::WktForm form;
    };
    constexpr Named forms[] = {{"ISO-2019", cs::WktForm::Iso2019},
                               {"ISO-2018", cs::WktForm::Iso2019},
                               {"ISO-2015", cs::WktForm::Iso2015},
                               {"GDAL", cs::WktForm::Gdal},
                               {"ESRI", cs::WktForm::Esri}};
    const QString asked = call.isGiven(position) ? call.text(position) : QStringLiteral("ISO-2019");
    for (const Named& each : forms) {
        if (asked.compare(QLatin1String(each.name), Qt::CaseInsensitive) == 0) {
            return each.form;
        }
    }
    call.reject(position,
                QT_TRANSLATE_NOOP("orvane::geometry", "нужна ISO-2019, ISO-2018, ISO-2015, GDAL или ESRI"));
}

} // namespace

void systemIsGeographic(sqlite3_context* context, int count, sqlite3_value** values) {
    describe("SridIsGeographic", context, count, values,
             [](const Description& system) { return system.isGeographic; });
}

void systemIsProjected(sqlite3_context* context, int count, sqlite3_value** values) {
    describe("SridIsProjected", context, count, values,
             [](const Description& system) { return !system.projection.isNull(); });
}

void systemHasFlippedAxes(sqlite3_context* context, int count, sqlite3_value** values) {
    describe("SridHasFlippedAxes", context, count, values,
             [](const Description& system) { return system.hasFlippedAxes; });
}

void firstAxisName(sqlite3_context* context, int count, sqlite3_value** values) {
    describe("SridGetAxis_1_Name", context, count, values,
             [](const Description& system) { return system.first.name; });
}

void firstAxisOrientation(sqlite3_context* context, int count, sqlite3_value** values) {
    describe("SridGetAxis_1_Orientation", context, count, values,
             [](const Description& system) { return system.first.orientation; });
}

void secondAxisName(sqlite3_context* context, int count, sqlite3_value** values) {
    describe("SridGetAxis_2_Name", context, count, values,
             [](const Description& system) { return system.second.name; });
}

void secondAxisOrientation(sqlite3_context* context, int count, sqlite3_value** values) {
    describe("SridGetAxis_2_Orientation", context, count, values,
             [](const Description& system) { return system.second.orientation; });
}

void systemUnit(sqlite3_context* context, int count, sqlite3_value** values) {
    describe("SridGetUnit", context, count, values, [](const Description& system) { return system.unit; });
}

void systemDatum(sqlite3_context* context, int count, sqlite3_value** values) {
    describe("SridGetDatum", context, count, values, [](const Description& system) { return system.datum; });
}

void systemEllipsoid(sqlite3_context* context, int count, sqlite3_value** values) {
    describe("SridGetEllipsoid", context, count, values,
             [](const Description& system) { return system.ellipsoid; });
}

void systemPrimeMeridian(sqlite3_context* context, int count, sqlite3_value** values) {
    describe("SridGetPrimeMeridian", context, count, values,
             [](const Description& system) { return system.primeMeridian; });
}

void systemProjection(sqlite3_context* context, int count, sqlite3_value** values) {
    describe("SridGetProjection", context, count, values,
             [](const Description& system) { return system.projection; });
}

void epsgOfAuthority(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("SridFromAuthCRS", 2, context, count, values,
             [](const GeometryCall& call) { return codeOf(systemOfAuthority(call)); });
}

void epsgOfWkt(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("PROJ_GuessSridFromWKT", 1, context, count, values, [](const GeometryCall& call) {
        return codeOf(cs::CoordSysFactory::defaultCoordSysFactory()->createFromWkt(call.text(0)));
    });
}

void systemAsProjText(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("PROJ_AsProjString", 2, context, count, values, [](const GeometryCall& call) {
        const auto system = systemOfAuthority(call);
        return system ? cs::projTextOf(*system) : QString();
    });
}

void systemAsWkt(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("PROJ_AsWKT", 2, context, count, values, [](const GeometryCall& call) {
        const auto system = systemOfAuthority(call);
        const cs::WktForm form = formOf(call, 2);
        return system ? cs::wktOf(*system, form, call.integer(3, 1) != 0,
                                  static_cast<int>(std::clamp<std::int64_t>(call.integer(4, 4), 0, 16)))
                      : QString();
    });
}

} // namespace orvane::engine
